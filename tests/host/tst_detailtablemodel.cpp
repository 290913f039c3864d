// The details table: columns, display texts with descriptions, and values to sort by.
#include "host/detailtablemodel.h"
#include "support/qtprinters.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QAbstractItemModelTester>
#include <QSortFilterProxyModel>
#include <gtest/gtest.h>

namespace {

using Status = DetailRecords::Status;

std::shared_ptr<const DetailRecords> records()
{
    auto r = std::make_shared<DetailRecords>();
    r->workOrders = {
        {"W1", "C1", "INST", "RES", Status::Open, 5, "Ana", QTime(9, 30)},
        {"W2", "C1", "REP", "BUS", Status::Late, 12, "", QTime(8, 0)},
        {"W3", "C1", "INST", "RES", Status::Completed, 3, "Ana", QTime(13, 5)},
        {"W4", "C2", "INST", "RES", Status::Completed, 5, "Cara", QTime(11, 0)},
    };
    r->technicians = {{"T1", "Ana", "C1", 4.5, 3.5}, {"T2", "Ben", "C1", 10, 0}};
    return r;
}

DetailTableModel::Descriptions descriptions()
{
    QZWebMessage message(QStringLiteral("DLVData"));
    auto data = std::make_shared<QZWebData>();
    QZWebTable units(QStringLiteral("BusinessUnits"), {"BUID", "BUDesc", "ParentBUID"});
    units.appendRow({"C1", "Alpha Crew", "#"});
    data->addTable(units);
    QZWebTable types(QStringLiteral("JobTypes"), {"JobType", "JobTypeDesc"});
    types.appendRow({"INST", "Installation"});
    data->addTable(types);
    QZWebTable classes(QStringLiteral("JobClasses"), {"JobClass", "JobClassDesc"});
    classes.appendRow({"RES", "Residential"});
    data->addTable(classes);
    message.addData(data);
    return DetailTableModel::descriptionsFrom(message);
}

TEST(DetailTableModel, ListsTheSelectedWorkOrdersWithDescriptions)
{
    DetailTableModel model(DetailTableModel::Kind::WorkOrders, records(), {{"C1"}, {}, {}, {}},
                           descriptions());
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.columnCount(), 8);
    EXPECT_EQ(model.rowTexts(0), (QStringList{"W1", "Alpha Crew", "Installation", "Residential",
                                              "Open", "5", "Ana", "09:30"}));
    // Codes without a description show the code; an unassigned order says so.
    EXPECT_EQ(model.rowTexts(1), (QStringList{"W2", "Alpha Crew", "REP", "BUS", "Late", "12",
                                              "(unassigned)", "08:00"}));
    EXPECT_EQ(model.headerData(7, Qt::Horizontal, Qt::DisplayRole).toString(), "Due");

    DetailTableModel techs(DetailTableModel::Kind::Technicians, records(), {{"C1"}, {}, {}, {}},
                           descriptions());
    ASSERT_EQ(techs.rowCount(), 2);
    EXPECT_EQ(techs.rowTexts(0), (QStringList{"Ana", "Alpha Crew", "4.50", "3.50", "1"}));
    EXPECT_EQ(techs.rowTexts(1), (QStringList{"Ben", "Alpha Crew", "10.00", "0.00", "0"}));
}

TEST(DetailTableModel, SortsNumbersAndTimesAsValues)
{
    DetailTableModel model(DetailTableModel::Kind::WorkOrders, records(),
                           {{"C1", "C2"}, {}, {}, {}}, {});
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setSortRole(DetailTableModel::SortRole);
    auto column = [&proxy](int c) {
        QStringList texts;
        for (int r = 0; r < proxy.rowCount(); ++r)
            texts.append(proxy.index(r, c).data().toString());
        return texts;
    };
    proxy.sort(5); // points: 12 after 5 although "12" < "5" as text
    EXPECT_EQ(column(5), (QStringList{"3", "5", "5", "12"}));
    proxy.sort(7, Qt::DescendingOrder);
    EXPECT_EQ(column(7), (QStringList{"13:05", "11:00", "09:30", "08:00"}));
    proxy.sort(4); // status in counter order, not alphabetical
    EXPECT_EQ(column(4), (QStringList{"Open", "Late", "Completed", "Completed"}));
}

} // namespace

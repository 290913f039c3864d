// The detail rows read grouped by unit must build the very model the reading in table order
// builds: the same job types and classes in the same order, the same first spellings and
// counters, the same code numbers, and for a failing table the same error and partial model.
#include "common/dlverror.h"
#include "model/businessunits.h"
#include "model/detailcolumns.h"
#include "model/generalcolumns.h"
#include "webdata/qzwebtable.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>

namespace {

QStringList detailColumns()
{
    QStringList columns{"BUID", "JobType", "JobClass"};
    for (const QStringView counter : DetailColumns::CounterColumns)
        columns << counter.toString();
    return columns;
}

struct Tables
{
    QZWebTable general{QStringLiteral("BUGeneralInfo"),
                       {"BUID", "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"}};
    QZWebTable details{QStringLiteral("BUDetailsInfo"), detailColumns()};
};

// Few codes in several spellings, rows of unknown units, repeated classes, runs of one unit's
// rows and rows in random order; now and then a counter that leaves 32 bits.
Tables randomTables(std::mt19937 &random, bool withFailure)
{
    Tables t;
    const auto pick = [&](int n) { return int(random() % std::uint32_t(n)); };
    const auto spelled = [&](const QString &code) {
        switch (pick(4)) {
        case 0:
            return code.toLower();
        case 1:
            return code.toUpper();
        default:
            return code;
        }
    };
    const int units = 1 + pick(12);
    for (int u = 0; u < units; ++u)
        t.general.appendRow({QStringLiteral("Bu%1").arg(u), "Unit", "1", "8", "8"});
    const int types = 1 + pick(6);
    const int classes = 1 + pick(8);
    const int rows = pick(400);
    const int failing = withFailure ? pick(rows + 1) : -1;
    int unit = 0;
    for (int r = 0; r < rows; ++r) {
        if (pick(3) != 0)           // else the previous row's unit again
            unit = pick(units + 2); // the last two are not in the general table
        QStringList row{spelled(QStringLiteral("Bu%1").arg(unit)),
                        spelled(QStringLiteral("Ty%1").arg(pick(types))),
                        spelled(QStringLiteral("Cl%1").arg(pick(classes)))};
        for (int s = 0; s < DetailColumns::CounterCount; ++s)
            row << QString::number(pick(1000) - 100);
        if (r == failing)
            row[3 + pick(DetailColumns::CounterCount)] = QStringLiteral("99999999999");
        t.details.appendRow(row);
    }
    return t;
}

struct Loaded
{
    Loaded() = default;
    explicit Loaded(BusinessUnits::Storage storage) : bus(std::move(storage)) {}
    BusinessUnits bus;
    std::optional<int> error;
};

void load(Loaded &into, const Tables &t, bool grouped)
{
    GeneralColumns general(t.general);
    for (int i = 1; i <= t.general.rowCount(); ++i)
        into.bus.Add(QZWebRow(t.general, i), general).SetBUIndex(i);
    DetailColumns details(t.details);
    try {
        if (grouped)
            into.bus.LoadDetails(t.details, details);
        else
            into.bus.LoadDetailsInOrder(t.details, details);
    } catch (const DLVError &e) {
        into.error = e.number();
    }
}

// Everything a view can read of the units' lists, with the code tables' numbering.
QStringList describe(const BusinessUnits &bus)
{
    QStringList out;
    for (const BusinessUnit &bu : bus) {
        out << bu.BUID();
        for (const JobType &type : bu.JobTypes()) {
            out << "  " + type.Code();
            for (const JobClass &c : type.Classes()) {
                QString line = QStringLiteral("    %1 #%2 type#%3:")
                                   .arg(c.Code())
                                   .arg(c.Number())
                                   .arg(c.TypeNumber());
                for (const qint32 v : c.JobDetails())
                    line += ' ' + QString::number(v);
                out << line;
            }
        }
        QStringList all;
        for (const JobClass &c : bu.AllJobClasses())
            all << c.Code();
        out << "  all: " + all.join(',');
    }
    for (const CodeTable *codes : {&bus.JobTypeCodes(), &bus.JobClassCodes()})
        for (int n = 0; n < codes->count(); ++n)
            out << QStringLiteral("code %1 fold %2").arg(codes->code(n)).arg(codes->fold(n));
    return out;
}

TEST(GroupedLoad, BuildsTheModelOfTheReadingInTableOrder)
{
    std::mt19937 random(20261125);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        const Tables t = randomTables(random, round % 3 == 0);
        Loaded grouped;
        Loaded inOrder;
        load(grouped, t, true);
        load(inOrder, t, false);
        ASSERT_EQ(grouped.error, inOrder.error);
        ASSERT_EQ(describe(grouped.bus), describe(inOrder.bus));
    }
}

TEST(GroupedLoad, AModelThatReusesTheLastOnesStorageIsTheSame)
{
    // Each model writes into the arrays the one before left, large after small and small after
    // large, failed loads among them: nothing of an earlier message may show through.
    std::mt19937 random(7);
    auto previous = std::make_unique<Loaded>();
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const Tables t = randomTables(random, round % 4 == 0);
        auto reusing = std::make_unique<Loaded>(previous->bus.ReleaseStorage());
        Loaded fresh;
        load(*reusing, t, true);
        load(fresh, t, true);
        ASSERT_EQ(reusing->error, fresh.error);
        ASSERT_EQ(describe(reusing->bus), describe(fresh.bus));
        previous = std::move(reusing);
    }
}

TEST(GroupedLoad, AMissingColumnFailsAsTheReadingInTableOrderDoes)
{
    const struct
    {
        const char *missing;
        bool knownUnit; // whether a row names a unit of the general table
    } cases[] = {{"JobType", true},
                 {"JobClass", true},
                 {"PtsNotDone", true},
                 {"JobClass", false},
                 {"WOOpen", false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.missing);
        Tables t;
        QStringList columns = detailColumns();
        columns.removeOne(QString::fromLatin1(c.missing));
        t.details = QZWebTable(QStringLiteral("BUDetailsInfo"), columns);
        t.general.appendRow({"B1", "Unit", "1", "8", "8"});
        t.details.appendRow(QStringList(columns.size(), "1"));
        t.details.appendRow(QStringList(columns.size(), "1"));
        t.details.setField(1, u"BUID", u"B9");
        t.details.setField(2, u"BUID", c.knownUnit ? u"B1" : u"B8");
        Loaded grouped;
        Loaded inOrder;
        load(grouped, t, true);
        load(inOrder, t, false);
        EXPECT_EQ(grouped.error, inOrder.error);
        EXPECT_EQ(grouped.error.has_value(), c.knownUnit);
        EXPECT_EQ(describe(grouped.bus), describe(inOrder.bus));
    }
}

} // namespace

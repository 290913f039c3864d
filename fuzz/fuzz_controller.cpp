// Fuzzes the data refresh end to end without widgets: "DLVData" messages decoded from the input
// go through cDLVController::ReceiveMessage, and its fill signals run the hierarchy and summary
// fills on plain grids, as the control does. The decoding picks ids, codes and figures from small
// pools (so duplicates, cycles and shared parents are common) or from the input itself, and may
// drop tables and columns, add stray columns, or replace a figure by huge or malformed text.
//
// Beyond "never crash": no data message is dropped (the fills run synchronously and clear their
// busy flags), and after any sequence of messages a well-formed one loads without a report.

#include "common/dlverror.h"
#include "fuzzsupport.h"
#include "model/cdlvcontroller.h"
#include "model/fakesurface.h"
#include "support/recordingreporter.h"
#include "views/hierarchygrid.h"
#include "views/outlinegrid.h"
#include "views/panelvalues.h"
#include "views/summarygrid.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/webvariant.h"

#include <array>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>

namespace {

using FuzzSupport::require;

struct TableShape
{
    const char *name;
    std::vector<const char *> columns;
};

const std::array<TableShape, 6> kTables{{
    {"BusinessUnits", {"BUID", "BUDesc", "ParentBUID"}},
    {"JobTypes", {"JobType", "JobTypeDesc"}},
    {"JobClasses", {"JobClass", "JobClassDesc"}},
    {"RegionalFormats", {"languageCode", "timeformat"}},
    {"BUGeneralInfo", {"BUID", "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"}},
    {"BUDetailsInfo",
     {"BUID", "JobType", "JobClass", "WOOpen", "WOWarning", "WOJeopardy", "WOLate", "WOCompleted",
      "WOCanceled", "WONotDone", "PtsOpen", "PtsWarning", "PtsJeopardy", "PtsLate", "PtsCompleted",
      "PtsCanceled", "PtsNotDone"}},
}};

const char *const kIds[] = {"#", "1", "2", "3", "4", "5", "6", "10", ""};
const char *const kCodes[] = {"TOTAL", "INST", "REP", "A", "B", ""};
const char *const kLanguages[] = {"EN", "SP", "PO", ""};
const char *const kFormats[] = {"hh:mm AMPM", "HH:nn:ss", "h:mm", "", "\"'ss", "AMPM"};
const char *const kFigures[] = {"0",           "1",           "7",
                                "-1",          "2147483647",  "2147483648",
                                "-2147483648", "-2147483649", "1073741824",
                                "1e308",       "-1e308",      "1.5",
                                "2.5",         "abc",         "",
                                " 12 ",        "&H7FFFFFFF",  "&HFFFFFFFF",
                                "NaN",         "Infinity",    "99999999999999999999",
                                "0x10",        "1E+400"};

template <std::size_t N> QString pick(FuzzedDataProvider &in, const char *const (&pool)[N])
{
    // Mostly the pool, sometimes whatever the input holds.
    const std::size_t at = in.ConsumeIntegralInRange<std::size_t>(0, N + 1);
    if (at < N)
        return QString::fromUtf8(pool[at]);
    return QString::fromStdString(in.ConsumeRandomLengthString(12));
}

QString cell(FuzzedDataProvider &in, const QString &table, const QString &column)
{
    if (column == u"BUID" || column == u"ParentBUID")
        return pick(in, kIds);
    if (column == u"JobType" || column == u"JobClass")
        return pick(in, kCodes);
    if (column == u"languageCode")
        return pick(in, kLanguages);
    if (column == u"timeformat")
        return pick(in, kFormats);
    if (column.endsWith(u"Desc"))
        return table.left(1) + pick(in, kIds);
    return pick(in, kFigures);
}

QZWebTable table(FuzzedDataProvider &in, const TableShape &shape)
{
    const QString name = QString::fromLatin1(shape.name);
    QStringList columns;
    for (const char *c : shape.columns)
        columns << QString::fromLatin1(c);
    const std::uint8_t change = in.ConsumeIntegral<std::uint8_t>();
    if (change % 16 == 1 && !columns.isEmpty())
        columns.removeAt(in.ConsumeIntegralInRange<int>(0, int(columns.size()) - 1));
    if (change % 16 == 2)
        columns << QStringLiteral("Extra");
    QZWebTable t(name, columns);
    const int rows = in.ConsumeIntegralInRange<int>(0, 24);
    for (int r = 0; r < rows && in.remaining_bytes() > 0; ++r) {
        QStringList values;
        for (const QString &column : columns)
            values << cell(in, name, column);
        t.appendRow(values);
    }
    return t;
}

std::shared_ptr<QZWebMessage> message(FuzzedDataProvider &in)
{
    const std::uint8_t kind = in.ConsumeIntegral<std::uint8_t>();
    auto m = std::make_shared<QZWebMessage>(kind % 16 == 0   ? QStringLiteral("DLVServerStopped")
                                            : kind % 16 == 1 ? QStringLiteral("Other")
                                                             : QStringLiteral("DLVData"));
    if (kind & 0x10)
        m->setProperty(QStringLiteral("tqDBRefreshInterval"), pick(in, kFigures));
    if (kind & 0x20)
        m->setProperty(QStringLiteral("tqJeopardyThreshold"), pick(in, kFigures));
    if (kind & 0x40) {
        m->setProperty(QStringLiteral("Number"), pick(in, kFigures));
        m->setProperty(QStringLiteral("Description"), pick(in, kCodes));
    }
    if (kind % 16 == 2)
        return m; // no data item at all
    auto data = std::make_shared<QZWebData>();
    const std::uint8_t dropped = in.ConsumeIntegral<std::uint8_t>();
    for (std::size_t i = 0; i < kTables.size(); ++i) {
        QZWebTable t = table(in, kTables[i]);
        if (dropped % 8 != i + 1)
            data->addTable(std::move(t));
    }
    m->addData(std::move(data));
    return m;
}

std::shared_ptr<QZWebMessage> wellFormed()
{
    auto m = std::make_shared<QZWebMessage>(QStringLiteral("DLVData"));
    m->setProperty(QStringLiteral("tqDBRefreshInterval"), QStringLiteral("15"));
    m->setProperty(QStringLiteral("tqJeopardyThreshold"), QStringLiteral("30"));
    auto data = std::make_shared<QZWebData>();
    const QStringList rows[6] = {{"#|All|", "1|North|#", "2|Depot|1"},
                                 {"INST|Install"},
                                 {"A|Class A"},
                                 {"EN|hh:mm AMPM"},
                                 {"1|North|2|8|4", "2|Depot|1|3|2"},
                                 {"2|INST|A|1|0|0|0|2|0|0|3|0|0|0|1|0|0"}};
    for (std::size_t i = 0; i < kTables.size(); ++i) {
        QStringList columns;
        for (const char *c : kTables[i].columns)
            columns << QString::fromLatin1(c);
        QZWebTable t(QString::fromLatin1(kTables[i].name), columns);
        for (const QString &row : rows[i])
            t.appendRow(row.split(u'|'));
        data->addTable(std::move(t));
    }
    m->addData(std::move(data));
    return m;
}

// The fills the control runs on the controller's signals, on plain grids.
class Views
{
public:
    Views(cDLVController &controller, RecordingReporter &reporter)
        : m_controller(controller), m_reporter(reporter)
    {
        const auto identity = [](const QString &key) { return key; };
        SummaryGrid(m_summary).InitSingleBUGrid(identity, 15);
        HierarchyGrid::InitBUHierarchyGrid(m_workOrders, 1, identity, 15);
        HierarchyGrid::InitBUHierarchyGrid(m_points, 2, identity, 15);
        QObject::connect(&controller, &cDLVController::FillBUHierarchyGrid,
                         [this](BusinessUnits &bus) { fillHierarchy(bus); });
        QObject::connect(&controller, &cDLVController::FillSingleBUGrid,
                         [this](BusinessUnits &bus) { fillSummary(bus); });
    }

    int fills = 0;

private:
    void fillHierarchy(BusinessUnits &bus)
    {
        ++fills;
        {
            FillBusy::Scope busy(m_controller.Busy(), FillBusy::HierarchyFill);
            trap(QStringLiteral("Fuzz.FillHierarchy"), [&] {
                HierarchyGrid::Fill(m_workOrders, m_points, m_controller.Lookups(), bus,
                                    m_controller.GetBUList());
            });
        }
        fillSummary(bus);
    }

    void fillSummary(BusinessUnits &bus)
    {
        FillBusy::Scope busy(m_controller.Busy(), FillBusy::SummaryFill);
        trap(QStringLiteral("Fuzz.FillSummary"), [&] {
            PanelValues panel;
            SummaryGrid(m_summary).ShowBUs(
                bus, m_controller.GetAggregateBUList(), m_controller.JobTypeDescriptions(),
                m_controller.JobClassDescriptions(), QStringLiteral("Total"), panel, &m_reporter);
            (void)m_controller.GetBUIDList(QStringLiteral("#"));
        });
    }

    template <typename Body> void trap(const QString &location, Body &&body)
    {
        try {
            body();
        } catch (const DLVError &e) {
            m_reporter.report(e, location);
        }
    }

    cDLVController &m_controller;
    RecordingReporter &m_reporter;
    OutlineGrid m_summary;
    OutlineGrid m_workOrders;
    OutlineGrid m_points;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    RecordingReporter reporter;
    FakeSurface surface;
    cDLVController controller(&reporter);
    controller.setClock([] { return QDateTime(QDate(2024, 3, 1), QTime(23, 50)); });
    controller.SetLanguageID(pick(in, kLanguages));
    controller.Initialize(&surface);
    Views views(controller, reporter);

    const int messages = in.ConsumeIntegralInRange<int>(1, 4);
    for (int i = 0; i < messages; ++i) {
        // The list view holds some units, some selected: the fills sum the selection.
        surface.items.clear();
        const int items = in.ConsumeIntegralInRange<int>(0, 6);
        for (int k = 0; k < items; ++k)
            surface.addItem(pick(in, kIds), in.ConsumeBool());
        controller.ReceiveMessage(WebVariant::wrap(message(in)), 0, QString());
        require(!controller.Busy().any(), "a busy flag stayed set after a message");
    }

    // Whatever came before, a well-formed message loads cleanly.
    surface.items.clear();
    surface.addItem(QStringLiteral("1"), true);
    const std::size_t reportsBefore = reporter.reports.size();
    const int fillsBefore = views.fills;
    controller.ReceiveMessage(WebVariant::wrap(wellFormed()), 0, QString());
    require(views.fills == fillsBefore + 1, "a well-formed message was dropped");
    require(reporter.reports.size() == reportsBefore, "a well-formed message was reported");
    require(controller.BUs().Count() == 2, "a well-formed message did not load its units");
    return 0;
}

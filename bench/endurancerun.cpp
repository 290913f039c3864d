#include "endurancerun.h"

#include "benchdialoghost.h"
#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "datagenerator.h"
#include "model/cdlvcontroller.h"
#include "stage.h"
#include "viewertestaccess.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"
#include "webdata/qzwebtransport.h"
#include "webdata/webvariant.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QItemSelectionModel>
#include <QRadioButton>
#include <QSet>
#include <QTreeWidget>
#include <malloc.h>
#include <random>

namespace {

constexpr int kMaxUnits = 600;

// Resident set size now (VmRSS), in kB, or -1.
long rssKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

// Live heap in kB: unlike the resident size it does not depend on what the allocator keeps.
long heapKb()
{
    return long(mallinfo2().uordblks / 1024);
}

void removeRowsOf(QZWebTable &table, const QSet<QString> &ids)
{
    const int column = table.requireColumn(u"BUID");
    for (int r = table.rowCount(); r >= 1; --r) {
        if (ids.contains(table.value(r, column).toString()))
            table.removeRow(r);
    }
}

// The kinds of malformed message a faulty host sends; each must be reported and survived.
enum class Fault
{
    MissingTable,
    MissingColumn,
    DuplicateUnit,
    HugeFigure,
    NoDataItem,
    Count
};

class Sequence
{
public:
    explicit Sequence(unsigned seed) : m_rng(seed) {}

    // A regular refresh whose shape differs from the last one.
    std::shared_ptr<QZWebMessage> data(int number)
    {
        DataGenerator::Options o;
        o.units = 50 + below(kMaxUnits - 50);
        o.depth = 2 + below(4);
        o.jobTypes = 2 + below(18);
        o.jobClasses = 1 + below(8);
        o.detailRows = 500 + below(6000);
        o.seed = quint32(number) * 7919u + 1u;
        auto message = DataGenerator(o).generate();
        // Some units vanish for a while (with their figures): their children lose their parent.
        QSet<QString> vanished;
        const int gone = below(o.units / 5);
        for (int i = 0; i < gone; ++i)
            vanished.insert(
                QStringLiteral("BU%1").arg(1 + below(o.units), 6, 10, QLatin1Char('0')));
        QZWebData &tables = *message->data(1);
        removeRowsOf(tables.table(u"BusinessUnits"), vanished);
        removeRowsOf(tables.table(u"BUGeneralInfo"), vanished);
        removeRowsOf(tables.table(u"BUDetailsInfo"), vanished);
        return message;
    }

    std::shared_ptr<QZWebMessage> malformed(int number, Fault fault)
    {
        auto message = data(number);
        QZWebData &tables = *message->data(1);
        switch (fault) {
        case Fault::MissingTable:
            tables.removeTable(u"BUDetailsInfo");
            break;
        case Fault::MissingColumn: {
            const QZWebTable &old = tables.table(u"BUGeneralInfo");
            QZWebTable reduced(old.name(), old.columns().mid(0, 2)); // no figures at all
            for (int r = 1; r <= old.rowCount(); ++r)
                reduced.appendRow({old.value(r, 0).toString(), old.value(r, 1).toString()});
            tables.removeTable(u"BUGeneralInfo");
            tables.addTable(std::move(reduced));
            break;
        }
        case Fault::DuplicateUnit: {
            QZWebTable &units = tables.table(u"BusinessUnits");
            units.appendRow({units.value(units.rowCount(), 0).toString(), QStringLiteral("Again"),
                             QStringLiteral("#")});
            break;
        }
        case Fault::HugeFigure: {
            QZWebTable &details = tables.table(u"BUDetailsInfo");
            if (details.rowCount() > 0)
                details.setField(1, u"WOOpen", u"99999999999");
            break;
        }
        case Fault::NoDataItem:
            message = std::make_shared<QZWebMessage>(QStringLiteral("DLVData"));
            break;
        case Fault::Count:
            break;
        }
        return message;
    }

    int below(int n) { return int(m_rng() % unsigned(std::max(n, 1))); }

private:
    std::mt19937 m_rng;
};

} // namespace

int EnduranceRun::run(const Options &options)
{
    int errors = 0;
    DLViewer viewer;
    viewer.resize(1280, 800);
    DLViewerPrivate &d = DLViewerTestAccess::d(viewer);
    d.setDialogHost(std::make_unique<BenchDialogHost>(errors, /*quiet=*/true));
    viewer.Initialize(std::make_shared<QZWebTransport>(QStringLiteral("EN")));
    QString language = QStringLiteral("EN");
    viewer.SetRegionalFormatInfo(language);
    QStringList session;
    for (int i = 1; i <= kMaxUnits; ++i)
        session << QStringLiteral("BU%1").arg(i, 6, 10, QLatin1Char('0'));
    viewer.SetSessionBUIDList(session);

    int accepted = 0;
    QObject::connect(d.controller(), &cDLVController::FillBUHierarchyGrid,
                     [&accepted](BusinessUnits &) { ++accepted; });

    Sequence sequence(options.seed);
    int dataMessages = 0, stoppedMessages = 0, malformedMessages = 0, dropped = 0;
    int unreportedMalformed = 0, reportedMessages = 0;
    double slowestMs = 0;
    int slowestAt = 0;
    long rssStart = -1, heapStart = -1;
    qsizetype objectsStart = -1;
    const auto settle = [] {
        QCoreApplication::processEvents();
        malloc_trim(0);
    };

    for (int n = 1; n <= options.messages; ++n) {
        std::shared_ptr<QZWebMessage> message;
        bool faulty = false;
        if (n % 50 == 25) {
            message = std::make_shared<QZWebMessage>(QStringLiteral("DLVServerStopped"));
            ++stoppedMessages;
        } else if (n % 97 == 0) {
            message = sequence.malformed(n, Fault(sequence.below(int(Fault::Count))));
            faulty = true;
            ++malformedMessages;
        } else {
            message = sequence.data(n);
            ++dataMessages;
        }
        if (message->name() == u"DLVData" && d.controller()->Busy().any())
            ++dropped;
        const int errorsBefore = errors;
        QVariant wrapped = WebVariant::wrap(message);
        QElapsedTimer timer;
        timer.start();
        viewer.ReceiveMessage(wrapped, QVariant(0), QVariant());
        const double ms = double(timer.nsecsElapsed()) / 1e6;
        QCoreApplication::processEvents();
        if (errors != errorsBefore)
            ++reportedMessages;
        if (faulty && errors == errorsBefore)
            ++unreportedMalformed;
        if (n > 1 && ms > slowestMs) { // the first one also builds the list from nothing
            slowestMs = ms;
            slowestAt = n;
        }
        if (n == 1) {
            // Everything chosen, summed as aggregates, as a busy supervisor's view would be.
            d.unitListWidget()->selectAll();
            d.options().summaryOption(1)->setChecked(true);
            d.fills().cmdView_Click();
        }
        if (n == options.warmUp) {
            settle();
            rssStart = rssKb();
            heapStart = heapKb();
            objectsStart = viewer.findChildren<QObject *>().size();
        }
    }
    settle();
    const long rssEnd = rssKb();
    const long heapEnd = heapKb();
    const qsizetype objectsEnd = viewer.findChildren<QObject *>().size();
    const double rssGrowth =
        rssStart > 0 ? 100.0 * double(rssEnd - rssStart) / double(rssStart) : 0;
    const double heapGrowth =
        heapStart > 0 ? 100.0 * double(heapEnd - heapStart) / double(heapStart) : 0;

    Stage memory(QStringLiteral("endurance_memory"));
    memory.setElapsed(0);
    memory.add(QStringLiteral("after_message"), options.warmUp);
    memory.add(QStringLiteral("rss_start_kb"), double(rssStart));
    memory.add(QStringLiteral("rss_end_kb"), double(rssEnd));
    memory.add(QStringLiteral("rss_growth_pct"), rssGrowth);
    memory.add(QStringLiteral("heap_start_kb"), double(heapStart));
    memory.add(QStringLiteral("heap_end_kb"), double(heapEnd));
    memory.add(QStringLiteral("heap_growth_pct"), heapGrowth);
    memory.add(QStringLiteral("objects_start"), double(objectsStart));
    memory.add(QStringLiteral("objects_end"), double(objectsEnd));
    memory.print();

    Stage counts(QStringLiteral("endurance"));
    counts.setElapsed(slowestMs);
    counts.add(QStringLiteral("messages"), options.messages);
    counts.add(QStringLiteral("slowest_refresh_ms"), slowestMs);
    counts.add(QStringLiteral("slowest_at_message"), slowestAt);
    counts.add(QStringLiteral("data"), dataMessages);
    counts.add(QStringLiteral("server_stopped"), stoppedMessages);
    counts.add(QStringLiteral("malformed"), malformedMessages);
    counts.add(QStringLiteral("accepted"), accepted);
    counts.add(QStringLiteral("dropped"), dropped);
    counts.add(QStringLiteral("reported_messages"), reportedMessages);
    counts.add(QStringLiteral("reports"), errors);
    counts.add(QStringLiteral("malformed_unreported"), unreportedMalformed);
    counts.print();

    const bool ok =
        rssGrowth < 5.0 && dropped == 0 && unreportedMalformed == 0 && accepted >= dataMessages;
    return ok ? 0 : 1;
}

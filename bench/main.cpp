// dlv-bench: synthetic data through the refresh path, one JSON line per stage.
#include "benchsurface.h"
#include "cuesbench.h"
#include "datagenerator.h"
#include "endurancerun.h"
#include "livebench.h"
#include "model/cdlvcontroller.h"
#include "physicalfloor.h"
#include "stage.h"
#include "viewerbench.h"
#include "webdata/qzwebmessage.h"
#include "webdata/webvariant.h"

#include <QApplication>
#include <QCommandLineParser>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

struct LoadResult
{
    double ms = 0;
    int units = 0;
    int errors = 0;
};

// One data message into a controller with no views connected: lookups, LoadBUData and the
// totals. The busy flags are cleared first, as the views would after their fills.
LoadResult loadOnce(const std::shared_ptr<QZWebMessage> &message, const QString &stageName)
{
    BenchSurface surface;
    BenchReporter reporter;
    cDLVController controller(&reporter);
    controller.Initialize(&surface);
    const QVariant data = WebVariant::wrap(message);
    Stage stage(stageName);
    controller.ReceiveMessage(data, 0, QString());
    LoadResult result{stage.stop(), controller.BUs().Count(), reporter.errors};
    stage.add(QStringLiteral("units"), result.units);
    stage.add(QStringLiteral("errors"), result.errors);
    if (!stageName.isEmpty())
        stage.print();
    return result;
}

double bestLoadMs(const std::shared_ptr<QZWebMessage> &message, int runs)
{
    double best = 1e300;
    for (int i = 0; i < runs; ++i)
        best = std::min(best, loadOnce(message, QString()).ms);
    return best;
}

void printViewerStages(const ViewerBench::Times &t, double parseMs)
{
    const auto line = [](const char *name, double ms, double coldMs, const QString &key,
                         double value) {
        Stage stage(QString::fromLatin1(name));
        stage.setElapsed(ms);
        stage.add(QStringLiteral("cold_ms"), coldMs);
        stage.add(key, value);
        stage.print();
    };
    line("hierarchy_fill", t.hierarchyFill, t.hierarchyFillCold, QStringLiteral("rows"),
         t.hierarchyRows);
    line("unit_list", t.unitList, t.unitListCold, QStringLiteral("items"), t.listItems);
    line("summary_fill", t.summaryFill, t.summaryFillCold, QStringLiteral("rows"), t.summaryRows);
    Stage refresh(QStringLiteral("refresh"));
    refresh.setElapsed(t.refresh);
    refresh.add(QStringLiteral("units"), t.units);
    refresh.add(QStringLiteral("selected"), t.selected);
    refresh.add(QStringLiteral("parse_ms"), parseMs);
    refresh.add(QStringLiteral("refresh_over_parse"), parseMs > 0 ? t.refresh / parseMs : 0.0);
    refresh.add(QStringLiteral("errors"), t.errors);
    refresh.print();
}

} // namespace

// The live options over the figures against a plain refresh, on two messages that differ in
// nearly every figure (the same sizes, another seed).
int printCuesStage(const DataGenerator::Options &options)
{
    DataGenerator::Options other = options;
    other.seed = options.seed + 1;
    const CuesBench::Times t =
        CuesBench::run(DataGenerator(options).generate(), DataGenerator(other).generate(), 5);
    Stage stage(QStringLiteral("refresh_with_cues"));
    stage.setElapsed(t.refreshOn);
    stage.add(QStringLiteral("units"), t.units);
    stage.add(QStringLiteral("refresh_off_ms"), t.refreshOff);
    stage.add(QStringLiteral("refresh_on_ms"), t.refreshOn);
    stage.add(QStringLiteral("added_pct"),
              t.refreshOff > 0 ? 100.0 * (t.refreshOn - t.refreshOff) / t.refreshOff : 0.0);
    stage.add(QStringLiteral("cue_work_ms"), t.cueWork);
    stage.add(QStringLiteral("cue_work_pct"),
              t.refreshOff > 0 ? 100.0 * t.cueWork / t.refreshOff : 0.0);
    stage.add(QStringLiteral("cued_cells"), t.cuedCells);
    stage.print();
    return t.errors;
}

namespace {

// Goals the live control is held to; the "targets" line states each against its figure.
constexpr double kEndToEndOverPugi = 2.0;     // refresh until painted, against pugixml's parse
constexpr double kPeakOverMessage = 2.5;      // peak memory of one message, against its size
constexpr double kInteractionMs = 30.0;       // any interaction until painted
constexpr double kDoublingRatio = 2.0 * 1.15; // twice the units and rows
constexpr double kDepthRatio = 1.2;           // a deep tree against a shallow one

void printLive(const LiveBench::Times &t, const PhysicalFloor::Times &floor, double bytes)
{
    const auto line = [](const QString &name, double ms) {
        auto stage = std::make_unique<Stage>(name);
        stage->setElapsed(ms);
        return stage;
    };
    {
        auto s = line(QStringLiteral("memory_read"), floor.memoryRead);
        s->add(QStringLiteral("bytes"), bytes);
        s->add(QStringLiteral("mb_per_s"),
               floor.memoryRead > 0 ? bytes / 1e3 / floor.memoryRead : 0);
        s->print();
    }
    {
        auto s = line(QStringLiteral("pugixml_parse"), floor.pugiParse);
        s->add(QStringLiteral("bytes"), bytes);
        s->add(QStringLiteral("ok"), floor.parsed ? 1 : 0);
        s->print();
    }
    {
        auto s = line(QStringLiteral("end_to_end"), t.refresh);
        s->add(QStringLiteral("units"), t.units);
        s->add(QStringLiteral("host_parse_ms"), t.hostParse);
        s->add(QStringLiteral("over_pugixml"),
               floor.pugiParse > 0 ? t.refresh / floor.pugiParse : 0);
        s->add(QStringLiteral("over_memory_read"),
               floor.memoryRead > 0 ? t.refresh / floor.memoryRead : 0);
        s->add(QStringLiteral("errors"), t.errors);
        s->print();
    }
    const std::pair<const char *, double> interactions[] = {
        {"tab_switch", t.tabSwitch},   {"display_switch", t.displaySwitch},
        {"collapse_node", t.collapse}, {"expand_node", t.expand},
        {"view_button", t.viewButton}, {"drill_down", t.drillDown},
        {"resize", t.resize}};
    for (const auto &[name, ms] : interactions) {
        auto s = line(QStringLiteral("interaction_") + QString::fromLatin1(name), ms);
        if (std::string_view(name) == "drill_down")
            s->add(QStringLiteral("requests"), t.detailRequests);
        s->print();
    }
    {
        auto s = line(QStringLiteral("memory"), 0);
        s->add(QStringLiteral("message_bytes"), bytes);
        s->add(QStringLiteral("base_kb"), double(t.baseKb));
        s->add(QStringLiteral("message_peak_kb"), double(t.peakKb));
        const double added = double(t.peakKb - t.baseKb) * 1024.0;
        s->add(QStringLiteral("message_added_kb"), double(t.peakKb - t.baseKb));
        s->add(QStringLiteral("added_over_message"), bytes > 0 ? added / bytes : 0);
        s->add(QStringLiteral("refresh_added_kb"), double(t.refreshPeakKb));
        s->add(QStringLiteral("refresh_added_over_message"),
               bytes > 0 ? double(t.refreshPeakKb) * 1024.0 / bytes : 0);
        s->print();
    }
    {
        Stage s(QStringLiteral("targets"));
        s.setElapsed(0);
        const double e2e = floor.pugiParse > 0 ? t.refresh / floor.pugiParse : 0;
        const double peak = bytes > 0 ? double(t.peakKb - t.baseKb) * 1024.0 / bytes : 0;
        s.add(QStringLiteral("end_to_end_over_pugixml"), e2e);
        s.add(QStringLiteral("end_to_end_goal"), kEndToEndOverPugi);
        s.add(QStringLiteral("end_to_end_met"), e2e <= kEndToEndOverPugi ? 1 : 0);
        s.add(QStringLiteral("peak_over_message"), peak);
        s.add(QStringLiteral("peak_goal"), kPeakOverMessage);
        s.add(QStringLiteral("peak_met"), peak <= kPeakOverMessage ? 1 : 0);
        s.add(QStringLiteral("slowest_interaction_ms"), t.slowestInteraction());
        s.add(QStringLiteral("interaction_goal_ms"), kInteractionMs);
        s.add(QStringLiteral("interactions_met"), t.slowestInteraction() < kInteractionMs ? 1 : 0);
        s.print();
    }
}

void printRatio(const QString &name, double a, double b, double goal,
                const std::vector<std::pair<QString, double>> &fields,
                const QString &aKey = QStringLiteral("ms_n"),
                const QString &bKey = QStringLiteral("ms_2n"))
{
    Stage s(name);
    s.setElapsed(b);
    for (const auto &[key, value] : fields)
        s.add(key, value);
    s.add(aKey, a);
    s.add(bKey, b);
    const double ratio = a > 0 ? b / a : 0.0;
    s.add(QStringLiteral("ratio"), ratio);
    s.add(QStringLiteral("goal"), goal);
    s.add(QStringLiteral("met"), ratio <= goal ? 1 : 0);
    s.print();
}

QByteArray utf8Of(const std::shared_ptr<QZWebMessage> &message)
{
    return message->toXml().toUtf8();
}

} // namespace

int main(int argc, char **argv)
{
    // The fill stages drive a real control; no display is needed for that.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("dlv-bench"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Times the stages of a data refresh."));
    parser.addHelpOption();
    const QCommandLineOption bus(QStringLiteral("bus"), QStringLiteral("Business units."),
                                 QStringLiteral("n"), QStringLiteral("10000"));
    const QCommandLineOption depth(QStringLiteral("depth"),
                                   QStringLiteral("Levels below the root."), QStringLiteral("n"),
                                   QStringLiteral("5"));
    const QCommandLineOption jobTypes(QStringLiteral("job-types"), QStringLiteral("Job types."),
                                      QStringLiteral("n"), QStringLiteral("40"));
    const QCommandLineOption classes(QStringLiteral("classes"), QStringLiteral("Job classes."),
                                     QStringLiteral("n"), QStringLiteral("12"));
    const QCommandLineOption details(QStringLiteral("details"), QStringLiteral("Detail rows."),
                                     QStringLiteral("n"), QStringLiteral("300000"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("Random seed."),
                                  QStringLiteral("n"), QStringLiteral("20240301"));
    const QCommandLineOption scaling(
        QStringLiteral("scaling"),
        QStringLiteral("Also time the load at N and 2N detail rows, and every fill stage at N "
                       "and 2N units and detail rows, and print the ratios."));
    const QCommandLineOption endurance(
        QStringLiteral("endurance"),
        QStringLiteral("Instead of the stages: send a live control a long run of data messages of "
                       "changing shape (with server-stopped and malformed ones) and report memory "
                       "growth, the slowest refresh and the message counts."));
    const QCommandLineOption messages(QStringLiteral("messages"),
                                      QStringLiteral("Messages of the endurance run."),
                                      QStringLiteral("n"), QStringLiteral("2000"));
    const QCommandLineOption deep(
        QStringLiteral("deep"),
        QStringLiteral("With --scaling: the depth the end-to-end refresh is compared at against "
                       "--depth (same units and rows)."),
        QStringLiteral("n"), QStringLiteral("5000"));
    const QCommandLineOption runsOption(
        QStringLiteral("runs"),
        QStringLiteral("Runs of each timed stage; the best counts. A shared machine whose speed "
                       "drifts between runs needs more for steady figures."),
        QStringLiteral("n"), QStringLiteral("3"));
    parser.addOptions({bus, depth, deep, jobTypes, classes, details, seed, scaling, endurance,
                       messages, runsOption});
    parser.process(app);

    const auto intValue = [&](const QCommandLineOption &option) {
        bool ok = false;
        const int value = parser.value(option).toInt(&ok);
        if (!ok || value < 0) {
            std::fprintf(stderr, "invalid value for --%s\n",
                         qPrintable(option.names().constFirst()));
            std::exit(2);
        }
        return value;
    };
    if (parser.isSet(endurance)) {
        EnduranceRun::Options run;
        run.messages = std::max(intValue(messages), 1);
        run.warmUp = std::min(100, run.messages);
        run.seed = parser.value(seed).toUInt();
        return EnduranceRun::run(run);
    }

    const int runs = std::max(intValue(runsOption), 1);
    DataGenerator::Options options;
    options.units = intValue(bus);
    options.depth = intValue(depth);
    options.jobTypes = intValue(jobTypes);
    options.jobClasses = intValue(classes);
    options.detailRows = intValue(details);
    options.seed = quint32(parser.value(seed).toUInt());

    std::shared_ptr<QZWebMessage> generated;
    {
        Stage stage(QStringLiteral("generate"));
        generated = DataGenerator(options).generate();
        stage.add(QStringLiteral("units"), options.units);
        stage.add(QStringLiteral("depth"), options.depth);
        stage.add(QStringLiteral("job_types"), options.jobTypes);
        stage.add(QStringLiteral("classes"), options.jobClasses);
        stage.add(QStringLiteral("detail_rows"), options.detailRows);
        stage.print();
    }
    QString xml;
    QByteArray utf8;
    {
        Stage stage(QStringLiteral("toXml"));
        xml = generated->toXml();
        stage.stop();
        utf8 = xml.toUtf8();
        stage.add(QStringLiteral("bytes"), double(utf8.size()));
        stage.print();
    }
    auto parsed = std::make_shared<QZWebMessage>();
    double parseMs = 0;
    {
        Stage stage(QStringLiteral("parse"));
        *parsed = QZWebMessage::fromXml(xml);
        parseMs = stage.stop();
        stage.print();
    }
    xml.clear();
    xml.squeeze();
    const LoadResult load = loadOnce(parsed, QStringLiteral("load"));
    const ViewerBench::Times viewer = ViewerBench::run(parsed, 1);
    printViewerStages(viewer, parseMs);
    const int cueErrors = printCuesStage(options);
    const PhysicalFloor::Times floor = PhysicalFloor::measure(utf8, runs);
    const LiveBench::Times live = LiveBench::run(parsed, utf8, runs);
    printLive(live, floor, double(utf8.size()));
    utf8.clear();
    utf8.squeeze();
    int liveErrors = live.errors;

    if (parser.isSet(scaling)) {
        DataGenerator::Options doubled = options;
        doubled.detailRows = options.detailRows * 2;
        const auto messageN = generated;
        const auto message2N = DataGenerator(doubled).generate();
        Stage stage(QStringLiteral("scaling"));
        const double msN = bestLoadMs(messageN, runs);
        const double ms2N = bestLoadMs(message2N, runs);
        stage.add(QStringLiteral("rows_n"), options.detailRows);
        stage.add(QStringLiteral("ms_n"), msN);
        stage.add(QStringLiteral("ms_2n"), ms2N);
        stage.add(QStringLiteral("ratio"), msN > 0 ? ms2N / msN : 0.0);
        stage.print();

        // The fills grow with the units (trees, list) and the detail rows (summary): double both.
        DataGenerator::Options bigger = options;
        bigger.units = options.units * 2;
        bigger.detailRows = options.detailRows * 2;
        const ViewerBench::Times n = ViewerBench::run(messageN, runs);
        const ViewerBench::Times n2 = ViewerBench::run(DataGenerator(bigger).generate(), runs);
        const auto ratioLine = [&](const char *name, double a, double b) {
            Stage s(QStringLiteral("scaling_") + QString::fromLatin1(name));
            s.setElapsed(b);
            s.add(QStringLiteral("units_n"), options.units);
            s.add(QStringLiteral("rows_n"), options.detailRows);
            s.add(QStringLiteral("ms_n"), a);
            s.add(QStringLiteral("ms_2n"), b);
            s.add(QStringLiteral("ratio"), a > 0 ? b / a : 0.0);
            s.print();
        };
        ratioLine("hierarchy_fill", n.hierarchyFill, n2.hierarchyFill);
        ratioLine("unit_list", n.unitList, n2.unitList);
        ratioLine("summary_fill", n.summaryFill, n2.summaryFill);
        ratioLine("hierarchy_fill_cold", n.hierarchyFillCold, n2.hierarchyFillCold);
        ratioLine("unit_list_cold", n.unitListCold, n2.unitListCold);
        ratioLine("summary_fill_cold", n.summaryFillCold, n2.summaryFillCold);
        ratioLine("refresh", n.refresh, n2.refresh);

        // The live control at N and 2N: the refresh until painted and every interaction.
        const auto bigMessage = DataGenerator(bigger).generate();
        const LiveBench::Times liveN = LiveBench::run(messageN, utf8Of(messageN), runs);
        const LiveBench::Times live2N = LiveBench::run(bigMessage, utf8Of(bigMessage), runs);
        liveErrors += liveN.errors + live2N.errors;
        const std::vector<std::pair<QString, double>> sizes{
            {QStringLiteral("units_n"), options.units},
            {QStringLiteral("rows_n"), options.detailRows}};
        const std::tuple<const char *, double, double> stages[] = {
            {"end_to_end", liveN.refresh, live2N.refresh},
            {"tab_switch", liveN.tabSwitch, live2N.tabSwitch},
            {"display_switch", liveN.displaySwitch, live2N.displaySwitch},
            {"collapse_node", liveN.collapse, live2N.collapse},
            {"expand_node", liveN.expand, live2N.expand},
            {"view_button", liveN.viewButton, live2N.viewButton},
            {"drill_down", liveN.drillDown, live2N.drillDown},
            {"resize", liveN.resize, live2N.resize},
            {"peak_memory_kb", double(liveN.peakKb - liveN.baseKb),
             double(live2N.peakKb - live2N.baseKb)}};
        for (const auto &[name, a, b] : stages)
            printRatio(QStringLiteral("scaling_") + QString::fromLatin1(name), a, b, kDoublingRatio,
                       sizes);

        // The same units and rows in a tree of --deep levels instead of --depth.
        DataGenerator::Options deepOptions = options;
        deepOptions.depth = intValue(deep);
        const auto deepMessage = DataGenerator(deepOptions).generate();
        const LiveBench::Times shallow = LiveBench::run(messageN, utf8Of(messageN), runs);
        const LiveBench::Times deepTree = LiveBench::run(deepMessage, utf8Of(deepMessage), runs);
        liveErrors += shallow.errors + deepTree.errors;
        printRatio(QStringLiteral("depth"), shallow.refresh, deepTree.refresh, kDepthRatio,
                   {{QStringLiteral("depth_n"), options.depth},
                    {QStringLiteral("depth_deep"), deepOptions.depth},
                    {QStringLiteral("units"), options.units},
                    {QStringLiteral("slowest_interaction_deep_ms"), deepTree.slowestInteraction()}},
                   QStringLiteral("ms_shallow"), QStringLiteral("ms_deep"));
    }
    return load.errors == 0 && viewer.errors == 0 && cueErrors == 0 && liveErrors == 0 ? 0 : 1;
}

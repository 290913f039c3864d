// dlv-bench: synthetic data through the refresh path, one JSON line per stage.
#include "benchsurface.h"
#include "datagenerator.h"
#include "model/cdlvcontroller.h"
#include "stage.h"
#include "webdata/qzwebmessage.h"
#include "webdata/webvariant.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <algorithm>
#include <cstdio>

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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
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
        QStringLiteral("Also time the load at N and 2N detail rows and print the ratio."));
    parser.addOptions({bus, depth, jobTypes, classes, details, seed, scaling});
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
    {
        Stage stage(QStringLiteral("toXml"));
        xml = generated->toXml();
        stage.stop();
        stage.add(QStringLiteral("bytes"), double(xml.toUtf8().size()));
        stage.print();
    }
    auto parsed = std::make_shared<QZWebMessage>();
    {
        Stage stage(QStringLiteral("parse"));
        *parsed = QZWebMessage::fromXml(xml);
        stage.print();
    }
    xml.clear();
    xml.squeeze();
    const LoadResult load = loadOnce(parsed, QStringLiteral("load"));

    if (parser.isSet(scaling)) {
        DataGenerator::Options doubled = options;
        doubled.detailRows = options.detailRows * 2;
        const auto messageN = generated;
        const auto message2N = DataGenerator(doubled).generate();
        Stage stage(QStringLiteral("scaling"));
        const double msN = bestLoadMs(messageN, 3);
        const double ms2N = bestLoadMs(message2N, 3);
        stage.add(QStringLiteral("rows_n"), options.detailRows);
        stage.add(QStringLiteral("ms_n"), msN);
        stage.add(QStringLiteral("ms_2n"), ms2N);
        stage.add(QStringLiteral("ratio"), msN > 0 ? ms2N / msN : 0.0);
        stage.print();
    }
    return load.errors == 0 ? 0 : 1;
}

// dlv-host: the reference host of the Dashlon Viewer control. See HostOptions for the command line
// and MainWindow for how the control is driven.

#include "common/dlverror.h"
#include "host/batchrun.h"
#include "host/databasefeed.h"
#include "host/demofeed.h"
#include "host/documentfeed.h"
#include "host/hostoptions.h"
#include "host/hosttranslator.h"
#include "host/mainwindow.h"
#include "host/profilestore.h"
#include "host/workorderdatabase.h"
#include "host/workordergenerator.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QSet>
#include <QTimer>
#include <cstdio>

namespace {

void printError(const QString &text)
{
    std::fprintf(stderr, "dlv-host: %s\n", qUtf8Printable(text));
}

void printOut(const QString &text)
{
    std::fprintf(stdout, "%s\n", qUtf8Printable(text));
}

// Without a display server Qt cannot open a window; the host then renders instead of failing.
bool hasDisplay()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;
#endif
}

void describeApplication()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Dashlon"));
    QCoreApplication::setApplicationName(QStringLiteral("dlv-host"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DLV_HOST_VERSION));
}

// --db-generate: a working day written to a new work-order database.
int generateDatabase(int argc, char **argv, const HostOptions &options)
{
    QCoreApplication core(argc, argv); // Qt loads its database drivers as plugins
    describeApplication();
    QString error;
    auto database =
        WorkOrderDatabase::open(options.dbGenerate, WorkOrderDatabase::Mode::Create, &error);
    if (!database) {
        printError(error);
        return HostOptions::ExitFailure;
    }
    const QTime clock = options.dbClock.isEmpty()
                            ? QTime(10, 30)
                            : QTime::fromString(options.dbClock, QStringLiteral("H:mm"));
    const WorkOrderGenerator day(options.seedGiven ? options.seed : DemoFeed::DefaultSeed, clock);
    error = day.write(*database);
    if (!error.isEmpty()) {
        printError(QStringLiteral("%1: %2").arg(database->displayName(), error));
        return HostOptions::ExitFailure;
    }
    printOut(QCoreApplication::translate("main", "%1: %2 units, %3 technicians and %4 work "
                                                 "orders of a day at %5")
                 .arg(database->displayName())
                 .arg(day.units().size())
                 .arg(day.technicians().size())
                 .arg(day.workOrders().size())
                 .arg(clock.toString(QStringLiteral("HH:mm"))));
    return HostOptions::ExitOk;
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    HostOptions options = HostOptions::parse(arguments);
    switch (options.action) {
    case HostOptions::Action::Error:
        printError(options.errorMessage + QStringLiteral(" (see dlv-host --help)"));
        return HostOptions::ExitBadArguments;
    case HostOptions::Action::Help: {
        QCoreApplication core(argc, argv);
        describeApplication();
        std::fputs(qUtf8Printable(HostOptions::helpText()), stdout);
        return HostOptions::ExitOk;
    }
    case HostOptions::Action::Version:
        printOut(QStringLiteral("dlv-host %1").arg(QStringLiteral(DLV_HOST_VERSION)));
        return HostOptions::ExitOk;
    case HostOptions::Action::GenerateDatabase:
        return generateDatabase(argc, argv, options);
    case HostOptions::Action::Run:
        break;
    }

    // With no display and nothing asked for, show what the host does as a picture of the demo.
    bool renderDemo = false;
    if (!options.isBatch() && !hasDisplay()) {
        renderDemo = true;
        options.screenshot = QDir::temp().filePath(QStringLiteral("dlv-host-demo.png"));
    }
    const bool batch = options.isBatch();
    if (batch && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    // The data are read and checked before Qt opens its platform, so that a bad document or
    // unit is reported without any other output.
    std::unique_ptr<DataFeed> feed;
    if (!options.dbUrl.isEmpty()) {
        QString error;
        feed = DatabaseFeed::open(options.dbUrl, &error, options.refreshSeconds, options.dbSimulate,
                                  options.seedGiven ? options.seed : DemoFeed::DefaultSeed);
        if (!feed) {
            printError(error);
            return HostOptions::ExitBadData;
        }
    } else if (!options.dataPath.isEmpty()) {
        QString error;
        feed = DocumentFeed::open(options.dataPath, &error, qint64(options.maxDocumentMiB) << 20);
        if (!feed) {
            printError(error);
            return HostOptions::ExitBadData;
        }
    } else {
        feed = std::make_unique<DemoFeed>(options.seedGiven ? options.seed : DemoFeed::DefaultSeed,
                                          options.refreshSeconds);
    }

    const QStringList known = feed->unitIds();
    QStringList session = known;
    if (options.sessionUnitsGiven) {
        const QSet<QString> knownSet(known.begin(), known.end());
        for (const QString &id : std::as_const(options.sessionUnits))
            if (!knownSet.contains(id)) {
                printError(
                    QStringLiteral("--session-units: unit \"%1\" is not in the data").arg(id));
                return HostOptions::ExitBadArguments;
            }
        session = options.sessionUnits;
    }
    if (renderDemo) {
        // Every unit chosen, so that the picture shows figures whatever the stored profile holds.
        options.select = session;
        options.selectGiven = !session.isEmpty();
    }
    if (options.selectGiven) {
        const QSet<QString> sessionSet(session.begin(), session.end());
        for (const QString &id : std::as_const(options.select))
            if (!sessionSet.contains(id)) {
                printError(QStringLiteral("--select: unit \"%1\" is not among the session's units")
                               .arg(id));
                return HostOptions::ExitBadArguments;
            }
    }

    QApplication app(argc, argv);
    describeApplication();
    QApplication::setApplicationDisplayName(QStringLiteral("Dashlon Viewer"));
    // The host's windows in the control's language; the Language menu restarts the host with
    // another --lang, so one translator serves the whole run.
    const HostTranslator translator(options.language);

    const QString user = options.user.isEmpty() ? HostOptions::loginName() : options.user;
    auto store = std::make_unique<ProfileStore>(
        options.profilesPath.isEmpty() ? ProfileStore::defaultPath() : options.profilesPath, user,
        QString::fromLatin1(MainWindow::ApplicationId));
    const bool storeOpen = store->open();
    if (!storeOpen) {
        if (!options.profile.isEmpty()) {
            printError(QStringLiteral("--profile: the profiles cannot be read: %1")
                           .arg(store->lastError()));
            return HostOptions::ExitFailure;
        }
        printError(QStringLiteral("warning: profiles are not available yet (each request tries "
                                  "again): %1")
                       .arg(store->lastError()));
    } else if (!options.profile.isEmpty()) {
        try {
            if (!store->profile(options.profile)) {
                const QStringList names = store->profileNames();
                printError(QStringLiteral("--profile: user \"%1\" has no profile named \"%2\" (%3)")
                               .arg(user, options.profile,
                                    names.isEmpty() ? QStringLiteral("no profiles are stored")
                                                    : QStringLiteral("stored: ") +
                                                          names.join(QStringLiteral(", "))));
                return HostOptions::ExitBadArguments;
            }
        } catch (const DLVError &e) {
            printError(QStringLiteral("--profile: %1").arg(e.description()));
            return HostOptions::ExitFailure;
        }
    }

    MainWindow::Settings settings;
    settings.language = options.language;
    settings.sessionUnits = session;
    settings.refreshSeconds = options.refreshSeconds;
    settings.startupProfile = options.profile;
    settings.timedRefresh = !batch;
    settings.freshness = options.freshness;
    settings.changeCues = options.changeCues;
    settings.exceptions = options.exceptions;
    settings.unitTree = options.unitTree;
    settings.trend = options.trend;
    MainWindow window(std::move(feed), std::move(store), settings);

    if (batch) {
        BatchRun run(window, options);
        QObject::connect(&run, &BatchRun::finished, &app, [&](int status) {
            if (renderDemo && status == HostOptions::ExitOk)
                printOut(QStringLiteral("No display found, so the demo was rendered to %1 "
                                        "(run with a display to use the viewer).")
                             .arg(QDir::toNativeSeparators(options.screenshot)));
            QCoreApplication::exit(status);
        });
        run.begin();
        return QApplication::exec();
    }

    window.start(); // before the first show, which lays the control out
    window.show();
    if (!storeOpen)
        QTimer::singleShot(0, &window, [&window] {
            QMessageBox::warning(&window, QObject::tr("Profiles"),
                                 QObject::tr("Your view profiles cannot be stored, so changes to "
                                             "them are not kept after you close the viewer. "
                                             "Details are in Help ▸ About."));
        });
    return QApplication::exec();
}

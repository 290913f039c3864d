#include "host/mainwindow.h"

#include "common/dlverror.h"
#include "common/dlvparams.h"
#include "control/dlviewer.h"
#include "host/detailswindow.h"
#include "host/hostlog.h"
#include "host/profilestore.h"
#include "host/trendchart.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtransport.h"
#include "webdata/webvariant.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QStatusBar>
#include <QTime>
#include <QTimer>

namespace {

const QString kDataMessage = QStringLiteral("DLVData");

struct Language
{
    const char *code;
    const char *name;
};
constexpr Language kLanguages[] = {{"EN", "English"}, {"PO", "Português"}, {"SP", "Español"}};

QString languageName(const QString &code)
{
    for (const Language &l : kLanguages)
        if (code == QLatin1String(l.code))
            return QString::fromUtf8(l.name);
    return code;
}

// A one-line account of a detail request for the details window.
QString describeRequest(const DLVParams &p, const DetailTableModel::Descriptions &d, int unitCount)
{
    QStringList parts;
    parts.append(p.Info == u"USER" ? MainWindow::tr("Technicians") : MainWindow::tr("Work orders"));
    if (const auto status = DetailRecords::statusFromKey(p.JobStatus))
        parts.append(MainWindow::tr("status %1").arg(DetailRecords::statusName(*status)));
    if (!p.JobType.isEmpty())
        parts.append(MainWindow::tr("job type %1").arg(d.jobTypes.value(p.JobType, p.JobType)));
    if (!p.JobClass.isEmpty())
        parts.append(
            MainWindow::tr("job class %1").arg(d.jobClasses.value(p.JobClass, p.JobClass)));
    QStringList names;
    const QStringList ids = p.BUID.split(u'|', Qt::SkipEmptyParts);
    for (const QString &id : ids) {
        if (names.size() == 4) {
            names.append(QStringLiteral("…"));
            break;
        }
        names.append(d.units.value(id, id));
    }
    // Multi-argument arg(): a description holding "%2" stays as it is.
    const QString what = parts.join(QStringLiteral(", "));
    QString text = unitCount == 1
                       ? MainWindow::tr("%1 in 1 unit").arg(what)
                       : MainWindow::tr("%1 in %2 units").arg(what, QString::number(unitCount));
    if (!names.isEmpty())
        text += QStringLiteral(": ") + names.join(QStringLiteral(", "));
    if (!p.JeopardyThreshold.isEmpty())
        text = MainWindow::tr("%1 (jeopardy threshold %2 min)").arg(text, p.JeopardyThreshold);
    return text;
}

} // namespace

MainWindow::MainWindow(std::unique_ptr<DataFeed> feed, std::unique_ptr<ProfileStore> store,
                       Settings settings, QWidget *parent)
    : QMainWindow(parent), m_feed(std::move(feed)), m_store(std::move(store)),
      m_settings(std::move(settings)), m_viewer(new DLViewer(this)), m_timer(new QTimer(this)),
      m_feedState(new QLabel(this))
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(tr("Dashlon Viewer"));
    setCentralWidget(m_viewer);
    setMinimumSize(640, 420);
    resize(1280, 800);
    statusBar()->addPermanentWidget(m_feedState, 1);
    m_feedState->setObjectName(QStringLiteral("feedState"));
    m_viewer->SetFreshnessShown(m_settings.freshness);
    m_viewer->SetChangeCuesShown(m_settings.changeCues);
    m_viewer->SetExceptionsShown(m_settings.exceptions);
    m_viewer->SetUnitTreeShown(m_settings.unitTree);
    createMenus();
    connectViewer();
    connect(m_timer, &QTimer::timeout, this, &MainWindow::refresh);
    updateFeedState();
}

MainWindow::~MainWindow()
{
    stopControl();
}

void MainWindow::createMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    m_exportAction = file->addAction(tr("&Export grid…"), this, &MainWindow::exportGrid);
    m_exportAction->setShortcut(QKeySequence::Save);
    m_printAction = file->addAction(tr("&Print…"), this, &MainWindow::printGrid);
    m_printAction->setShortcut(QKeySequence::Print);
    file->addSeparator();
    QAction *quit = file->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);

    QMenu *feed = menuBar()->addMenu(tr("F&eed"));
    m_refreshAction = feed->addAction(tr("&Refresh now"), this, &MainWindow::refresh);
    m_refreshAction->setShortcut(QKeySequence::Refresh);
    feed->addSeparator();
    m_stopAction = feed->addAction(tr("&Stop server"), this, &MainWindow::stopServer);
    m_restartAction = feed->addAction(tr("Re&start server"), this, &MainWindow::restartServer);

    createViewMenu();

    QMenu *language = menuBar()->addMenu(tr("&Language"));
    auto *group = new QActionGroup(this);
    for (const Language &l : kLanguages) {
        const QString code = QString::fromLatin1(l.code);
        QAction *action =
            language->addAction(QStringLiteral("%1 (%2)").arg(languageName(code), code));
        action->setCheckable(true);
        action->setChecked(code == m_settings.language);
        action->setData(code);
        group->addAction(action);
        m_languageActions.append(action);
        connect(action, &QAction::triggered, this, [this, code] { switchLanguage(code); });
    }

    QMenu *help = menuBar()->addMenu(tr("&Help"));
    QAction *about =
        help->addAction(tr("&About Dashlon Viewer Host"), this, &MainWindow::showAbout);
    about->setMenuRole(QAction::AboutRole);
}

void MainWindow::createViewMenu()
{
    QMenu *view = menuBar()->addMenu(tr("&View"));
    const auto toggle = [&](const QString &text, const char *name, bool on,
                            void (DLViewer::*set)(bool)) {
        QAction *action = view->addAction(text);
        action->setObjectName(QString::fromLatin1(name));
        action->setCheckable(true);
        action->setChecked(on);
        connect(action, &QAction::toggled, m_viewer, set);
        return action;
    };
    toggle(tr("Data &freshness"), "actionFreshness", m_settings.freshness,
           &DLViewer::SetFreshnessShown);
    toggle(tr("&Change cues"), "actionChangeCues", m_settings.changeCues,
           &DLViewer::SetChangeCuesShown);
    toggle(tr("&Trouble colours"), "actionExceptions", m_settings.exceptions,
           &DLViewer::SetExceptionsShown);
    toggle(tr("&Unit tree"), "actionUnitTree", m_settings.unitTree, &DLViewer::SetUnitTreeShown);
    view->addSeparator();

    m_trendDock = new QDockWidget(tr("Trend of today's rates"), this);
    m_trendDock->setObjectName(QStringLiteral("trendDock"));
    m_trendChart = new TrendChart(m_trendDock);
    m_trendDock->setWidget(m_trendChart);
    addDockWidget(Qt::BottomDockWidgetArea, m_trendDock);
    m_trendDock->setVisible(m_settings.trend);
    QAction *trend = m_trendDock->toggleViewAction();
    trend->setText(tr("T&rend chart"));
    trend->setObjectName(QStringLiteral("actionTrend"));
    trend->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
    view->addAction(trend);
    connect(m_viewer, &DLViewer::PanelTrendChanged, m_trendChart,
            [this] { m_trendChart->setPoints(m_viewer->PanelTrend()); });
}

void MainWindow::connectViewer()
{
    connect(m_viewer, &DLViewer::PostRequest, this, &MainWindow::onPostRequest);
    connect(m_viewer, &DLViewer::GetDetails, this, &MainWindow::onGetDetails);
    // Every profile request goes to the store under the name of its signal.
    const auto route = [this](auto signal, const char *functionName) {
        connect(m_viewer, signal, this,
                [this, name = QString::fromLatin1(functionName)](DLVParams &params) {
                    answer(name, params);
                });
    };
    route(&DLViewer::GetProfiles, "GetProfiles");
    route(&DLViewer::GetProfileList, "GetProfileList");
    route(&DLViewer::PutProfiles, "PutProfiles");
    route(&DLViewer::AddProfiles, "AddProfiles");
    route(&DLViewer::RemoveProfiles, "RemoveProfiles");
    route(&DLViewer::SaveProfileAs, "SaveProfileAs");
}

void MainWindow::start()
{
    if (m_started)
        return;
    m_started = true;
    try {
        m_viewer->Initialize(std::make_shared<QZWebTransport>(m_settings.language));
        QString language = m_settings.language;
        m_viewer->SetRegionalFormatInfo(language);
        QStringList units = m_settings.sessionUnits;
        // From here the control asks for its profiles; the answers come back inside the calls.
        m_viewer->SetSessionBUIDList(units);
    } catch (const DLVError &e) {
        qCCritical(lcHost) << "the control refused to start:" << e.number() << e.description();
        QMessageBox::critical(
            this, tr("Dashlon Viewer"),
            tr("The viewer could not start: %1 (error %2).").arg(e.description()).arg(e.number()));
    }
    updateFeedState();
}

QString MainWindow::answerProfileRequest(const QString &functionName, const DLVParams &params)
{
    QString profileName = params.ProfileName;
    // The first profile the control asks for is its start-up profile; a host may answer with
    // the one the user chose instead (the control takes the first profile of the answer).
    if (functionName == u"GetProfiles" && !m_startupProfileAnswered) {
        m_startupProfileAnswered = true;
        if (!m_settings.startupProfile.isEmpty())
            profileName = m_settings.startupProfile;
    }
    return m_store->answer(functionName, profileName, params.ProfilesXML);
}

void MainWindow::answer(const QString &functionName, DLVParams &params)
{
    params.UserID = m_store->userId();
    params.ApplicationID = m_store->applicationId();
    QString result = answerProfileRequest(functionName, params);
    params.ResultXML = result;
    QString function = functionName;
    qCDebug(lcHost) << "answering" << functionName << params.ProfileName;
    try {
        m_viewer->ReceiveProfileResponse(result, function);
    } catch (const DLVError &e) {
        qCWarning(lcHost) << "the control rejected the answer to" << functionName << ":"
                          << e.number() << e.description();
    }
}

void MainWindow::onPostRequest(QString &request)
{
    if (request != u"ClientReady") {
        qCWarning(lcHost) << "unknown request from the control:" << request;
        return;
    }
    if (m_clientReady)
        return;
    m_clientReady = true;
    // Not inside the control's own call: it finishes its start-up before the first data.
    QTimer::singleShot(0, this, &MainWindow::startFeed);
}

void MainWindow::startFeed()
{
    if (m_stopped)
        return;
    refresh();
    if (m_settings.timedRefresh && !m_serverStopped)
        m_timer->start(m_settings.refreshSeconds * 1000);
}

void MainWindow::send(const std::shared_ptr<QZWebMessage> &message)
{
    QVariant data = WebVariant::wrap(message);
    try {
        m_viewer->ReceiveMessage(data, QVariant(0), QVariant(QString()));
    } catch (const DLVError &e) {
        qCWarning(lcHost) << "the control rejected a message:" << e.number() << e.description();
    }
}

void MainWindow::refresh()
{
    if (m_serverStopped || !m_clientReady || m_stopped)
        return;
    DataFeed::Frame frame = m_feed->next();
    const bool isData = frame.message && frame.message->name() == kDataMessage;
    if (isData) {
        m_lastData = frame.message;
        m_details = frame.details;
        m_descriptions = DetailTableModel::descriptionsFrom(*frame.message);
    }
    send(frame.message);
    m_lastRefresh = QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
    updateFeedState();
    if (isData)
        Q_EMIT dataDelivered(++m_dataSent);
}

void MainWindow::resendLast()
{
    if (m_serverStopped || !m_clientReady || m_stopped || !m_lastData)
        return;
    send(m_lastData);
    m_lastRefresh = QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
    updateFeedState();
    Q_EMIT dataDelivered(++m_dataSent);
}

void MainWindow::stopServer()
{
    if (m_serverStopped || m_stopped)
        return;
    m_serverStopped = true;
    m_timer->stop();
    send(std::make_shared<QZWebMessage>(QStringLiteral("DLVServerStopped")));
    updateFeedState();
}

void MainWindow::restartServer()
{
    if (!m_serverStopped || m_stopped)
        return;
    m_serverStopped = false;
    refresh();
    if (m_settings.timedRefresh)
        m_timer->start(m_settings.refreshSeconds * 1000);
    updateFeedState();
}

void MainWindow::updateFeedState()
{
    QString text = m_feed->description();
    if (m_stopped)
        text += tr(" – viewer stopped");
    else if (m_serverStopped)
        text += tr(" – server stopped (Feed ▸ Restart server resumes the data)");
    else if (!m_clientReady)
        text += tr(" – waiting for the viewer");
    else if (m_lastRefresh.isEmpty())
        text += tr(" – starting");
    else {
        const QString position = m_feed->position();
        if (!position.isEmpty())
            text += QStringLiteral(" – ") + position;
        text +=
            m_timer->isActive()
                ? tr(" – sent at %1, every %2 s").arg(m_lastRefresh).arg(m_settings.refreshSeconds)
                : tr(" – sent at %1").arg(m_lastRefresh);
    }
    m_feedState->setText(text);

    const bool running = m_clientReady && !m_stopped;
    const bool hasData = running && m_dataSent > 0;
    m_refreshAction->setEnabled(running && !m_serverStopped);
    m_stopAction->setEnabled(running && !m_serverStopped);
    m_restartAction->setEnabled(running && m_serverStopped);
    m_exportAction->setEnabled(hasData);
    m_printAction->setEnabled(hasData);
}

void MainWindow::onGetDetails(DLVParams &params)
{
    DetailTableModel::Kind kind = DetailTableModel::Kind::WorkOrders;
    if (params.Info == u"USER")
        kind = DetailTableModel::Kind::Technicians;
    else if (params.Info != u"WORKORDER") {
        statusBar()->showMessage(
            tr("The viewer asked for details of an unknown kind \"%1\".").arg(params.Info), 8000);
        return;
    }
    DetailRecords::Query query;
    query.buids = params.BUID.split(u'|', Qt::SkipEmptyParts);
    query.jobType = params.JobType;
    query.jobClass = params.JobClass;
    query.jobStatus = params.JobStatus;
    auto *model = new DetailTableModel(kind, m_details, query, m_descriptions);
    QString note;
    if (!m_details || m_details->isEmpty())
        note = tr("The data source carries no detail records (a data document needs a "
                  "\"Details\" table for them).");
    else if (query.buids.isEmpty())
        note = tr("The figure covers no units of this session.");
    auto *window = new DetailsWindow(
        model, describeRequest(params, m_descriptions, int(query.buids.size())), note, this);
    window->show();
    window->raise();
    window->activateWindow();
}

void MainWindow::exportGrid()
{
    const QString start = m_lastExportFolder.isEmpty() ? QDir::homePath() : m_lastExportFolder;
    const QString fileName = QFileDialog::getSaveFileName(
        this, tr("Export grid"), QDir(start).filePath(QStringLiteral("grid.csv")),
        tr("Comma-separated files (*.csv);;All files (*)"));
    if (fileName.trimmed().isEmpty())
        return;
    m_lastExportFolder = QFileInfo(fileName).absolutePath();
    if (!m_viewer->ExportGrid(fileName))
        QMessageBox::warning(this, tr("Export grid"),
                             tr("The grid could not be saved to %1. Check that the folder "
                                "exists and is writable, and that a grid is in view.")
                                 .arg(QDir::toNativeSeparators(fileName)));
    else
        statusBar()->showMessage(tr("Grid saved to %1").arg(QDir::toNativeSeparators(fileName)),
                                 5000);
}

void MainWindow::printGrid()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle(tr("Print grid"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (!m_viewer->PrintGrid(printer))
        QMessageBox::warning(this, tr("Print grid"),
                             tr("The grid could not be printed. Check the printer, and that a "
                                "grid is in view."));
}

void MainWindow::switchLanguage(const QString &code)
{
    if (code == m_settings.language)
        return;
    const auto choice = QMessageBox::question(
        this, tr("Language"),
        tr("Dashlon Viewer starts again in %1. View settings that you have not saved in your "
           "profile are not kept.\n\nSwitch now?")
            .arg(languageName(code)),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (choice == QMessageBox::Yes) {
        QStringList arguments = QCoreApplication::arguments().mid(1);
        for (int i = 0; i < arguments.size(); ++i) {
            const QString &a = arguments[i];
            if (a == u"--lang" || a == u"-lang") {
                arguments.remove(i, std::min<qsizetype>(2, arguments.size() - i));
                --i;
            } else if (a.startsWith(u"--lang=") || a.startsWith(u"-lang=")) {
                arguments.remove(i);
                --i;
            }
        }
        arguments << QStringLiteral("--lang") << code;
        if (QProcess::startDetached(QCoreApplication::applicationFilePath(), arguments)) {
            close();
            return;
        }
        QMessageBox::warning(this, tr("Language"),
                             tr("Dashlon Viewer could not be started again."));
    }
    // Keep the menu's check mark on the language in use.
    for (QAction *a : std::as_const(m_languageActions))
        a->setChecked(a->data().toString() == m_settings.language);
}

void MainWindow::showAbout()
{
    const QString profiles =
        m_store->isOpen() ? QDir::toNativeSeparators(m_store->path())
                          : tr("not available (%1)").arg(m_store->lastError().toHtmlEscaped());
    QMessageBox::about(
        this, tr("About Dashlon Viewer Host"),
        tr("<h3>Dashlon Viewer Host %1</h3>"
           "<p>The reference host of the Dashlon Viewer control: it feeds the control with data "
           "and stores the user's view profiles.</p>"
           "<p><b>Data:</b> %2<br><b>Profiles:</b> %3<br><b>User:</b> %4<br>"
           "<b>Language:</b> %5</p>"
           "<p>Double-click a figure to list the work orders or technicians behind it.</p>")
            .arg(QCoreApplication::applicationVersion(), m_feed->description().toHtmlEscaped(),
                 profiles, m_store->userId().toHtmlEscaped(), languageName(m_settings.language)));
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (m_started && !m_stopped)
        m_viewer->ResizeControls();
}

void MainWindow::stopControl()
{
    if (m_stopped)
        return;
    m_stopped = true;
    m_timer->stop();
    if (m_started)
        m_viewer->StopControl();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // The details windows are children: they close with this window.
    stopControl();
    updateFeedState();
    event->accept();
}

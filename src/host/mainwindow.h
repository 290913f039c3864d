#pragma once

#include "host/datafeed.h"
#include "host/detailtablemodel.h"

#include <QList>
#include <QMainWindow>
#include <QString>
#include <QStringList>
#include <memory>

class DLViewer;
class DLVParams;
class ProfileStore;
class QAction;
class QDockWidget;
class QLabel;
class QTimer;
class QZWebMessage;
class TrendChart;

/// The reference host's window. It embeds the control and drives it as a host must: Initialize
/// with a transport carrying the language, SetRegionalFormatInfo, SetSessionBUIDList, answers to
/// every profile request from its profile store, data from its feed once the control has posted
/// "ClientReady" (then on a timer), ResizeControls when the window changes size and StopControl
/// when it closes. Detail requests open a DetailsWindow over the feed's records.
///
/// Menus: File (export the grid, print it, quit), Feed (refresh now, stop and restart the
/// server), View (the control's freshness line, change cues and trouble colours; the trend chart
/// of today's rates in a dock, exportable as PNG), Language (restarts the host in another
/// language), Help (about). The status bar shows the state of the feed.
class MainWindow final : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

public:
    static constexpr const char *ApplicationId = "DashlonViewer";

    struct Settings
    {
        QString language = QStringLiteral("EN");
        QStringList sessionUnits;
        int refreshSeconds = 30;
        QString startupProfile;   ///< answered first to the control's first profile request
        bool timedRefresh = true; ///< false: only the first refresh (batch runs)
        // The control's options over its figures and the trend chart, as first shown; the View
        // menu switches them.
        bool freshness = false;
        bool changeCues = false;
        bool exceptions = false;
        bool unitTree = false;
        bool trend = false;
    };

    /// Takes ownership of the feed and the store (the store may be closed: profile requests are
    /// then answered with its error).
    MainWindow(std::unique_ptr<DataFeed> feed, std::unique_ptr<ProfileStore> store,
               Settings settings, QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Starts the control: Initialize, SetRegionalFormatInfo, SetSessionBUIDList. The control then
    /// asks for its profiles; data follow its "ClientReady". Call it before the window is first
    /// shown: the control's first layout sets its grids up in the language it was given.
    void start();

    [[nodiscard]] DLViewer *viewer() const { return m_viewer; }
    [[nodiscard]] bool isServerRunning() const { return !m_serverStopped; }
    [[nodiscard]] int dataMessagesSent() const { return m_dataSent; }
    [[nodiscard]] TrendChart *trendChart() const { return m_trendChart; }
    [[nodiscard]] QDockWidget *trendDock() const { return m_trendDock; }

    /// The result document for a profile request (what goes back through
    /// ReceiveProfileResponse). Independent of when it is delivered.
    [[nodiscard]] QString answerProfileRequest(const QString &functionName,
                                               const DLVParams &params);

    /// Sends the next refresh of the feed (nothing while the server is stopped).
    void refresh();
    /// Sends the last data message again, as a server does whose data have not changed (nothing
    /// before the first refresh or while the server is stopped). The control fills its hierarchy
    /// with the units chosen when the data arrive, so a new choice shows there after this.
    void resendLast();
    /// Sends "DLVServerStopped" and stops the refreshes.
    void stopServer();
    /// Resumes "DLVData" refreshes, starting with one at once.
    void restartServer();

Q_SIGNALS:
    /// After each "DLVData" message has been handed to the control (its fills are done then).
    void dataDelivered(int count);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void createMenus();
    void createViewMenu();
    void connectViewer();
    void answer(const QString &functionName, DLVParams &params);
    void onPostRequest(QString &request);
    void onGetDetails(DLVParams &params);
    void startFeed();
    void send(const std::shared_ptr<QZWebMessage> &message);
    void exportGrid();
    void printGrid();
    void switchLanguage(const QString &code);
    void showAbout();
    void updateFeedState();
    void stopControl();

    std::unique_ptr<DataFeed> m_feed;
    std::unique_ptr<ProfileStore> m_store;
    Settings m_settings;
    DLViewer *m_viewer = nullptr;
    QTimer *m_timer = nullptr;
    QLabel *m_feedState = nullptr;
    QAction *m_exportAction = nullptr;
    QAction *m_printAction = nullptr;
    QAction *m_refreshAction = nullptr;
    QAction *m_stopAction = nullptr;
    QAction *m_restartAction = nullptr;
    QDockWidget *m_trendDock = nullptr;
    TrendChart *m_trendChart = nullptr;
    QList<QAction *> m_languageActions;
    std::shared_ptr<QZWebMessage> m_lastData;
    std::shared_ptr<const DetailRecords> m_details;
    DetailTableModel::Descriptions m_descriptions;
    QString m_lastRefresh;
    QString m_lastExportFolder;
    int m_dataSent = 0;
    bool m_started = false;
    bool m_clientReady = false;
    bool m_serverStopped = false;
    bool m_stopped = false;
    bool m_startupProfileAnswered = false;
};

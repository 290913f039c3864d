#pragma once

#include "host/hostoptions.h"

#include <QObject>
#include <QStringList>

class MainWindow;
class QTimer;

/// A headless run of the host: it starts the window, waits for the control's first complete fill
/// (the fills run inside the first "DLVData" ReceiveMessage), then does what the options ask, in
/// this order: choose units (--select) and the aggregate option, press View, send the same data
/// once more (so that the hierarchy shows the chosen units, as after the next refresh), the
/// display option, the tab, then export the grid, print it to PDF, save a picture of the window
/// and print the panel's figures. It ends with finished(exit status).
///
/// Nobody can answer a dialog in a batch run: any modal dialog the control opens is reported on
/// standard error and dismissed, and the run then ends with a failure status.
class BatchRun final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BatchRun)

public:
    /// The panel labels printed by --panel, in their order.
    [[nodiscard]] static QStringList panelLabels();

    BatchRun(MainWindow &window, HostOptions options, QObject *parent = nullptr);
    ~BatchRun() override;

    /// Shows the window (the offscreen platform keeps it invisible) and starts the control.
    void begin();

Q_SIGNALS:
    void finished(int exitStatus);

private:
    void onDataDelivered(int count);
    [[nodiscard]] int act();
    void dismissDialogs();
    void giveUp();
    void finish(int status);

    MainWindow &m_window;
    HostOptions m_options;
    QTimer *m_dialogWatch;
    QTimer *m_deadline;
    QStringList m_dialogTexts;
    bool m_done = false;
};

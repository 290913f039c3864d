#pragma once

#include <QString>
#include <functional>

class QWidget;

/// Runs action on the next modal dialog once it is on screen (other than `except`, a dialog
/// already open). Waits by event-loop turns (zero-length timers), never by time, and fails the
/// running test if no dialog appears.
void onNextModal(std::function<void(QWidget *dialog)> action, QWidget *except = nullptr);

/// Saves a picture of widget as <DLV_SCREENSHOT_DIR>/<name>.png; true when written.
bool saveScreenshot(QWidget *widget, const QString &name);

#pragma once

#include <QString>
#include <functional>

class QWidget;

/// Runs action on the next modal dialog once it is on screen (other than `except`, the dialog
/// already open). Waits by event-loop turns, never by time; fails the test if none appears.
void onNextModal(std::function<void(QWidget *dialog)> action, QWidget *except = nullptr);

/// Saves a picture of widget as <build dir>/<name>.png; true when written.
bool saveScreenshot(QWidget *widget, const QString &name);

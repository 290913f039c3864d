#pragma once

#include <QString>
#include <functional>

class QWidget;

/// Runs action on the next modal dialog as soon as it is on screen. It waits by event-loop turns
/// (zero-length timers), never by time, and fails the running test if no dialog appears.
void onNextModal(std::function<void(QWidget *dialog)> action);

/// Saves a picture of widget as <screenshot dir>/<name>.png; true when written.
bool saveScreenshot(QWidget *widget, const QString &name);

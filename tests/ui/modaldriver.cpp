#include "modaldriver.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>
#include <memory>

namespace {

// Generous: a dialog is normally there on the first turn after exec() starts its loop.
constexpr int MaxTurns = 1000;

void poll(std::shared_ptr<std::function<void(QWidget *)>> action, int turnsLeft)
{
    QTimer::singleShot(0, [action, turnsLeft] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (dialog && dialog->isVisible()) {
            (*action)(dialog);
            return;
        }
        if (turnsLeft == 0) {
            ADD_FAILURE() << "no modal dialog appeared";
            return;
        }
        poll(action, turnsLeft - 1);
    });
}

} // namespace

void onNextModal(std::function<void(QWidget *dialog)> action)
{
    poll(std::make_shared<std::function<void(QWidget *)>>(std::move(action)), MaxTurns);
}

bool saveScreenshot(QWidget *widget, const QString &name)
{
    const QString dir = QStringLiteral(DLV_SCREENSHOT_DIR);
    QDir().mkpath(dir);
    const QPixmap picture = widget->grab();
    return !picture.isNull() &&
           picture.save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}

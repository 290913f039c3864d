#include "support/modaldriver.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>
#include <memory>

namespace {

// Generous: a dialog is normally there on the first turn after exec() starts its loop.
constexpr int MaxTurns = 1000;

void poll(std::shared_ptr<std::function<void(QWidget *)>> action, QPointer<QWidget> except,
          int turnsLeft)
{
    QTimer::singleShot(0, [action, except, turnsLeft] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (dialog && dialog->isVisible() && dialog != except.data()) {
            (*action)(dialog);
            return;
        }
        if (turnsLeft == 0) {
            ADD_FAILURE() << "no modal dialog appeared";
            return;
        }
        poll(action, except, turnsLeft - 1);
    });
}

} // namespace

void onNextModal(std::function<void(QWidget *dialog)> action, QWidget *except)
{
    poll(std::make_shared<std::function<void(QWidget *)>>(std::move(action)), except, MaxTurns);
}

bool saveScreenshot(QWidget *widget, const QString &name)
{
    const QString dir = QStringLiteral(DLV_SCREENSHOT_DIR);
    QDir().mkpath(dir);
    const QPixmap picture = widget->grab();
    return !picture.isNull() &&
           picture.save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}

#include "views/labelactivator.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>

LabelActivator::LabelActivator(QLabel *label) : QObject(label), m_label(label)
{
    m_label->setFocusPolicy(Qt::StrongFocus);
    m_label->setCursor(Qt::PointingHandCursor);
    // Only the focus state is styled, so the label's font and colours stay as they are set.
    m_label->setStyleSheet(
        QStringLiteral("QLabel:focus { border: 1px dotted palette(highlight); }"));
    m_label->installEventFilter(this);
}

LabelActivator::~LabelActivator() = default;

bool LabelActivator::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_label)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto *me = static_cast<QMouseEvent *>(event);
        m_pressed = me->button() == Qt::LeftButton;
        return m_pressed;
    }
    case QEvent::MouseButtonRelease: {
        // Like a button: the click counts when the press and the release are both on the label.
        const auto *me = static_cast<QMouseEvent *>(event);
        const bool click = m_pressed && me->button() == Qt::LeftButton &&
                           m_label->rect().contains(me->position().toPoint());
        m_pressed = false;
        if (click)
            Q_EMIT activated();
        return click;
    }
    case QEvent::KeyPress: {
        const auto *ke = static_cast<QKeyEvent *>(event);
        if ((ke->key() == Qt::Key_Return || ke->key() == Qt::Key_Enter ||
             ke->key() == Qt::Key_Space) &&
            !(ke->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
            Q_EMIT activated();
            return true;
        }
        return false;
    }
    default:
        return false;
    }
}

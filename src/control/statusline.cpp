#include "control/statusline.h"

#include <QFrame>
#include <QLabel>

namespace {

const QColor kStatusBlue(0, 0, 255);
const QColor kStatusRed(255, 0, 0);

void setStatusColour(QLabel *label, const QColor &colour)
{
    QPalette pal = label->palette();
    pal.setColor(QPalette::WindowText, colour);
    label->setPalette(pal);
}

} // namespace

StatusLine::StatusLine(QWidget *parent, CaptionLookup caption)
    : m_frame(new QFrame(parent)), m_label(new QLabel(m_frame)), m_caption(std::move(caption))
{
    m_frame->setObjectName(QStringLiteral("fraStatus"));
    m_label->setObjectName(QStringLiteral("lblStatus"));
    m_label->setAlignment(Qt::AlignCenter);
    QFont font = m_label->font();
    font.setBold(true);
    m_label->setFont(font);
}

void StatusLine::show(const QString &messageKey, bool error)
{
    m_label->setText(m_caption(messageKey));
    setStatusColour(m_label, error ? kStatusRed : kStatusBlue);
    m_label->setVisible(true);
}

void StatusLine::hide()
{
    m_label->clear();
    setStatusColour(m_label, kStatusBlue);
    m_label->setVisible(false);
}

void StatusLine::clearText()
{
    m_label->clear();
}

void StatusLine::setFrameGeometry(const QRect &area)
{
    m_frame->setGeometry(area);
}

int StatusLine::heightHint() const
{
    return m_label->sizeHint().height() + 6;
}

int StatusLine::labelWidth() const
{
    return m_label->width();
}

void StatusLine::fitLabel()
{
    m_label->setGeometry(0, 0, m_frame->width(), m_frame->height());
}

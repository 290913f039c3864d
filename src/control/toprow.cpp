#include "control/toprow.h"

#include "common/displaytext.h"

#include <QLabel>
#include <QToolBar>
#include <algorithm>

namespace {

constexpr int kRowMargin = 4;

QLabel *topRowLabel(QWidget *parent, const char *name)
{
    auto *label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setVisible(false);
    return label;
}

} // namespace

TopRow::TopRow(QWidget *parent)
    : m_profile(topRowLabel(parent, "lblProfile")),
      m_currentProfile(topRowLabel(parent, "lblCurrentProfile")),
      m_lastTime(topRowLabel(parent, "lblLastTime")),
      m_lastRefreshTime(topRowLabel(parent, "lblLastRefreshTime")),
      m_nextTime(topRowLabel(parent, "lblNextTime")),
      m_nextRefreshTime(topRowLabel(parent, "lblNextRefreshTime")),
      m_freshness(topRowLabel(parent, "lblFreshness"))
{
    QFont bold = m_currentProfile->font();
    bold.setBold(true);
    m_currentProfile->setFont(bold);
}

void TopRow::setCaptions(const CaptionLookup &caption)
{
    m_lastTime->setText(caption(QStringLiteral("LastRefreshTime")) + QStringLiteral(" :"));
    m_nextTime->setText(caption(QStringLiteral("NextRefreshTime")) + QStringLiteral(" :"));
    m_profile->setText(caption(QStringLiteral("CurrentProfile")) + QStringLiteral(" : "));
}

void TopRow::showCurrentProfile(const QString &name)
{
    m_currentProfile->setText(DisplayText::shown(name));
    m_currentProfile->setToolTip(DisplayText::toolTip(name));
    m_currentProfile->setVisible(true);
    m_profile->setVisible(true);
}

void TopRow::showRefreshTimes(const QString &last, const QString &next)
{
    m_lastRefreshTime->setText(last);
    m_nextRefreshTime->setText(next);
    for (QLabel *label : {m_lastTime, m_lastRefreshTime, m_nextTime, m_nextRefreshTime})
        label->setVisible(true);
}

int TopRow::layout(QToolBar *toolbar, int width, int top) const
{
    int infoWidth = 0;
    for (QLabel *l : {m_profile, m_currentProfile, m_lastTime, m_lastRefreshTime, m_nextTime,
                      m_nextRefreshTime, m_freshness})
        if (!l->isHidden())
            infoWidth += l->sizeHint().width() + 10;
    // Text beside the icons while the row has room for it and the profile and refresh times;
    // icons with tool tips otherwise, as compact toolbars do.
    toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    if (toolbar->sizeHint().width() + infoWidth + 3 * kRowMargin > width)
        toolbar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    const int toolbarHeight = std::max(30, toolbar->sizeHint().height());
    toolbar->setGeometry(kRowMargin, top, toolbar->sizeHint().width(), toolbarHeight);

    // "Current profile : X   Last ... Next ..." ends at the right edge.
    int x = width - kRowMargin;
    const auto place = [&](QLabel *label, int gap) {
        const int lw = label->sizeHint().width();
        x -= lw;
        label->setGeometry(x, top + (toolbarHeight - label->sizeHint().height()) / 2, lw,
                           label->sizeHint().height());
        x -= gap;
    };
    if (!m_freshness->isHidden())
        place(m_freshness, 12);
    place(m_nextRefreshTime, 4);
    place(m_nextTime, 16);
    place(m_lastRefreshTime, 4);
    place(m_lastTime, 16);
    place(m_currentProfile, 4);
    place(m_profile, 0);
    return top + toolbarHeight + 2;
}

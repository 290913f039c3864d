#include "control/selectionoptions.h"

#include "control/panelview.h"
#include "model/viewchoice.h"

#include <QButtonGroup>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTabBar>
#include <algorithm>

SelectionOptions::SelectionOptions(QWidget *parent, ViewChoice &choice)
    : QObject(parent), m_choice(choice), m_tabs(new QTabBar(parent))
{
    m_tabs->setObjectName(QStringLiteral("Tabs"));
    m_tabs->addTab(QString());
    m_tabs->addTab(QString());
    m_tabs->setDrawBase(false);
    m_tabs->setExpanding(false);
    for (std::size_t i = 0; i < m_frames.size(); ++i) {
        m_frames[i] = new QFrame(parent);
        m_frames[i]->setObjectName(QStringLiteral("fraBU%1").arg(i));
        m_frames[i]->setFrameShape(QFrame::StyledPanel);
        m_frames[i]->setAutoFillBackground(true);
    }
}

SelectionOptions::~SelectionOptions() = default;

void SelectionOptions::createButtons()
{
    auto *summaryGroup = new QButtonGroup(m_frames[0]);
    for (int i = 0; i < 2; ++i) {
        QRadioButton *opt = m_summary[std::size_t(i)] = new QRadioButton(m_frames[0]);
        opt->setObjectName(QStringLiteral("optBU%1").arg(i));
        summaryGroup->addButton(opt, i);
    }
    m_view = new QPushButton(m_frames[0]);
    m_view->setObjectName(QStringLiteral("cmdView"));
    m_view->setDefault(false);

    m_displayBy = new QLabel(m_frames[1]);
    m_displayBy->setObjectName(QStringLiteral("lblDisplayBy"));
    auto *displayGroup = new QButtonGroup(m_frames[1]);
    for (int i = 0; i < 2; ++i) {
        QRadioButton *opt = m_display[std::size_t(i)] = new QRadioButton(m_frames[1]);
        opt->setObjectName(QStringLiteral("optDisplay%1").arg(i));
        displayGroup->addButton(opt, i);
    }
    m_frames[1]->setVisible(false);

    connect(m_tabs, &QTabBar::currentChanged, this, [this](int) { Tabs_Click(); });
    bindViewChoice();
    connect(m_view, &QPushButton::clicked, this, &SelectionOptions::viewClicked);
}

void SelectionOptions::bindViewChoice()
{
    for (int i = 0; i < 2; ++i) {
        connect(m_summary[std::size_t(i)], &QRadioButton::toggled, this, [this, i](bool checked) {
            if (checked && m_choice.singleUnits() != (i == 0))
                m_choice.setSingleUnits(i == 0);
        });
        // Setting the option from code (profiles, first layout) switches the display like a
        // click.
        connect(m_display[std::size_t(i)], &QRadioButton::toggled, this, [this, i](bool checked) {
            if (!checked)
                return;
            if (m_choice.byWorkOrders() != (i == 0))
                m_choice.setByWorkOrders(i == 0);
            Q_EMIT displayChosen(i);
        });
    }
    connect(&m_choice, &ViewChoice::singleUnitsSet, this,
            [this](bool single) { m_summary[single ? 0 : 1]->setChecked(true); });
    // A display set from code switches the grid in view even when the option was already
    // checked, as a profile being applied expects.
    connect(&m_choice, &ViewChoice::byWorkOrdersSet, this, [this](bool workOrders) {
        m_display[workOrders ? 0 : 1]->setChecked(true);
        Q_EMIT displayChosen(workOrders ? 0 : 1);
    });
}

void SelectionOptions::setCaptions(const CaptionLookup &caption)
{
    const QString summary = caption(QStringLiteral("BUSummary"));
    m_tabs->setTabText(0, summary);
    m_tabs->setTabToolTip(0, summary);
    const QString hierarchy = caption(QStringLiteral("BUHierarchy"));
    m_tabs->setTabText(1, hierarchy);
    m_tabs->setTabToolTip(1, hierarchy);
    m_view->setText(caption(QStringLiteral("View")));
    m_summary[0]->setProperty("fullText", caption(QStringLiteral("ShowSummary")));
    m_summary[1]->setProperty("fullText", caption(QStringLiteral("ShowAggregateSummary")));
    for (QRadioButton *opt : m_summary)
        opt->setText(opt->property("fullText").toString());
    m_displayBy->setText(caption(QStringLiteral("DisplayBy")));
    m_display[0]->setText(caption(QStringLiteral("WorkOrders")));
    m_display[1]->setText(caption(QStringLiteral("Points")));
}

void SelectionOptions::setViewEnabled(bool enabled)
{
    m_view->setEnabled(enabled);
}

void SelectionOptions::layoutTabs(const QRect &strip, const QRect &client)
{
    m_tabs->setGeometry(strip);
    for (QFrame *frame : m_frames) {
        frame->setGeometry(client);
        frame->raise();
    }
    m_tabs->raise();
}

void SelectionOptions::layoutSummaryOptions(const PanelLayout::Result &r,
                                            const std::function<int(double)> &px)
{
    constexpr int rowHeight = PanelView::kRowHeight;
    const int optWidth = px(r.lblProdPerTechLeft - r.optBULeft) - 6;
    for (int i = 0; i < 2; ++i) {
        QRadioButton *opt = m_summary[std::size_t(i)];
        const QString full = opt->property("fullText").toString();
        // The option's column is a fixed share of the width; a long caption is shortened with an
        // ellipsis and shown whole in the tool tip rather than run under the next column.
        const int textRoom =
            optWidth - opt->style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) - 8;
        const QString shown =
            opt->fontMetrics().elidedText(full, Qt::ElideRight, std::max(20, textRoom));
        opt->setText(shown);
        opt->setToolTip(shown == full ? QString() : full);
        opt->setGeometry(px(r.optBULeft), PanelView::rowY(i), optWidth, rowHeight);
    }
    m_view->setGeometry(px(r.cmdViewLeft), PanelView::rowY(3) + 2,
                        std::max(90, m_view->sizeHint().width()), 26);
}

int SelectionOptions::layoutDisplayRow()
{
    constexpr int rowHeight = PanelView::kRowHeight;
    int x = 8;
    const int optTop = 6;
    m_displayBy->setGeometry(x, optTop, m_displayBy->sizeHint().width(), rowHeight);
    x += m_displayBy->sizeHint().width() + 12;
    for (QRadioButton *opt : m_display) {
        opt->setGeometry(x, optTop, opt->sizeHint().width(), rowHeight);
        x += opt->sizeHint().width() + 12;
    }
    return optTop + rowHeight + 8;
}

int SelectionOptions::currentTab() const
{
    return m_tabs->currentIndex();
}

int SelectionOptions::currentGridIndex() const
{
    if (m_tabs->currentIndex() <= 0)
        return 0;
    return m_choice.byWorkOrders() ? 1 : 2;
}

void SelectionOptions::Tabs_Click()
{
    const int k = m_tabs->currentIndex();
    for (int i = 0; i < 2; ++i) {
        QFrame *frame = m_frames[std::size_t(i)];
        if (i == k) {
            frame->setVisible(true);
            frame->raise();
        } else {
            frame->setVisible(false);
        }
    }
    m_tabs->raise(); // the frames overlap the strip's lower edge by a pixel
}

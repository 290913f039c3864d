#pragma once

#include "views/panellayout.h"

#include <QObject>
#include <array>
#include <functional>

class QFrame;
class QLabel;
class QPushButton;
class QRadioButton;
class QRect;
class QTabBar;
class QWidget;
class ViewChoice;

/// What the user chooses to see, besides the units: the tab strip Tabs with its two frames
/// (fraBU0 the summary, fraBU1 the hierarchy), the summary option optBU (single units or
/// aggregates) with the View button cmdView on the summary frame, and the display option
/// optDisplay (work orders or points) on the hierarchy frame. The options mirror the view choice
/// both ways; the View button and the display switch are told through signals.
class SelectionOptions final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SelectionOptions)

public:
    using CaptionLookup = std::function<QString(const QString &key)>;

    /// Creates the tab strip and both frames as children of parent (the summary frame shown).
    SelectionOptions(QWidget *parent, ViewChoice &choice);
    ~SelectionOptions() override;

    /// Creates the option buttons and binds them to the view choice. Separate from the
    /// constructor so that the panel's figures, created in between, come first in the summary
    /// frame's focus chain.
    void createButtons();

    void setCaptions(const CaptionLookup &caption);
    void setViewEnabled(bool enabled);

    /// Places the strip and stacks both frames over the client area below it.
    void layoutTabs(const QRect &strip, const QRect &client);
    /// Places the summary options in the panel's rows (the panel layout r; px: twips to pixels).
    void layoutSummaryOptions(const PanelLayout::Result &r, const std::function<int(double)> &px);
    /// Places the display row on the hierarchy frame; returns the top of the grids below it.
    int layoutDisplayRow();

    /// 0 the summary tab, 1 the hierarchy tab.
    [[nodiscard]] int currentTab() const;
    /// The grid element in view: 0 on the summary tab, else 1 or 2 by the display option.
    [[nodiscard]] int currentGridIndex() const;
    /// Frame 0 holds the panel and the summary grid, frame 1 the hierarchy grids.
    [[nodiscard]] QFrame *frame(int index) const { return m_frames.at(std::size_t(index)); }
    [[nodiscard]] QTabBar *tabs() const { return m_tabs; }
    [[nodiscard]] QRadioButton *summaryOption(int index) const
    {
        return m_summary.at(std::size_t(index));
    }
    [[nodiscard]] QRadioButton *displayOption(int index) const
    {
        return m_display.at(std::size_t(index));
    }
    [[nodiscard]] QPushButton *viewButton() const { return m_view; }

Q_SIGNALS:
    /// The View button was clicked.
    void viewClicked();
    /// The display option switched to index (0 work orders, 1 points), by a click or from code.
    void displayChosen(int index);

private:
    void bindViewChoice();
    /// Shows the frame of the current tab.
    void Tabs_Click();

    ViewChoice &m_choice;
    QTabBar *m_tabs;
    std::array<QFrame *, 2> m_frames{};
    std::array<QRadioButton *, 2> m_summary{};
    std::array<QRadioButton *, 2> m_display{};
    QPushButton *m_view = nullptr;
    QLabel *m_displayBy = nullptr;
};

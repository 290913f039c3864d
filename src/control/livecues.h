#pragma once

#include "model/trendlog.h"
#include "views/changecues.h"
#include "views/freshnessclock.h"
#include "views/gridcellstyler.h"
#include "views/panelvalues.h"

#include <QObject>
#include <QTimer>
#include <array>
#include <functional>
#include <memory>

class OutlineGrid;
class OutlineGridView;
class QLabel;

/// The control's live presentation options over its figures: how fresh the data are, what changed
/// at the last refresh, and where trouble is; plus the day's trend of panel figures. The decisions
/// live in FreshnessClock, ChangeCues, ExceptionRules and TrendLog; this class keeps their state
/// for the control, hears the control's refresh steps and paints the results onto its widgets.
/// Every option is off at start, and with all off the control looks exactly as without them.
class LiveCues final : public QObject
{
    Q_OBJECT

public:
    /// The widgets painted on: the three grid views (with their grids), the eleven panel figures
    /// in PanelValues order, the refresh-time labels and the freshness line.
    struct Widgets
    {
        std::array<OutlineGridView *, 3> views{};
        std::array<const OutlineGrid *, 3> grids{};
        std::array<QLabel *, PanelValues::FigureCount> figures{};
        std::array<QLabel *, 2> refreshTimes{}; ///< last and next refresh time
        QLabel *freshness = nullptr;
        std::function<void()> relayoutTopRow; ///< the freshness line changed its width
        /// What the grids sum (the chosen units and mode), to tell a refresh from a new choice.
        std::function<QString()> selectionContext;
    };
    using Clock = std::function<QDateTime()>;
    using CaptionLookup = FreshnessClock::CaptionLookup;

    LiveCues(const Widgets &widgets, CaptionLookup caption, QObject *parent = nullptr);
    ~LiveCues() override;

    void setFreshnessShown(bool on);
    [[nodiscard]] bool freshnessShown() const { return m_freshnessOn; }
    void setChangeCuesShown(bool on);
    [[nodiscard]] bool changeCuesShown() const { return m_cuesOn; }
    void setExceptionsShown(bool on);
    [[nodiscard]] bool exceptionsShown() const { return m_exceptionsOn; }
    /// The clock of the freshness line and the cues' fading (tests); default: the current time.
    void setClock(Clock clock) { m_clock = std::move(clock); }

    // --- the control's refresh steps
    /// A data message reached the grid fills.
    void refreshStarted() { m_inRefresh = true; }
    /// The panel figures were written.
    void panelWritten(const PanelValues &panel);
    /// The summary fill ended (after a refresh or after the user chose other units).
    void fillsEnded();
    /// The refresh times of a loaded message were written.
    void refreshTimesWritten(const QDateTime &last, const QDateTime &next);
    /// The status line showed a message key ("msg-DLVServerDown" means the server stopped).
    void statusShown(const QString &key);

    [[nodiscard]] const FreshnessClock &freshness() const { return m_freshness; }
    [[nodiscard]] const ChangeCues &gridCues(int index) const { return m_gridCues[index]; }
    [[nodiscard]] const ChangeCues &panelCues() const { return m_panelCues; }
    [[nodiscard]] const GridCellStyler &styler(int index) const { return *m_stylers[index]; }
    [[nodiscard]] const TrendLog &trend() const { return m_trend; }

    /// Repaints what the options show for the current time (the timer does this while needed).
    void tick();

Q_SIGNALS:
    void trendChanged();

private:
    [[nodiscard]] QDateTime now() const
    {
        return m_clock ? m_clock() : QDateTime::currentDateTime();
    }
    [[nodiscard]] qint64 nowMs() const { return now().toMSecsSinceEpoch(); }
    void applyDecorators();
    /// Takes the figures on screen as the cues' new state (cued when afterRefresh).
    void capture(bool afterRefresh);
    void paintPanel();
    void paintFreshness();
    void updateTimer();
    [[nodiscard]] bool cuesActive() const;

    Widgets m_w;
    CaptionLookup m_caption;
    Clock m_clock;
    QTimer m_timer;
    FreshnessClock m_freshness;
    std::array<ChangeCues, 3> m_gridCues;
    ChangeCues m_panelCues;
    std::array<std::unique_ptr<GridCellStyler>, 3> m_stylers;
    TrendLog m_trend;
    PanelValues m_panel;
    bool m_filled = false;
    bool m_freshnessOn = false;
    bool m_cuesOn = false;
    bool m_exceptionsOn = false;
    bool m_inRefresh = false;
    bool m_cuesWereActive = false;
};

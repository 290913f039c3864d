#pragma once

#include "common/ordereddict.h"
#include "model/keptpositions.h"
#include "views/hierarchygrid.h"

#include <QObject>
#include <QStringList>
#include <array>
#include <functional>
#include <memory>
#include <vector>

class BusinessUnits;
class ErrorReporter;
class GridViews;
class PanelValues;
class PanelView;
class ProfileExchange;
class SelectionOptions;
class UnitListPane;
class ViewChoice;
class cDLVController;

/// The order in which the views follow the data: a data message refills the hierarchy grids,
/// then the unit list, then the summary grid and the panel; the View button refills the summary
/// alone when the choice changed. Keeps what the fills remember between refreshes (the units of
/// the last summary fill, the collapsed nodes, whether each grid was filled once, whether the
/// current profile's settings were applied) and the session's units. The busy flags of the fills
/// are held by FillBusy scopes here, so every way out of a fill clears what it set.
class ViewsController final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ViewsController)

public:
    using CaptionLookup = std::function<QString(const QString &key)>;

    /// Every reference must outlive this object (all are the control's).
    struct Parts
    {
        GridViews &views;
        PanelView &panel;
        SelectionOptions &options;
        UnitListPane &unitList;
        ViewChoice &choice;
        ErrorReporter &reporter;
        CaptionLookup caption;
    };

    explicit ViewsController(Parts parts, QObject *parent = nullptr);
    ~ViewsController() override;

    /// The data controller the fills read (not owned; null once the control stopped).
    void setController(cDLVController *controller) { m_dlv = controller; }
    /// The profile side that applies the current profile's settings and collapsed nodes (not
    /// owned; may be null).
    void setProfiles(ProfileExchange *profiles) { m_profiles = profiles; }

    /// Starts a new list of the session's units, which the caller fills (a repeated id throws to
    /// the host and leaves the ids before it).
    StringSet &newSessionUnits();
    /// The session's units (null once the control stopped).
    [[nodiscard]] const StringSet *sessionUnits() const { return m_sessionUnits.get(); }
    /// Drops the controller, the session's units and the collapsed-node memory (StopControl).
    void release();

    // --- the controller's fill requests and the View button
    void mDLV_FillBUHierarchyGrid(BusinessUnits &bus);
    void mDLV_FillSingleBUGrid(BusinessUnits &bus);
    /// Refills both hierarchy grids from the model and the current selection, keeping the
    /// user's collapsed nodes and place in each tree; throws as HierarchyGrid::Fill does.
    void fillHierarchyGrids(const BusinessUnits &bus);
    /// Refills the summary grid and the panel from the model and the unit list's selection.
    void ShowBUs(BusinessUnits &bus);
    /// Refills the unit list from the work-order hierarchy, keeping the chosen units.
    void LoadBUListView();
    /// Redraws the summary when the choice differs from the last summary fill's.
    void cmdView_Click();
    /// A new profile became current: its settings apply at the next summary fill, which follows
    /// at once when there are data.
    void profileReplaced();

    // --- what the last fills used
    /// The ids the last summary fill took from the unit list.
    [[nodiscard]] const StringSet &currentSelection() const { return m_currentSelection; }
    /// The same ids in order.
    [[nodiscard]] QStringList currentBUIds() const;
    [[nodiscard]] bool hierarchyFilled() const { return m_hierarchyFilled; }
    /// What the grids sum, for telling a refresh from a change of the chosen units.
    [[nodiscard]] QString selectionContext() const;

Q_SIGNALS:
    /// A data message reached the grid fills.
    void refreshStarted();
    /// The panel's figures were written.
    void panelWritten(const PanelValues &panel);
    /// The summary grid was filled and shown: the data controls apply.
    void summaryShown();
    /// The summary fill ended (after a refresh or after the user chose other units).
    void fillsEnded();

private:
    void writePanel(const PanelValues &panel);
    void LoadProfileSettings();
    void RestoreNodes(const QString &id, int index);

    Parts m_parts;
    cDLVController *m_dlv = nullptr;
    ProfileExchange *m_profiles = nullptr;
    std::unique_ptr<StringSet> m_sessionUnits;
    std::array<StringSet, 3> m_collapsedLists;
    /// The ids the last summary fill took from the unit list, and the units it summed (the same
    /// ids, or with their descendants in the aggregate mode). The hierarchy fill sums the rows
    /// of the selected ids.
    StringSet m_currentSelection;
    StringSet m_currentBUSet;
    /// optBU(0) (single units rather than aggregates) as it was at the last summary fill.
    bool m_lastFillSingleMode = true;
    /// Set at the end of the first fill of each: later fills keep the user's collapsed nodes
    /// instead of taking them from the profile.
    bool m_summaryFilled = false;
    bool m_hierarchyFilled = false;
    bool m_profileSettingsLoaded = false;
    /// Hierarchy positions of the current selection, the session's units and the units chosen
    /// in the list, and the unit of each work-order row as the last hierarchy fill laid them
    /// out: refreshes of the same units look no id up.
    KeptPositions m_selectionPositions;
    KeptPositions m_sessionPositions;
    KeptPositions m_listedPositions;
    std::vector<int> m_unitOfRow;
    WrittenRows m_writtenRows; // what the last hierarchy fill wrote
    quint64 m_listEpoch = 0;   // the unit lookups' epoch when the unit list was last made
};

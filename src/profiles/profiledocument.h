#pragma once

#include "webdata/qzwebprofiles.h"

#include <QString>
#include <QtGlobal>

class ProfileHost;
class QZWebProfile;
class QZWebTable;

/// The profile set the host stores for the control and the current profile in it, and the
/// operations that move view settings between the view and the current profile:
///
/// - "DLVSelect" (one row): "BUList" (selected unit ids joined by "|"), "SummaryOption" and
///   "DisplayByWorkOrders" ("True"/"False", read back in any letter case);
/// - "CollapsedNodes" (three rows, "ID" and "List"): the collapsed nodes of the lists "JobTypes"
///   (grid 0), "BUWorkOrders" (grid 1) and "BUPoints" (grid 2).
///
/// Every operation traps its own failures, reports them with its location ("DLViewer.<name>")
/// and returns normally; what it wrote before the failure stays written.
class ProfileDocument final
{
public:
    explicit ProfileDocument(ProfileHost &host);
    ~ProfileDocument();
    Q_DISABLE_COPY_MOVE(ProfileDocument)

    static constexpr auto selectSection = u"DLVSelect";
    static constexpr auto nodesSection = u"CollapsedNodes";

    /// Writes the view's settings into the current profile (unless structureOnly), then sends the
    /// whole set with PutProfiles; the hourglass only when settings were written.
    void UpdateCurrentProfile(bool structureOnly);
    /// Applies the current profile's "DLVSelect" row (and, once the hierarchy grids are filled,
    /// its collapsed hierarchy nodes) to the view. A profile without that row gives the default
    /// view: first options, first unit selected.
    void LoadProfileSettings();
    /// Gives the current profile whatever of the two sections and their rows it lacks; if it had
    /// to add anything it sends the set at once (UpdateCurrentProfile(true)).
    void InitProfileSettings();

    /// Writes grid gridIndex's collapsed nodes into row gridIndex + 1 of nodes with the given ID.
    void SaveNodesToProfile(QZWebTable &nodes, const QString &ID, int gridIndex);
    /// Expands grid gridIndex fully, then collapses what the current profile's row with that ID
    /// lists; only a "CollapsedNodes" section of exactly three rows is read.
    void RestoreNodes(const QString &ID, int gridIndex);
    /// Applies row `row` of a "CollapsedNodes" section to grid gridIndex. An empty "List" leaves
    /// the grid as it is; a "List" naming a key twice is reported before the grid is touched.
    void SetCollapsedNodes(int gridIndex, const QZWebTable &nodes, int row);

    /// Fills row 1 of a "DLVSelect" section from the view.
    void writeSelection(QZWebTable &select);
    /// Clears a "CollapsedNodes" section to three empty rows (if it has another count) and saves
    /// the three grids' collapsed nodes into it.
    void writeCollapsedNodes(QZWebTable &nodes);

    [[nodiscard]] QZWebProfiles &profiles() { return m_profiles; }
    [[nodiscard]] const QZWebProfiles &profiles() const { return m_profiles; }
    /// The current profile, or nothing before the first profile answer.
    [[nodiscard]] QZWebProfile *currentProfile() const { return m_current; }
    /// The current profile's name, empty when there is none.
    [[nodiscard]] QString currentName() const;
    /// Makes profile `index` (1-based) of the set current; throws DLVError(9) when absent.
    void setCurrentProfile(int index);
    /// Replaces the whole set (the current profile with it: nothing until setCurrentProfile).
    void replaceProfiles(QZWebProfiles profiles);
    /// The last "SummaryOption" read from a profile (the control's summary setting).
    [[nodiscard]] bool summarySetting() const { return m_summarySetting; }
    /// Drops the set and the current profile (the control stops).
    void clear();

    static const QString &selectFieldList();
    static const QString &nodesFieldList();

private:
    ProfileHost &m_host;
    QZWebProfiles m_profiles;
    QZWebProfile *m_current = nullptr;
    bool m_summarySetting = true;
};

#pragma once

#include "common/ordereddict.h"
#include "model/buhierarchy.h"
#include "model/businessunits.h"
#include "model/fillbusy.h"
#include "model/unitlookups.h"

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>
#include <memory>
#include <vector>

class DLVSurface;
class ErrorReporter;
class QZWebMessage;
class QZWebTable;

/// The one object between the host's data messages and the views. It decides what kind of
/// message arrived, rebuilds the code lookups and the business-unit model from a "DLVData"
/// message, works out the refresh times, and tells the control through its
/// signals when to show or hide the status line and when to fill the grids. Signals are emitted
/// synchronously: the control's handlers run inside the controller's call.
///
/// Failures never leave the controller: each procedure that traps errors reports them through the
/// ErrorReporter with its location ("cDLVController.LoadData", ...) and returns normally.
class cDLVController final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(cDLVController)

public:
    using Clock = std::function<QDateTime()>;

    /// reporter receives every trapped error (not owned; may be null, then errors are logged).
    explicit cDLVController(ErrorReporter *reporter, QObject *parent = nullptr);
    ~cDLVController() override;

    /// Stores the control's surface (not owned; it must outlive the controller or be reset).
    void Initialize(DLVSurface *surface);
    /// Releases the model and the lookups (the model's units are told to release their contents
    /// first). The controller stays usable with an empty model; the destructor does the same.
    void Release();

    /// Handles one host message. DataType and Tag are accepted and not used: the kind of message
    /// is decided from data alone. Never throws.
    void ReceiveMessage(const QVariant &data, qint32 DataType, const QString &Tag);
    /// Raises FillSingleBUGrid with the current model (the views call it to redraw the summary).
    void FillSingleBU();

    [[nodiscard]] const QString &LanguageID() const { return m_languageID; }
    void SetLanguageID(const QString &languageID) { m_languageID = languageID; }
    /// "tqJeopardyThreshold" of the last loaded data message.
    [[nodiscard]] const QString &JeopardyThreshold() const { return m_jeopardyThreshold; }

    /// The current model (empty before the first load).
    [[nodiscard]] BusinessUnits &BUs() { return *m_bus; }
    [[nodiscard]] const BusinessUnits &BUs() const { return *m_bus; }
    /// Code lookups (exact keys, host order): BUID -> BUDesc, BUID -> ParentBUID,
    /// JobType -> JobTypeDesc, JobClass -> JobClassDesc.
    [[nodiscard]] const StringSet &BUDescriptions() const { return m_buDescriptions; }
    [[nodiscard]] const StringSet &ParentBUIDs() const { return m_parentBUIDs; }
    [[nodiscard]] const StringSet &JobTypeDescriptions() const { return m_jobTypeDescriptions; }
    [[nodiscard]] const StringSet &JobClassDescriptions() const { return m_jobClassDescriptions; }
    /// Language code -> time format, from the last "RegionalFormats" table (null before one).
    [[nodiscard]] const StringSet *TimeFormats() const { return m_timeFormats.get(); }
    /// The children index of ParentBUIDs, for building the hierarchy without rescanning the map.
    [[nodiscard]] const BUHierarchy &Hierarchy() const;
    /// The lookups the hierarchy views read, as one record.
    [[nodiscard]] UnitLookups Lookups() const;

    /// Ids of the selected items of lvBU, in list order (the key less its first character).
    [[nodiscard]] StringSet GetBUList();
    /// Every selected unit with all its descendants, first-seen order, each once. With units,
    /// also the model's unit of each listed id in list order (null for an id the model lacks),
    /// found by the units' positions in the hierarchy rather than by their ids.
    [[nodiscard]] StringSet GetAggregateBUList(std::vector<const BusinessUnit *> *units = nullptr);
    /// The unit and all its descendants (see GetChildBUIDList). For the root mark "#" this is
    /// "#" followed by the units the parent map places under "#" and their descendants (units
    /// whose parent is no unit are not included, as the parent map does not reach them).
    [[nodiscard]] StringSet GetBUIDList(const QString &buID);
    /// All descendants of the unit, each followed by ",": the direct children in parent-map
    /// order, then each child's descendants in turn. A cycle is cut where it closes.
    [[nodiscard]] QString GetChildBUIDList(const QString &buID);

    /// When the last data message was loaded and the refresh it announced ("tqDBRefreshInterval"
    /// later); both invalid before the first load.
    [[nodiscard]] const QDateTime &LastRefresh() const { return m_lastRefresh; }
    [[nodiscard]] const QDateTime &NextRefresh() const { return m_nextRefresh; }

    /// Replaces the clock used for the refresh times (tests); the default is the current time.
    void setClock(Clock clock) { m_clock = std::move(clock); }

    /// The busy flags of the grid fills (SingleBUGridBusy, HierarchyGridBusy): a data message is
    /// dropped while either is set. The fills hold them through FillBusy::Scope.
    [[nodiscard]] FillBusy &Busy() noexcept { return m_busy; }
    [[nodiscard]] const FillBusy &Busy() const noexcept { return m_busy; }

Q_SIGNALS:
    void ShowStatus(const QString &key, bool error);
    void HideStatus();
    void FillSingleBUGrid(BusinessUnits &bus);
    void FillBUHierarchyGrid(BusinessUnits &bus);
    /// A data message was loaded: the texts of the last and the next refresh time, in the
    /// language's time format (LastRefresh() and NextRefresh() hold the times themselves).
    void RefreshTimesChanged(const QString &lastRefreshText, const QString &nextRefreshText);

private:
    /// Returns true when the load got as far as raising FillBUHierarchyGrid.
    bool LoadData(const QZWebMessage &message);
    void LoadRegionalFormats(const QZWebTable &table);
    void LoadCodeLookups(const QZWebTable &businessUnits, const QZWebTable &jobTypes,
                         const QZWebTable &jobClasses);
    void LoadBUData(const QZWebTable &general, const QZWebTable &details, bool &ok);
    void UpdateRefreshTimes(const QZWebMessage &message);

    void reportMessageError(const QZWebMessage *message, qint32 number, const QString &description);

    ErrorReporter *m_reporter;
    DLVSurface *m_surface = nullptr;
    QString m_languageID;
    QString m_jeopardyThreshold;
    std::unique_ptr<BusinessUnits> m_bus;
    StringSet m_buDescriptions{KeyCompare::Exact};
    StringSet m_parentBUIDs{KeyCompare::Exact};
    StringSet m_jobTypeDescriptions{KeyCompare::Exact};
    StringSet m_jobClassDescriptions{KeyCompare::Exact};
    std::unique_ptr<StringSet> m_timeFormats;
    Clock m_clock;
    QDateTime m_lastRefresh;
    QDateTime m_nextRefresh;

    // Rebuilt on first use after the parent map changed: once per load.
    mutable BUHierarchy m_hierarchy;
    mutable bool m_hierarchyValid = false;
    mutable std::vector<int> m_walk; // scratch for descendant walks

    // The last chosen and aggregate lists, kept while the surface's list and choice (its
    // revision) and the parent map (its epoch) stay as they were: the views ask for them on every
    // fill and every View, and ten thousand chosen units make a list worth keeping.
    struct KeptList
    {
        quint64 revision = 0;
        quint64 epoch = 0;
        StringSet ids{KeyCompare::Exact};
        std::vector<int> positions; ///< each id's hierarchy position, or -1 (aggregate list)
    };
    KeptList m_keptChosen;
    KeptList m_keptAggregate;
    quint64 m_parentEpoch = 0; // names the unit lookups (a new one for every change)
    quint64 m_busEpoch = 1;    // counts new models

    // The model's unit of each hierarchy position and whether the lookups are aligned, kept for
    // the lookups and model they were taken from.
    struct KeptUnits
    {
        quint64 parentEpoch = 0;
        quint64 busEpoch = 0;
        std::vector<const BusinessUnit *> units;
        bool aligned = false;
    };
    mutable KeptUnits m_keptUnits;

    /// The hierarchy position of every list item's id (-1: no unit), kept while the list's items
    /// (their revision) and the unit lookups stay: a View asks for the chosen units anew, and
    /// their ids need not be looked up again.
    [[nodiscard]] const std::vector<int> &ListPositions() const;
    struct KeptListUnits
    {
        quint64 itemsRevision = 0;
        quint64 epoch = 0;
        std::vector<int> positions;
    };
    mutable KeptListUnits m_keptListUnits;
    FillBusy m_busy;
};

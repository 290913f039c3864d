#pragma once

#include "common/dlvparams.h"
#include "common/paneltrendpoint.h"
#include "control/dlvgrid.h"

#include <QList>
#include <QStringList>
#include <QVariant>
#include <QWidget>
#include <memory>

class QPrinter;
class QZWebTransport;
class DLViewerPrivate;

/// The Dashlon Viewer control. A host places it on a window, drives it through the seven methods
/// below (in the order: Initialize, SetRegionalFormatInfo, SetSessionBUIDList, answers to the
/// profile requests through ReceiveProfileResponse, then data through ReceiveMessage, and
/// StopControl before it drops the control) and answers its eight request signals.
///
/// The signals are emitted synchronously with one by-reference argument, so a host may fill the
/// record, or call back into the control (ReceiveProfileResponse), inside its slot; it may also
/// answer later. Connect them with Qt::DirectConnection (the default for objects on one thread).
///
/// Every child control carries its original name as objectName (fraDLV, tbMain, Tabs, fraBU0,
/// vsFlex0, lvBU, cmdView, optBU0, lblStatus, lblTechCount, ...), so hosts and tests find them
/// with findChild.
class DLViewer : public QWidget
{
    Q_OBJECT
    // Fixed identities of the control's interfaces, kept for a later Windows export.
    Q_CLASSINFO("DispatchInterface", "{5B0E6C1A-2F4D-4A8B-9C71-3D2E8F10A101}")
    Q_CLASSINFO("EventInterface", "{5B0E6C1A-2F4D-4A8B-9C71-3D2E8F10A102}")
    Q_CLASSINFO("ClassID", "{5B0E6C1A-2F4D-4A8B-9C71-3D2E8F10A103}")
    Q_CLASSINFO("ParamsInterface", "{5B0E6C1A-2F4D-4A8B-9C71-3D2E8F10A104}")
    Q_CLASSINFO("ParamsClassID", "{5B0E6C1A-2F4D-4A8B-9C71-3D2E8F10A105}")

public:
    explicit DLViewer(QWidget *parent = nullptr);
    ~DLViewer() override;

    /// Hands a host message to the data controller. data holds a std::shared_ptr<QZWebMessage>
    /// (see webdata/webvariant.h); DataType must convert to a 32-bit integer and Tag to text,
    /// otherwise DLVError(13) (or 6 for a number out of range) is thrown to the host.
    void ReceiveMessage(QVariant &data, const QVariant &DataType, const QVariant &Tag);
    /// Starts the control with the host's transport (language, caption overrides): captions,
    /// layout, and the waiting status.
    void Initialize(const std::shared_ptr<QZWebTransport> &Trans);
    /// Releases the controller, the model and every container; call before dropping the control.
    void StopControl();
    /// The host's answer to a profile request; FunctionName names the request answered.
    void ReceiveProfileResponse(QString &ResultXML, QString &FunctionName);
    /// Lays the child controls out for the current size.
    void ResizeControls();
    /// The units this session may see. A repeated id throws DLVError(457) to the host; the ids
    /// before it are kept and no profile list is requested.
    void SetSessionBUIDList(QStringList &BUList);
    /// The user's language code ("EN", "PO", "SP"), used for the refresh-time format.
    void SetRegionalFormatInfo(QString &LanguageID);

    // --- Extensions for hosts that automate the control (batch exports); not requests of the
    //     original interface. Both act on the grid in view, exactly as the toolbar does, but
    //     without asking the user.
    /// Writes the grid in view as comma-separated UTF-8 text, header rows included. Returns
    /// false when no grid is in view or the file cannot be written.
    bool ExportGrid(const QString &fileName);
    /// Prints the grid in view on an already set-up printer (a PDF printer included), with the
    /// grid's title as document name. Returns false when no grid is in view or printing failed.
    bool PrintGrid(QPrinter &printer);

    // --- Options over the figures, all off at creation so that the control shows exactly what
    //     it always showed until the host switches one on. Each may be switched at any time.
    /// Freshness: a line beside the refresh times with the age of the data and the time left to
    /// the announced refresh; the refresh times turn amber once that refresh is late by more than
    /// one refresh interval; after "DLVServerStopped" the figures turn grey (still readable).
    void SetFreshnessShown(bool on);
    [[nodiscard]] bool FreshnessShown() const;
    /// Change cues: figures of the grids and the panel that rose (marked with an up triangle) or
    /// fell (a down triangle) at the last refresh are highlighted for a few seconds, fading out.
    /// Changes that come from choosing other units are not cued.
    void SetChangeCuesShown(bool on);
    [[nodiscard]] bool ChangeCuesShown() const;
    /// Trouble colours: jeopardy and late counts above zero, and units (and the panel's rates)
    /// whose rate so far is below the rate required for the open work.
    void SetExceptionsShown(bool on);
    [[nodiscard]] bool ExceptionsShown() const;
    /// The unit list as a tree: units indented under their listed parents with a check box
    /// that mirrors the choice, a filter box that narrows the list by name, and buttons that
    /// choose every shown unit or none; a click (or Space) toggles a unit. Which units are
    /// chosen, and what the control does with them, stays the same either way.
    void SetUnitTreeShown(bool on);
    [[nodiscard]] bool UnitTreeShown() const;
    // --- Reading what the control shows, for hosts that check, log or mirror it.
    /// One of the three grids (see DLVGrid for rows, columns and row data). The reader is valid
    /// while the control lives and always shows the grid as it is now.
    [[nodiscard]] DLVGrid Grid(DLVGrid::Element element) const;
    /// The figures of the productivity panel, named as its labels are.
    enum class PanelFigure
    {
        TechCount,      ///< lblTechCount: technicians of the chosen units
        HoursWorked,    ///< lblHrsWorked
        HoursRemaining, ///< lblHrsRemaining
        WODone,         ///< lblWODone: work orders completed
        WOOpen,         ///< lblWOOpen
        PtsDone,        ///< lblPtsDone
        PtsOpen,        ///< lblPtsOpen
        WOsPerHrToday,  ///< lblWOsPerHrToday: current work orders per hour
        WOsPerHrReq,    ///< lblWOsPerHrReq: work orders per hour required for the open work
        PtsPerHrToday,  ///< lblPtsPerHrToday
        PtsPerHrReq,    ///< lblPtsPerHrReq
    };
    /// The figure's text as its label shows it.
    [[nodiscard]] QString PanelText(PanelFigure figure) const;

    /// The panel's figures after each refresh of the current day, oldest first (kept always,
    /// bounded, cleared when a refresh of a new day arrives). PanelTrendChanged() tells of a new
    /// point.
    [[nodiscard]] QList<PanelTrendPoint> PanelTrend() const;

Q_SIGNALS:
    void PostRequest(QString &Params);
    void GetDetails(DLVParams &Params);
    void GetProfiles(DLVParams &Params);
    void GetProfileList(DLVParams &Params);
    void PutProfiles(DLVParams &Params);
    void AddProfiles(DLVParams &Params);
    void RemoveProfiles(DLVParams &Params);
    void SaveProfileAs(DLVParams &Params);
    /// A refresh added a point to PanelTrend().
    void PanelTrendChanged();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    friend class DLViewerPrivate;
    friend class DLViewerTestAccess; // tests reach the private side to check what hosts cannot see
    std::unique_ptr<DLViewerPrivate> d;
};

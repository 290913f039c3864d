#pragma once

#include "common/errorreporter.h"
#include "model/viewchoice.h"

#include <QString>
#include <memory>

class CaptionCatalogue;
class DialogHost;
class DLViewer;
class DrillDown;
class DrillDownRequests;
class ErrorReport;
class GridOutput;
class GridViews;
class LiveCues;
class PanelView;
class ProfileExchange;
class ProfileHostAdapter;
class QFrame;
class QGroupBox;
class QLabel;
class QPrinter;
class QTreeWidget;
class QZWebTransport;
class SelectionOptions;
class StatusLine;
class ToolbarActions;
class TopRow;
class UnitListPane;
class ViewsController;
class cDLVController;

/// The control's private side: the composition root that creates its parts, wires their signals
/// and carries out DLViewer's methods. Each part owns its widgets and state:
///
///   ToolbarActions   tbMain, its buttons and the profile menu
///   TopRow           current profile, refresh times, freshness line (and the toolbar's place)
///   UnitListPane     the unit list lvBU in the selection frame
///   StatusLine       fraStatus / lblStatus
///   SelectionOptions Tabs, the two frames, optBU, cmdView, optDisplay
///   PanelView        the panel's headings and figures
///   GridViews        the three grids and their views, collapsed-node operations
///   ViewsController  the fill order and what the fills remember, the session's units
///   DrillDownRequests, GridOutput, LiveCues
///
/// Here stay what ties them together: the data controller, the view choice, captions, the dialog
/// seam and the error report, the profile subsystem, and the layout of the whole. Tests and the
/// benchmark reach the parts through the accessors below (see DLViewerTestAccess).
class DLViewerPrivate final : public ErrorReporter
{
public:
    explicit DLViewerPrivate(DLViewer *q);
    ~DLViewerPrivate() override;
    Q_DISABLE_COPY_MOVE(DLViewerPrivate)

    // --- DLViewer's methods
    void initialize(const std::shared_ptr<QZWebTransport> &transport);
    void setLanguage(const QString &languageID);
    /// The session's units; a repeated id throws to the host, keeping the ids before it.
    void setSessionUnits(const QStringList &ids);
    void stop();
    void receiveProfileResponse(QString &resultXML, QString &functionName);
    bool exportGrid(const QString &fileName);
    bool printGrid(QPrinter &printer);
    /// Lays the child controls out for the viewer's current size.
    void resizeControls();
    void setUnitTreeShown(bool on);

    // --- ErrorReporter: the one report routine (error dialog owned by fraDLV)
    void reportError(qint32 number, const QString &description, const QString &location) override;

    // --- what the profile side and the toolbar ask of the control
    void ClientReady();
    void setHourglass(bool busy);
    void EnableDataControls(bool enabled);
    /// Shows the current profile's name in the top row.
    void showCurrentProfile(const QString &name);
    /// Dispatches a toolbar button by its key; other keys do nothing.
    void tbMain_ButtonClick(const QString &key);
    [[nodiscard]] QString caption(const QString &key) const;
    [[nodiscard]] double twipsPerPixelX() const;

    /// Replaces the dialog seam (tests answer dialogs through it). The control owns it.
    void setDialogHost(std::unique_ptr<DialogHost> host);
    [[nodiscard]] DialogHost &dialogs() const { return *m_dialogs; }

    // --- the parts (tests and the benchmark check and drive them here)
    [[nodiscard]] DLViewer *viewer() const { return q; }
    [[nodiscard]] QFrame *frame() const { return m_frame; }
    [[nodiscard]] ViewChoice &choice() { return m_choice; }
    /// The data controller (null once the control stopped).
    [[nodiscard]] cDLVController *controller() const { return m_dlv.get(); }
    /// The caption catalogue (null before Initialize and after StopControl).
    [[nodiscard]] const CaptionCatalogue *captions() const { return m_captions.get(); }
    [[nodiscard]] ToolbarActions &toolbar() const { return *m_toolbar; }
    [[nodiscard]] TopRow &topRow() const { return *m_topRow; }
    [[nodiscard]] StatusLine &status() const { return *m_status; }
    [[nodiscard]] UnitListPane &unitList() const { return *m_unitList; }
    [[nodiscard]] QTreeWidget *unitListWidget() const { return m_lvBU; }
    [[nodiscard]] SelectionOptions &options() const { return *m_options; }
    [[nodiscard]] PanelView &panel() const { return *m_panel; }
    [[nodiscard]] GridViews &views() const { return *m_views; }
    [[nodiscard]] ViewsController &fills() const { return *m_fills; }
    [[nodiscard]] DrillDownRequests &details() const { return *m_details; }
    [[nodiscard]] GridOutput &output() const { return *m_output; }
    [[nodiscard]] LiveCues &liveCues() const { return *m_liveCues; }

private:
    void createWidgets();
    void createProfiles();
    void createLiveCues();
    void connectParts();
    void SetCaptions();
    void showRefreshTimes(const QString &last, const QString &next);
    /// The top row alone (the refresh times and the freshness line change its widths).
    void relayoutTopRow();
    /// The panel, the summary options, the display row and the grid column widths for the
    /// width the summary frame leaves the grid.
    void layoutPanel(int frameWidth);
    /// The drill-down rules over the control's current state.
    [[nodiscard]] DrillDown drillDown() const;
    void showAbout();

    DLViewer *const q;
    std::unique_ptr<DialogHost> m_dialogs;
    std::unique_ptr<ErrorReport> m_errorReport;
    /// What the user chose to see; the widgets mirror it. Declared before the controller, which
    /// reads it.
    ViewChoice m_choice;
    std::unique_ptr<cDLVController> m_dlv;
    std::unique_ptr<CaptionCatalogue> m_captions;

    // Widgets belong to the widget tree; QObject parts to the viewer; the rest is owned here.
    QFrame *m_frame = nullptr;
    ToolbarActions *m_toolbar = nullptr;
    std::unique_ptr<TopRow> m_topRow;
    QGroupBox *m_selectionFrame = nullptr;
    QLabel *m_unitsLabel = nullptr;
    QTreeWidget *m_lvBU = nullptr;
    UnitListPane *m_unitList = nullptr;
    std::unique_ptr<StatusLine> m_status;
    SelectionOptions *m_options = nullptr;
    std::unique_ptr<PanelView> m_panel;
    std::unique_ptr<GridViews> m_views;
    std::unique_ptr<ViewsController> m_fills;
    std::unique_ptr<DrillDownRequests> m_details;
    std::unique_ptr<GridOutput> m_output;
    /// The profile subsystem (profile set, current profile, names, menu) and its view of us.
    std::unique_ptr<ProfileHostAdapter> m_profileHost;
    std::unique_ptr<ProfileExchange> m_profileExchange;
    /// Declared after the grids: it detaches its decorators from their views as it goes.
    std::unique_ptr<LiveCues> m_liveCues;
    bool m_firstLayoutDone = false;
};

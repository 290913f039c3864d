#pragma once

#include "common/errorreporter.h"
#include "common/ordereddict.h"
#include "control/dlviewer.h"
#include "model/viewchoice.h"
#include "views/outlinegrid.h"
#include "views/panelvalues.h"
#include "webdata/resultenvelope.h"

#include <QPointer>
#include <array>
#include <memory>
#include <vector>

class CaptionCatalogue;
class DialogHost;
class DrillDown;
class ErrorReport;
class QAction;
class QFrame;
class QGroupBox;
class QLabel;
class QMenu;
class QPrinter;
class QPushButton;
class QRadioButton;
class QTabBar;
class QToolBar;
class QTreeWidget;
class OutlineGridView;
class ProfileExchange;
class ProfileHostAdapter;
class ProfileMenu;
class cDLVController;
class LiveCues;
class UnitListPane;
class BusinessUnits;

/// The control's private side: its child widgets, the members it keeps, and the surface the data
/// controller writes to. Tests include this header to check state the host cannot see.
class DLViewerPrivate final : public ErrorReporter
{
public:
    explicit DLViewerPrivate(DLViewer *q);
    ~DLViewerPrivate() override;
    Q_DISABLE_COPY_MOVE(DLViewerPrivate)

    // --- the unit list as the data controller reads it (the view choice's units)
    [[nodiscard]] int buListCount() const { return choice.buListCount(); }
    [[nodiscard]] QString buListKey(int index) const { return choice.buListKey(index); }
    [[nodiscard]] bool buListSelected(int index) const { return choice.buListSelected(index); }

    // --- ErrorReporter: the one report routine (error dialog owned by fraDLV)
    void reportError(qint32 number, const QString &description, const QString &location) override;

    // --- operations shared by the control's subsystems
    void ClientReady();
    void ShowStatus(const QString &messageKey, bool error);
    void HideStatus();
    void EnableDataControls(bool enabled);
    /// The refresh times of the last data message, shown with their headings.
    void showRefreshTimes(const QString &last, const QString &next);
    void SetCaptions();
    void setHourglass(bool busy);
    [[nodiscard]] QString caption(const QString &key) const;
    [[nodiscard]] double twipsPerPixelX() const;
    [[nodiscard]] double twipsPerPixelY() const;

    // --- views: grids, unit list, panel and view switching (dlviewer_views.cpp)
    void createGrids();
    /// Binds the summary and display options to the view choice, both ways (the unit list binds
    /// itself).
    void bindViewChoice();
    void InitSingleBUGrid();
    void InitBUHierarchyGrid(int index);
    void FitGridHeight(int index);
    void mDLV_FillBUHierarchyGrid(BusinessUnits &bus);
    void mDLV_FillSingleBUGrid(BusinessUnits &bus);
    void LoadBUListView();
    void cmdView_Click();
    void Tabs_Click();
    void optDisplay_Click(int index);
    /// Refills the summary grid and the panel from the model and the unit list's selection.
    void ShowBUs(BusinessUnits &bus);
    /// Writes the eleven panel figures into their labels.
    void writePanel(const PanelValues &panel);
    /// The eleven figure labels in the panel's order (that of DLViewer::PanelFigure).
    [[nodiscard]] std::array<QLabel *, PanelValues::FigureCount> panelFigures() const
    {
        return {lblTechCount,   lblHrsWorked,     lblHrsRemaining, lblWODone,
                lblWOOpen,      lblPtsDone,       lblPtsOpen,      lblWOsPerHrToday,
                lblWOsPerHrReq, lblPtsPerHrToday, lblPtsPerHrReq};
    }
    /// The grid half of the panel layout: column widths of all three grids for an available
    /// width in twips, recomputed on every layout (overriding the widths the set-up gave).
    void setGridColumnWidths(double widthTwips);
    /// The ids the last summary fill took from the unit list, and the units it summed (the same
    /// ids, or with their descendants in the aggregate mode). The hierarchy fill sums the rows
    /// of the selected ids.
    StringSet currentSelection;
    StringSet currentBUSet;
    /// optBU(0) (single units rather than aggregates) as it was at the last summary fill.
    bool lastFillSingleMode = true;
    /// Set at the end of the first summary fill: later fills keep the user's collapsed groups
    /// instead of taking them from the profile.
    bool summaryGridFilled = false;

    // --- drill-down requests (dlviewer_drilldown.cpp) and toolbar, export, printing
    //     (dlviewer_toolbar.cpp). connect*() run once the widgets and grids exist.
    void connectDrillDown();
    void connectToolbar();
    /// The grid element in view: 0 on the summary tab, else 1 or 2 by the display option.
    [[nodiscard]] int currentGridIndex() const;
    bool exportGrid(const QString &fileName);
    bool printGrid(QPrinter &printer);
    /// Grid handlers, with the grid element as index. The double-click reads the cell under the
    /// mouse from the view; Enter (without Shift) counts as a left double-click on the current
    /// cell.
    void vsFlex_MouseDown(int index, qint16 button);
    void vsFlex_KeyDown(int index, int key, Qt::KeyboardModifiers modifiers);
    void vsFlex_DblClick(int index);
    void vsFlex_DblClick(int index, int mouseRow, int mouseCol);
    void lblTechCount_Click();
    /// The drill-down rules over the control's current state.
    [[nodiscard]] DrillDown drillDown();
    /// The unit ids of the current selection (the last summary fill's), in order.
    [[nodiscard]] QStringList currentBUIds() const;
    /// Dispatches a toolbar button by its key; other keys do nothing.
    void tbMain_ButtonClick(const QString &key);
    void showProfileMenu();
    void showAbout();
    void SaveGrid(int index);
    void PrintGrid(int index);
    /// Whether grid element index is shown (saving and printing need the grid in view).
    [[nodiscard]] bool gridInView(int index) const;
    /// The document name of a printed grid: the caption of its tab.
    [[nodiscard]] QString gridTitle(int index) const;
    bool printOn(int index, QPrinter &target, const QString &title);

    // --- live options over the figures: freshness, change cues, trouble colours, trend
    //     (livecues.cpp). Off at start.
    void createLiveCues();
    /// What the grids sum, for telling a refresh from a change of the chosen units.
    [[nodiscard]] QString selectionContext() const;
    std::unique_ptr<LiveCues> liveCues;
    /// lvBU's items in list order and its optional tree presentation (owned by fraSelection).
    UnitListPane *unitList = nullptr;
    QLabel *lblFreshness = nullptr;
    /// The mouse button of the last mouse-button event on a grid (1 left, 2 right, 4 middle).
    qint16 lastMouseButton = 0;
    /// Folder of the last saved file, where the next save dialog starts (empty at start).
    QString lastSaveFolder;
    /// The printer the print dialog sets up, kept so the user's choices carry to the next print.
    /// Shared only so that its deleter is bound where it is created: QPrinter stays incomplete
    /// for the rest of the control.
    std::shared_ptr<QPrinter> printer;

    // --- profile requests and answers (dlviewer_profiles.cpp)
    void requestProfileList();
    void receiveProfileResponse(QString &resultXML, QString &functionName);
    /// Applies the current profile's "DLVSelect" settings to the view (first fill after a
    /// profile became current).
    void LoadProfileSettings();
    /// Applies the current profile's collapsed nodes of list `id` to grid `index`.
    void RestoreNodes(const QString &id, int index);
    /// The collapsed-node memory of one grid (0 summary, 1 and 2 hierarchy): the keys of its
    /// collapsed nodes top to bottom ("TOTAL" first for the summary's grand total), collapsing
    /// the nodes of a list, expanding everything.
    void SaveCollapsedList(int index, StringSet &list) const;
    void RestoreCollapsedList(int index, const StringSet &list);
    void ExpandNodes(int index);
    [[nodiscard]] bool hierarchyFilled() const { return hierarchyGridFilled; }

    /// Replaces the dialog seam (tests answer dialogs through it). The control owns it.
    void setDialogHost(std::unique_ptr<DialogHost> host);
    [[nodiscard]] DialogHost &dialogs() const { return *m_dialogs; }
    void createProfiles();

    DLViewer *const q;

    // --- members kept by the control
    /// What the user chose to see; the widgets mirror it (bindViewChoice()). Declared before the
    /// controller, which reads it.
    ViewChoice choice;
    std::unique_ptr<cDLVController> mDLV;
    std::unique_ptr<CaptionCatalogue> captions;
    std::unique_ptr<StringSet> sessionBUs;
    std::array<std::unique_ptr<StringSet>, 3> collapsedLists;
    /// The profile subsystem (profile set, current profile, names, menu) and its view of us.
    std::unique_ptr<ProfileHostAdapter> profileHost;
    std::unique_ptr<ProfileExchange> profileExchange;
    ProfileMenu *profileMenu = nullptr;
    /// Set when the hierarchy grids have been filled once: later fills keep the user's collapsed
    /// nodes instead of taking them from the profile.
    bool hierarchyGridFilled = false;
    bool ProfileSettingsLoaded = false;
    bool firstLayoutDone = false;
    bool stopped = false;
    ResultEnvelope envelope{this};

    // --- child controls (owned by the widget tree)
    QFrame *fraDLV = nullptr;
    QToolBar *tbMain = nullptr;
    QAction *btnSaveGrid = nullptr;
    QAction *btnPrintGrid = nullptr;
    QAction *btnProfiles = nullptr;
    QAction *btnHelp = nullptr;
    std::array<QAction *, 2> dataSeparators{}; ///< shown and hidden with the data buttons
    QMenu *mnuProfileSection = nullptr;
    QMenu *mnuUse = nullptr;
    std::vector<QAction *> mnuProfile;
    QAction *mnuSaveProfile = nullptr;
    QAction *mnuSaveProfileAs = nullptr;
    QAction *mnuManage = nullptr;
    QLabel *lblProfile = nullptr;
    QLabel *lblCurrentProfile = nullptr;
    QLabel *lblLastTime = nullptr;
    QLabel *lblLastRefreshTime = nullptr;
    QLabel *lblNextTime = nullptr;
    QLabel *lblNextRefreshTime = nullptr;
    QGroupBox *fraSelection = nullptr;
    QLabel *lblBUName = nullptr;
    QTreeWidget *lvBU = nullptr;
    QTabBar *Tabs = nullptr;
    std::array<QFrame *, 2> fraBU{};
    std::array<QRadioButton *, 2> optBU{};
    std::array<QRadioButton *, 2> optDisplay{};
    QPushButton *cmdView = nullptr;
    QLabel *lblDisplayBy = nullptr;
    QFrame *fraStatus = nullptr;
    QLabel *lblStatus = nullptr;
    // Panel: the figures carry the original names; each has a heading label named
    // "<name>Caption" (the original kept headings and figures in separate controls too).
    QLabel *lblTechCount = nullptr;
    QLabel *lblHrsWorked = nullptr;
    QLabel *lblHrsRemaining = nullptr;
    QLabel *lblWODone = nullptr;
    QLabel *lblWOOpen = nullptr;
    QLabel *lblPtsDone = nullptr;
    QLabel *lblPtsOpen = nullptr;
    QLabel *lblWOsPerHrToday = nullptr;
    QLabel *lblWOsPerHrReq = nullptr;
    QLabel *lblPtsPerHrToday = nullptr;
    QLabel *lblPtsPerHrReq = nullptr;
    QLabel *lblProdPerTech = nullptr;
    QLabel *lblToday = nullptr;
    QLabel *lblReqProd = nullptr;
    QLabel *lblWOsPerHr = nullptr;
    QLabel *lblPtsPerHr = nullptr;
    std::vector<std::pair<QLabel *, QLabel *>> panelCounters; ///< (heading, figure)
    /// The three grids: 0 summary, 1 hierarchy by work orders, 2 hierarchy by points. The data
    /// live here; the views (vsFlex0..2) only present them.
    std::array<OutlineGrid, 3> grids;
    std::array<OutlineGridView *, 3> vsFlex{};
    /// Top of the grids inside their frames (below the panel and the display option row).
    std::array<int, 3> gridTop{};

    void layoutTopRow(int width, int &top);
    void layoutPanel(int frameWidth);
    void layoutGrids();

    void relayoutTopRow();

private:
    void createWidgets();
    void createPanel(QFrame *frame);
    QLabel *namedLabel(QWidget *parent, const char *name);

    std::unique_ptr<DialogHost> m_dialogs;
    std::unique_ptr<ErrorReport> m_errorReport;
};

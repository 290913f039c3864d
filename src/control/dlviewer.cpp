#include "control/dlviewer.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "control/dlviewer_p.h"
#include "control/livecues.h"
#include "control/profilehostadapter.h"
#include "control/unitlistpane.h"
#include "model/cdlvcontroller.h"
#include "profiles/profiledialoghost.h"
#include "profiles/profileexchange.h"
#include "ui/captioncatalogue.h"
#include "ui/dialoghost.h"
#include "ui/errorreport.h"
#include "views/outlinegridview.h"
#include "views/panellayout.h"
#include "webdata/qzwebtransport.h"

#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QFrame>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QResizeEvent>
#include <QStyle>
#include <QTabBar>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <cmath>

namespace {

constexpr int kMargin = 4;
constexpr int kPanelRowHeight = 22;
constexpr int kPanelRows = 4;

const QColor kStatusBlue(0, 0, 255);

// A caption the panel layout may shorten to its column; the whole text is kept beside it.
void setFullText(QLabel *label, const QString &text)
{
    label->setProperty("fullText", text);
    label->setText(text);
}
const QColor kStatusRed(255, 0, 0);

// A public method's argument that must convert; a failure reaches the host as the platform's
// type-mismatch (or overflow) error.
qint32 variantToLong(const QVariant &value)
{
    if (!value.isValid())
        return 0; // an empty variant converts to 0 on the host platform
    if (value.metaType().id() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        bool ok = false;
        const double d = text.isEmpty() ? 0.0 : text.toDouble(&ok);
        if (!text.isEmpty() && !ok)
            throw DLVError::typeMismatch(
                QStringLiteral("DataType \"%1\" is not a number").arg(text));
        return Conv::toLong(d);
    }
    bool ok = false;
    const double d = value.toDouble(&ok);
    if (!ok)
        throw DLVError::typeMismatch(QStringLiteral("DataType of type %1 is not a number")
                                         .arg(QString::fromLatin1(value.typeName())));
    return Conv::toLong(d);
}

QString variantToString(const QVariant &value)
{
    if (!value.isValid())
        return {};
    if (!value.canConvert<QString>())
        throw DLVError::typeMismatch(QStringLiteral("Tag of type %1 is not text")
                                         .arg(QString::fromLatin1(value.typeName())));
    return value.toString();
}

} // namespace

// ----------------------------------------------------------------------------------------------
// DLViewerPrivate

DLViewerPrivate::DLViewerPrivate(DLViewer *qq)
    : q(qq), m_dialogs(std::make_unique<ProfileDialogHost>())
{
    // What the control creates at creation: the controller and the empty containers.
    mDLV = std::make_unique<cDLVController>(this);
    sessionBUs = std::make_unique<StringSet>();
    for (auto &list : collapsedLists)
        list = std::make_unique<StringSet>();
    createWidgets();
    createProfiles();
    connectDrillDown();
    connectToolbar();
    m_errorReport = std::make_unique<ErrorReport>(m_dialogs.get());
    m_errorReport->setOwner(fraDLV);

    createLiveCues();

    QObject::connect(mDLV.get(), &cDLVController::ShowStatus, q,
                     [this](const QString &key, bool error) {
                         ShowStatus(key, error);
                         liveCues->statusShown(key);
                     });
    QObject::connect(mDLV.get(), &cDLVController::HideStatus, q, [this] { HideStatus(); });
    QObject::connect(mDLV.get(), &cDLVController::FillBUHierarchyGrid, q,
                     [this](BusinessUnits &bus) { mDLV_FillBUHierarchyGrid(bus); });
    QObject::connect(mDLV.get(), &cDLVController::FillSingleBUGrid, q,
                     [this](BusinessUnits &bus) { mDLV_FillSingleBUGrid(bus); });
    QObject::connect(
        mDLV.get(), &cDLVController::RefreshTimesChanged, q,
        [this](const QString &last, const QString &next) { showRefreshTimes(last, next); });
}

DLViewerPrivate::~DLViewerPrivate() = default;

QLabel *DLViewerPrivate::namedLabel(QWidget *parent, const char *name)
{
    auto *label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

void DLViewerPrivate::createWidgets()
{
    fraDLV = new QFrame(q);
    fraDLV->setObjectName(QStringLiteral("fraDLV"));

    tbMain = new QToolBar(fraDLV);
    tbMain->setObjectName(QStringLiteral("tbMain"));
    tbMain->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tbMain->setIconSize(QSize(20, 20));
    const auto addButton = [this](const char *key, QStyle::StandardPixmap icon) {
        QAction *a = tbMain->addAction(q->style()->standardIcon(icon), QString());
        a->setObjectName(QString::fromLatin1(key));
        return a;
    };
    btnSaveGrid = addButton("SaveGrid", QStyle::SP_DialogSaveButton);
    btnPrintGrid = addButton("PrintGrid", QStyle::SP_FileDialogDetailedView);
    dataSeparators[0] = tbMain->addSeparator();
    btnProfiles = addButton("Profiles", QStyle::SP_FileDialogListView);
    dataSeparators[1] = tbMain->addSeparator();
    btnHelp = addButton("Help", QStyle::SP_MessageBoxInformation);

    mnuProfileSection = new QMenu(q);
    mnuProfileSection->setObjectName(QStringLiteral("mnuProfileSection"));
    mnuUse = mnuProfileSection->addMenu(QString());
    mnuUse->setObjectName(QStringLiteral("mnuUse"));
    QAction *first = mnuUse->addAction(QString());
    first->setObjectName(QStringLiteral("mnuProfile0"));
    first->setCheckable(true);
    first->setVisible(false);
    mnuProfile.push_back(first);
    mnuProfileSection->addSeparator();
    mnuSaveProfile = mnuProfileSection->addAction(QString());
    mnuSaveProfile->setObjectName(QStringLiteral("mnuSaveProfile"));
    mnuSaveProfileAs = mnuProfileSection->addAction(QString());
    mnuSaveProfileAs->setObjectName(QStringLiteral("mnuSaveProfileAs"));
    mnuManage = mnuProfileSection->addAction(QString());
    mnuManage->setObjectName(QStringLiteral("mnuManage"));
    btnProfiles->setMenu(mnuProfileSection);
    if (auto *button = qobject_cast<QToolButton *>(tbMain->widgetForAction(btnProfiles)))
        button->setPopupMode(QToolButton::MenuButtonPopup);

    lblProfile = namedLabel(fraDLV, "lblProfile");
    lblCurrentProfile = namedLabel(fraDLV, "lblCurrentProfile");
    QFont bold = lblCurrentProfile->font();
    bold.setBold(true);
    lblCurrentProfile->setFont(bold);
    lblLastTime = namedLabel(fraDLV, "lblLastTime");
    lblLastRefreshTime = namedLabel(fraDLV, "lblLastRefreshTime");
    lblNextTime = namedLabel(fraDLV, "lblNextTime");
    lblNextRefreshTime = namedLabel(fraDLV, "lblNextRefreshTime");
    lblFreshness = namedLabel(fraDLV, "lblFreshness");
    for (QLabel *l : {lblProfile, lblCurrentProfile, lblLastTime, lblLastRefreshTime, lblNextTime,
                      lblNextRefreshTime, lblFreshness})
        l->setVisible(false);

    fraSelection = new QGroupBox(fraDLV);
    fraSelection->setObjectName(QStringLiteral("fraSelection"));
    lblBUName = namedLabel(fraSelection, "lblBUName");
    lvBU = new QTreeWidget(fraSelection);
    lvBU->setObjectName(QStringLiteral("lvBU"));
    lvBU->setRootIsDecorated(false);
    lvBU->setHeaderHidden(true);
    lvBU->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lvBU->setUniformRowHeights(true);
    lvBU->setColumnCount(1);
    lblBUName->setBuddy(lvBU);
    unitList = new UnitListPane(fraSelection, lvBU, choice,
                                [this](const QString &key) { return caption(key); });

    fraStatus = new QFrame(fraDLV);
    fraStatus->setObjectName(QStringLiteral("fraStatus"));
    lblStatus = namedLabel(fraStatus, "lblStatus");
    lblStatus->setAlignment(Qt::AlignCenter);
    QFont statusFont = lblStatus->font();
    statusFont.setBold(true);
    lblStatus->setFont(statusFont);

    Tabs = new QTabBar(fraDLV);
    Tabs->setObjectName(QStringLiteral("Tabs"));
    Tabs->addTab(QString());
    Tabs->addTab(QString());
    Tabs->setDrawBase(false);
    Tabs->setExpanding(false);

    for (int i = 0; i < 2; ++i) {
        fraBU[i] = new QFrame(fraDLV);
        fraBU[i]->setObjectName(QStringLiteral("fraBU%1").arg(i));
        fraBU[i]->setFrameShape(QFrame::StyledPanel);
        fraBU[i]->setAutoFillBackground(true);
    }
    createPanel(fraBU[0]);

    lblDisplayBy = namedLabel(fraBU[1], "lblDisplayBy");
    auto *displayGroup = new QButtonGroup(fraBU[1]);
    for (int i = 0; i < 2; ++i) {
        optDisplay[i] = new QRadioButton(fraBU[1]);
        optDisplay[i]->setObjectName(QStringLiteral("optDisplay%1").arg(i));
        displayGroup->addButton(optDisplay[i], i);
    }
    fraBU[1]->setVisible(false);
    createGrids();
}

void DLViewerPrivate::createPanel(QFrame *frame)
{
    // Every figure of the panel starts at 0, right-aligned.
    const auto figureLabel = [&](const char *name) {
        QLabel *l = namedLabel(frame, name);
        l->setText(QStringLiteral("0"));
        l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        return l;
    };
    const auto counter = [&](const char *figureName, QLabel *&figure) {
        QLabel *heading = namedLabel(frame, (QByteArray(figureName) + "Caption").constData());
        figure = figureLabel(figureName);
        QFont f = figure->font();
        f.setBold(true);
        figure->setFont(f);
        panelCounters.emplace_back(heading, figure);
    };
    counter("lblTechCount", lblTechCount);
    counter("lblHrsWorked", lblHrsWorked);
    counter("lblHrsRemaining", lblHrsRemaining);
    counter("lblWODone", lblWODone);
    counter("lblWOOpen", lblWOOpen);
    counter("lblPtsDone", lblPtsDone);
    counter("lblPtsOpen", lblPtsOpen);
    // The technician count can be drilled into: show it as a link.
    lblTechCount->setCursor(Qt::PointingHandCursor);
    QFont link = lblTechCount->font();
    link.setUnderline(true);
    lblTechCount->setFont(link);

    lblProdPerTech = namedLabel(frame, "lblProdPerTech");
    lblToday = namedLabel(frame, "lblToday");
    lblReqProd = namedLabel(frame, "lblReqProd");
    lblWOsPerHr = namedLabel(frame, "lblWOsPerHr");
    lblPtsPerHr = namedLabel(frame, "lblPtsPerHr");
    for (QLabel *heading : {lblProdPerTech, lblToday, lblReqProd}) {
        QFont f = heading->font();
        f.setBold(true);
        heading->setFont(f);
    }
    const auto rate = [&](const char *name) {
        QLabel *l = figureLabel(name);
        l->setFrameShape(QFrame::StyledPanel);
        return l;
    };
    lblWOsPerHrToday = rate("lblWOsPerHrToday");
    lblWOsPerHrReq = rate("lblWOsPerHrReq");
    lblPtsPerHrToday = rate("lblPtsPerHrToday");
    lblPtsPerHrReq = rate("lblPtsPerHrReq");

    auto *summaryGroup = new QButtonGroup(frame);
    for (int i = 0; i < 2; ++i) {
        optBU[i] = new QRadioButton(frame);
        optBU[i]->setObjectName(QStringLiteral("optBU%1").arg(i));
        summaryGroup->addButton(optBU[i], i);
    }
    cmdView = new QPushButton(frame);
    cmdView->setObjectName(QStringLiteral("cmdView"));
    cmdView->setDefault(false);
}

double DLViewerPrivate::twipsPerPixelX() const
{
    return 1440.0 / q->logicalDpiX();
}

double DLViewerPrivate::twipsPerPixelY() const
{
    return 1440.0 / q->logicalDpiY();
}

QString DLViewerPrivate::caption(const QString &key) const
{
    return captions ? captions->caption(key) : QString();
}

void DLViewerPrivate::showRefreshTimes(const QString &last, const QString &next)
{
    lblLastRefreshTime->setText(last);
    lblNextRefreshTime->setText(next);
    for (QLabel *label : {lblLastTime, lblLastRefreshTime, lblNextTime, lblNextRefreshTime})
        label->setVisible(true);
    relayoutTopRow();
    if (mDLV && liveCues)
        liveCues->refreshTimesWritten(mDLV->LastRefresh(), mDLV->NextRefresh());
}

void DLViewerPrivate::relayoutTopRow()
{
    // The refresh-time labels change with every data message and their widths decide the top
    // row; laying out those few labels again is cheap.
    int top = kMargin;
    layoutTopRow(q->width(), top);
}

// --- ErrorReporter

void DLViewerPrivate::reportError(qint32 number, const QString &description,
                                  const QString &location)
{
    m_errorReport->setCaptions(captions.get());
    m_errorReport->reportError(number, description, location);
}

void DLViewerPrivate::setDialogHost(std::unique_ptr<DialogHost> host)
{
    m_dialogs = std::move(host);
    m_errorReport->setDialogHost(m_dialogs.get());
}

// --- shared operations

void DLViewerPrivate::ClientReady()
{
    QString params = QStringLiteral("ClientReady");
    Q_EMIT q->PostRequest(params);
}

void DLViewerPrivate::ShowStatus(const QString &messageKey, bool error)
{
    lblStatus->setText(caption(messageKey));
    QPalette pal = lblStatus->palette();
    pal.setColor(QPalette::WindowText, error ? kStatusRed : kStatusBlue);
    lblStatus->setPalette(pal);
    lblStatus->setVisible(true);
}

void DLViewerPrivate::HideStatus()
{
    lblStatus->clear();
    QPalette pal = lblStatus->palette();
    pal.setColor(QPalette::WindowText, kStatusBlue);
    lblStatus->setPalette(pal);
    lblStatus->setVisible(false);
}

void DLViewerPrivate::EnableDataControls(bool enabled)
{
    cmdView->setEnabled(enabled);
    btnSaveGrid->setVisible(enabled);
    btnPrintGrid->setVisible(enabled);
    btnProfiles->setVisible(enabled);
    for (QAction *separator : dataSeparators)
        separator->setVisible(enabled); // no lone separator before Help while they are hidden
}

void DLViewerPrivate::setHourglass(bool busy)
{
    if (busy)
        q->setCursor(Qt::WaitCursor);
    else
        q->unsetCursor();
}

void DLViewerPrivate::SetCaptions()
{
    unitList->setCaptions();
    btnSaveGrid->setToolTip(caption(QStringLiteral("SaveGrid")));
    btnSaveGrid->setText(btnSaveGrid->toolTip());
    btnPrintGrid->setToolTip(caption(QStringLiteral("PrintGrid")));
    btnPrintGrid->setText(btnPrintGrid->toolTip());
    btnProfiles->setToolTip(caption(QStringLiteral("Profiles")));
    btnProfiles->setText(btnProfiles->toolTip());
    btnHelp->setToolTip(caption(QStringLiteral("AboutDLV")));
    btnHelp->setText(btnHelp->toolTip());
    mnuSaveProfile->setText(caption(QStringLiteral("SaveCurrentProfile")));
    mnuSaveProfileAs->setText(caption(QStringLiteral("SaveCurrentProfileAs")));
    mnuManage->setText(caption(QStringLiteral("ManageProfiles")));
    mnuUse->setTitle(caption(QStringLiteral("UseProfile")));
    const QString summary = caption(QStringLiteral("BUSummary"));
    Tabs->setTabText(0, summary);
    Tabs->setTabToolTip(0, summary);
    const QString hierarchy = caption(QStringLiteral("BUHierarchy"));
    Tabs->setTabText(1, hierarchy);
    Tabs->setTabToolTip(1, hierarchy);
    lblBUName->setText(caption(QStringLiteral("BusinessUnits")) + QStringLiteral(" :"));
    lblLastTime->setText(caption(QStringLiteral("LastRefreshTime")) + QStringLiteral(" :"));
    lblNextTime->setText(caption(QStringLiteral("NextRefreshTime")) + QStringLiteral(" :"));
    lblProfile->setText(caption(QStringLiteral("CurrentProfile")) + QStringLiteral(" : "));
    fraSelection->setTitle(caption(QStringLiteral("SelectionCriteria")));
    cmdView->setText(caption(QStringLiteral("View")));
    optBU[0]->setProperty("fullText", caption(QStringLiteral("ShowSummary")));
    optBU[1]->setProperty("fullText", caption(QStringLiteral("ShowAggregateSummary")));
    for (QRadioButton *opt : optBU)
        opt->setText(opt->property("fullText").toString());
    const auto heading = [this](QLabel *figure) {
        for (const auto &[h, f] : panelCounters)
            if (f == figure)
                return h;
        return static_cast<QLabel *>(nullptr);
    };
    setFullText(heading(lblTechCount), caption(QStringLiteral("TechCount")));
    const QString viewTech = caption(QStringLiteral("ViewTechCount"));
    lblTechCount->setToolTip(viewTech);
    heading(lblTechCount)->setToolTip(viewTech);
    setFullText(heading(lblHrsWorked), caption(QStringLiteral("HoursWorked")));
    setFullText(heading(lblHrsRemaining), caption(QStringLiteral("HoursRemaining")));
    setFullText(heading(lblWODone), caption(QStringLiteral("WODone")));
    setFullText(heading(lblWOOpen), caption(QStringLiteral("WOOpen")));
    setFullText(heading(lblPtsDone), caption(QStringLiteral("PointsDone")));
    setFullText(heading(lblPtsOpen), caption(QStringLiteral("PointsOpen")));
    setFullText(lblProdPerTech, caption(QStringLiteral("ProductivityPerTech")));
    setFullText(lblToday, caption(QStringLiteral("CurrentProductivity")));
    setFullText(lblReqProd, caption(QStringLiteral("RequiredProductivity")));
    setFullText(lblWOsPerHr, caption(QStringLiteral("WOsPerHour")));
    setFullText(lblPtsPerHr, caption(QStringLiteral("PtsPerHour")));
    lblDisplayBy->setText(caption(QStringLiteral("DisplayBy")));
    optDisplay[0]->setText(caption(QStringLiteral("WorkOrders")));
    optDisplay[1]->setText(caption(QStringLiteral("Points")));
}

// ----------------------------------------------------------------------------------------------
// DLViewer

DLViewer::DLViewer(QWidget *parent) : QWidget(parent), d(std::make_unique<DLViewerPrivate>(this))
{
    setObjectName(QStringLiteral("DLViewer"));
    setMinimumSize(480, 320);
}

DLViewer::~DLViewer() = default;

void DLViewer::ReceiveMessage(QVariant &data, const QVariant &DataType, const QVariant &Tag)
{
    const qint32 dataType = variantToLong(DataType);
    const QString tag = variantToString(Tag);
    if (!d->mDLV)
        return; // stopped: nothing listens any more
    d->mDLV->ReceiveMessage(data, dataType, tag);
}

void DLViewer::Initialize(const std::shared_ptr<QZWebTransport> &Trans)
{
    d->setHourglass(true);
    d->EnableDataControls(false);
    d->btnHelp->setVisible(false);
    d->captions = std::make_unique<CaptionCatalogue>();
    d->captions->attach(Trans);
    if (d->mDLV)
        d->mDLV->Initialize(&d->choice);
    ResizeControls();
    d->btnHelp->setVisible(true);
    d->SetCaptions();
    d->ShowStatus(QStringLiteral("msg-WaitingforDLVData"), false);
    ResizeControls(); // the captions changed the widths the top row and panel are laid out from
}

void DLViewer::SetRegionalFormatInfo(QString &LanguageID)
{
    if (d->mDLV)
        d->mDLV->SetLanguageID(LanguageID);
}

void DLViewer::SetSessionBUIDList(QStringList &BUList)
{
    d->sessionBUs = std::make_unique<StringSet>();
    for (const QString &id : BUList)
        d->sessionBUs->add(id, id); // a repeated id throws to the host, by design
    d->requestProfileList();
}

void DLViewer::StopControl()
{
    d->EnableDataControls(false);
    d->btnHelp->setVisible(false);
    d->captions.reset();
    if (d->mDLV) {
        d->mDLV->Release();
        d->mDLV.reset();
    }
    d->sessionBUs.reset();
    if (d->profileExchange)
        d->profileExchange->StopControl();
    for (auto &list : d->collapsedLists)
        list.reset();
    d->stopped = true;
}

void DLViewer::ReceiveProfileResponse(QString &ResultXML, QString &FunctionName)
{
    d->receiveProfileResponse(ResultXML, FunctionName);
}

bool DLViewer::ExportGrid(const QString &fileName)
{
    return d->exportGrid(fileName);
}

bool DLViewer::PrintGrid(QPrinter &printer)
{
    return d->printGrid(printer);
}

DLVGrid DLViewer::Grid(DLVGrid::Element element) const
{
    if (element < DLVGrid::Summary || element > DLVGrid::HierarchyPoints)
        return {};
    return DLVGrid(&d->grids[std::size_t(element)]);
}

QString DLViewer::PanelText(PanelFigure figure) const
{
    const auto labels = d->panelFigures();
    const auto i = std::size_t(figure);
    return i < labels.size() && labels[i] ? labels[i]->text() : QString();
}

void DLViewer::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    ResizeControls();
}

void DLViewer::ResizeControls()
{
    if (!d->fraDLV)
        return;
    const int w = width();
    const int h = height();
    d->fraDLV->setGeometry(0, 0, w, h);

    int top = kMargin;
    d->layoutTopRow(w, top);

    // Selection column on the left, the tab strip with its two frames on the right.
    const int selectionWidth = std::clamp(w / 5, 190, 300);
    d->fraSelection->setGeometry(kMargin, top, selectionWidth, std::max(60, h - top - kMargin));
    const QRect sel = d->fraSelection->contentsRect();
    const int labelTop = sel.top() + 2;
    d->lblBUName->setGeometry(sel.left() + 6, labelTop, sel.width() - 12,
                              d->lblBUName->sizeHint().height());
    const int listTop = d->lblBUName->geometry().bottom() + 4;
    d->unitList->layout(
        QRect(sel.left() + 6, listTop, sel.width() - 12, std::max(40, sel.bottom() - listTop - 6)));

    const int right = kMargin + selectionWidth + 6;
    const int rightWidth = std::max(100, w - right - kMargin);
    const int statusHeight = d->lblStatus->sizeHint().height() + 6;
    d->fraStatus->setGeometry(right, top, rightWidth, statusHeight);
    top += statusHeight;

    const int tabHeight = d->Tabs->sizeHint().height();
    d->Tabs->setGeometry(right, top, rightWidth, tabHeight);
    const QRect client(right, top + tabHeight - 1, rightWidth,
                       std::max(60, h - top - tabHeight - kMargin));
    for (QFrame *frame : d->fraBU) {
        frame->setGeometry(client);
        frame->raise();
    }
    d->Tabs->raise();

    // The first layout lays out the empty grids with their captions, so it waits for the
    // caption catalogue: a host may show (and so resize) the control before Initialize.
    if (!d->firstLayoutDone && d->captions) {
        d->lblStatus->clear();
        d->choice.setByWorkOrders(true);
        d->choice.setSingleUnits(true);
        d->InitSingleBUGrid();
        d->InitBUHierarchyGrid(1);
        d->InitBUHierarchyGrid(2);
        d->firstLayoutDone = true;
    }
    // The width the panel and the grid columns share is what the summary frame leaves for the
    // grid: its contents less the grid's frame and room for a vertical scroll bar, so that the
    // columns (just under the whole width together) never push a horizontal scroll bar out.
    const int usable = d->fraBU[0]->contentsRect().width() - 4 - 2 * d->vsFlex[0]->frameWidth() -
                       d->vsFlex[0]->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    d->layoutPanel(usable);
    d->layoutGrids();
    for (int i = 0; i < 3; ++i)
        d->FitGridHeight(i);
}

void DLViewerPrivate::layoutTopRow(int width, int &top)
{
    int infoWidth = 0;
    for (QLabel *l : {lblProfile, lblCurrentProfile, lblLastTime, lblLastRefreshTime, lblNextTime,
                      lblNextRefreshTime, lblFreshness})
        if (!l->isHidden())
            infoWidth += l->sizeHint().width() + 10;
    // Text beside the icons while the row has room for it and the profile and refresh times;
    // icons with tool tips otherwise, as compact toolbars do.
    tbMain->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    if (tbMain->sizeHint().width() + infoWidth + 3 * kMargin > width)
        tbMain->setToolButtonStyle(Qt::ToolButtonIconOnly);
    const int toolbarHeight = std::max(30, tbMain->sizeHint().height());
    tbMain->setGeometry(kMargin, top, tbMain->sizeHint().width(), toolbarHeight);

    // Profile and refresh times read from the right edge: "Current profile : X   Last ... Next
    // ...".
    int x = width - kMargin;
    const auto place = [&](QLabel *label, int gap) {
        const int lw = label->sizeHint().width();
        x -= lw;
        label->setGeometry(x, top + (toolbarHeight - label->sizeHint().height()) / 2, lw,
                           label->sizeHint().height());
        x -= gap;
    };
    if (!lblFreshness->isHidden())
        place(lblFreshness, 12);
    place(lblNextRefreshTime, 4);
    place(lblNextTime, 16);
    place(lblLastRefreshTime, 4);
    place(lblLastTime, 16);
    place(lblCurrentProfile, 4);
    place(lblProfile, 0);
    top += toolbarHeight + 2;
}

void DLViewerPrivate::layoutPanel(int frameWidth)
{
    const double p = twipsPerPixelX();
    const PanelLayout::Result r = PanelLayout::compute(frameWidth * p, lblStatus->width() * p, p);
    const auto px = [p](double twips) { return int(std::lround(twips / p)); };
    const int w = px(r.width);
    setGridColumnWidths(frameWidth * p);

    lblStatus->setGeometry(0, 0, fraStatus->width(), fraStatus->height());
    // Headings keep their column; a caption longer than the column is shortened with an
    // ellipsis and shown whole in its tool tip (the figures below it stay aligned).
    const auto fit = [](QLabel *label, int width) {
        const QString full = label->property("fullText").toString();
        const QString shown =
            label->fontMetrics().elidedText(full, Qt::ElideRight, std::max(20, width));
        label->setText(shown);
        label->setToolTip(shown == full ? QString() : full);
    };

    // Counters: two heading/figure column pairs in the left part of the panel.
    const int rowTop = 6;
    const auto rowY = [&](int row) { return rowTop + row * kPanelRowHeight; };
    const int pairWidth = int(w * 0.215);
    const int figureWidth = std::min(70, pairWidth / 3);
    for (std::size_t i = 0; i < panelCounters.size(); ++i) {
        const int column = i < 3 ? 0 : 1;
        const int row = i < 3 ? int(i) : int(i) - 3;
        const int x = 8 + column * (pairWidth + 6);
        auto [heading, figure] = panelCounters[i];
        fit(heading, pairWidth - figureWidth - 4);
        heading->setGeometry(x, rowY(row), pairWidth - figureWidth - 4, kPanelRowHeight);
        figure->setGeometry(x + pairWidth - figureWidth, rowY(row), figureWidth, kPanelRowHeight);
    }

    const int optWidth = px(r.lblProdPerTechLeft - r.optBULeft) - 6;
    for (int i = 0; i < 2; ++i) {
        QRadioButton *opt = optBU[i];
        const QString full = opt->property("fullText").toString();
        // The option's column is a fixed share of the width; a long caption is shortened with an
        // ellipsis and shown whole in the tool tip rather than run under the next column.
        const int textRoom =
            optWidth - opt->style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) - 8;
        const QString shown =
            opt->fontMetrics().elidedText(full, Qt::ElideRight, std::max(20, textRoom));
        opt->setText(shown);
        opt->setToolTip(shown == full ? QString() : full);
        opt->setGeometry(px(r.optBULeft), rowY(i), optWidth, kPanelRowHeight);
    }

    const int headWidth = px(r.lblWOsPerHrTodayLeft - r.lblProdPerTechLeft) - 4;
    const auto place = [&](QLabel *label, int x, int y, int width) {
        fit(label, width);
        label->setGeometry(x, y, width, kPanelRowHeight);
    };
    place(lblProdPerTech, px(r.lblProdPerTechLeft), rowY(0),
          px(r.lblTodayLeft - r.lblProdPerTechLeft) - 4);
    place(lblToday, px(r.lblTodayLeft), rowY(0), px(r.lblReqProdLeft - r.lblTodayLeft) - 4);
    place(lblReqProd, px(r.lblReqProdLeft), rowY(0), w - px(r.lblReqProdLeft) - 4);
    place(lblWOsPerHr, px(r.lblWOsPerHrLeft), rowY(1), headWidth);
    place(lblPtsPerHr, px(r.lblPtsPerHrLeft), rowY(2), headWidth);
    const int figureW = px(r.lblWOsPerHrReqLeft - r.lblWOsPerHrTodayLeft) - 8;
    lblWOsPerHrToday->setGeometry(px(r.lblWOsPerHrTodayLeft), rowY(1) + 1, figureW,
                                  kPanelRowHeight - 2);
    lblPtsPerHrToday->setGeometry(px(r.lblPtsPerHrTodayLeft), rowY(2) + 1, figureW,
                                  kPanelRowHeight - 2);
    lblWOsPerHrReq->setGeometry(px(r.lblWOsPerHrReqLeft), rowY(1) + 1, figureW,
                                kPanelRowHeight - 2);
    lblPtsPerHrReq->setGeometry(px(r.lblPtsPerHrReqLeft), rowY(2) + 1, figureW,
                                kPanelRowHeight - 2);
    cmdView->setGeometry(px(r.cmdViewLeft), rowY(3) + 2, std::max(90, cmdView->sizeHint().width()),
                         26);

    gridTop[0] = rowY(kPanelRows) + 8;

    // Hierarchy frame: the display option row.
    int x = 8;
    const int optTop = 6;
    lblDisplayBy->setGeometry(x, optTop, lblDisplayBy->sizeHint().width(), kPanelRowHeight);
    x += lblDisplayBy->sizeHint().width() + 12;
    for (QRadioButton *opt : optDisplay) {
        opt->setGeometry(x, optTop, opt->sizeHint().width(), kPanelRowHeight);
        x += opt->sizeHint().width() + 12;
    }
    gridTop[1] = gridTop[2] = optTop + kPanelRowHeight + 8;
}

void DLViewerPrivate::layoutGrids()
{
    for (int i = 0; i < 3; ++i) {
        QFrame *frame = fraBU[i == 0 ? 0 : 1];
        const QRect inner = frame->contentsRect();
        // The height is fitted to the rows afterwards; start from what the frame can hold.
        vsFlex[i]->setGeometry(inner.left() + 2, gridTop[i], inner.width() - 4,
                               std::max(40, inner.bottom() - gridTop[i] - 2));
    }
}

void DLViewer::SetUnitTreeShown(bool on)
{
    d->unitList->setTreeShown(on);
    ResizeControls(); // the filter row takes room from the list, or gives it back
}

bool DLViewer::UnitTreeShown() const
{
    return d->unitList->treeShown();
}

#include "control/dlviewer.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "control/dlviewer_p.h"
#include "control/drilldownrequests.h"
#include "control/gridoutput.h"
#include "control/gridviews.h"
#include "control/livecues.h"
#include "control/panelview.h"
#include "control/profilehostadapter.h"
#include "control/selectionoptions.h"
#include "control/statusline.h"
#include "control/toolbaractions.h"
#include "control/toprow.h"
#include "control/unitlistpane.h"
#include "control/viewscontroller.h"
#include "model/cdlvcontroller.h"
#include "profiles/profiledialoghost.h"
#include "profiles/profileexchange.h"
#include "ui/aboutinfo.h"
#include "ui/captioncatalogue.h"
#include "ui/dialoghost.h"
#include "ui/errorreport.h"
#include "views/drilldown.h"
#include "views/outlinegridview.h"
#include "views/panellayout.h"
#include "webdata/qzwebtransport.h"

#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QResizeEvent>
#include <QStyle>
#include <QTreeWidget>
#include <cmath>

namespace {

constexpr int kMargin = 4;

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
// DLViewerPrivate: creation and wiring

DLViewerPrivate::DLViewerPrivate(DLViewer *qq)
    : q(qq), m_dialogs(std::make_unique<ProfileDialogHost>())
{
    // What the control creates at creation: the controller and the empty containers.
    m_dlv = std::make_unique<cDLVController>(this);
    createWidgets();
    createProfiles();
    m_errorReport = std::make_unique<ErrorReport>(m_dialogs.get());
    m_errorReport->setOwner(m_frame);
    createLiveCues();
    connectParts();
}

DLViewerPrivate::~DLViewerPrivate() = default;

void DLViewerPrivate::createWidgets()
{
    const auto caption = [this](const QString &key) { return this->caption(key); };

    m_frame = new QFrame(q);
    m_frame->setObjectName(QStringLiteral("fraDLV"));
    m_toolbar = new ToolbarActions(m_frame, q);
    m_topRow = std::make_unique<TopRow>(m_frame);

    m_selectionFrame = new QGroupBox(m_frame);
    m_selectionFrame->setObjectName(QStringLiteral("fraSelection"));
    m_unitsLabel = new QLabel(m_selectionFrame);
    m_unitsLabel->setObjectName(QStringLiteral("lblBUName"));
    m_lvBU = new QTreeWidget(m_selectionFrame);
    m_lvBU->setObjectName(QStringLiteral("lvBU"));
    m_lvBU->setRootIsDecorated(false);
    m_lvBU->setHeaderHidden(true);
    m_lvBU->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_lvBU->setUniformRowHeights(true);
    m_lvBU->setColumnCount(1);
    m_unitsLabel->setBuddy(m_lvBU);
    m_unitList = new UnitListPane(m_selectionFrame, m_lvBU, m_choice, caption);

    m_status = std::make_unique<StatusLine>(m_frame, caption);
    m_options = new SelectionOptions(m_frame, m_choice);
    m_panel = std::make_unique<PanelView>(m_options->frame(0));
    m_options->createButtons();
    m_views = std::make_unique<GridViews>(m_options->frame(0), m_options->frame(1), q, *this);

    m_fills = std::make_unique<ViewsController>(ViewsController::Parts{
        *m_views, *m_panel, *m_options, *m_unitList, m_choice, *this, caption});
    m_fills->setController(m_dlv.get());
    m_details = std::make_unique<DrillDownRequests>(*m_views, m_panel->techCount(), *this,
                                                    [this] { return drillDown(); });
    m_output = std::make_unique<GridOutput>(
        *m_views, *m_options, m_frame, q, [this]() -> DialogHost & { return dialogs(); }, caption);
}

void DLViewerPrivate::createProfiles()
{
    m_profileHost = std::make_unique<ProfileHostAdapter>(*this);
    m_profileExchange = std::make_unique<ProfileExchange>(*m_profileHost);
    m_toolbar->attachProfileMenu(*m_profileExchange);
    m_fills->setProfiles(m_profileExchange.get());
}

void DLViewerPrivate::createLiveCues()
{
    LiveCues::Widgets w;
    for (int i = 0; i < GridViews::kCount; ++i) {
        w.views[std::size_t(i)] = m_views->view(i);
        w.grids[std::size_t(i)] = &m_views->grid(i);
    }
    w.figures = m_panel->figures();
    w.refreshTimes = m_topRow->refreshTimeLabels();
    w.freshness = m_topRow->freshnessLabel();
    w.relayoutTopRow = [this] { relayoutTopRow(); };
    w.selectionContext = [this] { return m_fills->selectionContext(); };
    m_liveCues = std::make_unique<LiveCues>(w, [this](const QString &key) { return caption(key); });
}

void DLViewerPrivate::connectParts()
{
    // host -> DLViewer -> controller: the controller tells the control everything by signal.
    cDLVController *dlv = m_dlv.get();
    QObject::connect(dlv, &cDLVController::ShowStatus, q, [this](const QString &key, bool error) {
        m_status->show(key, error);
        m_liveCues->statusShown(key);
    });
    QObject::connect(dlv, &cDLVController::HideStatus, q, [this] { m_status->hide(); });
    QObject::connect(dlv, &cDLVController::FillBUHierarchyGrid, m_fills.get(),
                     &ViewsController::mDLV_FillBUHierarchyGrid);
    QObject::connect(dlv, &cDLVController::FillSingleBUGrid, m_fills.get(),
                     &ViewsController::mDLV_FillSingleBUGrid);
    QObject::connect(
        dlv, &cDLVController::RefreshTimesChanged, q,
        [this](const QString &last, const QString &next) { showRefreshTimes(last, next); });

    // The fills' steps, heard by the live options and the data controls.
    LiveCues *cues = m_liveCues.get();
    QObject::connect(m_fills.get(), &ViewsController::refreshStarted, cues,
                     &LiveCues::refreshStarted);
    QObject::connect(m_fills.get(), &ViewsController::panelWritten, cues, &LiveCues::panelWritten);
    QObject::connect(m_fills.get(), &ViewsController::fillsEnded, cues, &LiveCues::fillsEnded);
    QObject::connect(m_fills.get(), &ViewsController::summaryShown, q,
                     [this] { EnableDataControls(true); });
    // Queued: the point is added while a data message is still being handled, and a host that
    // answers the signal with the next message must not re-enter that handling (a host that
    // always does would otherwise recurse without end).
    QObject::connect(cues, &LiveCues::trendChanged, q, &DLViewer::PanelTrendChanged,
                     Qt::QueuedConnection);

    // The user's requests.
    QObject::connect(m_options, &SelectionOptions::viewClicked, m_fills.get(),
                     &ViewsController::cmdView_Click);
    QObject::connect(m_options, &SelectionOptions::displayChosen, q,
                     [this](int index) { m_views->showDisplay(index); });
    QObject::connect(m_toolbar, &ToolbarActions::buttonClicked, q,
                     [this](const QString &key) { tbMain_ButtonClick(key); });
    QObject::connect(m_details.get(), &DrillDownRequests::detailsRequested, q,
                     &DLViewer::GetDetails);
}

DrillDown DLViewerPrivate::drillDown() const
{
    DrillDown::Sources sources;
    sources.unitIds = [this]() -> const QSet<QString> & { return m_choice.idSet(); };
    sources.currentBUs = [this] { return m_fills->currentBUIds(); };
    sources.buIdList = [this](const QString &buID) {
        QStringList ids;
        if (m_dlv)
            for (const auto &entry : m_dlv->GetBUIDList(buID))
                ids.append(entry.key);
        return ids;
    };
    sources.jeopardyThreshold = [this] { return m_dlv ? m_dlv->JeopardyThreshold() : QString(); };
    return DrillDown(std::move(sources));
}

// ----------------------------------------------------------------------------------------------
// DLViewerPrivate: DLViewer's methods

void DLViewerPrivate::initialize(const std::shared_ptr<QZWebTransport> &transport)
{
    setHourglass(true);
    EnableDataControls(false);
    m_toolbar->setHelpShown(false);
    m_captions = std::make_unique<CaptionCatalogue>();
    m_captions->attach(transport);
    if (m_dlv)
        m_dlv->Initialize(&m_choice);
    resizeControls();
    m_toolbar->setHelpShown(true);
    SetCaptions();
    m_status->show(QStringLiteral("msg-WaitingforDLVData"), false);
    resizeControls(); // the captions changed the widths the top row and panel are laid out from
}

void DLViewerPrivate::setLanguage(const QString &languageID)
{
    if (m_dlv)
        m_dlv->SetLanguageID(languageID);
}

void DLViewerPrivate::setSessionUnits(const QStringList &ids)
{
    StringSet &units = m_fills->newSessionUnits();
    for (const QString &id : ids)
        units.add(id, id); // a repeated id throws to the host, by design
    if (!m_profileExchange)
        return;
    m_profileExchange->clearProfilesLoaded();
    m_profileExchange->GetProfileList();
}

void DLViewerPrivate::stop()
{
    EnableDataControls(false);
    m_toolbar->setHelpShown(false);
    m_captions.reset();
    if (m_dlv) {
        m_dlv->Release();
        m_dlv.reset();
    }
    m_fills->release();
    if (m_profileExchange)
        m_profileExchange->StopControl();
}

void DLViewerPrivate::receiveProfileResponse(QString &resultXML, QString &functionName)
{
    if (m_profileExchange)
        m_profileExchange->ReceiveProfileResponse(resultXML, functionName);
}

bool DLViewerPrivate::exportGrid(const QString &fileName)
{
    return m_output->exportGrid(fileName);
}

bool DLViewerPrivate::printGrid(QPrinter &printer)
{
    return m_output->printGrid(printer);
}

void DLViewerPrivate::setUnitTreeShown(bool on)
{
    m_unitList->setTreeShown(on);
    resizeControls(); // the filter row takes room from the list, or gives it back
}

// ----------------------------------------------------------------------------------------------
// DLViewerPrivate: shared operations

void DLViewerPrivate::reportError(qint32 number, const QString &description,
                                  const QString &location)
{
    m_errorReport->setCaptions(m_captions.get());
    m_errorReport->reportError(number, description, location);
}

void DLViewerPrivate::setDialogHost(std::unique_ptr<DialogHost> host)
{
    m_dialogs = std::move(host);
    m_errorReport->setDialogHost(m_dialogs.get());
}

void DLViewerPrivate::ClientReady()
{
    QString params = QStringLiteral("ClientReady");
    Q_EMIT q->PostRequest(params);
}

void DLViewerPrivate::EnableDataControls(bool enabled)
{
    m_options->setViewEnabled(enabled);
    m_toolbar->setDataButtonsShown(enabled);
}

void DLViewerPrivate::setHourglass(bool busy)
{
    if (busy)
        q->setCursor(Qt::WaitCursor);
    else
        q->unsetCursor();
}

void DLViewerPrivate::showCurrentProfile(const QString &name)
{
    m_topRow->showCurrentProfile(name);
    resizeControls(); // the top row is laid out from the labels' widths
}

void DLViewerPrivate::showRefreshTimes(const QString &last, const QString &next)
{
    m_topRow->showRefreshTimes(last, next);
    relayoutTopRow();
    if (m_dlv)
        m_liveCues->refreshTimesWritten(m_dlv->LastRefresh(), m_dlv->NextRefresh());
}

double DLViewerPrivate::twipsPerPixelX() const
{
    return m_views->twipsPerPixelX();
}

QString DLViewerPrivate::caption(const QString &key) const
{
    return m_captions ? m_captions->caption(key) : QString();
}

void DLViewerPrivate::SetCaptions()
{
    const auto caption = [this](const QString &key) { return this->caption(key); };
    m_unitList->setCaptions();
    m_toolbar->setCaptions(caption);
    m_options->setCaptions(caption);
    m_unitsLabel->setText(this->caption(QStringLiteral("BusinessUnits")) + QStringLiteral(" :"));
    m_topRow->setCaptions(caption);
    m_selectionFrame->setTitle(this->caption(QStringLiteral("SelectionCriteria")));
    m_panel->setCaptions(caption);
}

void DLViewerPrivate::tbMain_ButtonClick(const QString &key)
{
    if (key == QLatin1String("SaveGrid"))
        m_output->SaveGrid(m_options->currentGridIndex());
    else if (key == QLatin1String("PrintGrid"))
        m_output->PrintGrid(m_options->currentGridIndex());
    else if (key == QLatin1String("Profiles"))
        m_toolbar->showProfileMenu(); // the profile subsystem rebuilds it as it is about to show
    else if (key == QLatin1String("Help"))
        showAbout();
}

void DLViewerPrivate::showAbout()
{
    const QString language = m_dlv ? m_dlv->LanguageID() : QString();
    dialogs().showAbout(caption(QStringLiteral("AboutDLV")), AboutInfo::productName(),
                        AboutInfo::description(language), AboutInfo::comments(),
                        AboutInfo::rights(language), AboutInfo::versionText(),
                        caption(QStringLiteral("Version")), m_frame);
}

// ----------------------------------------------------------------------------------------------
// DLViewerPrivate: layout

void DLViewerPrivate::resizeControls()
{
    const int w = q->width();
    const int h = q->height();
    m_frame->setGeometry(0, 0, w, h);

    int top = m_topRow->layout(m_toolbar->toolBar(), w, kMargin);

    // Selection column on the left, the tab strip with its two frames on the right.
    const int selectionWidth = std::clamp(w / 5, 190, 300);
    m_selectionFrame->setGeometry(kMargin, top, selectionWidth, std::max(60, h - top - kMargin));
    const QRect sel = m_selectionFrame->contentsRect();
    const int labelTop = sel.top() + 2;
    m_unitsLabel->setGeometry(sel.left() + 6, labelTop, sel.width() - 12,
                              m_unitsLabel->sizeHint().height());
    const int listTop = m_unitsLabel->geometry().bottom() + 4;
    m_unitList->layout(
        QRect(sel.left() + 6, listTop, sel.width() - 12, std::max(40, sel.bottom() - listTop - 6)));

    const int right = kMargin + selectionWidth + 6;
    const int rightWidth = std::max(100, w - right - kMargin);
    const int statusHeight = m_status->heightHint();
    m_status->setFrameGeometry(QRect(right, top, rightWidth, statusHeight));
    top += statusHeight;

    const int tabHeight = m_options->tabs()->sizeHint().height();
    m_options->layoutTabs(
        QRect(right, top, rightWidth, tabHeight),
        QRect(right, top + tabHeight - 1, rightWidth, std::max(60, h - top - tabHeight - kMargin)));

    // The first layout lays out the empty grids with their captions, so it waits for the
    // caption catalogue: a host may show (and so resize) the control before Initialize.
    if (!m_firstLayoutDone && m_captions) {
        const auto caption = [this](const QString &key) { return this->caption(key); };
        m_status->clearText();
        m_choice.setByWorkOrders(true);
        m_choice.setSingleUnits(true);
        m_views->InitSingleBUGrid(caption);
        m_views->InitBUHierarchyGrid(1, caption);
        m_views->InitBUHierarchyGrid(2, caption);
        m_firstLayoutDone = true;
    }
    // The width the panel and the grid columns share is what the summary frame leaves for the
    // grid: its contents less the grid's frame and room for a vertical scroll bar, so that the
    // columns (just under the whole width together) never push a horizontal scroll bar out.
    const OutlineGridView *summary = m_views->view(0);
    const int usable = m_options->frame(0)->contentsRect().width() - 4 - 2 * summary->frameWidth() -
                       summary->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    layoutPanel(usable);
    m_views->layout();
    for (int i = 0; i < GridViews::kCount; ++i)
        m_views->FitGridHeight(i);
}

void DLViewerPrivate::relayoutTopRow()
{
    // The refresh-time labels change with every data message and their widths decide the top
    // row; laying out those few labels again is cheap.
    (void)m_topRow->layout(m_toolbar->toolBar(), q->width(), kMargin);
}

void DLViewerPrivate::layoutPanel(int frameWidth)
{
    const double p = twipsPerPixelX();
    const PanelLayout::Result r =
        PanelLayout::compute(frameWidth * p, m_status->labelWidth() * p, p);
    const auto px = [p](double twips) { return int(std::lround(twips / p)); };
    m_views->setColumnWidths(frameWidth * p);
    m_status->fitLabel();
    m_panel->layout(r, px);
    m_options->layoutSummaryOptions(r, px);
    const int hierarchyTop = m_options->layoutDisplayRow();
    m_views->setTops(PanelView::bottom(), hierarchyTop);
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
    if (cDLVController *controller = d->controller())
        controller->ReceiveMessage(data, dataType, tag);
    // else stopped: nothing listens any more
}

void DLViewer::Initialize(const std::shared_ptr<QZWebTransport> &Trans)
{
    d->initialize(Trans);
}

void DLViewer::SetRegionalFormatInfo(QString &LanguageID)
{
    d->setLanguage(LanguageID);
}

void DLViewer::SetSessionBUIDList(QStringList &BUList)
{
    d->setSessionUnits(BUList);
}

void DLViewer::StopControl()
{
    d->stop();
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
    return DLVGrid(&d->views().grid(int(element)));
}

QString DLViewer::PanelText(PanelFigure figure) const
{
    const auto &labels = d->panel().figures();
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
    if (d) // not while the control is being created
        d->resizeControls();
}

void DLViewer::SetUnitTreeShown(bool on)
{
    d->setUnitTreeShown(on);
}

bool DLViewer::UnitTreeShown() const
{
    return d->unitList().treeShown();
}

// The live options over the figures (LiveCues), all off at creation.

void DLViewer::SetFreshnessShown(bool on)
{
    d->liveCues().setFreshnessShown(on);
}

bool DLViewer::FreshnessShown() const
{
    return d->liveCues().freshnessShown();
}

void DLViewer::SetChangeCuesShown(bool on)
{
    d->liveCues().setChangeCuesShown(on);
}

bool DLViewer::ChangeCuesShown() const
{
    return d->liveCues().changeCuesShown();
}

void DLViewer::SetExceptionsShown(bool on)
{
    d->liveCues().setExceptionsShown(on);
}

bool DLViewer::ExceptionsShown() const
{
    return d->liveCues().exceptionsShown();
}

QList<PanelTrendPoint> DLViewer::PanelTrend() const
{
    return d->liveCues().trend().points();
}

// DLViewerPrivate: the toolbar tbMain and what its buttons do: save the grid in view as a
// comma-separated file, print it, drop the profile menu down and show the about box.
//
// Save and print never show an error: a failed dialog, an unwritable file or a printer fault is
// logged and dropped, and the main frame is enabled again however the dialog ended.

#include "common/dlverror.h"
#include "control/dlviewer_p.h"
#include "model/cdlvcontroller.h"
#include "ui/aboutinfo.h"
#include "ui/dialoghost.h"
#include "views/gridexporter.h"
#include "views/gridprintjob.h"
#include "views/outlinegridview.h"
#include "views/toolbariconengine.h"

#include <QAction>
#include <QCursor>
#include <QFrame>
#include <QGuiApplication>
#include <QKeySequence>
#include <QLoggingCategory>
#include <QMenu>
#include <QPageLayout>
#include <QPrinter>
#include <QRadioButton>
#include <QScopeGuard>
#include <QTabBar>
#include <QToolBar>
#include <exception>

Q_LOGGING_CATEGORY(lcToolbar, "dlv.control.toolbar")

namespace {

const QString kCsvFilter = QStringLiteral("Comma-separated Files (*.csv)");
const QString kCsvSuffix = QStringLiteral("csv");
constexpr int kPrintMarginTwips = 1200;

/// Runs a save or print step with errors ignored: whatever fails is logged, never shown.
template <typename Body> bool ignoringErrors(const char *what, Body &&body)
{
    try {
        return body();
    } catch (const DLVError &e) {
        qCWarning(lcToolbar) << what << "failed:" << e.number() << e.description();
    } catch (const std::exception &e) {
        qCWarning(lcToolbar) << what << "failed:" << e.what();
    }
    return false;
}

} // namespace

void DLViewerPrivate::connectToolbar()
{
    using Glyph = ToolbarIconEngine::Glyph;
    btnSaveGrid->setIcon(ToolbarIconEngine::icon(Glyph::Save));
    btnPrintGrid->setIcon(ToolbarIconEngine::icon(Glyph::Print));
    btnProfiles->setIcon(ToolbarIconEngine::icon(Glyph::Profiles));
    btnHelp->setIcon(ToolbarIconEngine::icon(Glyph::Help));

    // Keyboard access while the focus is anywhere inside the control, without taking the keys
    // from the host's own window.
    const std::pair<QAction *, QKeySequence> shortcuts[] = {
        {btnSaveGrid, QKeySequence::Save},
        {btnPrintGrid, QKeySequence::Print},
        {btnHelp, QKeySequence::HelpContents},
    };
    for (const auto &[action, keys] : shortcuts) {
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        q->addAction(action);
    }

    for (QAction *button : {btnSaveGrid, btnPrintGrid, btnProfiles, btnHelp})
        QObject::connect(button, &QAction::triggered, q,
                         [this, button] { tbMain_ButtonClick(button->objectName()); });
}

int DLViewerPrivate::currentGridIndex() const
{
    if (Tabs->currentIndex() <= 0)
        return 0;
    return choice.byWorkOrders() ? 1 : 2;
}

bool DLViewerPrivate::gridInView(int index) const
{
    return index >= 0 && index < int(vsFlex.size()) && vsFlex[size_t(index)] &&
           vsFlex[size_t(index)]->isVisibleTo(q);
}

void DLViewerPrivate::tbMain_ButtonClick(const QString &key)
{
    if (key == QLatin1String("SaveGrid"))
        SaveGrid(currentGridIndex());
    else if (key == QLatin1String("PrintGrid"))
        PrintGrid(currentGridIndex());
    else if (key == QLatin1String("Profiles"))
        showProfileMenu();
    else if (key == QLatin1String("Help"))
        showAbout();
}

void DLViewerPrivate::showProfileMenu()
{
    // The profile subsystem rebuilds the menu as it is about to show. It pops up at the mouse
    // when the mouse pressed the button, else (keyboard) under the button.
    QPoint at = QCursor::pos();
    if (QWidget *button = tbMain->widgetForAction(btnProfiles)) {
        const QRect area(button->mapToGlobal(QPoint(0, 0)), button->size());
        if (!area.contains(at))
            at = area.bottomLeft() + QPoint(0, 1);
    }
    mnuProfileSection->popup(at);
}

void DLViewerPrivate::showAbout()
{
    const QString language = mDLV ? mDLV->LanguageID() : QString();
    dialogs().showAbout(caption(QStringLiteral("AboutDLV")), AboutInfo::productName(),
                        AboutInfo::description(language), AboutInfo::comments(),
                        AboutInfo::rights(language), AboutInfo::versionText(),
                        caption(QStringLiteral("Version")), fraDLV);
}

void DLViewerPrivate::SaveGrid(int index)
{
    ignoringErrors("Save grid", [&] {
        if (!gridInView(index))
            return false;
        QString chosen;
        {
            fraDLV->setEnabled(false);
            const auto enable = qScopeGuard([this] { fraDLV->setEnabled(true); });
            chosen = dialogs().getSaveFileName(caption(QStringLiteral("SaveGrid")), lastSaveFolder,
                                               kCsvFilter, kCsvSuffix, fraDLV);
        }
        if (chosen.trimmed().isEmpty())
            return false; // cancelled: nothing written, the last folder kept
        const QString folder = GridExporter::folderOf(chosen);
        if (!folder.isEmpty())
            lastSaveFolder = folder;
        QString error;
        if (!GridExporter::save(grids[size_t(index)], chosen, &error)) {
            qCWarning(lcToolbar) << "Save grid: cannot write" << chosen << error;
            return false;
        }
        return true;
    });
}

void DLViewerPrivate::PrintGrid(int index)
{
    ignoringErrors("Print grid", [&] {
        if (!gridInView(index))
            return false;
        if (!printer)
            printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
        // Landscape each time, as a starting point the user may change in the dialog.
        printer->setPageOrientation(QPageLayout::Landscape);
        const QString title = gridTitle(index);
        printer->setDocName(title);
        bool accepted = false;
        {
            fraDLV->setEnabled(false);
            const auto enable = qScopeGuard([this] { fraDLV->setEnabled(true); });
            accepted = dialogs().selectPrinter(*printer, fraDLV);
        }
        if (!accepted)
            return false;
        return printOn(index, *printer, title);
    });
}

QString DLViewerPrivate::gridTitle(int index) const
{
    return caption(index == 0 ? QStringLiteral("BUSummary") : QStringLiteral("BUHierarchy"));
}

bool DLViewerPrivate::printOn(int index, QPrinter &target, const QString &title)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    if (GridPrintJob(grids[size_t(index)]).print(target, title, kPrintMarginTwips))
        return true;
    qCWarning(lcToolbar) << "Print grid: the printer did not start" << target.printerName()
                         << target.outputFileName();
    return false;
}

bool DLViewerPrivate::exportGrid(const QString &fileName)
{
    return ignoringErrors("Export grid", [&] {
        const int index = currentGridIndex();
        if (!gridInView(index) || fileName.trimmed().isEmpty())
            return false;
        QString error;
        if (GridExporter::save(grids[size_t(index)], fileName, &error))
            return true;
        qCWarning(lcToolbar) << "Export grid: cannot write" << fileName << error;
        return false;
    });
}

bool DLViewerPrivate::printGrid(QPrinter &target)
{
    return ignoringErrors("Print grid", [&] {
        const int index = currentGridIndex();
        if (!gridInView(index))
            return false;
        return printOn(index, target, gridTitle(index));
    });
}

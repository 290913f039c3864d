#include "control/gridoutput.h"

#include "common/dlverror.h"
#include "control/gridviews.h"
#include "control/selectionoptions.h"
#include "ui/dialoghost.h"
#include "views/gridexporter.h"
#include "views/gridprintjob.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPageLayout>
#include <QPrinter>
#include <QScopeGuard>
#include <QWidget>
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

GridOutput::GridOutput(GridViews &views, const SelectionOptions &options, QWidget *frame,
                       const QWidget *viewer, Dialogs dialogs, CaptionLookup caption)
    : m_views(views), m_options(options), m_frame(frame), m_viewer(viewer),
      m_dialogs(std::move(dialogs)), m_caption(std::move(caption))
{}

GridOutput::~GridOutput() = default;

bool GridOutput::gridInView(int index) const
{
    return m_views.inView(index, m_viewer);
}

void GridOutput::SaveGrid(int index)
{
    ignoringErrors("Save grid", [&] {
        if (!gridInView(index))
            return false;
        QString chosen;
        {
            m_frame->setEnabled(false);
            const auto enable = qScopeGuard([this] { m_frame->setEnabled(true); });
            chosen = m_dialogs().getSaveFileName(m_caption(QStringLiteral("SaveGrid")),
                                                 m_lastSaveFolder, kCsvFilter, kCsvSuffix, m_frame);
        }
        if (chosen.trimmed().isEmpty())
            return false; // cancelled: nothing written, the last folder kept
        const QString folder = GridExporter::folderOf(chosen);
        if (!folder.isEmpty())
            m_lastSaveFolder = folder;
        QString error;
        if (!GridExporter::save(m_views.grid(index), chosen, &error)) {
            qCWarning(lcToolbar) << "Save grid: cannot write" << chosen << error;
            return false;
        }
        return true;
    });
}

void GridOutput::PrintGrid(int index)
{
    ignoringErrors("Print grid", [&] {
        if (!gridInView(index))
            return false;
        if (!m_printer)
            m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        // Landscape each time, as a starting point the user may change in the dialog.
        m_printer->setPageOrientation(QPageLayout::Landscape);
        const QString title = gridTitle(index);
        m_printer->setDocName(title);
        bool accepted = false;
        {
            m_frame->setEnabled(false);
            const auto enable = qScopeGuard([this] { m_frame->setEnabled(true); });
            accepted = m_dialogs().selectPrinter(*m_printer, m_frame);
        }
        if (!accepted)
            return false;
        return printOn(index, *m_printer, title);
    });
}

QString GridOutput::gridTitle(int index) const
{
    return m_caption(index == 0 ? QStringLiteral("BUSummary") : QStringLiteral("BUHierarchy"));
}

bool GridOutput::printOn(int index, QPrinter &target, const QString &title)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    if (GridPrintJob(m_views.grid(index)).print(target, title, kPrintMarginTwips))
        return true;
    qCWarning(lcToolbar) << "Print grid: the printer did not start" << target.printerName()
                         << target.outputFileName();
    return false;
}

bool GridOutput::exportGrid(const QString &fileName)
{
    return ignoringErrors("Export grid", [&] {
        const int index = m_options.currentGridIndex();
        if (!gridInView(index) || fileName.trimmed().isEmpty())
            return false;
        QString error;
        if (GridExporter::save(m_views.grid(index), fileName, &error))
            return true;
        qCWarning(lcToolbar) << "Export grid: cannot write" << fileName << error;
        return false;
    });
}

bool GridOutput::printGrid(QPrinter &target)
{
    return ignoringErrors("Print grid", [&] {
        const int index = m_options.currentGridIndex();
        if (!gridInView(index))
            return false;
        return printOn(index, target, gridTitle(index));
    });
}

#include "host/batchrun.h"

#include "common/atomicfile.h"
#include "control/dlviewer.h"
#include "host/hostlog.h"
#include "host/mainwindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPixmap>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTextStream>
#include <QTimer>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <cstdio>

namespace {

// A PDF writer that ran out of disk space may still report success: a whole file ends with the
// "%%EOF" marker (followed at most by a line end).
bool pdfIsComplete(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < 8)
        return false;
    file.seek(file.size() - 8);
    return file.read(8).contains("%%EOF");
}

// How long a batch run waits for the control's first fill before it gives up. Only a fault of
// the control can take it there; it keeps a script from hanging.
constexpr int kDeadlineMs = 120'000;

void printError(const QString &text)
{
    std::fprintf(stderr, "dlv-host: %s\n", qUtf8Printable(text));
    std::fflush(stderr);
}

template <typename T> T *child(MainWindow &window, const char *name)
{
    return window.viewer()->findChild<T *>(QString::fromLatin1(name));
}

} // namespace

QStringList BatchRun::panelLabels()
{
    return {QStringLiteral("lblTechCount"),    QStringLiteral("lblHrsWorked"),
            QStringLiteral("lblHrsRemaining"), QStringLiteral("lblWODone"),
            QStringLiteral("lblWOOpen"),       QStringLiteral("lblPtsDone"),
            QStringLiteral("lblPtsOpen"),      QStringLiteral("lblWOsPerHrToday"),
            QStringLiteral("lblWOsPerHrReq"),  QStringLiteral("lblPtsPerHrToday"),
            QStringLiteral("lblPtsPerHrReq")};
}

BatchRun::BatchRun(MainWindow &window, HostOptions options, QObject *parent)
    : QObject(parent), m_window(window), m_options(std::move(options)),
      m_dialogWatch(new QTimer(this)), m_deadline(new QTimer(this))
{
    connect(&m_window, &MainWindow::dataDelivered, this, &BatchRun::onDataDelivered);
    m_dialogWatch->setInterval(50);
    connect(m_dialogWatch, &QTimer::timeout, this, &BatchRun::dismissDialogs);
    m_deadline->setSingleShot(true);
    m_deadline->setInterval(kDeadlineMs);
    connect(m_deadline, &QTimer::timeout, this, &BatchRun::giveUp);
}

BatchRun::~BatchRun() = default;

void BatchRun::begin()
{
    m_dialogWatch->start();
    m_deadline->start();
    m_window.resize(1280, 800);
    // The control is initialised before it is first shown: its first layout sets up the grids
    // with the captions of the language.
    m_window.start();
    m_window.show();
}

void BatchRun::dismissDialogs()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (!modal)
        return;
    QStringList texts;
    if (auto *box = qobject_cast<QMessageBox *>(modal)) {
        texts.append(box->text());
    } else {
        for (const QLabel *label : modal->findChildren<QLabel *>())
            if (label->isVisibleTo(modal) && !label->text().trimmed().isEmpty())
                texts.append(label->text().trimmed());
    }
    const QString text = modal->windowTitle() + QStringLiteral(": ") +
                         texts.join(QStringLiteral(" / ")).simplified();
    printError(QStringLiteral("the viewer showed a dialog that a batch run cannot answer; it "
                              "was dismissed: %1")
                   .arg(text));
    m_dialogTexts.append(text);
    if (auto *dialog = qobject_cast<QDialog *>(modal))
        dialog->reject();
    else
        modal->close();
}

void BatchRun::giveUp()
{
    printError(QStringLiteral("the viewer did not show data within %1 s; giving up")
                   .arg(kDeadlineMs / 1000));
    finish(HostOptions::ExitFailure);
}

void BatchRun::finish(int status)
{
    if (m_done)
        return;
    m_done = true;
    m_dialogWatch->stop();
    m_deadline->stop();
    Q_EMIT finished(status);
}

void BatchRun::onDataDelivered(int count)
{
    if (count != 1 || m_done)
        return;
    int status = act();
    if (status == HostOptions::ExitOk && !m_dialogTexts.isEmpty())
        status = HostOptions::ExitFailure;
    finish(status);
}

int BatchRun::act()
{
    DLViewer *viewer = m_window.viewer();

    if (m_options.selectGiven) {
        auto *list = child<QTreeWidget>(m_window, "lvBU");
        if (!list) {
            printError(QStringLiteral("the viewer has no unit list (lvBU)"));
            return HostOptions::ExitFailure;
        }
        list->clearSelection();
        for (const QString &id : std::as_const(m_options.select)) {
            const QString key = u'_' + id;
            QTreeWidgetItem *found = nullptr;
            for (QTreeWidgetItemIterator it(list); *it; ++it)
                if ((*it)->data(0, Qt::UserRole).toString() == key) {
                    found = *it;
                    break;
                }
            if (!found) {
                printError(QStringLiteral("--select: unit \"%1\" is not in the viewer's unit list "
                                          "(it must be in the data and in the session units)")
                               .arg(id));
                return HostOptions::ExitBadArguments;
            }
            found->setSelected(true);
        }
    }
    if (m_options.aggregate) {
        if (auto *option = child<QRadioButton>(m_window, "optBU1"))
            option->click();
    }
    if (m_options.selectGiven || m_options.aggregate) {
        auto *view = child<QPushButton>(m_window, "cmdView");
        if (!view) {
            printError(QStringLiteral("the viewer has no View button (cmdView)"));
            return HostOptions::ExitFailure;
        }
        view->click();
    }
    // The control fills its hierarchy from the units chosen when data arrive (at the first fill
    // the profile's choice is not applied yet): the same data once more show the choice there,
    // as the next refresh would.
    m_window.resendLast();
    // Change cues show what a refresh changed: one more refresh of the feed gives them something
    // to show.
    if (m_options.changeCues)
        m_window.refresh();
    if (m_options.display != HostOptions::Display::AsProfile) {
        const char *name =
            m_options.display == HostOptions::Display::Points ? "optDisplay1" : "optDisplay0";
        if (auto *option = child<QRadioButton>(m_window, name))
            option->click();
    }
    if (m_options.tabGiven) {
        if (auto *tabs = child<QTabBar>(m_window, "Tabs"))
            tabs->setCurrentIndex(m_options.tab == HostOptions::Tab::Hierarchy ? 1 : 0);
    }
    QCoreApplication::processEvents();

    if (!m_options.exportCsv.isEmpty() && !viewer->ExportGrid(m_options.exportCsv)) {
        printError(QStringLiteral("the grid could not be exported to %1").arg(m_options.exportCsv));
        return HostOptions::ExitFailure;
    }
    if (!m_options.printPdf.isEmpty()) {
        QString reason;
        const bool printed = AtomicFile::writeByName(
            m_options.printPdf,
            [&](const QString &temporary) {
                QPrinter printer(QPrinter::HighResolution);
                printer.setOutputFormat(QPrinter::PdfFormat);
                printer.setOutputFileName(temporary);
                printer.setPageOrientation(QPageLayout::Landscape);
                return viewer->PrintGrid(printer);
            },
            &pdfIsComplete, &reason);
        if (!printed) {
            printError(QStringLiteral("the grid could not be printed to %1: %2")
                           .arg(m_options.printPdf, reason));
            return HostOptions::ExitFailure;
        }
    }
    if (!m_options.screenshot.isEmpty()) {
        const QPixmap picture = m_window.grab();
        QString reason;
        if (!AtomicFile::write(
                m_options.screenshot,
                [&](QIODevice &device) { return picture.save(&device, "PNG"); }, &reason)) {
            printError(QStringLiteral("the picture could not be saved to %1: %2")
                           .arg(m_options.screenshot, reason));
            return HostOptions::ExitFailure;
        }
    }
    if (m_options.panel) {
        QTextStream out(stdout);
        for (const QString &name : panelLabels()) {
            const auto *label = viewer->findChild<QLabel *>(name);
            if (!label) {
                printError(QStringLiteral("the viewer has no panel label %1").arg(name));
                return HostOptions::ExitFailure;
            }
            out << name << '=' << label->text() << '\n';
        }
        out.flush();
    }
    return HostOptions::ExitOk;
}

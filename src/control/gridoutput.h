#pragma once

#include <QString>
#include <functional>
#include <memory>

class DialogHost;
class GridViews;
class QPrinter;
class QWidget;
class SelectionOptions;

/// Saving and printing the grid in view: the toolbar's save (a comma-separated file, its folder
/// remembered for the next save dialog) and print (the printer set-up kept for the next print),
/// and the hosts' automated export and print, which ask nothing.
///
/// Nothing here shows an error: a failed dialog, an unwritable file or a printer fault is logged
/// and dropped, and the frame is enabled again however the dialog ended.
class GridOutput final
{
public:
    using CaptionLookup = std::function<QString(const QString &key)>;
    using Dialogs = std::function<DialogHost &()>;

    /// frame owns the dialogs and is disabled while one is open; viewer is the widget the grid
    /// must be shown within.
    GridOutput(GridViews &views, const SelectionOptions &options, QWidget *frame,
               const QWidget *viewer, Dialogs dialogs, CaptionLookup caption);
    ~GridOutput();
    Q_DISABLE_COPY_MOVE(GridOutput)

    void SaveGrid(int index);
    void PrintGrid(int index);
    /// The grid in view as a file, or on a set-up printer, without dialogs.
    bool exportGrid(const QString &fileName);
    bool printGrid(QPrinter &printer);

    /// Folder of the last saved file, where the next save dialog starts (empty at start).
    [[nodiscard]] const QString &lastSaveFolder() const { return m_lastSaveFolder; }

private:
    [[nodiscard]] bool gridInView(int index) const;
    /// The document name of a printed grid: the caption of its tab.
    [[nodiscard]] QString gridTitle(int index) const;
    bool printOn(int index, QPrinter &target, const QString &title);

    GridViews &m_views;
    const SelectionOptions &m_options;
    QWidget *m_frame;
    const QWidget *m_viewer;
    Dialogs m_dialogs;
    CaptionLookup m_caption;
    QString m_lastSaveFolder;
    /// The printer the print dialog sets up, kept so the user's choices carry to the next print.
    std::unique_ptr<QPrinter> m_printer;
};

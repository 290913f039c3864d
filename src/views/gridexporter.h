#pragma once

#include <QByteArray>
#include <QString>

class OutlineGrid;

/// Writes a grid as a comma-separated file a spreadsheet opens as the user sees the grid: every
/// row (header rows included) and every column (the outline column first), with the quoting and
/// formula guard of OutlineGrid::commaText(). The file is UTF-8 with a byte-order mark: without
/// it common spreadsheets read the file in the local code page and garble non-ASCII letters.
class GridExporter final
{
public:
    GridExporter() = delete;

    /// The UTF-8 byte-order mark written at the start of every file.
    static constexpr char Bom[] = "\xEF\xBB\xBF";

    /// The file's bytes: the byte-order mark, then the grid's comma text.
    [[nodiscard]] static QByteArray bytes(const OutlineGrid &grid);
    /// Writes the file, replacing it only once it is completely written. On failure returns false
    /// and puts the reason into *error (when given).
    [[nodiscard]] static bool save(const OutlineGrid &grid, const QString &path,
                                   QString *error = nullptr);
    /// The folder part of a path (before the last "/" or "\"), empty when there is none. The root
    /// folder stays "/" rather than becoming empty.
    [[nodiscard]] static QString folderOf(const QString &path);
};

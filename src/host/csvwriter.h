#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Comma-separated text as spreadsheets read it: a field that holds a comma, a double quote, a
/// carriage return or a line feed is enclosed in double quotes with its quotes doubled; other
/// fields are written as they are, but for the formula guard of CsvField. Lines end with CRLF, the
/// usual line end of the format. Files are UTF-8 with a byte-order mark, which spreadsheet programs
/// need to read UTF-8 (the control's grid export writes the same).
class CsvWriter
{
public:
    [[nodiscard]] static QString field(const QString &text);
    /// The fields joined with "," (no line end).
    [[nodiscard]] static QString line(const QStringList &fields);
    /// Writes every row, each ending in CRLF, replacing the file. Returns false with a readable
    /// reason in *error (when given) if the file cannot be written completely.
    [[nodiscard]] static bool writeFile(const QString &fileName, const QList<QStringList> &rows,
                                        QString *error = nullptr);
};

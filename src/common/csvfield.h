#pragma once

#include <QString>
#include <QStringView>

/// One field of comma-separated text as spreadsheets read it, shared by every CSV the project
/// writes. A field holding a comma, a double quote, CR or LF is enclosed in double quotes with
/// inner quotes doubled. A field that a spreadsheet would run as a formula gets a leading
/// apostrophe: one starting with "=", "+", "-" or "@", or with TAB or CR (spreadsheets skip
/// leading blanks and then read a formula), unless it is a plain number ("-12", "+3", "-0.5",
/// "1E5"), which keeps its sign and stays a number.
class CsvField
{
public:
    static void append(QString &out, QStringView text);
    [[nodiscard]] static QString text(QStringView text);
    [[nodiscard]] static bool needsGuard(QStringView text);
    [[nodiscard]] static bool isPlainNumber(QStringView text);
};

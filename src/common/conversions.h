#pragma once

#include <QString>
#include <QStringView>

class QTime;

/// The host platform's conversions, as the control uses them. All values from the host arrive as
/// text; numbers are read by the leading-number parse and rounded to 32-bit integers.
namespace Conv {

/// Reads a number from the start of text: blanks, tabs and line feeds are skipped wherever they
/// stand ("1 2" reads 12), then an optional sign, digits, one period, an optional exponent
/// ("1.5E3", "2d2" is not an exponent), or "&H"/"&O" followed by hexadecimal/octal digits.
/// Reading stops at the first character that cannot continue the number ("1,5" reads 1).
/// Empty or non-numeric text gives 0. Never throws.
[[nodiscard]] double leadingNumber(QStringView text);

/// Rounds to a signed 32-bit integer with halves to the even neighbour (2.5 -> 2, 3.5 -> 4,
/// -1.5 -> -2). Throws DLVError(6) outside the range, and for NaN or infinity.
[[nodiscard]] qint32 toLong(double value);

/// toLong(leadingNumber(text)).
[[nodiscard]] qint32 textToLong(QStringView text);

/// a + b, throwing DLVError(6) when the sum leaves the signed 32-bit range.
[[nodiscard]] qint32 addChecked(qint32 a, qint32 b);

/// Rounds to 2 decimal places with halves to even (0.125 -> 0.12, 0.135 -> 0.14).
[[nodiscard]] double round2(double value);

/// The rate rule: 0 when hours is 0, otherwise round2(count / hours) as single precision.
/// Throws DLVError(6) if the division yields NaN or infinity.
[[nodiscard]] float rate(double count, double hours);

/// The "#" number format: the value rounded to a whole number without separators; zero writes
/// nothing ("" for 0, "12" for 12, "-3" for -3).
[[nodiscard]] QString formatHash(double value);

/// The shortest text of a single-precision value, as the host platform writes it: up to 7
/// significant digits, no trailing zeros, "." as decimal point ("2.33", "0.12", "0", "-1.5",
/// "1E+07" for large magnitudes).
[[nodiscard]] QString singleText(float value);

/// "True" / "False".
[[nodiscard]] QString boolText(bool value);

/// Reads a Boolean text case-insensitively: "true"/"false" in any case, or numeric text (non-zero
/// is true). Anything else throws DLVError(13).
[[nodiscard]] bool textToBool(QStringView text);

/// Formats a time of day with a host time-format string: the named formats "Long Time",
/// "Medium Time", "Short Time" (case-insensitive) and user-defined ones built from h, hh, n, nn,
/// m/mm after an hour (minutes), s, ss, AM/PM, am/pm, A/P, a/p, AMPM, ttttt, literal text in
/// quotes or after a backslash, and the separators ":" and ".". The empty format gives the
/// system's default time text (the long time form, "10:50:00 AM" in English).
[[nodiscard]] QString formatTime(const QTime &time, QStringView format);

} // namespace Conv

#pragma once

#include "common/dlverror.h"

#include <QString>
#include <QStringView>

class QTime;

/// The host platform's conversions, as the control uses them. All values from the host arrive as
/// text; numbers are read by the leading-number parse and rounded to 32-bit integers.
namespace Conv {

/// Reads a number from the start of text: blanks, tabs, carriage returns and line feeds are skipped
/// wherever they stand ("1 2" reads 12), then an optional sign, digits, one period, an optional
/// exponent with E or D ("1.5E3" reads 1500, "2D2" 200; "1E" reads 1), or "&H"/"&O" followed by
/// hexadecimal/octal digits. Those are typed as the platform types a literal: a value that fits 16
/// bits is a signed 16-bit integer ("&HFFFF" reads -1), else a signed 32-bit one ("&HFFFFFFFF"
/// reads -1); a trailing "&" forces the 32-bit form ("&HFFFF&" reads 65535); wider values keep
/// their low 32 bits. Reading stops at the first character that cannot continue the number ("1,5"
/// reads 1). Empty or non-numeric text gives 0; magnitudes beyond a double give infinity. Linear
/// time, no allocation. Never throws.
[[nodiscard]] double leadingNumber(QStringView text);

/// Rounds to a signed 32-bit integer with halves to the even neighbour (2.5 -> 2, 3.5 -> 4,
/// -1.5 -> -2). Throws DLVError(6) outside the range, and for NaN or infinity.
[[nodiscard]] qint32 toLong(double value);

/// toLong(leadingNumber(text)).
[[nodiscard]] qint32 textToLong(QStringView text);

/// a + b, throwing DLVError(6) when the sum leaves the signed 32-bit range.
// Inline: the grid fills add millions of counters per refresh.
[[nodiscard]] inline qint32 addChecked(qint32 a, qint32 b)
{
    qint32 sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) [[unlikely]]
        throw DLVError::overflow();
    return sum;
}

/// Rounds to 2 decimal places with halves to even, deciding on the double product value * 100
/// (0.125 -> 0.12, 0.135 -> 0.14). NaN and infinity pass through.
[[nodiscard]] double round2(double value);

/// The rate rule: 0 when hours is 0, otherwise round2(count / hours) as single precision.
/// Throws DLVError(6) if the division yields NaN or infinity.
[[nodiscard]] float rate(double count, double hours);

/// The "#" number format: the value rounded to a whole number (halves away from zero) without
/// separators; zero, and anything that rounds to it, writes nothing ("" for 0, "12" for 12, "-3"
/// for -3, "13" for 12.5). Above 15 significant digits the digits after the 15th are zeros.
/// Throws DLVError(6) for NaN or infinity.
[[nodiscard]] QString formatHash(double value);

/// The shortest text of a single-precision value, as the host platform writes it: the value
/// rounded to 7 significant digits, no trailing zeros, "." as decimal point ("2.33", "0.12", "0",
/// "-1.5"). When the rounded value's decimal exponent is 7 or more, or below -4, it is written in
/// scientific form with a signed exponent of at least two digits ("1E+07", "1.234568E+07",
/// "1E-05"); so 9999999 and 0.0001 are still plain. Infinity and NaN write "1.#INF", "-1.#INF",
/// "1.#QNAN" and "-1.#IND" (the sign bit decides) as the platform's runtime does.
[[nodiscard]] QString singleText(float value);

/// "True" / "False".
[[nodiscard]] QString boolText(bool value);

/// Reads a Boolean text case-insensitively: "true"/"false" in any case (surrounding blanks
/// allowed), or text that is a number as a whole ("1", "-0.5", "&H10"; non-zero is true).
/// Anything else, the empty text included, throws DLVError(13).
[[nodiscard]] bool textToBool(QStringView text);

/// Formats a time of day with a host time-format string: the named formats "Long Time",
/// "Medium Time", "Short Time" (case-insensitive) and user-defined ones built from h, hh, n, nn,
/// m/mm after an hour (minutes), s, ss, AM/PM, am/pm, A/P, a/p, AMPM, ttttt, literal text in
/// quotes or after a backslash, and the separators ":" and ".". Hours are 24-hour unless an AM/PM
/// token is present. m/mm is a minute when the nearest token before it is an hour or the nearest
/// after it a second; otherwise it is the month of the date part. A bare time of day has the
/// platform's day zero, Saturday 30 December 1899, as date part, which the date tokens write (d,
/// dd, ddd, dddd, ddddd, dddddd, m..mmmm, w, ww with weeks from Sunday and week 1 holding 1
/// January, q, y, yy, yyyy). Other characters are copied. The empty format and "Long Time" give the
/// default locale's long time form without time zone ("10:50:00 AM" in English); "Medium Time"
/// is "hh:nn AMPM" and "Short Time" "hh:nn". Names are read from QLocale() (the default locale).
/// Throws DLVError(5) for an invalid QTime.
[[nodiscard]] QString formatTime(const QTime &time, QStringView format);

} // namespace Conv

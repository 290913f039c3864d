#include "common/conversions.h"

#include "common/dlverror.h"

#include <QDate>
#include <QLocale>
#include <QTime>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>
#include <vector>

namespace Conv {

namespace {

constexpr bool isBlank(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

constexpr bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

constexpr int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

/// Walks UTF-16 text for the leading-number parse; blanks are invisible to it.
class Scanner
{
public:
    explicit Scanner(QStringView text) : m_pos(text.utf16()), m_end(text.utf16() + text.size()) {}

    [[nodiscard]] bool atEnd()
    {
        skipBlanks();
        return m_pos == m_end;
    }
    /// The next non-blank unit, or 0 at the end.
    [[nodiscard]] char16_t peek()
    {
        skipBlanks();
        return m_pos == m_end ? char16_t(0) : *m_pos;
    }
    void advance() { ++m_pos; }
    [[nodiscard]] const char16_t *position() const { return m_pos; }
    void rewind(const char16_t *pos) { m_pos = pos; }

private:
    void skipBlanks()
    {
        while (m_pos != m_end && isBlank(*m_pos))
            ++m_pos;
    }

    const char16_t *m_pos;
    const char16_t *m_end;
};

/// "&H..." / "&O...": the digits are read as the platform reads a literal, so a value that fits
/// 16 bits is a 16-bit signed integer (&HFFFF is -1) and one that fits 32 bits a 32-bit signed
/// integer (&HFFFFFFFF is -1), unless a trailing "&" asks for the 32-bit form (&HFFFF& is 65535).
/// Wider values keep their low 32 bits: the parse never fails.
double radixNumber(Scanner &in)
{
    const char16_t marker = in.peek();
    int base = 0;
    if (marker == u'H' || marker == u'h')
        base = 16;
    else if (marker == u'O' || marker == u'o')
        base = 8;
    else
        return 0;
    in.advance();

    std::uint32_t value = 0;
    bool wide = false;
    for (;;) {
        const int digit = hexValue(in.peek());
        if (digit < 0 || digit >= base)
            break;
        if (value > (std::numeric_limits<std::uint32_t>::max() >> (base == 16 ? 4 : 3)))
            wide = true;
        value = (value << (base == 16 ? 4 : 3)) | std::uint32_t(digit);
        in.advance();
    }
    if (!wide && value <= 0xFFFFu && in.peek() != u'&')
        return double(std::int16_t(std::uint16_t(value)));
    return double(std::int32_t(value));
}

// Enough significant digits to decide the correct rounding of any double; further non-zero digits
// only matter as a sticky digit.
constexpr int kMaxSignificantDigits = 800;
// Beyond these decimal magnitudes a double is infinite or zero whatever the digits.
constexpr std::int64_t kMaxMagnitude = 400;
constexpr std::int64_t kMinMagnitude = -400;

/// Decimal form: sign, digits, one period, exponent with E or D. Works in one pass over the text
/// with a fixed buffer, so long inputs cost linear time and no allocation.
double decimalNumber(Scanner &in)
{
    bool negative = false;
    if (const char16_t c = in.peek(); c == u'+' || c == u'-') {
        negative = c == u'-';
        in.advance();
    }

    std::array<char, kMaxSignificantDigits + 32> buf;
    int kept = 0;
    bool sticky = false;
    bool sawDigit = false;
    bool inFraction = false;
    // value = 0.<significant digits> x 10^magnitude
    std::int64_t magnitude = 0;
    for (;;) {
        const char16_t c = in.peek();
        if (isDigit(c)) {
            sawDigit = true;
            if (kept == 0 && c == u'0') {
                if (inFraction)
                    --magnitude;
            } else {
                if (kept < kMaxSignificantDigits)
                    buf[std::size_t(kept++)] = char(c);
                else if (c != u'0')
                    sticky = true;
                if (!inFraction)
                    ++magnitude;
            }
            in.advance();
        } else if (c == u'.' && !inFraction) {
            inFraction = true;
            in.advance();
        } else {
            break;
        }
    }
    if (!sawDigit)
        return 0;

    std::int64_t exponent = 0;
    if (const char16_t c = in.peek(); c == u'E' || c == u'e' || c == u'D' || c == u'd') {
        const char16_t *const beforeExponent = in.position();
        in.advance();
        bool negativeExponent = false;
        if (const char16_t s = in.peek(); s == u'+' || s == u'-') {
            negativeExponent = s == u'-';
            in.advance();
        }
        bool sawExponentDigit = false;
        while (isDigit(in.peek())) {
            sawExponentDigit = true;
            if (exponent < 100000000)
                exponent = exponent * 10 + (in.peek() - u'0');
            in.advance();
        }
        if (!sawExponentDigit)
            in.rewind(beforeExponent);
        if (negativeExponent)
            exponent = -exponent;
    }

    if (kept == 0)
        return 0;
    const std::int64_t total = magnitude + exponent;
    const double huge = std::numeric_limits<double>::infinity();
    if (total > kMaxMagnitude)
        return negative ? -huge : huge;
    if (total < kMinMagnitude)
        return 0;

    std::int64_t scale = total - kept;
    if (sticky) {
        buf[std::size_t(kept++)] = '1';
        --scale;
    }
    char *const digitsEnd = buf.data() + kept;
    char *textEnd = digitsEnd;
    *textEnd++ = 'e';
    textEnd = std::to_chars(textEnd, buf.data() + buf.size(), scale).ptr;

    double value = 0;
    const auto [ptr, ec] = std::from_chars(buf.data(), textEnd, value);
    Q_UNUSED(ptr);
    if (ec == std::errc::result_out_of_range)
        value = total > 0 ? huge : 0.0;
    if (value == 0)
        return 0; // never a negative zero
    return negative ? -value : value;
}

/// Halves to the even neighbour, on the exact binary value.
double roundHalfEven(double value)
{
    const double lower = std::floor(value);
    const double diff = value - lower; // exact for every finite double
    if (diff > 0.5)
        return lower + 1;
    if (diff < 0.5)
        return lower;
    return std::fmod(lower, 2.0) == 0 ? lower : lower + 1;
}

// ---- Time formats -------------------------------------------------------------------------------

/// The date part of a bare time of day on the host platform: its day zero.
QDate zeroDate()
{
    return QDate(1899, 12, 30);
}

/// The locale's long time form without the time-zone part, which a bare time of day does not have.
QString longTimeText(const QTime &time)
{
    const QLocale locale;
    QString format = locale.timeFormat(QLocale::LongFormat);
    qsizetype i = 0;
    QString cleaned;
    cleaned.reserve(format.size());
    bool quoted = false;
    while (i < format.size()) {
        const QChar c = format.at(i);
        if (c == u'\'') {
            quoted = !quoted;
            cleaned += c;
            ++i;
        } else if (!quoted && c == u't') {
            while (i < format.size() && format.at(i) == u't')
                ++i;
        } else {
            cleaned += c;
            ++i;
        }
    }
    return locale.toString(time, cleaned.trimmed());
}

enum class TokenKind
{
    Literal,
    Hour,
    Minute,
    MinuteOrMonth,
    Second,
    AmPmPair,   // AM/PM or A/P in the case written
    AmPmLocale, // AMPM
    LongTime,   // ttttt
    Day,
    Weekday,
    WeekOfYear,
    Quarter,
    DayOfYear,
    Year,
};

struct Token
{
    TokenKind kind = TokenKind::Literal;
    QStringView text; // the format text of the token (for literals: the text to copy)
    int width = 1;    // run length of a letter token
};

[[nodiscard]] bool startsWithCi(QStringView s, qsizetype at, QStringView what)
{
    return s.size() - at >= what.size() &&
           s.mid(at, what.size()).compare(what, Qt::CaseInsensitive) == 0;
}

[[nodiscard]] bool isDateTimeToken(TokenKind k)
{
    return k != TokenKind::Literal;
}

/// Splits a user-defined format into tokens. Letter runs are taken whole (up to the widest form of
/// their token), everything unknown is literal.
std::vector<Token> tokenize(QStringView format)
{
    std::vector<Token> tokens;
    qsizetype i = 0;
    const qsizetype n = format.size();
    auto run = [&](QChar letter, int maxWidth) {
        int width = 0;
        while (i + width < n && width < maxWidth &&
               format.at(i + width).toLower() == letter.toLower())
            ++width;
        return width;
    };
    while (i < n) {
        const QChar c = format.at(i);
        const char16_t lower = c.toLower().unicode();
        if (c == u'"') {
            const qsizetype close = format.indexOf(u'"', i + 1);
            const qsizetype stop = close < 0 ? n : close;
            tokens.push_back({TokenKind::Literal, format.mid(i + 1, stop - i - 1)});
            i = close < 0 ? n : close + 1;
        } else if (c == u'\\') {
            if (i + 1 < n)
                tokens.push_back({TokenKind::Literal, format.mid(i + 1, 1)});
            i += 2;
        } else if (startsWithCi(format, i, u"am/pm") || startsWithCi(format, i, u"a/p")) {
            const qsizetype len = startsWithCi(format, i, u"am/pm") ? 5 : 3;
            tokens.push_back({TokenKind::AmPmPair, format.mid(i, len)});
            i += len;
        } else if (startsWithCi(format, i, u"ampm")) {
            tokens.push_back({TokenKind::AmPmLocale, format.mid(i, 4)});
            i += 4;
        } else if (startsWithCi(format, i, u"ttttt")) {
            tokens.push_back({TokenKind::LongTime, format.mid(i, 5)});
            i += 5;
        } else {
            TokenKind kind = TokenKind::Literal;
            int maxWidth = 1;
            switch (lower) {
            case u'h':
                kind = TokenKind::Hour;
                maxWidth = 2;
                break;
            case u'n':
                kind = TokenKind::Minute;
                maxWidth = 2;
                break;
            case u'm':
                kind = TokenKind::MinuteOrMonth;
                maxWidth = 4;
                break;
            case u's':
                kind = TokenKind::Second;
                maxWidth = 2;
                break;
            case u'd':
                kind = TokenKind::Day;
                maxWidth = 6;
                break;
            case u'w':
                kind = TokenKind::Weekday;
                maxWidth = 2;
                break;
            case u'q':
                kind = TokenKind::Quarter;
                maxWidth = 1;
                break;
            case u'y':
                kind = TokenKind::Year;
                maxWidth = 4;
                break;
            default:
                break;
            }
            if (kind == TokenKind::Literal) {
                tokens.push_back({TokenKind::Literal, format.mid(i, 1)});
                ++i;
                continue;
            }
            int width = run(c, maxWidth);
            if (kind == TokenKind::Weekday && width == 2)
                kind = TokenKind::WeekOfYear;
            if (kind == TokenKind::Year) {
                // y is the day of the year, yy and yyyy the year; a run of three reads as yy + y.
                if (width == 1)
                    kind = TokenKind::DayOfYear;
                else if (width == 3)
                    width = 2;
            }
            tokens.push_back({kind, format.mid(i, width), width});
            i += width;
        }
    }
    return tokens;
}

void appendNumber(QString &out, int value, int minDigits)
{
    if (minDigits >= 2 && value < 10)
        out += u'0';
    out += QString::number(value);
}

/// The week of the year of date with weeks starting on Sunday and week 1 the one of 1 January.
int weekOfYearSundayFirst(const QDate &date)
{
    const QDate first(date.year(), 1, 1);
    const int firstWeekday = first.dayOfWeek() % 7; // Sunday 0 .. Saturday 6
    return (date.dayOfYear() - 1 + firstWeekday) / 7 + 1;
}

QString formatUserTime(const QTime &time, QStringView format)
{
    std::vector<Token> tokens = tokenize(format);

    bool twelveHour = false;
    for (std::size_t k = 0; k < tokens.size(); ++k) {
        Token &t = tokens[k];
        if (t.kind == TokenKind::AmPmPair || t.kind == TokenKind::AmPmLocale)
            twelveHour = true;
        if (t.kind != TokenKind::MinuteOrMonth || t.width > 2)
            continue;
        // m is a minute right after an hour or right before a second (separators in between do
        // not count), otherwise the month.
        const Token *prev = nullptr;
        for (std::size_t j = k; j-- > 0;) {
            if (isDateTimeToken(tokens[j].kind)) {
                prev = &tokens[j];
                break;
            }
        }
        const Token *next = nullptr;
        for (std::size_t j = k + 1; j < tokens.size(); ++j) {
            if (isDateTimeToken(tokens[j].kind)) {
                next = &tokens[j];
                break;
            }
        }
        if ((prev && prev->kind == TokenKind::Hour) || (next && next->kind == TokenKind::Second))
            t.kind = TokenKind::Minute;
    }

    const QLocale locale;
    const QDate date = zeroDate();
    const bool pm = time.hour() >= 12;
    QString out;
    out.reserve(format.size() + 8);
    for (const Token &t : tokens) {
        switch (t.kind) {
        case TokenKind::Literal:
            out += t.text;
            break;
        case TokenKind::Hour: {
            int hour = time.hour();
            if (twelveHour) {
                hour %= 12;
                if (hour == 0)
                    hour = 12;
            }
            appendNumber(out, hour, t.width);
            break;
        }
        case TokenKind::Minute:
            appendNumber(out, time.minute(), t.width);
            break;
        case TokenKind::Second:
            appendNumber(out, time.second(), t.width);
            break;
        case TokenKind::MinuteOrMonth:
            if (t.width <= 2)
                appendNumber(out, date.month(), t.width);
            else
                out += locale.monthName(date.month(),
                                        t.width == 3 ? QLocale::ShortFormat : QLocale::LongFormat);
            break;
        case TokenKind::AmPmPair:
            // AM/PM writes its first half before noon and its second half after, as written.
            if (t.text.size() == 5)
                out += pm ? t.text.mid(3, 2) : t.text.mid(0, 2);
            else
                out += pm ? t.text.mid(2, 1) : t.text.mid(0, 1);
            break;
        case TokenKind::AmPmLocale:
            out += pm ? locale.pmText() : locale.amText();
            break;
        case TokenKind::LongTime:
            out += longTimeText(time);
            break;
        case TokenKind::Day:
            switch (t.width) {
            case 1:
            case 2:
                appendNumber(out, date.day(), t.width);
                break;
            case 3:
                out += locale.dayName(date.dayOfWeek(), QLocale::ShortFormat);
                break;
            case 4:
                out += locale.dayName(date.dayOfWeek(), QLocale::LongFormat);
                break;
            case 5:
                out += locale.toString(date, QLocale::ShortFormat);
                break;
            default:
                out += locale.toString(date, QLocale::LongFormat);
                break;
            }
            break;
        case TokenKind::Weekday:
            out += QString::number(date.dayOfWeek() % 7 + 1); // Sunday is day 1
            break;
        case TokenKind::WeekOfYear:
            out += QString::number(weekOfYearSundayFirst(date));
            break;
        case TokenKind::Quarter:
            out += QString::number((date.month() - 1) / 3 + 1);
            break;
        case TokenKind::DayOfYear:
            out += QString::number(date.dayOfYear());
            break;
        case TokenKind::Year:
            if (t.width == 2)
                appendNumber(out, date.year() % 100, 2);
            else
                out += QString::number(date.year());
            break;
        }
    }
    return out;
}

/// Whether text, without surrounding blanks, is one number and nothing else: sign, digits, one
/// period and an exponent, or "&H"/"&O" digits with an optional trailing "&".
[[nodiscard]] bool isWholeNumber(QStringView text)
{
    const qsizetype n = text.size();
    qsizetype i = 0;
    auto at = [&](qsizetype k) { return k < n ? text.at(k).unicode() : char16_t(0); };
    if (at(0) == u'&') {
        const char16_t marker = at(1);
        const int base = (marker == u'H' || marker == u'h')   ? 16
                         : (marker == u'O' || marker == u'o') ? 8
                                                              : 0;
        if (base == 0)
            return false;
        i = 2;
        const qsizetype firstDigit = i;
        while (hexValue(at(i)) >= 0 && hexValue(at(i)) < base)
            ++i;
        if (i == firstDigit)
            return false;
        if (at(i) == u'&')
            ++i;
        return i == n;
    }
    if (at(0) == u'+' || at(0) == u'-')
        ++i;
    bool sawDigit = false;
    bool sawPoint = false;
    for (;; ++i) {
        if (isDigit(at(i)))
            sawDigit = true;
        else if (at(i) == u'.' && !sawPoint)
            sawPoint = true;
        else
            break;
    }
    if (!sawDigit)
        return false;
    if (const char16_t e = at(i); e == u'E' || e == u'e' || e == u'D' || e == u'd') {
        ++i;
        if (at(i) == u'+' || at(i) == u'-')
            ++i;
        const qsizetype firstDigit = i;
        while (isDigit(at(i)))
            ++i;
        if (i == firstDigit)
            return false;
    }
    return i == n;
}

} // namespace

namespace {
// Nearly every value a host sends is a short plain integer ("0", "17", "-3"). Reading those
// directly skips the general scanner, which keeps every digit for exact rounding; it is the hot
// path of a refresh (fourteen counters per detail row). Anything else takes the general road.
bool plainSmallInteger(QStringView text, qint32 &value)
{
    const qsizetype n = text.size();
    if (n == 0 || n > 10)
        return false;
    qsizetype i = 0;
    const bool negative = text[0] == u'-';
    if (negative || text[0] == u'+')
        i = 1;
    if (i == n || n - i > 9) // nine digits always fit in 32 bits
        return false;
    qint32 v = 0;
    for (; i < n; ++i) {
        const char16_t c = text[i].unicode();
        if (c < u'0' || c > u'9')
            return false;
        v = v * 10 + qint32(c - u'0');
    }
    value = negative ? -v : v;
    return true;
}
} // namespace

double leadingNumber(QStringView text)
{
    if (qint32 v = 0; plainSmallInteger(text, v))
        return v;
    Scanner in(text);
    if (in.peek() == u'&') {
        in.advance();
        return radixNumber(in);
    }
    return decimalNumber(in);
}

qint32 toLong(double value)
{
    if (!std::isfinite(value))
        throw DLVError::overflow();
    const double rounded = roundHalfEven(value);
    if (rounded < double(std::numeric_limits<qint32>::min()) ||
        rounded > double(std::numeric_limits<qint32>::max()))
        throw DLVError::overflow();
    return qint32(rounded);
}

qint32 textToLong(QStringView text)
{
    if (qint32 v = 0; plainSmallInteger(text, v))
        return v;
    return toLong(leadingNumber(text));
}

double round2(double value)
{
    if (!std::isfinite(value))
        return value;
    return roundHalfEven(value * 100.0) / 100.0;
}

float rate(double count, double hours)
{
    if (hours == 0)
        return 0.0f;
    const double quotient = count / hours;
    if (!std::isfinite(quotient))
        throw DLVError::overflow();
    const double rounded = round2(quotient);
    const float single = float(rounded);
    if (!std::isfinite(rounded) || !std::isfinite(single))
        throw DLVError::overflow();
    return single;
}

QString formatHash(double value)
{
    if (!std::isfinite(value))
        throw DLVError::overflow();
    const double whole = std::round(value); // halves away from zero, as the "#" format rounds
    if (whole == 0)
        return QString();
    // Up to 15 significant digits are exact; above that the platform writes 15 digits and zeros.
    if (std::fabs(whole) < 1e15)
        return QString::number(qint64(whole));

    std::array<char, 40> buf;
    const auto res = std::to_chars(buf.data(), buf.data() + buf.size(), whole,
                                   std::chars_format::scientific, 14);
    // d.dddddddddddddde+XX
    const std::string_view text(buf.data(), std::size_t(res.ptr - buf.data()));
    const std::size_t e = text.find('e');
    int exponent = 0;
    std::from_chars(text.data() + e + 1 + (text[e + 1] == '+' ? 1 : 0), text.data() + text.size(),
                    exponent);
    QString out;
    out.reserve(exponent + 3);
    for (std::size_t i = 0; i < e; ++i) {
        if (text[i] != '.')
            out += QLatin1Char(text[i]);
    }
    const qsizetype digitsWanted = exponent + 1 + (whole < 0 ? 1 : 0);
    while (out.size() < digitsWanted)
        out += u'0';
    return out;
}

QString singleText(float value)
{
    if (std::isnan(value))
        return std::signbit(value) ? QStringLiteral("-1.#IND") : QStringLiteral("1.#QNAN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-1.#INF") : QStringLiteral("1.#INF");
    if (value == 0)
        return QStringLiteral("0");

    // Seven significant digits of the exact single value: d.dddddde[+-]XX.
    std::array<char, 32> buf;
    const auto res = std::to_chars(buf.data(), buf.data() + buf.size(), double(std::fabs(value)),
                                   std::chars_format::scientific, 6);
    const char *const end = res.ptr;
    const char *ePos = buf.data();
    while (ePos != end && *ePos != 'e')
        ++ePos;
    int exponent = 0;
    const char *expStart = ePos + 1;
    if (*expStart == '+')
        ++expStart;
    std::from_chars(expStart, end, exponent);

    std::array<char, 8> digits{};
    int count = 0;
    for (const char *p = buf.data(); p != ePos; ++p) {
        if (*p != '.')
            digits[std::size_t(count++)] = *p;
    }
    while (count > 1 && digits[std::size_t(count - 1)] == '0')
        --count;

    QString out;
    out.reserve(16);
    if (value < 0)
        out += u'-';
    if (exponent >= 7 || exponent < -4) {
        out += QLatin1Char(digits[0]);
        if (count > 1) {
            out += u'.';
            for (int i = 1; i < count; ++i)
                out += QLatin1Char(digits[std::size_t(i)]);
        }
        out += u'E';
        out += exponent < 0 ? u'-' : u'+';
        const int absExp = exponent < 0 ? -exponent : exponent;
        if (absExp < 10)
            out += u'0';
        out += QString::number(absExp);
    } else if (exponent >= 0) {
        for (int i = 0; i <= exponent; ++i)
            out += QLatin1Char(i < count ? digits[std::size_t(i)] : '0');
        if (count > exponent + 1) {
            out += u'.';
            for (int i = exponent + 1; i < count; ++i)
                out += QLatin1Char(digits[std::size_t(i)]);
        }
    } else {
        out += u"0.";
        for (int i = -1; i > exponent; --i)
            out += u'0';
        for (int i = 0; i < count; ++i)
            out += QLatin1Char(digits[std::size_t(i)]);
    }
    return out;
}

QString boolText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

bool textToBool(QStringView text)
{
    const QStringView trimmed = text.trimmed();
    if (trimmed.compare(u"true", Qt::CaseInsensitive) == 0)
        return true;
    if (trimmed.compare(u"false", Qt::CaseInsensitive) == 0)
        return false;

    // Numeric text must be a number as a whole: "12abc" or "1 2" is not a Boolean.
    if (!isWholeNumber(trimmed))
        throw DLVError::typeMismatch(QStringLiteral("\"%1\" is not a Boolean").arg(text));
    return leadingNumber(trimmed) != 0;
}

QString formatTime(const QTime &time, QStringView format)
{
    if (!time.isValid())
        throw DLVError::invalidCall(QStringLiteral("invalid time of day"));
    const QStringView name = format.trimmed();
    if (name.isEmpty() || name.compare(u"long time", Qt::CaseInsensitive) == 0)
        return longTimeText(time);
    if (name.compare(u"medium time", Qt::CaseInsensitive) == 0)
        return formatUserTime(time, u"hh:nn AMPM");
    if (name.compare(u"short time", Qt::CaseInsensitive) == 0)
        return formatUserTime(time, u"hh:nn");
    return formatUserTime(time, format);
}

} // namespace Conv

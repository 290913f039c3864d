#include "common/csvfield.h"

bool CsvField::isPlainNumber(QStringView s)
{
    // Optional sign, digits with at most one period, optional exponent.
    const auto isDigit = [](QChar c) { return c.unicode() >= u'0' && c.unicode() <= u'9'; };
    qsizetype i = 0;
    const qsizetype n = s.size();
    if (i < n && (s[i] == u'+' || s[i] == u'-'))
        ++i;
    qsizetype digits = 0;
    while (i < n && isDigit(s[i])) {
        ++i;
        ++digits;
    }
    if (i < n && s[i] == u'.') {
        ++i;
        while (i < n && isDigit(s[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0)
        return false;
    if (i < n && (s[i] == u'e' || s[i] == u'E')) {
        ++i;
        if (i < n && (s[i] == u'+' || s[i] == u'-'))
            ++i;
        qsizetype expDigits = 0;
        while (i < n && isDigit(s[i])) {
            ++i;
            ++expDigits;
        }
        if (expDigits == 0)
            return false;
    }
    return i == n;
}

bool CsvField::needsGuard(QStringView text)
{
    if (text.isEmpty())
        return false;
    const QChar first = text.front();
    if (first == u'\t' || first == u'\r')
        return true;
    return (first == u'=' || first == u'+' || first == u'-' || first == u'@') &&
           !isPlainNumber(text);
}

void CsvField::append(QString &out, QStringView text)
{
    bool quote = false;
    for (const QChar ch : text) {
        if (ch == u',' || ch == u'"' || ch == u'\r' || ch == u'\n') {
            quote = true;
            break;
        }
    }
    if (quote)
        out += u'"';
    if (needsGuard(text))
        out += u'\'';
    if (quote) {
        for (const QChar ch : text) {
            if (ch == u'"')
                out += u'"';
            out += ch;
        }
        out += u'"';
    } else {
        out += text;
    }
}

QString CsvField::text(QStringView text)
{
    QString out;
    out.reserve(text.size() + 3);
    append(out, text);
    return out;
}

#include "common/dlverror.h"
#include "webdata/webxmlwriter_p.h"

namespace {

bool isHighSurrogate(char16_t u)
{
    return u >= 0xD800 && u <= 0xDBFF;
}
bool isLowSurrogate(char16_t u)
{
    return u >= 0xDC00 && u <= 0xDFFF;
}

// Length of the well-formed character at i (1 or 2 for a surrogate pair), or 0 when XML 1.0
// cannot carry the code unit at i.
qsizetype carriedLength(QStringView s, qsizetype i)
{
    const char16_t u = s[i].unicode();
    if (u < 0x20)
        return (u == u'\t' || u == u'\n' || u == u'\r') ? 1 : 0;
    if (u < 0xD800)
        return 1;
    if (isHighSurrogate(u))
        return (i + 1 < s.size() && isLowSurrogate(s[i + 1].unicode())) ? 2 : 0;
    if (isLowSurrogate(u) || u == 0xFFFE || u == 0xFFFF)
        return 0;
    return 1;
}

const char16_t hexDigits[] = u"0123456789ABCDEF";

} // namespace

void WebXmlWriter::attribute(QLatin1StringView name, QStringView value, QLatin1StringView what)
{
    m_out.append(u' ').append(name).append(QLatin1StringView("=\""));
    qsizetype run = 0;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char16_t u = value[i].unicode();
        const char *entity = nullptr;
        switch (u) {
        case u'&':
            entity = "&amp;";
            break;
        case u'<':
            entity = "&lt;";
            break;
        case u'>':
            entity = "&gt;";
            break;
        case u'"':
            entity = "&quot;";
            break;
        // Written as references so that no reader's attribute normalisation turns them into blanks.
        case u'\t':
            entity = "&#9;";
            break;
        case u'\n':
            entity = "&#10;";
            break;
        case u'\r':
            entity = "&#13;";
            break;
        default:
            break;
        }
        if (entity) {
            m_out.append(value.mid(run, i - run)).append(QLatin1StringView(entity));
            run = i + 1;
            continue;
        }
        const qsizetype len = carriedLength(value, i);
        if (len == 0)
            throw DLVError(
                DLVError::InvalidCall,
                QStringLiteral("the %1 \"%2\" holds the code unit U+%3, which a document "
                               "cannot carry in a name")
                    .arg(what)
                    .arg(value.toString())
                    .arg(unsigned(u), 4, 16, QLatin1Char('0')));
        i += len - 1;
    }
    m_out.append(value.mid(run)).append(u'"');
}

void WebXmlWriter::text(QStringView value)
{
    const qsizetype start = m_out.size();
    qsizetype run = 0;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char16_t u = value[i].unicode();
        // Fast path: ordinary characters are copied in runs.
        if (u >= 0x20 && u < 0xD800 && u != u'&' && u != u'<' && u != u'>')
            continue;
        const char *entity = nullptr;
        switch (u) {
        case u'&':
            entity = "&amp;";
            break;
        case u'<':
            entity = "&lt;";
            break;
        case u'>':
            entity = "&gt;";
            break;
        case u'\r':
            entity = "&#13;";
            break;
        default:
            break;
        }
        if (entity) {
            m_out.append(value.mid(run, i - run)).append(QLatin1StringView(entity));
            run = i + 1;
            continue;
        }
        const qsizetype len = carriedLength(value, i);
        if (len == 0) {
            // Rare: start again in the mode that writes <C> elements and referenced blanks.
            m_out.truncate(start);
            mixedText(value);
            return;
        }
        i += len - 1;
    }
    m_out.append(value.mid(run));
}

void WebXmlWriter::mixedText(QStringView value)
{
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char16_t u = value[i].unicode();
        switch (u) {
        case u'&':
            m_out.append(QLatin1StringView("&amp;"));
            continue;
        case u'<':
            m_out.append(QLatin1StringView("&lt;"));
            continue;
        case u'>':
            m_out.append(QLatin1StringView("&gt;"));
            continue;
        case u' ':
        case u'\t':
        case u'\n':
        case u'\r':
            charRef(u);
            continue;
        default:
            break;
        }
        const qsizetype len = carriedLength(value, i);
        if (len == 0) {
            codeElement(u);
        } else {
            m_out.append(value.mid(i, len));
            i += len - 1;
        }
    }
}

void WebXmlWriter::codeElement(char16_t unit)
{
    m_out.append(QLatin1StringView("<C u=\""));
    bool leading = true;
    for (int shift = 12; shift >= 0; shift -= 4) {
        const unsigned digit = (unit >> shift) & 0xF;
        if (digit == 0 && leading && shift > 0)
            continue;
        leading = false;
        m_out.append(QChar(hexDigits[digit]));
    }
    m_out.append(QLatin1StringView("\"/>"));
}

void WebXmlWriter::charRef(char16_t unit)
{
    m_out.append(QLatin1StringView("&#")).append(QString::number(unsigned(unit))).append(u';');
}

void WebXmlWriter::textElement(QLatin1StringView tag, QStringView value)
{
    m_out.append(u'<').append(tag);
    if (value.isEmpty()) {
        m_out.append(QLatin1StringView("/>"));
        return;
    }
    m_out.append(u'>');
    text(value);
    m_out.append(QLatin1StringView("</")).append(tag).append(u'>');
}

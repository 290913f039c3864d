#include "common/dlverror.h"
#include "webdata/webxmltext_p.h"

namespace {

[[noreturn]] void throwBadUtf8()
{
    throw DLVError(DLVError::InvalidCall,
                   QStringLiteral("the document holds text that is not valid UTF-8 (or a character "
                                  "reference to a surrogate or to a code point above U+10FFFF)"));
}

// Decodes n bytes of UTF-8 into out (which has room for n units) and returns the end of the
// written units. Strict: overlong forms, encoded surrogates and code points above U+10FFFF are
// rejected rather than replaced, so that nothing is silently altered.
char16_t *decodeUtf8(const unsigned char *p, const unsigned char *end, char16_t *out)
{
    while (p < end) {
        unsigned c = *p;
        if (c < 0x80) {
            // Most host values are plain ASCII digits and codes.
            *out++ = char16_t(c);
            ++p;
            continue;
        }
        if (c >= 0xC2 && c <= 0xDF) {
            if (end - p < 2 || (p[1] & 0xC0) != 0x80)
                throwBadUtf8();
            *out++ = char16_t(((c & 0x1F) << 6) | (p[1] & 0x3F));
            p += 2;
        } else if (c >= 0xE0 && c <= 0xEF) {
            if (end - p < 3 || (p[1] & 0xC0) != 0x80 || (p[2] & 0xC0) != 0x80)
                throwBadUtf8();
            const unsigned cp = ((c & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F);
            if (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF))
                throwBadUtf8();
            *out++ = char16_t(cp);
            p += 3;
        } else if (c >= 0xF0 && c <= 0xF4) {
            if (end - p < 4 || (p[1] & 0xC0) != 0x80 || (p[2] & 0xC0) != 0x80 ||
                (p[3] & 0xC0) != 0x80)
                throwBadUtf8();
            const unsigned cp =
                ((c & 0x07) << 18) | ((p[1] & 0x3F) << 12) | ((p[2] & 0x3F) << 6) | (p[3] & 0x3F);
            if (cp < 0x10000 || cp > 0x10FFFF)
                throwBadUtf8();
            *out++ = char16_t(0xD800 + ((cp - 0x10000) >> 10));
            *out++ = char16_t(0xDC00 + ((cp - 0x10000) & 0x3FF));
            p += 4;
        } else {
            throwBadUtf8();
        }
    }
    return out;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

char16_t codeUnit(pugi::xml_node element)
{
    const char *u = element.attribute("u").value();
    unsigned value = 0;
    int digits = 0;
    for (; *u; ++u, ++digits) {
        const int d = hexDigit(*u);
        if (d < 0 || digits == 4) {
            digits = 0;
            break;
        }
        value = value * 16 + unsigned(d);
    }
    if (digits == 0)
        throw DLVError(DLVError::InvalidCall,
                       QStringLiteral("a <C> element needs the attribute u with 1 to 4 hexadecimal "
                                      "digits, found \"%1\"")
                           .arg(QString::fromUtf8(element.attribute("u").value())));
    return char16_t(value);
}

} // namespace

namespace WebXmlText {

void appendUtf8(std::vector<char16_t> &out, const char *utf8)
{
    appendUtf8(out, utf8, utf8 + std::strlen(utf8));
}

void appendUtf8(std::vector<char16_t> &out, const char *begin, const char *end)
{
    const std::size_t n = std::size_t(end - begin);
    if (n == 0)
        return;
    const std::size_t base = out.size();
    // UTF-16 never needs more units than UTF-8 has bytes.
    out.resize(base + n);
    const auto *p = reinterpret_cast<const unsigned char *>(begin);
    char16_t *written = decodeUtf8(p, p + n, out.data() + base);
    out.resize(std::size_t(written - out.data()));
}

QString toQString(const char *utf8)
{
    const std::size_t n = std::strlen(utf8);
    QString s(qsizetype(n), Qt::Uninitialized);
    const auto *p = reinterpret_cast<const unsigned char *>(utf8);
    char16_t *begin = reinterpret_cast<char16_t *>(s.data());
    char16_t *end = decodeUtf8(p, p + n, begin);
    s.truncate(end - begin);
    return s;
}

void appendElementText(std::vector<char16_t> &out, pugi::xml_node element)
{
    // The parser keeps an element's leading text as the element's own value.
    appendUtf8(out, element.value());
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
        switch (child.type()) {
        case pugi::node_pcdata:
        case pugi::node_cdata:
            appendUtf8(out, child.value());
            break;
        case pugi::node_element:
            if (!isNamed(child, "C"))
                throw DLVError(DLVError::InvalidCall,
                               QStringLiteral("unexpected element <%1> inside <%2>")
                                   .arg(toQString(child.name()), toQString(element.name())));
            out.push_back(codeUnit(child));
            break;
        default:
            break;
        }
    }
}

QString elementText(pugi::xml_node element)
{
    std::vector<char16_t> buffer;
    appendElementText(buffer, element);
    return QString(reinterpret_cast<const QChar *>(buffer.data()), qsizetype(buffer.size()));
}

} // namespace WebXmlText

#include "common/dlverror.h"
#include "webdata/webxmldocument_p.h"
#include "webdata/webxmltext_p.h"

#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif
#include <new>

Q_LOGGING_CATEGORY(lcWebData, "dlv.webdata", QtWarningMsg)

namespace {

// No end-of-line normalisation (a CR in a value must survive) and no attribute-whitespace
// conversion (names are exact). Whitespace-only text between elements is dropped, except when it
// is the whole content of an element, so that a value of blanks is kept. An element's leading
// text is stored in the element itself: half the nodes for a large table.
constexpr unsigned parseFlags = pugi::parse_cdata | pugi::parse_escapes |
                                pugi::parse_ws_pcdata_single | pugi::parse_embed_pcdata;

// Out of memory, as the host platform numbers it.
constexpr qint32 OutOfMemory = 7;

QString kindText(const WebXmlKind &kind)
{
    return QString::fromLatin1(kind.description);
}

[[noreturn]] void throwMalformed(const WebXmlKind &kind, const QString &what)
{
    throw DLVError(DLVError::InvalidCall,
                   QStringLiteral("The %1 is not well-formed: %2").arg(kindText(kind), what));
}

[[noreturn]] void throwLossyReference(const WebXmlKind &kind, const QString &position)
{
    throwMalformed(kind, QStringLiteral("a character reference to U+0000 or beyond U+10FFFF at %1 "
                                        "(write a NUL as <C u=\"0\"/>)")
                             .arg(position));
}

// Position of a UTF-16 index as text, with line and column (1-based) for people reading a file.
QString utf16Position(QStringView xml, qsizetype index)
{
    qsizetype line = 1;
    qsizetype lineStart = 0;
    for (qsizetype i = 0; i < index && i < xml.size(); ++i) {
        if (xml[i] == u'\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    return QStringLiteral("character %1 (line %2, column %3)")
        .arg(index)
        .arg(line)
        .arg(index - lineStart + 1);
}

QString utf8Position(QByteArrayView xml, qsizetype offset)
{
    qsizetype line = 1;
    qsizetype lineStart = 0;
    for (qsizetype i = 0; i < offset && i < xml.size(); ++i) {
        if (xml[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    return QStringLiteral("byte %1 (line %2, byte %3 of the line)")
        .arg(offset)
        .arg(line)
        .arg(offset - lineStart + 1);
}

// The parser reports offsets into its UTF-8 form of the text; map one back to a UTF-16 index.
qsizetype utf16IndexOfUtf8Offset(QStringView xml, std::ptrdiff_t offset)
{
    std::ptrdiff_t bytes = 0;
    qsizetype i = 0;
    while (i < xml.size() && bytes < offset) {
        const char16_t u = xml[i].unicode();
        if (u < 0x80) {
            bytes += 1;
        } else if (u < 0x800) {
            bytes += 2;
        } else if (u >= 0xD800 && u <= 0xDBFF && i + 1 < xml.size()) {
            bytes += 4;
            ++i;
        } else {
            bytes += 3;
        }
        ++i;
    }
    return i;
}

bool startsWith(const auto *p, const auto *end, const char *literal)
{
    for (; *literal; ++literal, ++p) {
        if (p == end || *p != char16_t(static_cast<unsigned char>(*literal)))
            return false;
    }
    return true;
}

// Index of the first character after the terminator, searching from p, or end when missing.
template <typename Char>
const Char *skipPast(const Char *p, const Char *end, const char *terminator)
{
    for (; p < end; ++p) {
        if (startsWith(p, end, terminator))
            return p + std::strlen(terminator);
    }
    return end;
}

bool holdsNulOrSurrogate(const char16_t *p, const char16_t *end)
{
#ifdef __SSE2__
    // Eight code units at a time: a megabyte of text in well under a millisecond.
    const __m128i surrogateMask = _mm_set1_epi16(short(0xF800));
    const __m128i surrogateBits = _mm_set1_epi16(short(0xD800));
    const __m128i zero = _mm_setzero_si128();
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const __m128i hit =
            _mm_or_si128(_mm_cmpeq_epi16(v, zero),
                         _mm_cmpeq_epi16(_mm_and_si128(v, surrogateMask), surrogateBits));
        if (_mm_movemask_epi8(hit) != 0)
            return true;
    }
#endif
    for (; p < end; ++p) {
        if (*p == 0 || (*p & 0xF800) == 0xD800)
            return true;
    }
    return false;
}

bool holdsCharacterReference(const unsigned char *begin, const unsigned char *end)
{
    for (const unsigned char *p = begin; p < end; ++p) {
        p = static_cast<const unsigned char *>(std::memchr(p, '&', std::size_t(end - p)));
        if (!p)
            return false;
        if (p + 1 < end && p[1] == '#')
            return true;
    }
    return false;
}

bool holdsCharacterReference(const char16_t *begin, const char16_t *end)
{
    const char16_t *p = begin;
#ifdef __SSE2__
    // Blocks of eight code units without an '&' are passed over at once.
    const __m128i ampersand = _mm_set1_epi16(short(u'&'));
    for (; end - p > 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(v, ampersand)) == 0)
            continue;
        for (int k = 0; k < 8; ++k) {
            if (p[k] == u'&' && p[k + 1] == u'#')
                return true;
        }
    }
#endif
    for (; p + 1 < end; ++p) {
        if (*p == u'&' && p[1] == u'#')
            return true;
    }
    return false;
}

} // namespace

template <typename Char>
qsizetype WebXmlDocument::firstLossyReference(const Char *begin, const Char *end)
{
    // The parser writes a reference to U+0000 as a NUL into its own buffer, which silently ends
    // the string there ("Crew &#0;TAIL" would load as "Crew "); a value too large for its 32-bit
    // arithmetic wraps, possibly to zero. Both are found before parsing. CDATA sections, comments
    // and processing instructions hold no references, so "&#0;" inside them is plain text.
    // Most documents hold no character reference at all, which one quick search settles.
    if (!holdsCharacterReference(begin, end))
        return -1;
    for (const Char *p = begin; p < end; ++p) {
        if (*p == u'<') {
            if (startsWith(p, end, "<![CDATA["))
                p = skipPast(p, end, "]]>") - 1;
            else if (startsWith(p, end, "<!--"))
                p = skipPast(p, end, "-->") - 1;
            else if (startsWith(p, end, "<?"))
                p = skipPast(p, end, "?>") - 1;
            continue;
        }
        if (*p != u'&' || end - p < 3 || p[1] != u'#')
            continue;
        const bool hex = p[2] == u'x';
        const Char *q = p + (hex ? 3 : 2);
        quint64 value = 0;
        bool tooLarge = false;
        bool digits = false;
        for (; q < end; ++q) {
            int d = -1;
            if (*q >= u'0' && *q <= u'9')
                d = int(*q - u'0');
            else if (hex && *q >= u'a' && *q <= u'f')
                d = int(*q - u'a') + 10;
            else if (hex && *q >= u'A' && *q <= u'F')
                d = int(*q - u'A') + 10;
            if (d < 0)
                break;
            digits = true;
            value = value * (hex ? 16 : 10) + quint64(d);
            if (value > 0x10FFFF) {
                tooLarge = true;
                value = 0x110000; // keeps the arithmetic bounded on endless digit runs
            }
        }
        // Without digits or the closing ";" the parser keeps the text as it stands.
        if (digits && q < end && *q == u';' && (value == 0 || tooLarge))
            return p - begin;
    }
    return -1;
}

void WebXmlDocument::checkText(QStringView xml, const WebXmlKind &kind)
{
    checkUnits(xml, kind);
    if (const qsizetype at = firstLossyReference(xml.utf16(), xml.utf16() + xml.size()); at >= 0)
        throwLossyReference(kind, utf16Position(xml, at));
}

void WebXmlDocument::checkUnits(QStringView xml, const WebXmlKind &kind)
{
    // The parser would end the text at a NUL and silently drop unpaired surrogates; both are
    // refused here so that nothing is lost without an error. Text without any NUL or surrogate
    // (nearly all) is settled by one pass the compiler can vectorise.
    if (!holdsNulOrSurrogate(xml.utf16(), xml.utf16() + xml.size()))
        return;
    for (qsizetype i = 0; i < xml.size(); ++i) {
        const char16_t u = xml[i].unicode();
        if (u < 0xD800 && u != 0)
            continue;
        if (u == 0)
            throwMalformed(kind,
                           QStringLiteral("a NUL character at %1").arg(utf16Position(xml, i)));
        if (u >= 0xD800 && u <= 0xDBFF && i + 1 < xml.size() && xml[i + 1].unicode() >= 0xDC00 &&
            xml[i + 1].unicode() <= 0xDFFF) {
            ++i;
            continue;
        }
        if (u <= 0xDFFF)
            throwMalformed(kind,
                           QStringLiteral("an unpaired surrogate at %1 (write it as <C u=\"%2\"/>)")
                               .arg(utf16Position(xml, i))
                               .arg(unsigned(u), 0, 16));
    }
}

void WebXmlDocument::checkText(QByteArrayView utf8, const WebXmlKind &kind)
{
    if (const void *nul = std::memchr(utf8.data(), 0, std::size_t(utf8.size())))
        throwMalformed(kind,
                       QStringLiteral("a NUL byte at %1")
                           .arg(utf8Position(utf8, static_cast<const char *>(nul) - utf8.data())));
    const auto *bytes = reinterpret_cast<const unsigned char *>(utf8.data());
    if (const qsizetype at = firstLossyReference(bytes, bytes + utf8.size()); at >= 0)
        throwLossyReference(kind, utf8Position(utf8, at));
}

void WebXmlDocument::throwParseError(QStringView xml, const WebXmlKind &kind,
                                     const char *description, std::ptrdiff_t offset)
{
    throwMalformed(kind, QStringLiteral("%1 at %2")
                             .arg(QString::fromLatin1(description),
                                  utf16Position(xml, utf16IndexOfUtf8Offset(xml, offset))));
}

void WebXmlDocument::throwParseError(QByteArrayView utf8, const WebXmlKind &kind,
                                     const char *description, std::ptrdiff_t offset)
{
    throwMalformed(kind, QStringLiteral("%1 at %2")
                             .arg(QString::fromLatin1(description), utf8Position(utf8, offset)));
}

void WebXmlDocument::throwOutOfMemory(const WebXmlKind &kind)
{
    throw DLVError(OutOfMemory, QStringLiteral("Out of memory loading the %1").arg(kindText(kind)));
}

void WebXmlDocument::throwWrongRoot(const WebXmlKind &kind, const QString &found)
{
    throw DLVError(DLVError::InvalidCall,
                   QStringLiteral("The %1 must have the root element <%2>, not <%3>")
                       .arg(kindText(kind), QString::fromLatin1(kind.root), found));
}

void WebXmlDocument::throwSecondRoot(const WebXmlKind &kind, const QString &found)
{
    throw DLVError(DLVError::InvalidCall,
                   QStringLiteral("The %1 has a second root element <%2> after <%3>")
                       .arg(kindText(kind), found, QString::fromLatin1(kind.root)));
}

WebXmlDocument::WebXmlDocument(QStringView xml, const WebXmlKind &kind) : m_kind(kind)
{
    checkText(xml, kind);
    const pugi::xml_parse_result result = m_doc.load_buffer(
        xml.data(), std::size_t(xml.size()) * sizeof(char16_t), parseFlags, pugi::encoding_utf16);
    if (result.status == pugi::status_out_of_memory)
        throwOutOfMemory(kind);
    if (!result)
        throwParseError(xml, kind, result.description(), result.offset);
    checkRoot();
}

WebXmlDocument::WebXmlDocument(QByteArrayView utf8, const WebXmlKind &kind) : m_kind(kind)
{
    checkText(utf8, kind);
    const pugi::xml_parse_result result =
        m_doc.load_buffer(utf8.data(), std::size_t(utf8.size()), parseFlags, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory)
        throwOutOfMemory(kind);
    if (!result)
        throwParseError(utf8, kind, result.description(), result.offset);
    checkRoot();
}

void WebXmlDocument::checkRoot()
{
    m_root = m_doc.document_element();
    if (!WebXmlText::isNamed(m_root, m_kind.root))
        throwWrongRoot(m_kind, QString::fromUtf8(m_root.name()));
    for (pugi::xml_node n = m_root.next_sibling(); n; n = n.next_sibling()) {
        if (n.type() == pugi::node_element)
            throwSecondRoot(m_kind, QString::fromUtf8(n.name()));
    }
}

void WebXmlDocument::rethrowWithContext(const WebXmlKind &kind)
{
    try {
        throw;
    } catch (const DLVError &e) {
        qCDebug(lcWebData) << "rejected" << kind.description << e.description();
        throw DLVError(
            e.number(),
            QStringLiteral("The %1 is invalid: %2").arg(kindText(kind), e.description()));
    } catch (const std::bad_alloc &) {
        throwOutOfMemory(kind);
    }
}

template qsizetype WebXmlDocument::firstLossyReference(const char16_t *, const char16_t *);
template qsizetype WebXmlDocument::firstLossyReference(const unsigned char *,
                                                       const unsigned char *);

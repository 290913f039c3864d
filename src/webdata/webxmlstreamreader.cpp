#include "common/dlverror.h"
#include "common/ordereddict.h"
#include "webdata/webxmldocument_p.h"
#include "webdata/webxmlstreamreader_p.h"
#include "webdata/webxmltext_p.h"

#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <vector>

// Types the builder class shares with the tokeniser (a named namespace: the builder is not
// local to this file).
namespace WebXmlStreamParts {

using Byte = unsigned char;

// What an open element means to the objects being filled.
enum class Role : std::uint8_t
{
    Skip,     // parsed for well-formedness only
    Message,  // <WebMessage>
    Property, // <Property key=..> text
    Data,     // <WebData>
    Table,    // <Table name=..>
    Column,   // <Column name=..>
    Row,      // <Row>
    Value,    // <V> text
    Code,     // <C u=..> inside a value or property
};

template <typename Char> struct SpanOf
{
    const Char *begin = nullptr;
    const Char *end = nullptr;
};

} // namespace WebXmlStreamParts

using namespace WebXmlStreamParts;

namespace {

constexpr std::size_t maxTextChars = std::numeric_limits<std::uint32_t>::max();

// The tree parser's character classes: blanks, name characters and name starts (every byte of
// a multi-byte UTF-8 sequence counts as a letter).
enum CharClass : std::uint8_t
{
    Space = 1,
    Symbol = 2,
    StartSymbol = 4
};

constexpr std::array<std::uint8_t, 256> makeClasses()
{
    std::array<std::uint8_t, 256> table{};
    for (int c = 0; c < 256; ++c) {
        std::uint8_t v = 0;
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r')
            v |= Space;
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || c >= 128)
            v |= Symbol | StartSymbol;
        if ((c >= '0' && c <= '9') || c == '-' || c == '.')
            v |= Symbol;
        table[std::size_t(c)] = v;
    }
    return table;
}

constexpr std::array<std::uint8_t, 256> classes = makeClasses();

// A code unit's class; UTF-16 units above 0xFF are letters, like the bytes of UTF-8 sequences.
inline bool isUnit(unsigned c, CharClass cls)
{
    return c < 256 ? (classes[c] & cls) != 0 : cls != Space;
}

template <typename Char>
bool namedAs(const Char *name, std::size_t length, const char *literal, std::size_t literalLength)
{
    if (length != literalLength)
        return false;
    for (std::size_t i = 0; i < length; ++i) {
        if (name[i] != Char(static_cast<unsigned char>(literal[i])))
            return false;
    }
    return true;
}

template <typename Char, std::size_t N>
bool named(const Char *name, std::size_t length, const char (&literal)[N])
{
    return namedAs(name, length, literal, N - 1);
}

template <typename Char> bool namedAs(const Char *name, std::size_t length, const char *literal)
{
    return namedAs(name, length, literal, std::strlen(literal));
}

inline const Byte *findUnit(const Byte *p, const Byte *end, Byte unit)
{
    return static_cast<const Byte *>(std::memchr(p, unit, std::size_t(end - p)));
}

inline const char16_t *findUnit(const char16_t *p, const char16_t *end, char16_t unit)
{
    for (; p < end; ++p) {
        if (*p == unit)
            return p;
    }
    return nullptr;
}

// Names as the tree reader shows them in errors: its UTF-8 decoded leniently, or strictly.
inline QString lenientName(const Byte *name, std::size_t length)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(name), qsizetype(length));
}

inline QString lenientName(const char16_t *name, std::size_t length)
{
    // Through the UTF-8 form, as the tree reader shows it (a leading U+FEFF is dropped there).
    return QString::fromUtf8(QStringView(name, qsizetype(length)).toUtf8());
}

inline QString strictName(const Byte *name, std::size_t length)
{
    return WebXmlText::toQString(std::string(reinterpret_cast<const char *>(name), length).c_str());
}

inline QString strictName(const char16_t *name, std::size_t length)
{
    return QString(reinterpret_cast<const QChar *>(name), qsizetype(length)); // checked: valid
}

// Literal text in the UTF-8 form the tree parser keeps.
inline void appendLiteral(std::string &out, const Byte *begin, const Byte *end)
{
    out.append(reinterpret_cast<const char *>(begin), std::size_t(end - begin));
}

inline void appendLiteral(std::string &out, const char16_t *begin, const char16_t *end)
{
    out += QStringView(begin, end - begin).toUtf8().toStdString();
}

// The bytes of a character reference as the tree parser writes them into its buffer: any 32-bit
// value, in the UTF-8 pattern (a value beyond U+10FFFF gives bytes that fail decoding later).
std::size_t writeUtf8Any(std::uint32_t ch, char *out)
{
    if (ch < 0x80) {
        out[0] = char(ch);
        return 1;
    }
    if (ch < 0x800) {
        out[0] = char(std::uint8_t(0xC0 | (ch >> 6)));
        out[1] = char(std::uint8_t(0x80 | (ch & 0x3F)));
        return 2;
    }
    if (ch < 0x10000) {
        out[0] = char(std::uint8_t(0xE0 | (ch >> 12)));
        out[1] = char(std::uint8_t(0x80 | ((ch >> 6) & 0x3F)));
        out[2] = char(std::uint8_t(0x80 | (ch & 0x3F)));
        return 3;
    }
    out[0] = char(std::uint8_t(0xF0 | (ch >> 18)));
    out[1] = char(std::uint8_t(0x80 | ((ch >> 12) & 0x3F)));
    out[2] = char(std::uint8_t(0x80 | ((ch >> 6) & 0x3F)));
    out[3] = char(std::uint8_t(0x80 | (ch & 0x3F)));
    return 4;
}

// Resolves the entity or character reference at p ("&..."), within text ending at end. Returns
// the end of the reference and writes its bytes to out, or returns nullptr when the text is not
// a reference the parser knows, which then stays as written.
template <typename Char>
const Char *resolveReference(const Char *p, const Char *end, std::string &out)
{
    const auto at = [end](const Char *q) -> unsigned { return q < end ? unsigned(*q) : 0u; };
    const Char *s = p + 1;
    switch (at(s)) {
    case '#': {
        std::uint32_t value = 0;
        if (at(s + 1) == 'x') {
            s += 2;
            unsigned ch = at(s);
            if (ch == ';')
                return nullptr;
            for (;;) {
                if (ch - '0' <= 9u)
                    value = 16 * value + (ch - '0');
                else if (((ch | ' ') - 'a') <= 5u)
                    value = 16 * value + ((ch | ' ') - 'a' + 10);
                else if (ch == ';')
                    break;
                else
                    return nullptr;
                ch = at(++s);
            }
        } else {
            unsigned ch = at(++s);
            if (ch == ';')
                return nullptr;
            for (;;) {
                if (ch - '0' <= 9u)
                    value = 10 * value + (ch - '0');
                else if (ch == ';')
                    break;
                else
                    return nullptr;
                ch = at(++s);
            }
        }
        char bytes[4];
        out.append(bytes, writeUtf8Any(value, bytes));
        return s + 1;
    }
    case 'a':
        ++s;
        if (at(s) == 'm') {
            if (at(s + 1) == 'p' && at(s + 2) == ';') {
                out.push_back('&');
                return s + 3;
            }
        } else if (at(s) == 'p') {
            if (at(s + 1) == 'o' && at(s + 2) == 's' && at(s + 3) == ';') {
                out.push_back('\'');
                return s + 4;
            }
        }
        return nullptr;
    case 'g':
        if (at(s + 1) == 't' && at(s + 2) == ';') {
            out.push_back('>');
            return s + 3;
        }
        return nullptr;
    case 'l':
        if (at(s + 1) == 't' && at(s + 2) == ';') {
            out.push_back('<');
            return s + 3;
        }
        return nullptr;
    case 'q':
        if (at(s + 1) == 'u' && at(s + 2) == 'o' && at(s + 3) == 't' && at(s + 4) == ';') {
            out.push_back('"');
            return s + 5;
        }
        return nullptr;
    default:
        return nullptr;
    }
}

// The text as the tree parser stores it: references resolved, and cut at the first NUL that a
// reference produced (the parser's strings end there).
template <typename Char> void unescape(const Char *begin, const Char *end, std::string &out)
{
    out.clear();
    const Char *p = begin;
    while (p < end) {
        const Char *amp = findUnit(p, end, Char('&'));
        const Char *stop = amp ? amp : end;
        appendLiteral(out, p, stop);
        if (!amp)
            break;
        if (const Char *next = resolveReference(amp, end, out)) {
            p = next;
        } else {
            out.push_back('&');
            p = amp + 1;
        }
    }
    if (const std::size_t nul = out.find('\0'); nul != std::string::npos)
        out.resize(nul);
}

} // namespace

// ---- Builder ----

/// Fills a table, data item or message from the elements the tokeniser reports, with the checks
/// and error texts of the tree bindings (QZWebTablePrivate::read and its neighbours), in the same
/// order. Errors are DLVError exceptions, which the tokeniser keeps until the text has been
/// checked to the end (a text that is not well-formed is reported first, as the tree reader
/// does).
class WebXmlStreamReader::Builder
{
public:
    enum class Target : std::uint8_t
    {
        Table,
        Data,
        Message
    };

    Builder(Target target, const WebXmlKind &kind) : m_target(target), m_kind(kind) {}

    /// The role of an element that starts inside an element of the parent role (depth 0: the
    /// document). Root errors are recorded here.
    template <typename Char>
    Role roleOf(Role parent, bool atRoot, const Char *name, std::size_t length);
    /// The attribute the role reads, or nullptr.
    static const char *wantedAttribute(Role role);
    template <typename Char> void started(Role role, const std::optional<SpanOf<Char>> &attribute);
    template <typename Char> void text(Role role, const Char *begin, const Char *end, bool cdata)
    {
        if (role == Role::Value || role == Role::Property)
            appendText(textTarget(role), begin, end, cdata);
    }
    void ended(Role role);
    /// Whether the open row takes another value (else further values are only counted).
    bool rowTakesValue() const { return m_rowValues < std::size_t(m_table.m_columns.size()); }
    /// A whole <V>text</V> (or <V/>) of the open row: the steps roleOf, started, text and ended
    /// would take, in one call.
    template <typename Char> void value(const Char *begin, const Char *end)
    {
        ++m_rowValues;
        if (begin != end)
            appendText(m_table.m_text, begin, end, false);
        ended(Role::Value);
    }

    bool building() const { return m_building; }
    void fail(const DLVError &error)
    {
        m_building = false;
        if (!m_buildError)
            m_buildError = error;
    }
    bool hasRoot() const { return m_rootSeen; }
    void finish() const;

    QZWebTable takeTable() { return std::move(m_table); }
    QZWebData takeData() { return std::move(m_data); }
    QZWebMessage takeMessage() { return std::move(m_message); }

private:
    template <typename Char> QString attributeText(const std::optional<SpanOf<Char>> &attribute);
    void appendText(std::vector<char16_t> &out, const Byte *begin, const Byte *end, bool cdata);
    void appendText(std::vector<char16_t> &out, const char16_t *begin, const char16_t *end,
                    bool cdata);
    template <typename Char>
    void appendCode(std::vector<char16_t> &out, const std::optional<SpanOf<Char>> &attribute);
    void endTable();
    std::vector<char16_t> &textTarget(Role role)
    {
        return role == Role::Value ? m_table.m_text : m_propertyText;
    }

    Target m_target;
    const WebXmlKind &m_kind;
    bool m_building = true;
    bool m_rootSeen = false;
    struct RootError
    {
        bool wrongName = false; // else a second root element
        QString name;
    };
    std::optional<RootError> m_rootError;
    std::optional<DLVError> m_buildError;

    QZWebMessage m_message;
    QZWebData m_data;
    QZWebTable m_table;
    OrderedDict<int> m_seenColumns{KeyCompare::CaseInsensitive};
    std::size_t m_rowValues = 0; // <V> elements of the open row
    Role m_codeParent = Role::Value;
    QString m_propertyKey;
    std::vector<char16_t> m_propertyText;
    std::string m_scratch;
};

template <typename Char>
Role WebXmlStreamReader::Builder::roleOf(Role parent, bool atRoot, const Char *name,
                                         std::size_t length)
{
    if (atRoot) {
        if (m_rootSeen) {
            if (!m_rootError)
                m_rootError = RootError{false, lenientName(name, length)};
            m_building = false;
            return Role::Skip;
        }
        m_rootSeen = true;
        if (!namedAs(name, length, m_kind.root)) {
            m_rootError = RootError{true, lenientName(name, length)};
            m_building = false;
            return Role::Skip;
        }
        switch (m_target) {
        case Target::Table:
            return Role::Table;
        case Target::Data:
            return Role::Data;
        case Target::Message:
            return Role::Message;
        }
        return Role::Skip;
    }
    if (!m_building)
        return Role::Skip;
    switch (parent) {
    case Role::Message:
        if (named(name, length, "Property"))
            return Role::Property;
        return named(name, length, "WebData") ? Role::Data : Role::Skip;
    case Role::Data:
        return named(name, length, "Table") ? Role::Table : Role::Skip;
    case Role::Table:
        if (named(name, length, "Row"))
            return Role::Row;
        return named(name, length, "Column") ? Role::Column : Role::Skip;
    case Role::Row:
        if (!named(name, length, "V"))
            return Role::Skip;
        // Once a row has its columns' worth of values, further ones are only counted.
        return ++m_rowValues <= std::size_t(m_table.m_columns.size()) ? Role::Value : Role::Skip;
    case Role::Value:
    case Role::Property:
        if (named(name, length, "C")) {
            m_codeParent = parent;
            return Role::Code;
        }
        fail(DLVError(DLVError::InvalidCall,
                      QStringLiteral("unexpected element <%1> inside <%2>")
                          .arg(strictName(name, length), parent == Role::Value
                                                             ? QStringLiteral("V")
                                                             : QStringLiteral("Property"))));
        return Role::Skip;
    default:
        return Role::Skip;
    }
}

const char *WebXmlStreamReader::Builder::wantedAttribute(Role role)
{
    switch (role) {
    case Role::Message:
    case Role::Table:
    case Role::Column:
        return "name";
    case Role::Property:
        return "key";
    case Role::Code:
        return "u";
    default:
        return nullptr;
    }
}

template <typename Char>
QString WebXmlStreamReader::Builder::attributeText(const std::optional<SpanOf<Char>> &attribute)
{
    if (!attribute)
        return QString();
    unescape(attribute->begin, attribute->end, m_scratch);
    return WebXmlText::toQString(m_scratch.c_str());
}

void WebXmlStreamReader::Builder::appendText(std::vector<char16_t> &out, const Byte *begin,
                                             const Byte *end, bool cdata)
{
    // Most values are short ASCII (codes and counts): widened in place, without the decoder.
    const Byte *p = begin;
    while (p < end && *p < 0x80 && *p != '&')
        ++p;
    if (p == end) {
        out.insert(out.end(), begin, end);
        return;
    }
    if (cdata || !std::memchr(p, '&', std::size_t(end - p))) {
        WebXmlText::appendUtf8(out, reinterpret_cast<const char *>(begin),
                               reinterpret_cast<const char *>(end));
        return;
    }
    unescape(begin, end, m_scratch);
    WebXmlText::appendUtf8(out, m_scratch.data(), m_scratch.data() + m_scratch.size());
}

void WebXmlStreamReader::Builder::appendText(std::vector<char16_t> &out, const char16_t *begin,
                                             const char16_t *end, bool cdata)
{
    if (cdata || !findUnit(begin, end, u'&')) {
        out.insert(out.end(), begin, end);
        return;
    }
    // References go the way of the UTF-8 form, so that each reads exactly as there.
    unescape(begin, end, m_scratch);
    WebXmlText::appendUtf8(out, m_scratch.data(), m_scratch.data() + m_scratch.size());
}

template <typename Char>
void WebXmlStreamReader::Builder::appendCode(std::vector<char16_t> &out,
                                             const std::optional<SpanOf<Char>> &attribute)
{
    if (attribute)
        unescape(attribute->begin, attribute->end, m_scratch);
    else
        m_scratch.clear();
    unsigned value = 0;
    int digits = 0;
    for (const char c : m_scratch) {
        int d = -1;
        if (c >= '0' && c <= '9')
            d = c - '0';
        else if (c >= 'a' && c <= 'f')
            d = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F')
            d = c - 'A' + 10;
        if (d < 0 || digits == 4) {
            digits = 0;
            break;
        }
        value = value * 16 + unsigned(d);
        ++digits;
    }
    if (digits == 0)
        throw DLVError(DLVError::InvalidCall,
                       QStringLiteral("a <C> element needs the attribute u with 1 to 4 hexadecimal "
                                      "digits, found \"%1\"")
                           .arg(QString::fromUtf8(m_scratch.c_str())));
    out.push_back(char16_t(value));
}

void WebXmlStreamReader::Builder::endTable()
{
    // Loading grew the buffers geometrically; give back a large surplus.
    auto &text = m_table.m_text;
    if (text.capacity() > text.size() + text.size() / 4 + 1024)
        text.shrink_to_fit();
    auto &cells = m_table.m_ends;
    if (cells.capacity() > cells.size() + cells.size() / 4 + 256)
        cells.shrink_to_fit();
    if (m_target == Target::Table)
        return;
    if (m_data.hasTable(m_table.name()))
        throw DLVError(DLVError::DuplicateKey,
                       QStringLiteral("the data holds two tables named '%1'").arg(m_table.name()));
    m_data.addTable(std::move(m_table));
    m_table = QZWebTable();
}

template <typename Char>
void WebXmlStreamReader::Builder::started(Role role, const std::optional<SpanOf<Char>> &attribute)
{
    switch (role) {
    case Role::Message:
        m_message = QZWebMessage(attributeText(attribute));
        break;
    case Role::Property:
        m_propertyKey = attributeText(attribute);
        if (m_message.hasProperty(m_propertyKey))
            throw DLVError(
                DLVError::DuplicateKey,
                QStringLiteral("the message has the property '%1' twice").arg(m_propertyKey));
        m_propertyText.clear();
        break;
    case Role::Data:
        m_data = QZWebData();
        break;
    case Role::Table:
        m_table = QZWebTable(attributeText(attribute));
        m_seenColumns.clear();
        break;
    case Role::Column: {
        if (m_table.m_rows > 0)
            throw DLVError(
                DLVError::InvalidCall,
                QStringLiteral("the table '%1' has a <Column> after its rows").arg(m_table.m_name));
        const QString name = attributeText(attribute);
        if (!m_seenColumns.addIfAbsent(name, 0))
            throw DLVError(DLVError::DuplicateKey,
                           QStringLiteral("the table '%1' has the column '%2' twice")
                               .arg(m_table.m_name, name));
        m_table.m_columns.append(name);
        break;
    }
    case Role::Row:
        if (m_table.m_rows == std::numeric_limits<int>::max())
            throw DLVError::overflow();
        m_rowValues = 0;
        break;
    case Role::Value:
        break;
    case Role::Code:
        // The parent is a value or a property; codes inside codes are skipped.
        appendCode(textTarget(m_codeParent), attribute);
        break;
    case Role::Skip:
        break;
    }
}

void WebXmlStreamReader::Builder::ended(Role role)
{
    switch (role) {
    case Role::Property:
        m_message.m_properties.add(m_propertyKey,
                                   QString(reinterpret_cast<const QChar *>(m_propertyText.data()),
                                           qsizetype(m_propertyText.size())));
        break;
    case Role::Data:
        if (m_target == Target::Message) {
            m_message.m_data.push_back(std::make_shared<QZWebData>(std::move(m_data)));
            m_data = QZWebData();
        }
        break;
    case Role::Table:
        endTable();
        break;
    case Role::Row: {
        const std::size_t columns = std::size_t(m_table.m_columns.size());
        if (m_rowValues != columns)
            throw DLVError(DLVError::InvalidCall,
                           QStringLiteral("the table '%1' has %2 columns, but its row %3 has %4 "
                                          "values")
                               .arg(m_table.m_name)
                               .arg(columns)
                               .arg(m_table.m_rows + 1)
                               .arg(m_rowValues));
        ++m_table.m_rows;
        break;
    }
    case Role::Value: {
        if (m_table.m_text.size() > maxTextChars)
            throw DLVError(DLVError::Overflow,
                           QStringLiteral("Overflow: table '%1' holds more text than it can "
                                          "address (4G characters)")
                               .arg(m_table.m_name));
        m_table.m_ends.push_back(std::uint32_t(m_table.m_text.size()));
        break;
    }
    default:
        break;
    }
}

void WebXmlStreamReader::Builder::finish() const
{
    if (m_rootError) {
        if (m_rootError->wrongName)
            WebXmlDocument::throwWrongRoot(m_kind, m_rootError->name);
        WebXmlDocument::throwSecondRoot(m_kind, m_rootError->name);
    }
    if (m_buildError) {
        try {
            throw *m_buildError;
        } catch (...) {
            WebXmlDocument::rethrowWithContext(m_kind);
        }
    }
}

// ---- Tokeniser ----

namespace {

struct ParseError
{
    pugi::xml_parse_status status;
    std::ptrdiff_t offset;
};

// One pass over UTF-8 bytes by the tree parser's rules (its parse of a copied buffer, which ends
// in a NUL: the refusal of NUL bytes before parsing makes 0 mean "end of text" here). Errors are
// the parser's status at the same offset; the builder hears of elements, attributes and text.
template <typename B, typename Char> class Tokenizer
{
public:
    Tokenizer(const Char *begin, const Char *end, B &builder)
        : m_begin(begin), m_end(end), m_builder(builder)
    {}

    std::optional<ParseError> run();

private:
    struct Frame
    {
        const Char *name;
        std::size_t length;
        Role role;
        bool hasValue; // the parser keeps the first text in the element itself
        bool hasChild;
    };

    unsigned at(const Char *p) const { return p < m_end ? unsigned(*p) : 0u; }
    bool failAt(pugi::xml_parse_status status, std::ptrdiff_t offset)
    {
        m_error = ParseError{status, offset};
        return false;
    }
    bool fail(pugi::xml_parse_status status, const Char *p) { return failAt(status, p - m_begin); }

    template <typename F> void build(F &&f)
    {
        if (!m_builder.building())
            return;
        try {
            f();
        } catch (const DLVError &e) {
            m_builder.fail(e);
        }
    }
    void text(Frame &frame, const Char *begin, const Char *end, bool cdata)
    {
        if (frame.role == Role::Value || frame.role == Role::Property)
            build([&] { m_builder.text(frame.role, begin, end, cdata); });
    }
    void close()
    {
        const Role role = m_stack.back().role;
        m_stack.pop_back();
        if (role != Role::Skip)
            build([&] { m_builder.ended(role); });
    }
    void skipSpace(const Char *&s) const
    {
        while (s < m_end && isUnit(*s, Space))
            ++s;
    }

    bool tag(const Char *&s);
    bool quickValue(const Char *&s);
    bool startElement(const Char *&s);
    bool endElement(const Char *&s);
    bool question(const Char *&s);
    bool exclamation(const Char *&s);
    bool doctypeGroup(const Char *&s);
    bool doctypePrimitive(const Char *&s);
    bool doctypeIgnore(const Char *&s);

    const Char *m_begin;
    const Char *m_end;
    B &m_builder;
    std::vector<Frame> m_stack;
    bool m_rootHasChild = false;
    std::optional<ParseError> m_error;
};

template <typename B, typename Char> std::optional<ParseError> Tokenizer<B, Char>::run()
{
    const Char *s = m_begin;
    // A byte-order mark (the UTF-8 bytes of U+FEFF, or the code unit) is not part of the text.
    if constexpr (sizeof(Char) == 1) {
        if (m_end - m_begin >= 3 && s[0] == 0xEF && s[1] == 0xBB && s[2] == 0xBF)
            s += 3;
    } else if (s < m_end && *s == 0xFEFF) {
        ++s;
    }
    while (s < m_end) {
        if (*s == '<') {
            ++s;
            if (!tag(s))
                return m_error;
            continue;
        }
        const Char *mark = s;
        skipSpace(s);
        if (at(s) == '<' || at(s) == 0) {
            // Blanks between elements are not data; blanks that are all of an element's content
            // are (a value of blanks).
            const bool hasChild = m_stack.empty() ? m_rootHasChild : m_stack.back().hasChild;
            if (at(s) != '<' || at(s + 1) != '/' || hasChild)
                continue;
        }
        s = mark;
        const Char *lt = findUnit(s, m_end, Char('<'));
        const Char *textEnd = lt ? lt : m_end;
        if (!lt)
            break;
        s = lt + 1;
        if (!m_stack.empty()) {
            // Text at the root level is skipped unread.
            Frame &frame = m_stack.back();
            if (!frame.hasChild && !frame.hasValue)
                frame.hasValue = true;
            else
                frame.hasChild = true;
            text(frame, mark, textEnd, false);
            // The parser stops at a '<' that ends the text inside an element.
            if (s == m_end)
                break;
        }
        if (!tag(s))
            return m_error;
    }
    if (!m_stack.empty()) {
        fail(pugi::status_end_element_mismatch, m_end);
        return m_error;
    }
    return std::nullopt;
}

// Most of a data message is "<V>text</V>" inside rows. Those are read here in one step when they
// are plainly written; anything else in a row (attributes, blanks, markup inside the value, an
// extra value) takes the general path, which reads it the same way.
template <typename B, typename Char> bool Tokenizer<B, Char>::quickValue(const Char *&s)
{
    if (m_stack.empty() || m_stack.back().role != Role::Row || !m_builder.building() ||
        !m_builder.rowTakesValue())
        return false;
    if (at(s + 1) == '/' && at(s + 2) == '>') {
        m_stack.back().hasChild = true;
        build([&] { m_builder.value(s, s); });
        s += 3;
        return true;
    }
    if (at(s + 1) != '>')
        return false;
    const Char *text = s + 2;
    const Char *q = text;
    while (q < m_end && *q != '<')
        ++q;
    if (at(q + 1) != '/' || at(q + 2) != 'V' || at(q + 3) != '>')
        return false;
    m_stack.back().hasChild = true;
    build([&] { m_builder.value(text, q); });
    s = q + 4;
    return true;
}

template <typename B, typename Char> bool Tokenizer<B, Char>::tag(const Char *&s)
{
    const unsigned c = at(s);
    if (c == 'V' && quickValue(s))
        return true;
    if (isUnit(c, StartSymbol) && c != 0)
        return startElement(s);
    if (c == '/')
        return endElement(s);
    if (c == '?')
        return question(s);
    if (c == '!')
        return exclamation(s);
    return fail(pugi::status_unrecognized_tag, s);
}

template <typename B, typename Char> bool Tokenizer<B, Char>::startElement(const Char *&s)
{
    const Char *name = s;
    while (s < m_end && isUnit(*s, Symbol))
        ++s;
    const std::size_t length = std::size_t(s - name);
    const unsigned ch = at(s);
    if (ch == 0)
        return fail(pugi::status_bad_start_element, s);
    ++s;

    const bool atRoot = m_stack.empty();
    Role parent = Role::Skip;
    if (atRoot) {
        m_rootHasChild = true;
    } else {
        parent = m_stack.back().role;
        m_stack.back().hasChild = true;
    }
    Role role = Role::Skip;
    if (atRoot || m_builder.building()) {
        try {
            role = m_builder.roleOf(parent, atRoot, name, length);
        } catch (const DLVError &e) {
            m_builder.fail(e);
        }
    }
    m_stack.push_back(Frame{name, length, role, false, false});
    const char *wanted = role == Role::Skip ? nullptr : B::wantedAttribute(role);
    std::optional<SpanOf<Char>> attribute;
    const auto started = [&] {
        if (role != Role::Skip)
            build([&] { m_builder.started(role, attribute); });
    };

    if (ch == '>') {
        started();
        return true;
    }
    if (ch == '/') {
        if (at(s) != '>')
            return fail(pugi::status_bad_start_element, s);
        started();
        close();
        ++s;
        return true;
    }
    if (!isUnit(ch, Space))
        return fail(pugi::status_bad_start_element, s);
    for (;;) {
        skipSpace(s);
        const unsigned c = at(s);
        if (c != 0 && isUnit(c, StartSymbol)) {
            const Char *attributeName = s;
            while (s < m_end && isUnit(*s, Symbol))
                ++s;
            const Char *attributeNameEnd = s;
            unsigned next = at(s);
            if (next == 0)
                return failAt(pugi::status_bad_attribute, (s - m_begin) + 1);
            ++s;
            if (isUnit(next, Space)) {
                skipSpace(s);
                next = at(s);
                if (next == 0)
                    return failAt(pugi::status_bad_attribute, (s - m_begin) + 1);
                ++s;
            }
            if (next != '=')
                return fail(pugi::status_bad_attribute, s);
            skipSpace(s);
            const unsigned quote = at(s);
            if (quote != '"' && quote != '\'')
                return fail(pugi::status_bad_attribute, s);
            ++s;
            const Char *value = s;
            const Char *closing = findUnit(s, m_end, Char(quote));
            if (!closing)
                return fail(pugi::status_bad_attribute, value);
            s = closing + 1;
            if (at(s) != 0 && isUnit(at(s), StartSymbol))
                return fail(pugi::status_bad_attribute, s);
            if (wanted && !attribute &&
                namedAs(attributeName, std::size_t(attributeNameEnd - attributeName), wanted))
                attribute = SpanOf<Char>{value, closing};
            continue;
        }
        if (c == '/') {
            ++s;
            if (at(s) != '>')
                return fail(pugi::status_bad_start_element, s);
            started();
            close();
            ++s;
            return true;
        }
        if (c == '>') {
            ++s;
            started();
            return true;
        }
        return fail(pugi::status_bad_start_element, s);
    }
}

template <typename B, typename Char> bool Tokenizer<B, Char>::endElement(const Char *&s)
{
    ++s;
    const Char *mark = s;
    if (m_stack.empty())
        return fail(pugi::status_end_element_mismatch, mark);
    const Frame &frame = m_stack.back();
    std::size_t i = 0;
    while (s < m_end && isUnit(*s, Symbol)) {
        if (i >= frame.length || *s != frame.name[i])
            return fail(pugi::status_end_element_mismatch, mark);
        ++s;
        ++i;
    }
    if (i < frame.length)
        return fail(pugi::status_end_element_mismatch, mark);
    close();
    skipSpace(s);
    if (at(s) != '>')
        return fail(pugi::status_bad_end_element, s);
    ++s;
    return true;
}

template <typename B, typename Char> bool Tokenizer<B, Char>::question(const Char *&s)
{
    ++s;
    if (at(s) == 0 || !isUnit(at(s), StartSymbol))
        return fail(pugi::status_bad_pi, s);
    while (s < m_end && isUnit(*s, Symbol))
        ++s;
    if (at(s) == 0)
        return fail(pugi::status_bad_pi, s);
    // Declarations and processing instructions are skipped whole.
    while (at(s) != 0 && !(at(s) == '?' && at(s + 1) == '>'))
        ++s;
    if (at(s) == 0)
        return fail(pugi::status_bad_pi, s);
    s += 2;
    return true;
}

template <typename B, typename Char> bool Tokenizer<B, Char>::exclamation(const Char *&s)
{
    ++s;
    if (at(s) == '-') {
        ++s;
        if (at(s) != '-')
            return fail(pugi::status_bad_comment, s);
        ++s;
        while (at(s) != 0 && !(at(s) == '-' && at(s + 1) == '-' && at(s + 2) == '>'))
            ++s;
        if (at(s) == 0)
            return fail(pugi::status_bad_comment, s);
        s += 3;
        return true;
    }
    if (at(s) == '[') {
        for (const char c : {'C', 'D', 'A', 'T', 'A', '['}) {
            ++s;
            if (at(s) != unsigned(c))
                return fail(pugi::status_bad_cdata, s);
        }
        ++s;
        const Char *begin = s;
        while (at(s) != 0 && !(at(s) == ']' && at(s + 1) == ']' && at(s + 2) == '>'))
            ++s;
        if (at(s) == 0)
            return fail(pugi::status_bad_cdata, s);
        if (m_stack.empty()) {
            m_rootHasChild = true;
        } else {
            m_stack.back().hasChild = true;
            text(m_stack.back(), begin, s, true);
        }
        s += 3;
        return true;
    }
    if (at(s) == 'D' && at(s + 1) == 'O' && at(s + 2) == 'C' && at(s + 3) == 'T' &&
        at(s + 4) == 'Y' && at(s + 5) == 'P' && at(s + 6) == 'E') {
        s -= 2;
        if (!m_stack.empty())
            return fail(pugi::status_bad_doctype, s);
        if (!doctypeGroup(s))
            return false;
        ++s; // the closing '>'
        return true;
    }
    return fail(pugi::status_unrecognized_tag, s);
}

template <typename B, typename Char> bool Tokenizer<B, Char>::doctypeGroup(const Char *&s)
{
    std::size_t depth = 0;
    s += 2;
    while (at(s) != 0) {
        if (at(s) == '<' && at(s + 1) == '!' && at(s + 2) != '-') {
            if (at(s + 2) == '[') {
                if (!doctypeIgnore(s))
                    return false;
            } else {
                s += 2;
                ++depth;
            }
        } else if (at(s) == '<' || at(s) == '"' || at(s) == '\'') {
            if (!doctypePrimitive(s))
                return false;
        } else if (at(s) == '>') {
            if (depth == 0)
                return true;
            --depth;
            ++s;
        } else {
            ++s;
        }
    }
    return fail(pugi::status_bad_doctype, s);
}

template <typename B, typename Char> bool Tokenizer<B, Char>::doctypePrimitive(const Char *&s)
{
    if (at(s) == '"' || at(s) == '\'') {
        const unsigned quote = at(s);
        ++s;
        while (at(s) != 0 && at(s) != quote)
            ++s;
        if (at(s) == 0)
            return fail(pugi::status_bad_doctype, s);
        ++s;
    } else if (at(s) == '<' && at(s + 1) == '?') {
        s += 2;
        while (at(s) != 0 && !(at(s) == '?' && at(s + 1) == '>'))
            ++s;
        if (at(s) == 0)
            return fail(pugi::status_bad_doctype, s);
        s += 2;
    } else if (at(s) == '<' && at(s + 1) == '!' && at(s + 2) == '-' && at(s + 3) == '-') {
        s += 4;
        while (at(s) != 0 && !(at(s) == '-' && at(s + 1) == '-' && at(s + 2) == '>'))
            ++s;
        if (at(s) == 0)
            return fail(pugi::status_bad_doctype, s);
        s += 3;
    } else {
        return fail(pugi::status_bad_doctype, s);
    }
    return true;
}

template <typename B, typename Char> bool Tokenizer<B, Char>::doctypeIgnore(const Char *&s)
{
    std::size_t depth = 0;
    s += 3;
    while (at(s) != 0) {
        if (at(s) == '<' && at(s + 1) == '!' && at(s + 2) == '[') {
            s += 3;
            ++depth;
        } else if (at(s) == ']' && at(s + 1) == ']' && at(s + 2) == '>') {
            s += 3;
            if (depth == 0)
                return true;
            --depth;
        } else {
            ++s;
        }
    }
    return fail(pugi::status_bad_doctype, s);
}

// The offset in the UTF-8 form of the text at which the tree parser, which parses that form,
// reports what the tokeniser found at a code unit: a position inside a surrogate pair is inside
// the pair's four bytes there (and maps back to after the pair); past the end stays past it.
std::ptrdiff_t utf8Offset(const char16_t *text, std::ptrdiff_t size, std::ptrdiff_t index)
{
    std::ptrdiff_t bytes = 0;
    const std::ptrdiff_t limit = std::min(index, size);
    for (std::ptrdiff_t i = 0; i < limit; ++i) {
        const char16_t u = text[i];
        if (u < 0x80)
            bytes += 1;
        else if (u < 0x800)
            bytes += 2;
        else if (u >= 0xD800 && u <= 0xDBFF && i + 1 < limit) {
            bytes += 4; // the checked text pairs every high surrogate
            ++i;
        } else if (u >= 0xD800 && u <= 0xDBFF)
            bytes += 1; // the position is inside the pair
        else
            bytes += 3;
    }
    return bytes + std::max<std::ptrdiff_t>(index - size, 0);
}

std::ptrdiff_t utf8Offset(const Byte *, std::ptrdiff_t, std::ptrdiff_t index)
{
    return index;
}

// Parses the text into the builder; text is also what error positions refer to.
template <typename B, typename Char, typename Text>
void parse(B &builder, const Char *begin, std::ptrdiff_t size, Text text, const WebXmlKind &kind)
{
    Tokenizer<B, Char> tokenizer(begin, begin + size, builder);
    std::optional<ParseError> error = tokenizer.run();
    const std::ptrdiff_t utf8Size = utf8Offset(begin, size, size);
    if (error) {
        error->offset = utf8Offset(begin, size, error->offset);
        if (error->offset > 0 && error->offset == utf8Size)
            --error->offset; // the parser reports an error at the end on the last character
    } else if (!builder.hasRoot()) {
        error = ParseError{pugi::status_no_document_element, utf8Size};
    }
    if (error) {
        pugi::xml_parse_result result;
        result.status = error->status;
        WebXmlDocument::throwParseError(text, kind, result.description(), error->offset);
    }
    builder.finish();
}

template <typename B> void loadUtf8(B &builder, QByteArrayView utf8, const WebXmlKind &kind)
{
    WebXmlDocument::checkText(utf8, kind);
    try {
        parse(builder, reinterpret_cast<const Byte *>(utf8.data()), utf8.size(), utf8, kind);
    } catch (const std::bad_alloc &) {
        WebXmlDocument::throwOutOfMemory(kind);
    }
}

template <typename B> void loadUtf16(B &builder, QStringView xml, const WebXmlKind &kind)
{
    // UTF-16 is read as it is, without a copy of the text: its code units take the place of the
    // bytes of its UTF-8 form (markup is ASCII in both), and positions are counted in that form.
    WebXmlDocument::checkText(xml, kind);
    try {
        parse(builder, xml.utf16(), xml.size(), xml, kind);
    } catch (const std::bad_alloc &) {
        WebXmlDocument::throwOutOfMemory(kind);
    }
}

} // namespace

QZWebTable WebXmlStreamReader::readTable(QByteArrayView utf8)
{
    Builder builder(Builder::Target::Table, WebXmlKinds::Table);
    loadUtf8(builder, utf8, WebXmlKinds::Table);
    return builder.takeTable();
}

QZWebTable WebXmlStreamReader::readTable(QStringView xml)
{
    Builder builder(Builder::Target::Table, WebXmlKinds::Table);
    loadUtf16(builder, xml, WebXmlKinds::Table);
    return builder.takeTable();
}

QZWebData WebXmlStreamReader::readData(QByteArrayView utf8)
{
    Builder builder(Builder::Target::Data, WebXmlKinds::Data);
    loadUtf8(builder, utf8, WebXmlKinds::Data);
    return builder.takeData();
}

QZWebData WebXmlStreamReader::readData(QStringView xml)
{
    Builder builder(Builder::Target::Data, WebXmlKinds::Data);
    loadUtf16(builder, xml, WebXmlKinds::Data);
    return builder.takeData();
}

QZWebMessage WebXmlStreamReader::readMessage(QByteArrayView utf8)
{
    Builder builder(Builder::Target::Message, WebXmlKinds::Message);
    loadUtf8(builder, utf8, WebXmlKinds::Message);
    return builder.takeMessage();
}

QZWebMessage WebXmlStreamReader::readMessage(QStringView xml)
{
    Builder builder(Builder::Target::Message, WebXmlKinds::Message);
    loadUtf16(builder, xml, WebXmlKinds::Message);
    return builder.takeMessage();
}

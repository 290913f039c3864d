// The streaming reader against the tree reader: on every document, valid or not, both must load
// the same object or fail with the same error number and description.

#include "webdata/webxmlcomparison.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

using WebXmlComparison::DocumentForm;

namespace {

constexpr DocumentForm allForms[] = {DocumentForm::Table, DocumentForm::Data,
                                     DocumentForm::Message};

// Both readers on the bytes and on the text the bytes decode to; returns the first difference.
std::string difference(const std::string &bytes)
{
    const QByteArrayView utf8(bytes.data(), qsizetype(bytes.size()));
    const QString text = QString::fromUtf8(utf8);
    for (const DocumentForm form : allForms) {
        const QString treeBytes = WebXmlComparison::treeOutcome(form, utf8);
        const QString streamBytes = WebXmlComparison::streamOutcome(form, utf8);
        if (treeBytes != streamBytes)
            return "UTF-8, form " + std::to_string(static_cast<int>(form)) +
                   "\n tree:   " + treeBytes.toStdString() +
                   "\n stream: " + streamBytes.toStdString();
        const QString treeText = WebXmlComparison::treeOutcome(form, QStringView(text));
        const QString streamText = WebXmlComparison::streamOutcome(form, QStringView(text));
        if (treeText != streamText)
            return "UTF-16, form " + std::to_string(static_cast<int>(form)) +
                   "\n tree:   " + treeText.toStdString() +
                   "\n stream: " + streamText.toStdString();
    }
    return {};
}

// Pieces of value text: plain, blanks, every kind of reference (good, unknown, cut short,
// lossy, wrapping past 32 bits, to surrogates), CDATA, codes good and bad, elements that do
// not belong in a value, comments and instructions, bytes that are not UTF-8.
const std::vector<std::string> valuePieces = {
    "",
    "12",
    "North Depot",
    " ",
    "  ",
    "\t",
    "\r\n",
    "\n",
    "a&amp;b",
    "&lt;&gt;&quot;&apos;",
    "&#65;",
    "&#x1F600;",
    "&#xd83d;",
    "&#0;",
    "&#x0;",
    "&#00000;",
    "&#1114112;",
    "&#x110000;",
    "&#4294967361;",
    "&#x100000041;",
    "&am;",
    "&amp",
    "&#;",
    "&#x;",
    "&#X41;",
    "&#12a;",
    "&unknown;",
    "&",
    "\xC3\xA9",
    "\xF0\x9F\x98\x80",
    "\xC3",
    "\xFF",
    "\xED\xA0\x80",
    "<![CDATA[<x>&amp;]]>",
    "<![CDATA[]]>",
    "<![CDATA[\xC3]]>",
    "<C u=\"0\"/>",
    "<C u=\"d800\"/>",
    "<C u=\"12345\"/>",
    "<C u=\"\"/>",
    "<C/>",
    "<C u=\"&#x34;1\"/>",
    "<C u=\"zz\">inner<X/></C>",
    "<C u='a' u='b'/>",
    "<X/>",
    "<\xC3/>",
    "<V>nested</V>",
    "<!-- c -->",
    "<?pi x?>",
    "]]>",
    ">",
    "&#32;",
};

const std::vector<std::string> names = {"T",        "BusinessUnits", "Error", "a&amp;b", "t",
                                        "\xC3\xA9", "\xC3",          "",      "&#0;",    "T"};

// Fragments inserted at random places: markup that opens, closes or breaks structure.
const std::vector<std::string> noise = {
    "<",
    ">",
    "/",
    "&",
    "&#0;",
    "]]>",
    "<!--",
    "-->",
    "<?",
    "?>",
    "<!DOCTYPE x>",
    "<!DOCTYPE",
    "\"",
    "'",
    "=",
    "</V>",
    "<V>",
    "<Row>",
    "</Row>",
    "<Table>",
    "</Table>",
    " ",
    "\r\n",
    "<![CDATA[",
    "\xC3",
    "\xEF\xBB\xBF",
    "<Column name=\"A\"/>",
    "<X>",
    "</X>",
    "<!",
    "<!DOCTYPE d [<!ELEMENT e ANY><!-- x --><![IGNORE[ a ]]>]>",
    "<?xml version=\"1.0\"?>",
    "<WebData>",
    "</WebData>",
    "<Property key=\"k\">",
    "</Property>",
    "\t",
    "a",
};

class DocumentGenerator
{
public:
    explicit DocumentGenerator(std::uint32_t seed) : m_random(seed) {}

    std::string document(DocumentForm form)
    {
        std::string out;
        if (chance(10))
            out += "\xEF\xBB\xBF";
        if (chance(10))
            out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        if (chance(5))
            out += "<!DOCTYPE root [<!ENTITY e \"x\">]>";
        if (chance(5))
            out += "<!-- head -->";
        switch (form) {
        case DocumentForm::Table:
            out += table();
            break;
        case DocumentForm::Data:
            out += data();
            break;
        case DocumentForm::Message:
            out += message();
            break;
        }
        if (chance(8))
            out += pick(std::vector<std::string>{"<Extra/>", "trailing", " \n", "<!-- tail -->"});
        return out;
    }

    // Zero to three random damages: cut, removed range, inserted noise, changed byte.
    std::string mutate(std::string doc)
    {
        const int damages = int(below(4));
        for (int i = 0; i < damages; ++i) {
            const std::size_t at = below(doc.size() + 1);
            switch (below(4)) {
            case 0:
                doc.resize(at);
                break;
            case 1:
                doc.erase(at, below(8));
                break;
            case 2:
                doc.insert(at, pick(noise));
                break;
            case 3:
                if (at < doc.size())
                    doc[at] = char(below(128));
                break;
            }
        }
        return doc;
    }

private:
    bool chance(std::uint32_t inTen) { return below(10) < inTen; }
    std::size_t below(std::size_t n) { return n == 0 ? 0 : std::size_t(m_random() % n); }
    template <typename T> const T &pick(const std::vector<T> &v) { return v[below(v.size())]; }

    std::string blank()
    {
        return chance(3) ? pick(std::vector<std::string>{"\n", " ", "\r\n\t"}) : "";
    }

    std::string value()
    {
        std::string v;
        const int pieces = int(below(3));
        for (int i = 0; i < pieces; ++i)
            v += pick(valuePieces);
        return v;
    }

    std::string attributes(const char *key)
    {
        std::string a;
        if (chance(9)) {
            const char quote = chance(8) ? '"' : '\'';
            a += std::string(" ") + key + "=" + quote + pick(names) + quote;
        }
        if (chance(2))
            a += " extra=\"1\"";
        if (chance(1))
            a += std::string(" ") + key + "=\"second\"";
        return a;
    }

    std::string table()
    {
        std::string t = "<Table" + attributes("name") + ">" + blank();
        const int columns = int(below(4));
        for (int c = 0; c < columns; ++c)
            t += "<Column name=\"" +
                 pick(std::vector<std::string>{"A", "B", "a", "C\xC3\xA9", "D"}) + "\"/>" + blank();
        const int rows = int(below(4));
        for (int r = 0; r < rows; ++r) {
            t += "<Row>";
            const int values = columns + (chance(2) ? int(below(3)) - 1 : 0);
            for (int v = 0; v < values; ++v) {
                const std::string content = value();
                t += content.empty() && chance(5) ? std::string("<V/>") : "<V>" + content + "</V>";
                if (chance(1))
                    t += "<Other>x</Other>";
            }
            t += "</Row>" + blank();
        }
        if (chance(1))
            t += "<Column name=\"Late\"/>";
        if (chance(1))
            t += "<Unknown a=\"1\"><Row><V>x</V></Row></Unknown>";
        return t + "</Table>" + blank();
    }

    std::string data()
    {
        std::string d = "<WebData" + (chance(1) ? std::string(" a=\"1\"") : "") + ">" + blank();
        const int tables = int(below(3));
        for (int i = 0; i < tables; ++i)
            d += table();
        if (chance(2))
            d += "<ProfileIDs><ProfileID>Default</ProfileID></ProfileIDs>";
        return d + "</WebData>";
    }

    std::string message()
    {
        std::string m = "<WebMessage" + attributes("name") + ">" + blank();
        const int properties = int(below(3));
        for (int i = 0; i < properties; ++i)
            m += "<Property" + attributes("key") + ">" + value() + "</Property>" + blank();
        const int items = int(below(3));
        for (int i = 0; i < items; ++i)
            m += data() + blank();
        return m + "</WebMessage>";
    }

    std::mt19937 m_random;
};

} // namespace

TEST(WebStreamReader, AgreesWithTheTreeReaderOnEdgeDocuments)
{
    const char *const documents[] = {
        "",
        "   ",
        "no markup at all",
        "<",
        "<Table",
        "<Table ",
        "<Table name",
        "<Table name ",
        "<Table name=",
        "<Table name=\"x",
        "<Table name=\"x\"",
        "<Table name=\"x\"/",
        "<Table/>",
        "<Table/",
        "<Table></Table",
        "<Table></Table ",
        "<Table></Tab>",
        "<Table></Tablex>",
        "</Table>",
        "<Table>",
        "<Table>  ",
        "<Table name='a'b='c'/>",
        "<Table name=\"a\" name=\"b\"/>",
        "<Table name=x/>",
        "<Table name=\"&#0;\"/>",
        "<Table name=\"<!--\"><Column name=\"a&#0;b\"/></Table><!-- -->",
        "<Table name=\"<!--\"><Column name=\"&#x41F600;\"/></Table><!-- -->",
        "<Table name=\"<!--\"><Column name=\"&#4294967361;\"/></Table><!-- -->",
        "<Table><!DOCTYPE x></Table>",
        "<!DOCTYPE Table [<!ELEMENT x ANY><!ATTLIST y z CDATA \"q\">]><Table/>",
        "<!DOCTYPE Table [<![IGNORE[<![ x ]]> ]]>]><Table/>",
        "<!DOCTYPE Table [<!-- x",
        "<!DOCTYPE Table \"unclosed",
        "<!DOCTYPE Table <?pi",
        "<!DOCTYPE Table <x>",
        "<!DOCTYPE Table",
        "<?xml version=\"1.0\"?><Table/>",
        "<?xml",
        "<?xml ",
        "<?",
        "<?1?><Table/>",
        "<!-",
        "<!-- never closed",
        "<!--><Table/>-->",
        "<![CDAT",
        "<![CDATA[x]]><Table/>",
        "<!x>",
        "<Table><![CDATA[ unclosed",
        "text<Table/>text",
        "<Table/><Table/>",
        "<Table/><Other/>",
        "<Other/>",
        "<Other/><Table/>",
        "\xEF\xBB\xBF<Table/>",
        "\xEF\xBB\xBF\xEF\xBB\xBF<Table/>",
        "<Table/>\xEF\xBB\xBF",
        "<Table/><\xEF\xBB\xBF"
        "Extra/>",
        "<\xEF\xBB\xBFTable/>",
        "<\xC3\xA9/>",
        "<\xC3/>",
        "<Table name=\"\xC3\"/>",
        "<Table name=\"\xC3\"><Column name=\"A\"/><Row><V>1</V><V>2</V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>\xC3</V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>1</V><V>\xC3</V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V><X/></V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V><\xC3/></V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>\xC3<X/></V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>  <C u=\"20\"/>  </V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>a<!-- c -->  </V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>  <!-- c -->  </V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V><![CDATA[]]>  </V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>&#xD800;</V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>&#0;</V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V><![CDATA[&#0;]]></V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V/></Row><Column name=\"B\"/></Table>",
        "<Table><Column name=\"A\"/><Column name=\"a\"/></Table>",
        "<Table><Row><V/></Row></Table>",
        "<Table><Row></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>1</V><V>2</V><V>\xC3</V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>x</V ></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>x</Vx></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>x</V",
        "<Table><Column name=\"A\"/><Row><V>x</",
        "<Table><Column name=\"A\"/><Row><V>x<",
        "<Table><Column name=\"A\"/><Row><V/ ></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V/",
        "<Table><Column name=\"A\"/><Row><V>a</V><V>b</V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>a&#xD800;</V><V><X/></V></Row></Table>",
        "<Table><Column name=\"A\"/><Row><V>  </V></Row><Row><V/></Row></Table>",
        "<WebData><Table name=\"a\"/><Table name=\"A\"/></WebData>",
        "<WebData><Table name=\"a\"/><Table name=\"A\"/></WebData><Second/>",
        "<WebMessage name=\"DLVData\"><Property key=\"k\">1</Property>"
        "<Property key=\"k\">2</Property></WebMessage>",
        "<WebMessage name=\"M\"><Property key=\"k\">a<C u=\"0\"/>b<Y/></Property></WebMessage>",
        "<WebMessage name=\"M\"><Property>no key</Property><WebData/><WebData><WebData/>"
        "</WebData></WebMessage>",
    };
    for (const char *doc : documents) {
        SCOPED_TRACE(doc);
        EXPECT_EQ(difference(doc), "");
    }
}

TEST(WebStreamReader, AgreesWithTheTreeReaderOnRandomDocuments)
{
    constexpr int documents = 4000;
    DocumentGenerator generator(20261125);
    int compared = 0;
    for (int i = 0; i < documents; ++i) {
        const DocumentForm form = allForms[i % 3];
        const std::string valid = generator.document(form);
        const std::string doc = i % 4 == 0 ? valid : generator.mutate(valid);
        const std::string diff = difference(doc);
        ASSERT_EQ(diff, "") << "document " << i << ":\n" << doc;
        ++compared;
    }
    EXPECT_EQ(compared, documents);
}

TEST(WebStreamReader, AgreesOnTextThatNoBytesCanCarry)
{
    // UTF-16 text with a NUL or a lone surrogate is refused before parsing; both readers must
    // name the same place.
    const QString base = QStringLiteral("<Table name=\"T\"><Column name=\"A\"/><Row><V>x</V></Row>"
                                        "</Table>");
    for (const char16_t unit : {u'\0', char16_t(0xD800), char16_t(0xDC00), char16_t(0xFFFE)}) {
        for (const qsizetype at : {qsizetype(0), qsizetype(5), qsizetype(44), base.size()}) {
            QString text = base;
            text.insert(at, QChar(unit));
            SCOPED_TRACE(text.toStdString());
            for (const DocumentForm form : allForms)
                EXPECT_EQ(WebXmlComparison::streamOutcome(form, QStringView(text)),
                          WebXmlComparison::treeOutcome(form, QStringView(text)));
        }
    }
}

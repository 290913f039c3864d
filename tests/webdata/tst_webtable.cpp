#include "common/dlverror.h"
#include "nastyvalues.h"
#include "webdata/qzwebtable.h"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string_view>

using namespace std::literals;

namespace {

QZWebTable sampleTable()
{
    QZWebTable t(QStringLiteral("BusinessUnits"),
                 {QStringLiteral("BUID"), QStringLiteral("BUDesc"), QStringLiteral("ParentBUID")});
    t.appendRow({QStringLiteral("10"), QStringLiteral("North"), QString()});
    t.appendRow({QStringLiteral("11"), QStringLiteral("East"), QStringLiteral("10")});
    return t;
}

// Runs f and gives the number of the DLVError it throws (0 when it throws none).
int errorNumber(const std::function<void()> &f, QString *description = nullptr)
{
    try {
        f();
    } catch (const DLVError &e) {
        if (description)
            *description = e.description();
        return e.number();
    }
    return 0;
}

} // namespace

// ---- access ----

TEST(WebTableAccess, ValuesByIndexAndName)
{
    const QZWebTable t = sampleTable();
    EXPECT_EQ(t.rowCount(), 2);
    EXPECT_EQ(t.columnCount(), 3);
    EXPECT_EQ(t.fieldList(), QStringLiteral("BUID,BUDesc,ParentBUID"));
    EXPECT_EQ(t.value(2, 1), QStringLiteral("East"));
    EXPECT_EQ(t.field(1, u"budesc"), QStringLiteral("North")); // columns ignore letter case
    EXPECT_EQ(t.row(2).field(u"PARENTBUID"), QStringLiteral("10"));
    EXPECT_EQ(t.row(1).value(2), QString());
    EXPECT_EQ(t.requireColumn(u"ParentBUID"), 2);
    EXPECT_EQ(t.columnIndex(u"Missing"), -1);
}

struct AccessError
{
    const char *name;
    std::function<void(const QZWebTable &)> access;
    QStringList mustMention;
};

inline void PrintTo(const AccessError &c, std::ostream *os)
{
    *os << c.name;
}

class WebTableAccessError : public ::testing::TestWithParam<AccessError>
{};

TEST_P(WebTableAccessError, IsSubscriptOutOfRangeNamingWhatIsMissing)
{
    const QZWebTable t = sampleTable();
    QString description;
    EXPECT_EQ(errorNumber([&] { GetParam().access(t); }, &description), 9);
    for (const QString &word : GetParam().mustMention)
        EXPECT_TRUE(description.contains(word)) << description.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WebTableAccessError,
    ::testing::Values(
        AccessError{"MissingColumnByName",
                    [](const QZWebTable &t) { (void)t.field(1, u"TechCount"); },
                    {QStringLiteral("BusinessUnits"), QStringLiteral("TechCount")}},
        AccessError{"RequireMissingColumn",
                    [](const QZWebTable &t) { (void)t.requireColumn(u"Nope"); },
                    {QStringLiteral("BusinessUnits"), QStringLiteral("Nope")}},
        AccessError{"RowFieldMissingColumn",
                    [](const QZWebTable &t) { (void)t.row(1).field(u"X"); },
                    {QStringLiteral("'X'")}},
        AccessError{"RowZero", [](const QZWebTable &t) { (void)t.row(0); }, {QStringLiteral("0")}},
        AccessError{
            "RowPastEnd", [](const QZWebTable &t) { (void)t.row(3); }, {QStringLiteral("3")}},
        AccessError{"ValueRowPastEnd", [](const QZWebTable &t) { (void)t.value(3, 0); }, {}},
        AccessError{"ValueColumnNegative", [](const QZWebTable &t) { (void)t.value(1, -1); }, {}},
        AccessError{"ValueColumnPastEnd", [](const QZWebTable &t) { (void)t.value(1, 3); }, {}},
        AccessError{"FieldRowPastEnd", [](const QZWebTable &t) { (void)t.field(5, u"BUID"); }, {}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(WebTableEdit, AppendRowWithWrongCountIsInvalidCall)
{
    QZWebTable t = sampleTable();
    EXPECT_EQ(errorNumber([&] { t.appendRow({QStringLiteral("1")}); }), 5);
    EXPECT_EQ(t.rowCount(), 2);
}

TEST(WebTableEdit, DuplicateColumnIsDuplicateKey)
{
    QZWebTable t = sampleTable();
    EXPECT_EQ(errorNumber([&] { t.addColumn(QStringLiteral("buid")); }), 457);
    EXPECT_EQ(errorNumber([&] {
                  QZWebTable(QStringLiteral("T"), {QStringLiteral("A"), QStringLiteral("a")});
              }),
              457);
}

TEST(WebTableEdit, AddColumnGivesExistingRowsAnEmptyValue)
{
    QZWebTable t = sampleTable();
    t.addColumn(QStringLiteral("Extra"));
    EXPECT_EQ(t.value(1, 3), QString());
    EXPECT_EQ(t.value(2, 1), QStringLiteral("East"));
    EXPECT_EQ(t.value(2, 2), QStringLiteral("10"));
    t.setField(2, u"Extra", u"x");
    EXPECT_EQ(t.field(2, u"extra"), QStringLiteral("x"));
}

TEST(WebTableEdit, SetValueShorterLongerAndFromOwnCell)
{
    QZWebTable t = sampleTable();
    t.setValue(1, 1, u"N");
    t.setValue(2, 1, u"A much longer description");
    // A view into the table itself must survive the buffer growing.
    t.setValue(1, 2, t.value(2, 1));
    t.setValue(2, 2, t.value(2, 1).mid(2));
    EXPECT_EQ(t.value(1, 1), QStringLiteral("N"));
    EXPECT_EQ(t.value(1, 2), QStringLiteral("A much longer description"));
    EXPECT_EQ(t.value(2, 2), QStringLiteral("much longer description"));
    EXPECT_EQ(t.value(2, 0), QStringLiteral("11"));
}

TEST(WebTableEdit, RepeatedRewritesKeepValuesThroughCompaction)
{
    QZWebTable t(QStringLiteral("CollapsedNodes"), {QStringLiteral("ID"), QStringLiteral("List")});
    for (int i = 0; i < 3; ++i)
        t.addRow();
    for (int round = 0; round < 500; ++round) {
        for (int r = 1; r <= 3; ++r)
            t.setValue(r, 1, QString(round % 40 + r, QChar(u'a' + r)));
    }
    for (int r = 1; r <= 3; ++r)
        EXPECT_EQ(t.value(r, 1), QString(499 % 40 + r, QChar(u'a' + r)));
    EXPECT_EQ(t, QZWebTable::fromXml(t.toXml()));
}

TEST(WebTableEdit, RemoveRowAndClear)
{
    QZWebTable t = sampleTable();
    t.appendRow({QStringLiteral("12"), QStringLiteral("West"), QStringLiteral("10")});
    t.removeRow(2);
    ASSERT_EQ(t.rowCount(), 2);
    EXPECT_EQ(t.value(2, 1), QStringLiteral("West"));
    EXPECT_EQ(errorNumber([&] { t.removeRow(3); }), 9);
    t.clearRows();
    EXPECT_EQ(t.rowCount(), 0);
    EXPECT_EQ(t.columnCount(), 3);
}

TEST(WebTableEdit, RowsWithoutColumnsAreCounted)
{
    QZWebTable t(QStringLiteral("Empty"));
    EXPECT_EQ(t.addRow(), 1);
    EXPECT_EQ(t.addRow(), 2);
    const QZWebTable back = QZWebTable::fromXml(t.toXml());
    EXPECT_EQ(back.rowCount(), 2);
    EXPECT_EQ(back, t);
}

// ---- text form ----

class WebTableRoundTrip : public ::testing::TestWithParam<NastyValue>
{};

TEST_P(WebTableRoundTrip, ValueSurvivesInEveryPosition)
{
    const QString &v = GetParam().value;
    QZWebTable t(QStringLiteral("T"),
                 {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    t.appendRow({v, QStringLiteral("middle"), v});
    t.appendRow({QString(), v, QString()});
    const QString xml = t.toXml();
    const QZWebTable back = QZWebTable::fromXml(xml);
    ASSERT_EQ(back.rowCount(), 2);
    EXPECT_EQ(back.value(1, 0), v);
    EXPECT_EQ(back.value(1, 2), v);
    EXPECT_EQ(back.value(2, 1), v);
    EXPECT_EQ(back, t);
    // The same bytes read as UTF-8 (files) give the same table.
    EXPECT_EQ(QZWebTable::fromXmlUtf8(xml.toUtf8()), t);
}

TEST_P(WebTableRoundTrip, SavedTextIsXml10WithoutLiteralCr)
{
    QZWebTable t(QStringLiteral("T"), {QStringLiteral("A")});
    t.appendRow({GetParam().value});
    const QString xml = t.toXml();
    for (qsizetype i = 0; i < xml.size(); ++i) {
        const char16_t u = xml[i].unicode();
        const bool allowed = u == u'\t' || u == u'\n' || (u >= 0x20 && u < 0xD800) ||
                             (u >= 0xE000 && u < 0xFFFE) ||
                             (QChar::isHighSurrogate(u) && i + 1 < xml.size() &&
                              QChar::isLowSurrogate(xml[++i].unicode()));
        ASSERT_TRUE(allowed) << "code unit " << unsigned(u) << " at " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(NastyValues, WebTableRoundTrip, ::testing::ValuesIn(nastyValues()),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(WebTableXml, FormatIsPositionalValuesUnderColumns)
{
    const QString xml = sampleTable().toXml();
    EXPECT_TRUE(xml.startsWith(QStringLiteral("<Table name=\"BusinessUnits\">")));
    EXPECT_TRUE(xml.contains(QStringLiteral("<Column name=\"BUID\"/>")));
    EXPECT_TRUE(xml.contains(QStringLiteral("<Row><V>10</V><V>North</V><V/></Row>")));
    for (const char *marker : {"<WebData>", "<WebProfile>", "<WebProfiles>"})
        EXPECT_FALSE(xml.contains(QLatin1String(marker))) << marker;
}

TEST(WebTableXml, EscapesAreTheDocumentedOnes)
{
    QZWebTable t(QStringLiteral("T"), {QStringLiteral("A")});
    t.appendRow({QStringLiteral("a\rb")});
    t.appendRow({units({u' ', 0x00, u'x', 0xD800})});
    const QString xml = t.toXml();
    EXPECT_TRUE(xml.contains(QStringLiteral("<V>a&#13;b</V>")));
    EXPECT_TRUE(xml.contains(QStringLiteral("<V>&#32;<C u=\"0\"/>x<C u=\"D800\"/></V>")));
}

TEST(WebTableXml, NamesWithOddCharactersRoundTrip)
{
    QZWebTable t(QStringLiteral(" a\"b'<&>\t\r\nä😀 "),
                 {QStringLiteral("x y"), QStringLiteral("\t")});
    EXPECT_EQ(QZWebTable::fromXml(t.toXml()), t);
}

TEST(WebTableXml, NameThatXmlCannotCarryIsRefusedOnSave)
{
    const QZWebTable t(units({u'T', 0x01}));
    QString description;
    EXPECT_EQ(errorNumber([&] { (void)t.toXml(); }, &description), 5);
    EXPECT_TRUE(description.contains(QStringLiteral("table name"))) << description.toStdString();
}

struct HostText
{
    const char *name;
    const char *xml;
    std::u16string_view expected; // value of row 1, column 0
};

inline void PrintTo(const HostText &c, std::ostream *os)
{
    *os << c.name;
}

class WebTableHostText : public ::testing::TestWithParam<HostText>
{};

TEST_P(WebTableHostText, ReadsWhatHostsMayWrite)
{
    const QZWebTable t = QZWebTable::fromXml(QString::fromUtf8(GetParam().xml));
    ASSERT_EQ(t.rowCount(), 1);
    EXPECT_EQ(t.value(1, 0), QStringView(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WebTableHostText,
    ::testing::Values(
        HostText{"Declaration",
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Table name=\"T\"><Column "
                 "name=\"A\"/><Row><V>1</V></Row></Table>",
                 u"1"sv},
        HostText{"IndentedStructure",
                 "<Table name=\"T\">\n  <Column name=\"A\"/>\n  <Row>\n    <V>1</V>\n  "
                 "</Row>\n</Table>\n",
                 u"1"sv},
        HostText{"CommentsAndPis",
                 "<!-- c --><Table name=\"T\"><?pi x?><Column name=\"A\"/><Row><!-- c --><V>a<!-- "
                 "c -->b</V></Row></Table>",
                 u"ab"sv},
        HostText{"Cdata",
                 "<Table name=\"T\"><Column name=\"A\"/><Row><V><![CDATA[<&>]]>x</V></Row></Table>",
                 u"<&>x"sv},
        HostText{"NumericReferences",
                 "<Table name=\"T\"><Column "
                 "name=\"A\"/><Row><V>&#65;&#x42;&#1;&#x1F600;</V></Row></Table>",
                 u"AB\x01\U0001F600"sv},
        HostText{"LiteralCrKept",
                 "<Table name=\"T\"><Column name=\"A\"/><Row><V>a\r\nb</V></Row></Table>",
                 u"a\r\nb"sv},
        HostText{"WhitespaceValue",
                 "<Table name=\"T\"><Column name=\"A\"/><Row><V> \t </V></Row></Table>", u" \t "sv},
        HostText{"UnknownElementsIgnored",
                 "<Table name=\"T\"><Meta x=\"1\"><Deep/></Meta><Column "
                 "name=\"A\"/><Row><Note/><V>1</V></Row></Table>",
                 u"1"sv},
        HostText{"CodeElements",
                 "<Table name=\"T\"><Column name=\"A\"/><Row><V><C u=\"0\"/>a<C "
                 "u=\"dc00\"/></V></Row></Table>",
                 u"\0a\xDC00"sv}),
    [](const auto &info) { return std::string(info.param.name); });

struct BadText
{
    const char *name;
    const char *xml;
    int number;
    const char *mention;
};

inline void PrintTo(const BadText &c, std::ostream *os)
{
    *os << c.name;
}

class WebTableBadText : public ::testing::TestWithParam<BadText>
{};

TEST_P(WebTableBadText, IsRefusedAndLeavesTheTableUnchanged)
{
    QZWebTable t = sampleTable();
    const QZWebTable before = t;
    QString description;
    EXPECT_EQ(errorNumber([&] { t.loadXml(QString::fromUtf8(GetParam().xml)); }, &description),
              GetParam().number);
    EXPECT_TRUE(description.contains(QLatin1String(GetParam().mention)))
        << description.toStdString();
    EXPECT_TRUE(description.contains(QStringLiteral("table document")))
        << description.toStdString();
    EXPECT_EQ(t, before);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WebTableBadText,
    ::testing::Values(
        BadText{"Empty", "", 5, "No document element"},
        BadText{"BlanksOnly", "  \n ", 5, "No document element"},
        BadText{"Truncated", "<Table name=\"T\"><Column name=\"A\"/><Row><V>1</V>", 5, "line 1"},
        BadText{"MismatchedTags", "<Table name=\"T\"><Row></Table></Row>", 5, "mismatch"},
        BadText{"WrongRoot", "<WebData><Table name=\"T\"/></WebData>", 5, "<Table>"},
        BadText{"SecondRoot", "<Table name=\"T\"/><Table name=\"U\"/>", 5, "second root"},
        BadText{
            "TooFewValues",
            "<Table name=\"T\"><Column name=\"A\"/><Column name=\"B\"/><Row><V>1</V></Row></Table>",
            5, "row 1 has 1 values"},
        BadText{"TooManyValues",
                "<Table name=\"T\"><Column "
                "name=\"A\"/><Row><V>1</V></Row><Row><V>1</V><V>2</V><V>3</V></Row></Table>",
                5, "row 2 has 3 values"},
        BadText{"ValuesWithoutColumns", "<Table name=\"T\"><Row><V>1</V></Row></Table>", 5,
                "0 columns"},
        BadText{
            "ColumnAfterRows",
            "<Table name=\"T\"><Column name=\"A\"/><Row><V>1</V></Row><Column name=\"B\"/></Table>",
            5, "after its rows"},
        BadText{"DuplicateColumn",
                "<Table name=\"T\"><Column name=\"A\"/><Column name=\"a\"/></Table>", 457,
                "'a' twice"},
        BadText{"ElementInsideValue",
                "<Table name=\"T\"><Column name=\"A\"/><Row><V>1<b>2</b></V></Row></Table>", 5,
                "<b>"},
        BadText{"BadCodeElement",
                "<Table name=\"T\"><Column name=\"A\"/><Row><V><C u=\"12345\"/></V></Row></Table>",
                5, "hexadecimal"},
        BadText{"CodeElementWithoutCode",
                "<Table name=\"T\"><Column name=\"A\"/><Row><V><C/></V></Row></Table>", 5,
                "hexadecimal"},
        BadText{"ReferenceToSurrogate",
                "<Table name=\"T\"><Column name=\"A\"/><Row><V>&#xD800;</V></Row></Table>", 5,
                "UTF-8"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(WebTableXml, UnpairedSurrogateOrNulInTheTextIsRefused)
{
    const QString good =
        QStringLiteral("<Table name=\"T\"><Column name=\"A\"/><Row><V>x</V></Row></Table>");
    for (char16_t bad : {char16_t(0xD800), char16_t(0xDC00), char16_t(0)}) {
        QString xml = good;
        xml[xml.indexOf(u'x')] = QChar(bad);
        QString description;
        EXPECT_EQ(errorNumber([&] { (void)QZWebTable::fromXml(xml); }, &description), 5);
        EXPECT_TRUE(description.contains(QStringLiteral("character %1").arg(good.indexOf(u'x'))))
            << description.toStdString();
    }
}

TEST(WebTableXml, BytesThatAreNotUtf8AreRefused)
{
    const char *texts[] = {
        "<Table name=\"T\"><Column name=\"A\"/><Row><V>\xC3</V></Row></Table>",     // cut sequence
        "<Table name=\"T\"><Column name=\"A\"/><Row><V>\xC0\xAF</V></Row></Table>", // overlong
        "<Table name=\"T\"><Column name=\"A\"/><Row><V>\xED\xA0\x80</V></Row></Table>", // surrogate
        "<Table name=\"T\"><Column name=\"A\"/><Row><V>\xF4\x90\x80\x80</V></Row></Table>", // >
                                                                                            // 10FFFF
        "<Table name=\"T\xFF\"/>",
    };
    for (const char *text : texts)
        EXPECT_EQ(errorNumber([&] { (void)QZWebTable::fromXmlUtf8(QByteArrayView(text)); }), 5)
            << text;
}

TEST(WebTableXml, ErrorPositionIsReportedInCharactersOfTheText)
{
    // Multi-byte characters before the error must not shift the reported position.
    const QString xml = QStringLiteral("<Table name=\"ää😀\">\n<Row>\n</Table>");
    QString description;
    EXPECT_EQ(errorNumber([&] { (void)QZWebTable::fromXml(xml); }, &description), 5);
    EXPECT_TRUE(description.contains(QStringLiteral("line 3"))) << description.toStdString();
}

TEST(WebTableXml, LargeTableRoundTrips)
{
    QZWebTable t(QStringLiteral("BUDetailsInfo"));
    for (int c = 0; c < 17; ++c)
        t.addColumn(QStringLiteral("C%1").arg(c));
    QStringList row;
    for (int c = 0; c < 17; ++c)
        row.append(QString());
    for (int r = 0; r < 20000; ++r) {
        for (int c = 0; c < 17; ++c)
            row[c] = QString::number(r * 17 + c);
        t.appendRow(row);
    }
    const QZWebTable back = QZWebTable::fromXmlUtf8(t.toXml().toUtf8());
    ASSERT_EQ(back.rowCount(), 20000);
    EXPECT_EQ(back.value(20000, 16), QString::number(19999 * 17 + 16));
    EXPECT_EQ(back, t);
}

#include "nastyvalues.h"
#include "support/expecterror.h"
#include "webdata/qzwebtable.h"

#include <functional>
#include <gtest/gtest.h>
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

QString oneColumnTable(const char *rowContent)
{
    return QStringLiteral("<Table name=\"T\"><Column name=\"A\"/><Row>%1</Row></Table>")
        .arg(QString::fromUtf8(rowContent));
}

} // namespace

TEST(WebTableAccess, ColumnsIgnoreCaseAndMissingPartsAreNamed)
{
    const QZWebTable t = sampleTable();
    EXPECT_EQ(t.fieldList(), QStringLiteral("BUID,BUDesc,ParentBUID"));
    EXPECT_EQ(t.field(1, u"budesc"), QStringLiteral("North"));
    EXPECT_EQ(t.row(2).field(u"PARENTBUID"), QStringLiteral("10"));
    EXPECT_EQ(t.columnIndex(u"Missing"), -1);

    const struct
    {
        const char *name;
        std::function<void()> access;
        QStringList mustMention;
    } rows[] = {
        {"MissingColumn",
         [&] { (void)t.field(1, u"TechCount"); },
         {QStringLiteral("BusinessUnits"), QStringLiteral("TechCount")}},
        {"RequireMissingColumn", [&] { (void)t.requireColumn(u"Nope"); }, {QStringLiteral("Nope")}},
        {"RowFieldMissingColumn", [&] { (void)t.row(1).field(u"X"); }, {QStringLiteral("'X'")}},
        {"RowZero", [&] { (void)t.row(0); }, {QStringLiteral("0")}},
        {"RowPastEnd", [&] { (void)t.row(3); }, {QStringLiteral("3")}},
        {"ValueColumnNegative", [&] { (void)t.value(1, -1); }, {}},
        {"ValueColumnPastEnd", [&] { (void)t.value(1, 3); }, {}},
        {"FieldRowPastEnd", [&] { (void)t.field(5, u"BUID"); }, {}},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        const QString description = expectError(r.access, DLVError::SubscriptOutOfRange);
        for (const QString &word : r.mustMention)
            EXPECT_TRUE(description.contains(word)) << description.toStdString();
    }
}

TEST(WebTableEdit, ShapeErrorsLeaveTheTableUnchanged)
{
    QZWebTable t = sampleTable();
    expectError([&] { t.appendRow({QStringLiteral("1")}); }, DLVError::InvalidCall);
    expectError([&] { t.addColumn(QStringLiteral("buid")); }, DLVError::DuplicateKey);
    expectError([&] { t.removeRow(3); }, DLVError::SubscriptOutOfRange);
    expectError(
        [] {
            QZWebTable(QStringLiteral("T"), {QStringLiteral("A"), QStringLiteral("a")});
        },
        DLVError::DuplicateKey);
    EXPECT_EQ(t, sampleTable());
}

TEST(WebTableEdit, AddColumnAndRemoveRowKeepOtherValues)
{
    QZWebTable t = sampleTable();
    t.appendRow({QStringLiteral("12"), QStringLiteral("West"), QStringLiteral("10")});
    t.addColumn(QStringLiteral("Extra"));
    EXPECT_EQ(t.value(1, 3), QString());
    t.setField(2, u"Extra", u"x");
    t.removeRow(1);
    ASSERT_EQ(t.rowCount(), 2);
    EXPECT_EQ(t.field(1, u"extra"), QStringLiteral("x"));
    EXPECT_EQ(t.value(1, 1), QStringLiteral("East"));
    EXPECT_EQ(t.value(2, 1), QStringLiteral("West"));
    t.clearRows();
    EXPECT_EQ(t.rowCount(), 0);
    EXPECT_EQ(t.columnCount(), 4);
}

TEST(WebTableEdit, SetValueFromOwnCellAndRepeatedRewritesSurviveCompaction)
{
    QZWebTable t = sampleTable();
    t.setValue(2, 1, u"A much longer description");
    // A view into the table itself must survive the buffer growing.
    t.setValue(1, 2, t.value(2, 1));
    t.setValue(2, 2, t.value(2, 1).mid(2));
    EXPECT_EQ(t.value(1, 2), QStringLiteral("A much longer description"));
    EXPECT_EQ(t.value(2, 2), QStringLiteral("much longer description"));
    EXPECT_EQ(t.value(2, 0), QStringLiteral("11"));

    QZWebTable nodes(QStringLiteral("CollapsedNodes"),
                     {QStringLiteral("ID"), QStringLiteral("List")});
    for (int i = 0; i < 3; ++i)
        nodes.addRow();
    for (int round = 0; round < 500; ++round)
        for (int r = 1; r <= 3; ++r)
            nodes.setValue(r, 1, QString(round % 40 + r, QChar(u'a' + r)));
    for (int r = 1; r <= 3; ++r)
        EXPECT_EQ(nodes.value(r, 1), QString(499 % 40 + r, QChar(u'a' + r)));
    EXPECT_EQ(nodes, QZWebTable::fromXml(nodes.toXml()));
}

TEST(WebTableXml, RowsWithoutColumnsAreCounted)
{
    QZWebTable t(QStringLiteral("Empty"));
    t.addRow();
    t.addRow();
    EXPECT_EQ(QZWebTable::fromXml(t.toXml()), t);
    EXPECT_EQ(QZWebTable::fromXml(t.toXml()).rowCount(), 2);
}

class WebTableRoundTrip : public ::testing::TestWithParam<NastyValue>
{};

// The value survives in every position, and the saved text is XML 1.0 without a literal CR.
TEST_P(WebTableRoundTrip, ValueSurvivesAndTextIsXml10)
{
    const QString &v = GetParam().value;
    QZWebTable t(QStringLiteral("T"),
                 {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    t.appendRow({v, QStringLiteral("middle"), v});
    t.appendRow({QString(), v, QString()});
    const QString xml = t.toXml();
    const QZWebTable back = QZWebTable::fromXml(xml);
    EXPECT_EQ(back.value(2, 1), v);
    EXPECT_EQ(back, t);
    EXPECT_EQ(QZWebTable::fromXmlUtf8(xml.toUtf8()), t);
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

TEST(WebTableXml, FormatAndEscapesAreTheDocumentedOnes)
{
    const QString xml = sampleTable().toXml();
    EXPECT_TRUE(xml.startsWith(QStringLiteral("<Table name=\"BusinessUnits\">")));
    EXPECT_TRUE(xml.contains(QStringLiteral("<Row><V>10</V><V>North</V><V/></Row>")));
    for (const char *marker : {"<WebData>", "<WebProfile>", "<WebProfiles>"})
        EXPECT_FALSE(xml.contains(QLatin1String(marker))) << marker;

    QZWebTable t(QStringLiteral("T"), {QStringLiteral("A")});
    t.appendRow({QStringLiteral("a\rb")});
    t.appendRow({units({u' ', 0x00, u'x', 0xD800})});
    const QString escaped = t.toXml();
    EXPECT_TRUE(escaped.contains(QStringLiteral("<V>a&#13;b</V>")));
    EXPECT_TRUE(escaped.contains(QStringLiteral("<V>&#32;<C u=\"0\"/>x<C u=\"D800\"/></V>")));
}

TEST(WebTableXml, NamesRoundTripUnlessXmlCannotCarryThem)
{
    QZWebTable t(QStringLiteral(" a\"b'<&>\t\r\nä😀 "),
                 {QStringLiteral("x y"), QStringLiteral("\t")});
    EXPECT_EQ(QZWebTable::fromXml(t.toXml()), t);
    const QString description = expectError(
        [] {
            (void)QZWebTable(units({u'T', 0x01})).toXml();
        },
        DLVError::InvalidCall);
    EXPECT_TRUE(description.contains(QStringLiteral("table name"))) << description.toStdString();
}

TEST(WebTableXml, ReadsWhatHostsMayWrite)
{
    const struct
    {
        const char *name;
        QString xml;
        std::u16string_view expected; // value of row 1, column 0
    } rows[] = {
        {"DeclarationAndIndent",
         QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Table name=\"T\">\n  <Column "
                        "name=\"A\"/>\n  <Row>\n    <V>1</V>\n  </Row>\n</Table>\n"),
         u"1"sv},
        {"CommentsAndPis",
         QStringLiteral("<!-- c --><Table name=\"T\"><?pi x?><Column name=\"A\"/><Row><!-- c "
                        "--><V>a<!-- c -->b</V></Row></Table>"),
         u"ab"sv},
        {"Cdata", oneColumnTable("<V><![CDATA[<&>]]>x</V>"), u"<&>x"sv},
        {"NumericReferences", oneColumnTable("<V>&#65;&#x42;&#1;&#x1F600;</V>"),
         u"AB\x01\U0001F600"sv},
        {"LiteralCrKept", oneColumnTable("<V>a\r\nb</V>"), u"a\r\nb"sv},
        {"WhitespaceValue", oneColumnTable("<V> \t </V>"), u" \t "sv},
        {"UnknownElementsIgnored",
         QStringLiteral("<Table name=\"T\"><Meta x=\"1\"><Deep/></Meta><Column "
                        "name=\"A\"/><Row><Note/><V>1</V></Row></Table>"),
         u"1"sv},
        {"CodeElements", oneColumnTable("<V><C u=\"0\"/>a<C u=\"dc00\"/></V>"), u"\0a\xDC00"sv},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        const QZWebTable t = QZWebTable::fromXml(r.xml);
        ASSERT_EQ(t.rowCount(), 1);
        EXPECT_EQ(t.value(1, 0), QStringView(r.expected));
    }
}

TEST(WebTableXml, BadTextIsRefusedAndLeavesTheTableUnchanged)
{
    const struct
    {
        const char *name;
        QString xml;
        qint32 number;
        const char *mention;
    } rows[] = {
        {"BlanksOnly", QStringLiteral("  \n "), 5, "No document element"},
        {"Truncated", QStringLiteral("<Table name=\"T\"><Column name=\"A\"/><Row><V>1</V>"), 5,
         "line 1"},
        {"MismatchedTags", QStringLiteral("<Table name=\"T\"><Row></Table></Row>"), 5, "mismatch"},
        {"WrongRoot", QStringLiteral("<WebData><Table name=\"T\"/></WebData>"), 5, "<Table>"},
        {"SecondRoot", QStringLiteral("<Table name=\"T\"/><Table name=\"U\"/>"), 5, "second root"},
        {"TooManyValues",
         QStringLiteral("<Table name=\"T\"><Column name=\"A\"/><Row><V>1</V></Row><Row><V>1</V>"
                        "<V>2</V><V>3</V></Row></Table>"),
         5, "row 2 has 3 values"},
        {"ValuesWithoutColumns", QStringLiteral("<Table name=\"T\"><Row><V>1</V></Row></Table>"), 5,
         "0 columns"},
        {"ColumnAfterRows",
         QStringLiteral("<Table name=\"T\"><Column name=\"A\"/><Row><V>1</V></Row><Column "
                        "name=\"B\"/></Table>"),
         5, "after its rows"},
        {"DuplicateColumn",
         QStringLiteral("<Table name=\"T\"><Column name=\"A\"/><Column name=\"a\"/></Table>"), 457,
         "'a' twice"},
        {"ElementInsideValue", oneColumnTable("<V>1<b>2</b></V>"), 5, "<b>"},
        {"BadCodeElement", oneColumnTable("<V><C u=\"12345\"/></V>"), 5, "hexadecimal"},
        {"ReferenceToSurrogate", oneColumnTable("<V>&#xD800;</V>"), 5, "UTF-8"},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        QZWebTable t = sampleTable();
        const QString description = expectError([&] { t.loadXml(r.xml); }, r.number);
        EXPECT_TRUE(description.contains(QLatin1String(r.mention))) << description.toStdString();
        EXPECT_TRUE(description.contains(QStringLiteral("table document")));
        EXPECT_EQ(t, sampleTable());
    }
}

TEST(WebTableXml, BadCharactersAndBytesAreRefusedAtTheirPosition)
{
    const QString good = oneColumnTable("<V>x</V>");
    for (char16_t bad : {char16_t(0xD800), char16_t(0)}) {
        QString xml = good;
        xml[xml.indexOf(u'x')] = QChar(bad);
        const QString description =
            expectError([&] { (void)QZWebTable::fromXml(xml); }, DLVError::InvalidCall);
        EXPECT_TRUE(description.contains(QStringLiteral("character %1").arg(good.indexOf(u'x'))))
            << description.toStdString();
    }
    // Cut sequence, overlong form, encoded surrogate, beyond U+10FFFF.
    for (const char *bytes : {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        const QByteArray text = oneColumnTable("<V>X</V>").toUtf8().replace("X", bytes);
        expectError([&] { (void)QZWebTable::fromXmlUtf8(text); }, DLVError::InvalidCall);
    }
    // Multi-byte characters before an error must not shift the reported line.
    const QString description = expectError(
        [] { (void)QZWebTable::fromXml(QStringLiteral("<Table name=\"ää😀\">\n<Row>\n</Table>")); },
        DLVError::InvalidCall);
    EXPECT_TRUE(description.contains(QStringLiteral("line 3"))) << description.toStdString();
}

TEST(WebTableXml, LargeTableRoundTrips)
{
    QZWebTable t(QStringLiteral("BUDetailsInfo"));
    for (int c = 0; c < 17; ++c)
        t.addColumn(QStringLiteral("C%1").arg(c));
    QStringList row(17);
    for (int r = 0; r < 20000; ++r) {
        for (int c = 0; c < 17; ++c)
            row[c] = QString::number(r * 17 + c);
        t.appendRow(row);
    }
    const QZWebTable back = QZWebTable::fromXmlUtf8(t.toXml().toUtf8());
    ASSERT_EQ(back.rowCount(), 20000);
    EXPECT_EQ(back, t);
}

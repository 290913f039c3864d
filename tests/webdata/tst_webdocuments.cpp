#include "nastyvalues.h"
#include "support/expecterror.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebprofiles.h"

#include <QFile>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>

namespace {

QByteArray sampleFile(const char *name)
{
    QFile file(QStringLiteral(DLV_SOURCE_DIR "/tests/data/webdata/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        ADD_FAILURE() << "cannot read " << name;
    return file.readAll();
}

QZWebTable errorTable(const QString &number, const QString &description)
{
    QZWebTable t(QStringLiteral("Error"),
                 {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
    t.appendRow({number, description});
    return t;
}

QZWebProfile profileWith(const QString &name, const QString &value)
{
    QZWebProfile p(name);
    QZWebTable &select = p.addSection(QStringLiteral("DLVSelect"),
                                      QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
    select.addRow();
    select.setField(1, u"BUList", value);
    QZWebTable &nodes = p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
    for (const char16_t *id : {u"JobTypes", u"BUWorkOrders"})
        nodes.setField(nodes.addRow(), u"ID", QStringView(id));
    nodes.setField(2, u"List", value);
    return p;
}

QZWebMessage messageWith(const QString &value)
{
    QZWebMessage m(QStringLiteral("DLVData"));
    m.setProperty(QStringLiteral("tqDBRefreshInterval"), QStringLiteral("15"));
    m.setProperty(QStringLiteral("odd"), value);
    auto data = std::make_shared<QZWebData>();
    data->addTable(errorTable(QStringLiteral("0"), value));
    m.addData(data);
    auto second = std::make_shared<QZWebData>();
    second->addTable(QZWebTable(QStringLiteral("Empty")));
    m.addData(second);
    return m;
}

void expectSameMessage(const QZWebMessage &a, const QZWebMessage &b)
{
    EXPECT_EQ(a.name(), b.name());
    ASSERT_EQ(a.properties().count(), b.properties().count());
    for (qsizetype i = 0; i < a.properties().count(); ++i) {
        EXPECT_EQ(a.properties().at(i).key, b.properties().at(i).key);
        EXPECT_EQ(a.properties().at(i).value, b.properties().at(i).value);
    }
    ASSERT_EQ(a.dataCount(), b.dataCount());
    for (int d = 1; d <= a.dataCount(); ++d) {
        ASSERT_EQ(a.data(d)->tableCount(), b.data(d)->tableCount());
        for (int t = 0; t < a.data(d)->tableCount(); ++t)
            EXPECT_EQ(a.data(d)->tableAt(t), b.data(d)->tableAt(t));
    }
}

} // namespace

class WebDocumentRoundTrip : public ::testing::TestWithParam<NastyValue>
{};

TEST_P(WebDocumentRoundTrip, EveryFormCarriesTheValue)
{
    const QString &v = GetParam().value;
    QZWebData data;
    data.addTable(errorTable(QStringLiteral("1"), v));
    const QZWebData dataBack = QZWebData::fromXml(data.toXml());
    ASSERT_EQ(dataBack.tableCount(), 1);
    EXPECT_EQ(dataBack.table(u"error").field(1, u"ErrorDescription"), v);

    const QZWebMessage m = messageWith(v);
    expectSameMessage(QZWebMessage::fromXml(m.toXml()), m);
    expectSameMessage(QZWebMessage::fromXmlUtf8(m.toXml().toUtf8()), m);

    QZWebProfile p = profileWith(v, v);
    p.setErrorTable(errorTable(QStringLiteral("0"), v));
    EXPECT_EQ(QZWebProfile::fromXml(p.toXml()), p);

    QZWebProfiles set;
    set.add(QStringLiteral("Default")) = profileWith(QStringLiteral("Default"), v);
    set.add(QStringLiteral("Other ") + v) = profileWith(QStringLiteral("Other ") + v, QString());
    set.setErrorTable(errorTable(QString(), v));
    const QZWebProfiles setBack = QZWebProfiles::fromXml(set.toXml());
    EXPECT_EQ(setBack, set);
    EXPECT_EQ(setBack.item(1).section(u"dlvselect")->field(1, u"BUList"), v);
}

INSTANTIATE_TEST_SUITE_P(NastyValues, WebDocumentRoundTrip, ::testing::ValuesIn(nastyValues()),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(WebDocumentMarkers, EachFormCarriesItsOwnMarker)
{
    QZWebData data;
    data.addTable(errorTable(QStringLiteral("0"), QString()));
    QZWebProfiles set;
    set.add(QStringLiteral("Default"));
    const QString dataXml = data.toXml();
    const QString profileXml = profileWith(QStringLiteral("Default"), QString()).toXml();
    const QString setXml = set.toXml();
    EXPECT_TRUE(setXml.contains(QStringLiteral("<WebProfiles>")));
    EXPECT_TRUE(setXml.contains(QStringLiteral("<WebProfile>")));
    EXPECT_TRUE(profileXml.contains(QStringLiteral("<WebProfile>")));
    EXPECT_FALSE(profileXml.contains(QStringLiteral("<WebProfiles>")));
    EXPECT_TRUE(dataXml.contains(QStringLiteral("<WebData>")));
    EXPECT_FALSE(dataXml.contains(QStringLiteral("<WebProfile")));
}

TEST(WebDocumentAccess, MissingPartsAndDuplicateNamesAreErrors)
{
    const QZWebData answer = QZWebData::fromXmlUtf8(sampleFile("profilelist-answer.xml"));
    EXPECT_EQ(
        expectError([&] { (void)answer.table(u"BUDetailsInfo"); }, DLVError::SubscriptOutOfRange),
        QStringLiteral("The data holds no table 'BUDetailsInfo'"));
    expectError([&] { (void)answer.tableAt(1); }, DLVError::SubscriptOutOfRange);

    QZWebData data;
    data.addTable(QZWebTable(QStringLiteral("Error")));
    expectError([&] { data.addTable(QZWebTable(QStringLiteral("ERROR"))); },
                DLVError::DuplicateKey);
    QZWebData copy = data;
    EXPECT_TRUE(copy.removeTable(u"error"));
    EXPECT_EQ(data.tableCount(), 1); // copies are deep

    QZWebMessage m = messageWith(QStringLiteral("v"));
    EXPECT_EQ(m.property(u"TQDBREFRESHINTERVAL"), QString()); // property keys are exact
    expectError([&] { (void)m.data(0); }, DLVError::SubscriptOutOfRange);
    expectError([&] { (void)m.data(3); }, DLVError::SubscriptOutOfRange);
    expectError([&] { m.addData(nullptr); }, DLVError::InvalidCall);

    QZWebProfiles set;
    QZWebProfile &p = set.add(QStringLiteral("Default"));
    expectError([&] { set.add(QStringLiteral("DEFAULT")); }, DLVError::DuplicateKey);
    EXPECT_EQ(set.find(u"default"), &p);
    expectError([&] { (void)set.item(2); }, DLVError::SubscriptOutOfRange);
    p.addSection(QStringLiteral("DLVSelect"), QStringLiteral("BUList,SummaryOption"));
    expectError([&] { p.addSection(QStringLiteral("dlvselect"), QString()); },
                DLVError::DuplicateKey);
    EXPECT_EQ(p.section(u"missing"), nullptr);
    expectError([&] { (void)p.sectionAt(1); }, DLVError::SubscriptOutOfRange);
    EXPECT_TRUE(set.remove(u"DEFAULT"));
    EXPECT_FALSE(set.remove(u"Default"));
}

TEST(WebDocumentSamples, HostDocumentsLoad)
{
    const QZWebMessage m = QZWebMessage::fromXmlUtf8(sampleFile("dlvdata-message.xml"));
    EXPECT_EQ(m.name(), QStringLiteral("DLVData"));
    EXPECT_EQ(m.property(u"tqJeopardyThreshold"), QStringLiteral("30"));
    ASSERT_EQ(m.dataCount(), 1);
    const QZWebData &data = *m.data(1);
    ASSERT_EQ(data.tableCount(), 6);
    EXPECT_EQ(data.tableAt(5).name(), QStringLiteral("BUDetailsInfo"));
    EXPECT_EQ(data.table(u"BUDetailsInfo").field(2, u"PtsNotDone"), QStringLiteral("10"));
    EXPECT_EQ(data.table(u"BusinessUnits").field(2, u"BUDesc"),
              QStringLiteral("North & East Depot"));
    EXPECT_EQ(data.table(u"BusinessUnits").field(3, u"BUDesc"), QStringLiteral("Säo Paulo"));
    expectSameMessage(QZWebMessage::fromXml(QString::fromUtf8(sampleFile("dlvdata-message.xml"))),
                      m);

    EXPECT_EQ(QZWebMessage::fromXmlUtf8(sampleFile("serverstopped-message.xml")).dataCount(), 0);
    // The profile-list answer's ID list is not a table.
    EXPECT_EQ(QZWebData::fromXmlUtf8(sampleFile("profilelist-answer.xml")).tableCount(), 1);

    const QZWebProfiles set = QZWebProfiles::fromXmlUtf8(sampleFile("profiles-answer.xml"));
    ASSERT_EQ(set.count(), 2);
    ASSERT_NE(set.errorTable(), nullptr);
    EXPECT_EQ(set.item(1).section(u"CollapsedNodes")->field(2, u"ID"),
              QStringLiteral("BUWorkOrders"));
    EXPECT_EQ(set.find(u"night shift")->section(u"DLVSelect")->field(1, u"SummaryOption"),
              QStringLiteral("False"));

    const QZWebProfile one = QZWebProfile::fromXmlUtf8(sampleFile("profile-single.xml"));
    EXPECT_EQ(one.name(), QStringLiteral("Day shift"));
    ASSERT_NE(one.errorTable(), nullptr);
    EXPECT_EQ(QZWebProfile::fromXml(one.toXml()), one);
}

struct Form
{
    const char *name;
    const char *sample;
    std::function<void(QStringView)> loadUtf16;
    std::function<void(QByteArrayView)> loadUtf8;
};

inline void PrintTo(const Form &c, std::ostream *os)
{
    *os << c.name;
}

class WebDocumentForm : public ::testing::TestWithParam<Form>
{};

// Every prefix of a valid document either loads or gives a DLVError; nothing else may happen.
TEST_P(WebDocumentForm, EveryTruncationGivesAnErrorOrADocument)
{
    const QByteArray utf8 = sampleFile(GetParam().sample);
    const QString text = QString::fromUtf8(utf8);
    int errors = 0;
    for (qsizetype n = 0; n < text.size(); ++n) {
        errors += thrownNumber([&] { GetParam().loadUtf16(QStringView(text).left(n)); }) != 0;
        // Byte prefixes may also cut a UTF-8 sequence.
        (void)thrownNumber([&] { GetParam().loadUtf8(QByteArrayView(utf8.constData(), n)); });
    }
    EXPECT_GT(errors, text.size() / 2);
    EXPECT_EQ(thrownNumber([&] { GetParam().loadUtf16(text); }), 0);
}

TEST_P(WebDocumentForm, MalformedTextOrWrongRootIsInvalidCall)
{
    for (const char *text :
         {"", "not xml", "<a></b>", "<!-- only a comment -->", "<a x=\"1></a>", "&bogus;"}) {
        const QString description =
            expectError([&] { GetParam().loadUtf16(QString::fromLatin1(text)); }, 5);
        EXPECT_TRUE(description.contains(QStringLiteral("document"))) << text;
    }
    for (const char *text : {"<Other/>", "<Table name=\"Error\"/>", "<WebData></WebData>",
                             "<WebMessage name=\"x\"/>", "<WebProfile/>", "<WebProfiles/>"}) {
        if (thrownNumber([&] { GetParam().loadUtf16(QString::fromLatin1(text)); }) == 0)
            continue; // the form's own root
        const QString description =
            expectError([&] { GetParam().loadUtf16(QString::fromLatin1(text)); }, 5);
        EXPECT_TRUE(description.contains(QStringLiteral("must have the root element"))) << text;
    }
}

// A reference to U+0000 used to end the string silently ("Crew &#0;TAIL" loaded as "Crew ");
// one too large for a code point could wrap to zero. Both are refused in names and values.
TEST_P(WebDocumentForm, ReferencesThatCannotBeCarriedAreRefused)
{
    const QString text = QString::fromUtf8(sampleFile(GetParam().sample));
    const qsizetype name = text.indexOf(QStringLiteral("name=\"")) + 6;
    const qsizetype value = text.indexOf(u'<', text.indexOf(QStringLiteral("<V>")) + 1);
    ASSERT_GT(name, 5);
    for (const char *reference :
         {"&#0;", "&#x0;", "&#00000;", "&#x110000;", "&#4294967296;", "&#x100000000;"}) {
        SCOPED_TRACE(reference);
        for (const qsizetype at : {name, value}) {
            if (at <= 0)
                continue; // a form without values in its sample
            const QString bad = QString(text).insert(at, QLatin1String(reference));
            EXPECT_TRUE(expectError([&] { GetParam().loadUtf16(bad); }, 5)
                            .contains(QStringLiteral("character reference to U+0000")));
            EXPECT_EQ(thrownNumber([&] { GetParam().loadUtf8(bad.toUtf8()); }), 5);
        }
    }
    // Inside CDATA, a comment or a processing instruction it is plain text; "&#X0;" is no
    // reference at all and "&#1;" is a character like any other.
    for (const char *harmless :
         {"<![CDATA[&#0;]]>", "<!-- &#0; -->", "<?pi &#0;?>", "&#1;", "&amp;#0;", "&#X0;"}) {
        if (value <= 0)
            continue;
        const QString fine = QString(text).insert(value, QLatin1String(harmless));
        EXPECT_EQ(thrownNumber([&] { GetParam().loadUtf16(fine); }), 0) << harmless;
        EXPECT_EQ(thrownNumber([&] { GetParam().loadUtf8(fine.toUtf8()); }), 0) << harmless;
    }
}

TEST(WebDocumentLoad, ValueAroundARefusedReferenceIsNeverCut)
{
    const QZWebTable t = QZWebTable::fromXml(u"<Table name=\"T\"><Column name=\"A\"/><Row><V>Crew "
                                             u"<![CDATA[&#0;]]>TAIL</V></Row></Table>");
    EXPECT_EQ(t.value(1, 0), QStringLiteral("Crew &#0;TAIL"));
    expectError(
        [] {
            (void)QZWebData::fromXml(u"<WebData><Table name=\"BUGeneralInfo&#0;junk\"/></WebData>");
        },
        5);
}

TEST_P(WebDocumentForm, DeepNestingOfUnknownElementsDoesNotOverflowTheStack)
{
    const QString text = QString::fromUtf8(sampleFile(GetParam().sample));
    const qsizetype close = text.lastIndexOf(QStringLiteral("</"));
    const int depth = 200000;
    QString deep = text.left(close);
    deep.reserve(text.size() + depth * 8);
    for (int i = 0; i < depth; ++i)
        deep += QStringLiteral("<x>");
    for (int i = 0; i < depth; ++i)
        deep += QStringLiteral("</x>");
    deep += text.mid(close);
    (void)thrownNumber([&] { GetParam().loadUtf16(deep); }); // ignored or refused; never a crash
}

INSTANTIATE_TEST_SUITE_P(
    Forms, WebDocumentForm,
    ::testing::Values(
        Form{"Table", "error-table.xml", [](QStringView x) { (void)QZWebTable::fromXml(x); },
             [](QByteArrayView x) { (void)QZWebTable::fromXmlUtf8(x); }},
        Form{"Data", "profilelist-answer.xml", [](QStringView x) { (void)QZWebData::fromXml(x); },
             [](QByteArrayView x) { (void)QZWebData::fromXmlUtf8(x); }},
        Form{"Message", "dlvdata-message.xml",
             [](QStringView x) { (void)QZWebMessage::fromXml(x); },
             [](QByteArrayView x) { (void)QZWebMessage::fromXmlUtf8(x); }},
        Form{"Profile", "profile-single.xml", [](QStringView x) { (void)QZWebProfile::fromXml(x); },
             [](QByteArrayView x) { (void)QZWebProfile::fromXmlUtf8(x); }},
        Form{"ProfileSet", "profiles-answer.xml",
             [](QStringView x) { (void)QZWebProfiles::fromXml(x); },
             [](QByteArrayView x) { (void)QZWebProfiles::fromXmlUtf8(x); }}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(WebDocumentLoad, InconsistentDocumentsAreRefusedWithAClearError)
{
    const auto data = [](const char16_t *x) { (void)QZWebData::fromXml(x); };
    const auto profile = [](const char16_t *x) { (void)QZWebProfile::fromXml(x); };
    const auto profiles = [](const char16_t *x) { (void)QZWebProfiles::fromXml(x); };
    const struct
    {
        std::function<void(const char16_t *)> load;
        const char16_t *xml;
        qint32 number;
        const char *mention;
    } rows[] = {
        {data, u"<WebData><Table name=\"A\"/><Table name=\"a\"/></WebData>", 457,
         "two tables named 'a'"},
        {data, u"<WebData><Table name=\"A\"><Row><V/></Row></Table></WebData>", 5, "data document"},
        {[](const char16_t *x) { (void)QZWebMessage::fromXml(x); },
         u"<WebMessage name=\"m\"><Property key=\"k\">1</Property><Property "
         u"key=\"k\"/></WebMessage>",
         457, "'k' twice"},
        {profile,
         u"<WebProfile><Name>P</Name><Section name=\"S\"/><Section name=\"s\"/></WebProfile>", 457,
         "two sections named 's'"},
        {profile, u"<WebProfile><Name>P</Name><Name>Q</Name></WebProfile>", 5, "second <Name>"},
        {profile, u"<WebProfile><Table name=\"Error\"/><Table name=\"Error\"/></WebProfile>", 5,
         "more than one error table"},
        {profile, u"<WebProfiles><WebProfile/></WebProfiles>", 5,
         "<WebProfile>, not <WebProfiles>"},
        {profiles,
         u"<WebProfiles><WebProfile><Name>Default</Name></WebProfile><WebProfile><Name>DEFAULT"
         u"</Name></WebProfile></WebProfiles>",
         457, "two profiles named 'DEFAULT'"},
        {profiles,
         u"<WebProfiles><WebProfile><Section name=\"S\"><Column name=\"A\"/><Row/></Section>"
         u"</WebProfile></WebProfiles>",
         5, "section 'S' has 1 columns, but its row 1 has 0 values"},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.mention);
        const QString description = expectError([&] { r.load(r.xml); }, r.number);
        EXPECT_TRUE(description.contains(QLatin1String(r.mention))) << description.toStdString();
    }
}

TEST(WebDocumentLoad, FailedLoadLeavesTheObjectUnchangedAndReloadReplacesIt)
{
    QZWebProfiles set = QZWebProfiles::fromXmlUtf8(sampleFile("profiles-answer.xml"));
    const QZWebProfiles before = set;
    expectError([&] { set.loadXml(u"<WebProfiles><WebProfile>"); }, DLVError::InvalidCall);
    EXPECT_EQ(set, before);
    set.loadXml(u"<WebProfiles><WebProfile><Name>Only</Name></WebProfile></WebProfiles>");
    ASSERT_EQ(set.count(), 1);
    EXPECT_EQ(set.errorTable(), nullptr);

    QZWebMessage m = QZWebMessage::fromXmlUtf8(sampleFile("dlvdata-message.xml"));
    expectError(
        [&] {
            m.loadXml(
                u"<WebMessage name=\"X\"><WebData><Table name=\"T\"><Column name=\"A\"/><Row/>"
                u"</Table></WebData></WebMessage>");
        },
        DLVError::InvalidCall);
    EXPECT_EQ(m.name(), QStringLiteral("DLVData"));
    EXPECT_EQ(m.dataCount(), 1);
}

TEST(WebDocumentLoad, UnknownElementsAreIgnored)
{
    const QZWebMessage m = QZWebMessage::fromXml(
        u"<WebMessage name=\"DLVData\"><Header/><Property key=\"a\">1</Property>"
        u"<WebData><Extra><Table name=\"Hidden\"/></Extra><Table "
        u"name=\"T\"/></WebData></WebMessage>");
    EXPECT_EQ(m.properties().count(), 1);
    ASSERT_EQ(m.dataCount(), 1);
    EXPECT_EQ(m.data(1)->tableCount(), 1);
    EXPECT_FALSE(m.data(1)->hasTable(u"Hidden"));

    const QZWebProfiles set =
        QZWebProfiles::fromXml(u"<WebProfiles><Owner>x</Owner><WebProfile><Name>A</Name><Tag/></"
                               u"WebProfile></WebProfiles>");
    ASSERT_EQ(set.count(), 1);
    EXPECT_EQ(set.item(1).name(), QStringLiteral("A"));
}

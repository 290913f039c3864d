#include "common/dlverror.h"
#include "nastyvalues.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebprofiles.h"

#include <QFile>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>

namespace {

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
    select.setField(1, u"SummaryOption", u"True");
    QZWebTable &nodes = p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
    for (const char16_t *id : {u"JobTypes", u"BUWorkOrders", u"BUPoints"}) {
        const int row = nodes.addRow();
        nodes.setField(row, u"ID", QStringView(id));
    }
    nodes.setField(2, u"List", value);
    return p;
}

QZWebMessage messageWith(const QString &value)
{
    QZWebMessage m(QStringLiteral("DLVData"));
    m.setProperty(QStringLiteral("tqDBRefreshInterval"), QStringLiteral("15"));
    m.setProperty(QStringLiteral("odd"), value);
    auto data = std::make_shared<QZWebData>();
    QZWebTable &bu = data->addTable(QZWebTable(
        QStringLiteral("BusinessUnits"),
        {QStringLiteral("BUID"), QStringLiteral("BUDesc"), QStringLiteral("ParentBUID")}));
    bu.appendRow({QStringLiteral("10"), value, QString()});
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

// ---- round trips of every document form with odd values ----

class WebDocumentRoundTrip : public ::testing::TestWithParam<NastyValue>
{};

TEST_P(WebDocumentRoundTrip, Data)
{
    QZWebData data;
    data.addTable(errorTable(QStringLiteral("1"), GetParam().value));
    QZWebTable other(QStringLiteral("Second"), {QStringLiteral("V")});
    other.appendRow({GetParam().value});
    data.addTable(other);
    const QZWebData back = QZWebData::fromXml(data.toXml());
    ASSERT_EQ(back.tableCount(), 2);
    EXPECT_EQ(back.tableAt(0), data.tableAt(0));
    EXPECT_EQ(back.tableAt(1), other);
    EXPECT_EQ(back.table(u"error").field(1, u"ErrorDescription"), GetParam().value);
}

TEST_P(WebDocumentRoundTrip, Message)
{
    const QZWebMessage m = messageWith(GetParam().value);
    const QString xml = m.toXml();
    expectSameMessage(QZWebMessage::fromXml(xml), m);
    expectSameMessage(QZWebMessage::fromXmlUtf8(xml.toUtf8()), m);
}

TEST_P(WebDocumentRoundTrip, Profile)
{
    QZWebProfile p = profileWith(GetParam().value, GetParam().value);
    p.setErrorTable(errorTable(QStringLiteral("0"), GetParam().value));
    const QZWebProfile back = QZWebProfile::fromXml(p.toXml());
    EXPECT_EQ(back, p);
    EXPECT_EQ(back.name(), GetParam().value);
    ASSERT_NE(back.errorTable(), nullptr);
}

TEST_P(WebDocumentRoundTrip, ProfileSet)
{
    QZWebProfiles set;
    set.add(QStringLiteral("Default"));
    set.item(1) = profileWith(QStringLiteral("Default"), GetParam().value);
    set.add(QStringLiteral("Other ") + GetParam().value) =
        profileWith(QStringLiteral("Other ") + GetParam().value, QString());
    set.setErrorTable(errorTable(QString(), GetParam().value));
    const QZWebProfiles back = QZWebProfiles::fromXml(set.toXml());
    EXPECT_EQ(back, set);
    ASSERT_EQ(back.count(), 2);
    EXPECT_EQ(back.item(1).section(u"dlvselect")->field(1, u"BUList"), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(NastyValues, WebDocumentRoundTrip, ::testing::ValuesIn(nastyValues()),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- markers that tell result documents apart ----

TEST(WebDocumentMarkers, EachFormCarriesItsOwnMarker)
{
    QZWebData data;
    data.addTable(errorTable(QStringLiteral("0"), QString()));
    QZWebProfile profile = profileWith(QStringLiteral("Default"), QString());
    QZWebProfiles set;
    set.add(QStringLiteral("Default"));
    const QString dataXml = data.toXml();
    const QString profileXml = profile.toXml();
    const QString setXml = set.toXml();
    const QString tableXml = errorTable(QStringLiteral("0"), QString()).toXml();

    EXPECT_TRUE(setXml.contains(QStringLiteral("<WebProfiles>")));
    EXPECT_TRUE(setXml.contains(QStringLiteral("<WebProfile>")));
    EXPECT_TRUE(profileXml.contains(QStringLiteral("<WebProfile>")));
    EXPECT_FALSE(profileXml.contains(QStringLiteral("<WebProfiles>")));
    EXPECT_TRUE(dataXml.contains(QStringLiteral("<WebData>")));
    EXPECT_FALSE(dataXml.contains(QStringLiteral("<WebProfile")));
    for (const char *marker : {"<WebProfiles>", "<WebProfile>", "<WebData>"})
        EXPECT_FALSE(tableXml.contains(QLatin1String(marker))) << marker;
}

// ---- access and collection errors ----

TEST(WebDataAccess, MissingTableNamesTheTable)
{
    const QZWebData data = QZWebData::fromXmlUtf8(sampleFile("profilelist-answer.xml"));
    EXPECT_TRUE(data.hasTable(u"ERROR"));
    QString description;
    EXPECT_EQ(errorNumber([&] { (void)data.table(u"BUDetailsInfo"); }, &description), 9);
    EXPECT_EQ(description, QStringLiteral("The data holds no table 'BUDetailsInfo'"));
    EXPECT_EQ(errorNumber([&] { (void)data.tableAt(1); }), 9);
    EXPECT_EQ(errorNumber([&] { (void)data.tableAt(-1); }), 9);
}

TEST(WebDataAccess, DuplicateTableIsDuplicateKey)
{
    QZWebData data;
    data.addTable(QZWebTable(QStringLiteral("Error")));
    EXPECT_EQ(errorNumber([&] { data.addTable(QZWebTable(QStringLiteral("ERROR"))); }), 457);
    EXPECT_TRUE(data.removeTable(u"error"));
    EXPECT_EQ(data.tableCount(), 0);
}

TEST(WebDataAccess, CopiesAreDeep)
{
    QZWebData data;
    data.addTable(errorTable(QStringLiteral("1"), QStringLiteral("x")));
    QZWebData copy = data;
    copy.table(u"Error").setValue(1, 0, u"2");
    EXPECT_EQ(data.table(u"Error").value(1, 0), QStringLiteral("1"));
}

TEST(WebMessageAccess, PropertiesAndDataItems)
{
    QZWebMessage m = messageWith(QStringLiteral("v"));
    EXPECT_EQ(m.property(u"tqDBRefreshInterval"), QStringLiteral("15"));
    EXPECT_EQ(m.property(u"TQDBREFRESHINTERVAL"), QString()); // keys are exact
    EXPECT_EQ(m.property(u"missing"), QString());
    m.setProperty(QStringLiteral("tqDBRefreshInterval"), QStringLiteral("5"));
    EXPECT_EQ(m.properties().keyAt(0), QStringLiteral("tqDBRefreshInterval"));
    EXPECT_EQ(m.property(u"tqDBRefreshInterval"), QStringLiteral("5"));
    EXPECT_EQ(m.data(1)->table(u"BusinessUnits").field(1, u"BUID"), QStringLiteral("10"));
    EXPECT_EQ(errorNumber([&] { (void)m.data(0); }), 9);
    EXPECT_EQ(errorNumber([&] { (void)m.data(3); }), 9);
    EXPECT_EQ(errorNumber([&] { m.addData(nullptr); }), 5);
}

TEST(WebProfileAccess, SectionsAndProfiles)
{
    QZWebProfiles set;
    QZWebProfile &p = set.add(QStringLiteral("Default"));
    EXPECT_EQ(errorNumber([&] { set.add(QStringLiteral("DEFAULT")); }), 457);
    EXPECT_EQ(set.find(u"default"), &p);
    EXPECT_TRUE(set.nameExists(u"dEfault"));
    EXPECT_EQ(errorNumber([&] { (void)set.item(0); }), 9);
    EXPECT_EQ(errorNumber([&] { (void)set.item(2); }), 9);

    QZWebTable &s =
        p.addSection(QStringLiteral("DLVSelect"), QStringLiteral("BUList,SummaryOption"));
    EXPECT_EQ(s.columnCount(), 2);
    EXPECT_EQ(p.addSection(QStringLiteral("NoFields"), QString()).columnCount(), 0);
    EXPECT_EQ(errorNumber([&] { p.addSection(QStringLiteral("dlvselect"), QString()); }), 457);
    EXPECT_TRUE(p.sectionExists(u"DLVSELECT"));
    EXPECT_EQ(p.section(u"missing"), nullptr);
    EXPECT_EQ(errorNumber([&] { (void)p.sectionAt(2); }), 9);
    EXPECT_EQ(&p.sectionAt(0), &s);

    EXPECT_TRUE(set.remove(u"DEFAULT"));
    EXPECT_FALSE(set.remove(u"Default"));
    EXPECT_EQ(set.count(), 0);
}

// ---- host documents ----

TEST(WebDocumentSamples, DataMessageFromFile)
{
    const QZWebMessage m = QZWebMessage::fromXmlUtf8(sampleFile("dlvdata-message.xml"));
    EXPECT_EQ(m.name(), QStringLiteral("DLVData"));
    EXPECT_EQ(m.property(u"tqJeopardyThreshold"), QStringLiteral("30"));
    ASSERT_EQ(m.dataCount(), 1);
    const QZWebData &data = *m.data(1);
    const char *tables[] = {"BusinessUnits",   "JobTypes",      "JobClasses",
                            "RegionalFormats", "BUGeneralInfo", "BUDetailsInfo"};
    ASSERT_EQ(data.tableCount(), 6);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(data.tableAt(i).name(), QLatin1String(tables[i]));
    const QZWebTable &details = data.table(u"BUDetailsInfo");
    EXPECT_EQ(details.columnCount(), 17);
    EXPECT_EQ(details.field(2, u"PtsNotDone"), QStringLiteral("10"));
    EXPECT_EQ(data.table(u"BusinessUnits").field(2, u"BUDesc"),
              QStringLiteral("North & East Depot"));
    EXPECT_EQ(data.table(u"BusinessUnits").field(3, u"BUDesc"), QStringLiteral("Säo Paulo"));
    // Loading the same text through UTF-16 gives the same message.
    expectSameMessage(QZWebMessage::fromXml(QString::fromUtf8(sampleFile("dlvdata-message.xml"))),
                      m);
}

TEST(WebDocumentSamples, ServerStoppedMessage)
{
    const QZWebMessage m = QZWebMessage::fromXmlUtf8(sampleFile("serverstopped-message.xml"));
    EXPECT_EQ(m.name(), QStringLiteral("DLVServerStopped"));
    EXPECT_EQ(m.dataCount(), 0);
}

TEST(WebDocumentSamples, ProfileListAnswerIgnoresTheIdList)
{
    const QByteArray text = sampleFile("profilelist-answer.xml");
    const QZWebData data = QZWebData::fromXmlUtf8(text);
    ASSERT_EQ(data.tableCount(), 1);
    EXPECT_EQ(data.table(u"Error").field(1, u"ErrorNumber"), QStringLiteral("0"));
    EXPECT_TRUE(text.contains("<ProfileID>Night shift</ProfileID>"));
}

TEST(WebDocumentSamples, ProfileSetAndSingleProfile)
{
    const QZWebProfiles set = QZWebProfiles::fromXmlUtf8(sampleFile("profiles-answer.xml"));
    ASSERT_EQ(set.count(), 2);
    ASSERT_NE(set.errorTable(), nullptr);
    EXPECT_EQ(set.errorTable()->field(1, u"ErrorNumber"), QStringLiteral("0"));
    const QZWebTable *nodes = set.item(1).section(u"CollapsedNodes");
    ASSERT_NE(nodes, nullptr);
    ASSERT_EQ(nodes->rowCount(), 3);
    EXPECT_EQ(nodes->field(2, u"ID"), QStringLiteral("BUWorkOrders"));
    EXPECT_EQ(set.find(u"night shift")->section(u"DLVSelect")->field(1, u"SummaryOption"),
              QStringLiteral("False"));
    EXPECT_EQ(QZWebProfiles::fromXml(set.toXml()), set);

    const QZWebProfile one = QZWebProfile::fromXmlUtf8(sampleFile("profile-single.xml"));
    EXPECT_EQ(one.name(), QStringLiteral("Day shift"));
    ASSERT_NE(one.errorTable(), nullptr);
    EXPECT_EQ(one.errorTable()->name(), QStringLiteral("Error"));
    EXPECT_EQ(QZWebProfile::fromXml(one.toXml()), one);
}

TEST(WebDocumentSamples, ErrorTable)
{
    const QZWebTable t = QZWebTable::fromXmlUtf8(sampleFile("error-table.xml"));
    EXPECT_EQ(t.name(), QStringLiteral("Error"));
    EXPECT_EQ(t.field(1, u"ErrorNumber"), QStringLiteral("1012"));
}

// ---- malformed documents in every form ----

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
        errors += errorNumber([&] { GetParam().loadUtf16(QStringView(text).left(n)); }) != 0;
        // Byte prefixes may also cut a UTF-8 sequence.
        (void)errorNumber([&] { GetParam().loadUtf8(QByteArrayView(utf8.constData(), n)); });
    }
    EXPECT_GT(errors, text.size() / 2);
    EXPECT_EQ(errorNumber([&] { GetParam().loadUtf16(text); }), 0);
}

TEST_P(WebDocumentForm, WrongRootIsInvalidCallNamingTheExpectedRoot)
{
    for (const char *text : {"<Other/>", "<Table name=\"Error\"/>", "<WebData></WebData>",
                             "<WebMessage name=\"x\"/>", "<WebProfile/>", "<WebProfiles/>"}) {
        QString description;
        const int number =
            errorNumber([&] { GetParam().loadUtf16(QString::fromLatin1(text)); }, &description);
        if (number == 0)
            continue; // the form's own root
        EXPECT_EQ(number, 5) << text;
        EXPECT_TRUE(description.contains(QStringLiteral("must have the root element")))
            << description.toStdString();
    }
}

TEST_P(WebDocumentForm, MalformedTextIsInvalidCall)
{
    for (const char *text : {"", "not xml", "<", "<a", "<a></b>", "<?xml version=\"1.0\"?>",
                             "<!-- only a comment -->", "<a x=\"1></a>", "&bogus;"}) {
        QString description;
        EXPECT_EQ(
            errorNumber([&] { GetParam().loadUtf16(QString::fromLatin1(text)); }, &description), 5)
            << text;
        EXPECT_TRUE(description.contains(QStringLiteral("document"))) << description.toStdString();
    }
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
    // Either ignored as an unknown element or refused; never a crash.
    (void)errorNumber([&] { GetParam().loadUtf16(deep); });
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

struct BadDocument
{
    const char *name;
    std::function<void()> load;
    int number;
    const char *mention;
};

inline void PrintTo(const BadDocument &c, std::ostream *os)
{
    *os << c.name;
}

class WebDocumentBad : public ::testing::TestWithParam<BadDocument>
{};

TEST_P(WebDocumentBad, IsRefusedWithAClearError)
{
    QString description;
    EXPECT_EQ(errorNumber(GetParam().load, &description), GetParam().number);
    EXPECT_TRUE(description.contains(QLatin1String(GetParam().mention)))
        << description.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WebDocumentBad,
    ::testing::Values(
        BadDocument{"DuplicateTables",
                    [] {
                        (void)QZWebData::fromXml(
                            u"<WebData><Table name=\"A\"/><Table name=\"a\"/></WebData>");
                    },
                    457, "two tables named 'a'"},
        BadDocument{"BadTableInData",
                    [] {
                        (void)QZWebData::fromXml(
                            u"<WebData><Table name=\"A\"><Row><V/></Row></Table></WebData>");
                    },
                    5, "data document"},
        BadDocument{"DuplicateProperty",
                    [] {
                        (void)QZWebMessage::fromXml(
                            u"<WebMessage name=\"m\"><Property key=\"k\">1</Property><Property "
                            u"key=\"k\"/></WebMessage>");
                    },
                    457, "'k' twice"},
        BadDocument{"DuplicateSection",
                    [] {
                        (void)QZWebProfile::fromXml(
                            u"<WebProfile><Name>P</Name><Section name=\"S\"/><Section "
                            u"name=\"s\"/></WebProfile>");
                    },
                    457, "two sections named 's'"},
        BadDocument{"TwoNames",
                    [] {
                        (void)QZWebProfile::fromXml(
                            u"<WebProfile><Name>P</Name><Name>Q</Name></WebProfile>");
                    },
                    5, "second <Name>"},
        BadDocument{
            "TwoErrorTablesInProfile",
            [] {
                (void)QZWebProfile::fromXml(
                    u"<WebProfile><Table name=\"Error\"/><Table name=\"Error\"/></WebProfile>");
            },
            5, "more than one error table"},
        BadDocument{
            "DuplicateProfile",
            [] {
                (void)QZWebProfiles::fromXml(
                    u"<WebProfiles><WebProfile><Name>Default</Name></"
                    u"WebProfile><WebProfile><Name>DEFAULT</Name></WebProfile></WebProfiles>");
            },
            457, "two profiles named 'DEFAULT'"},
        BadDocument{"BadSectionInSet",
                    [] {
                        (void)QZWebProfiles::fromXml(
                            u"<WebProfiles><WebProfile><Section name=\"S\"><Column "
                            u"name=\"A\"/><Row/></Section></WebProfile></WebProfiles>");
                    },
                    5, "section 'S' has 1 columns, but its row 1 has 0 values"},
        BadDocument{
            "ProfileSetAsSingleProfile",
            [] { (void)QZWebProfile::fromXml(u"<WebProfiles><WebProfile/></WebProfiles>"); }, 5,
            "<WebProfile>, not <WebProfiles>"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(WebDocumentLoad, FailedLoadLeavesTheObjectUnchanged)
{
    QZWebProfiles set = QZWebProfiles::fromXmlUtf8(sampleFile("profiles-answer.xml"));
    const QZWebProfiles before = set;
    EXPECT_EQ(errorNumber([&] { set.loadXml(u"<WebProfiles><WebProfile>"); }), 5);
    EXPECT_EQ(set, before);

    QZWebMessage m = QZWebMessage::fromXmlUtf8(sampleFile("dlvdata-message.xml"));
    EXPECT_EQ(errorNumber([&] {
                  m.loadXml(u"<WebMessage name=\"X\"><WebData><Table name=\"T\"><Column "
                            u"name=\"A\"/><Row/></Table></WebData></WebMessage>");
              }),
              5);
    EXPECT_EQ(m.name(), QStringLiteral("DLVData"));
    EXPECT_EQ(m.dataCount(), 1);
}

TEST(WebDocumentLoad, UnknownElementsAreIgnoredInEveryForm)
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
    EXPECT_EQ(set.errorTable(), nullptr);
}

TEST(WebDocumentLoad, ReloadingReplacesTheWholeSet)
{
    QZWebProfiles set = QZWebProfiles::fromXmlUtf8(sampleFile("profiles-answer.xml"));
    set.loadXml(u"<WebProfiles><WebProfile><Name>Only</Name></WebProfile></WebProfiles>");
    ASSERT_EQ(set.count(), 1);
    EXPECT_EQ(set.item(1).name(), QStringLiteral("Only"));
    EXPECT_EQ(set.errorTable(), nullptr);
}

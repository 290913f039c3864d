// The SQLite profile store: what it answers to each profile request, what it keeps across
// connections, and the error answers when it cannot do its work.
#include "host/profilestore.h"
#include "support/qtprinters.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebprofiles.h"
#include "webdata/qzwebtable.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Outcome
{
    int number = -1;
    QString description;
};

// The "Error" table of any answer form.
Outcome errorOf(const QString &answer)
{
    const QZWebTable *table = nullptr;
    QZWebProfiles set;
    QZWebData data;
    if (answer.contains(QStringLiteral("<WebProfiles>"))) {
        set = QZWebProfiles::fromXml(answer);
        table = set.errorTable();
    } else {
        data = QZWebData::fromXml(answer);
        table = &data.table(u"Error");
    }
    if (!table || table->rowCount() < 1)
        return {};
    return {table->field(1, u"ErrorNumber").toInt(), table->field(1, u"ErrorDescription")};
}

// The names of a "<ProfileIDs>" list, or nothing when there is no list.
std::optional<QStringList> idsOf(const QString &answer)
{
    if (!answer.contains(QStringLiteral("<ProfileIDs>")) ||
        !answer.contains(QStringLiteral("</ProfileIDs>")))
        return std::nullopt;
    QStringList names;
    static const QRegularExpression id(QStringLiteral("<ProfileID>(.*?)</ProfileID>"));
    for (auto it = id.globalMatch(answer); it.hasNext();)
        names.append(it.next().captured(1));
    return names;
}

QStringList namesOf(const QString &getProfilesAnswer)
{
    const QZWebProfiles set = QZWebProfiles::fromXml(getProfilesAnswer);
    QStringList names;
    for (int i = 1; i <= set.count(); ++i)
        names.append(set.item(i).name());
    return names;
}

QZWebProfile viewProfile(const QString &name, const QString &units, bool aggregate = false)
{
    QZWebProfile p(name);
    QZWebTable &select = p.addSection(QStringLiteral("DLVSelect"),
                                      QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
    select.appendRow({units, aggregate ? QStringLiteral("True") : QStringLiteral("False"),
                      QStringLiteral("True")});
    QZWebTable &collapsed =
        p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
    collapsed.appendRow({QStringLiteral("JobTypes"), QStringLiteral("INST")});
    collapsed.appendRow({QStringLiteral("BUWorkOrders"), QString()});
    collapsed.appendRow({QStringLiteral("BUPoints"), QString()});
    return p;
}

QString setOf(std::initializer_list<QZWebProfile> profiles)
{
    QZWebProfiles set;
    for (const QZWebProfile &p : profiles)
        set.add(p.name()) = p;
    return set.toXml();
}

class ProfileStoreTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    std::unique_ptr<ProfileStore> openStore(const QString &user = QStringLiteral("ana"),
                                            const QString &app = QStringLiteral("DashlonViewer"))
    {
        auto store = std::make_unique<ProfileStore>(path(), user, app);
        EXPECT_TRUE(store->open()) << store->lastError().toStdString();
        return store;
    }
    QString path() const { return dir.filePath(QStringLiteral("sub/profiles.sqlite")); }

    QTemporaryDir dir;
};

TEST_F(ProfileStoreTest, PutProfilesStoresEverySetMemberAndGetProfilesPutsTheRequestedFirst)
{
    auto store = openStore();
    EXPECT_EQ(idsOf(store->answerGetProfileList()), QStringList()) << "nothing stored yet";
    EXPECT_TRUE(namesOf(store->answerGetProfiles("Default")).isEmpty());
    const QString put = store->answerPutProfiles(
        setOf({viewProfile("Default", "C1|C2"), viewProfile("Night shift", "C3", true)}));
    EXPECT_EQ(errorOf(put).number, 0) << errorOf(put).description.toStdString();
    EXPECT_FALSE(idsOf(put)) << "PutProfiles answers without a list";

    EXPECT_EQ(namesOf(store->answerGetProfiles("Night shift")),
              (QStringList{"Night shift", "Default"}));
    EXPECT_EQ(namesOf(store->answerGetProfiles("night SHIFT")),
              (QStringList{"Night shift", "Default"}));
    EXPECT_EQ(namesOf(store->answerGetProfiles("Default")),
              (QStringList{"Default", "Night shift"}));
    // A name that is not stored: the stored set as it is; the control keeps its current profile.
    EXPECT_EQ(namesOf(store->answerGetProfiles("Weekend")),
              (QStringList{"Default", "Night shift"}));
    EXPECT_EQ(idsOf(store->answerGetProfileList()), (QStringList{"Default", "Night shift"}));

    // A second put replaces by name ignoring case, in place, and keeps profiles not sent.
    ASSERT_EQ(errorOf(store->answerPutProfiles(setOf({viewProfile("DEFAULT", "C9")}))).number, 0);
    EXPECT_EQ(store->profileNames(), (QStringList{"DEFAULT", "Night shift"}));
    EXPECT_EQ(store->profile("default")->section(u"DLVSelect")->field(1, u"BUList"), "C9");
}

TEST_F(ProfileStoreTest, ProfilesSurviveTheConnectionWithTheirContentButNoErrorTable)
{
    {
        auto store = openStore();
        QZWebProfile p = viewProfile("Default", "C1|C2", true);
        QZWebTable error(QStringLiteral("Error"), {"ErrorNumber", "ErrorDescription"});
        error.appendRow({"0", ""});
        p.setErrorTable(error);
        ASSERT_EQ(errorOf(store->answerPutProfiles(setOf({p}))).number, 0);
    }
    auto again = openStore();
    const auto stored = again->profile(QStringLiteral("default"));
    ASSERT_TRUE(stored);
    EXPECT_EQ(*stored, viewProfile("Default", "C1|C2", true));
    EXPECT_EQ(stored->errorTable(), nullptr);
}

TEST_F(ProfileStoreTest, TwoStoresOnOneFileSeeEachOthersChanges)
{
    auto first = openStore();
    auto second = openStore();
    ASSERT_EQ(errorOf(first->answerPutProfiles(setOf({viewProfile("Default", "C1")}))).number, 0);
    EXPECT_EQ(second->profileNames(), QStringList{"Default"});
    ASSERT_EQ(errorOf(second->answerAddProfiles("Evening")).number, 0);
    EXPECT_EQ(first->profileNames(), (QStringList{"Default", "Evening"}));
}

TEST_F(ProfileStoreTest, UsersAndApplicationsKeepTheirOwnProfiles)
{
    auto ana = openStore("ana");
    auto ben = openStore("ben");
    auto other = openStore("ana", "OtherApp");
    ASSERT_EQ(errorOf(ana->answerPutProfiles(setOf({viewProfile("Default", "C1")}))).number, 0);
    ASSERT_EQ(errorOf(ben->answerPutProfiles(setOf({viewProfile("Default", "C2")}))).number, 0);
    EXPECT_EQ(ana->profile("Default")->section(u"DLVSelect")->field(1, u"BUList"), "C1");
    EXPECT_EQ(ben->profile("Default")->section(u"DLVSelect")->field(1, u"BUList"), "C2");
    EXPECT_TRUE(other->profileNames().isEmpty());
}

TEST_F(ProfileStoreTest, RemoveAnswersWithTheRemovedName)
{
    auto store = openStore();
    ASSERT_EQ(errorOf(store->answerPutProfiles(
                          setOf({viewProfile("Default", "C1"), viewProfile("Night", "C2")})))
                  .number,
              0);
    const QString removed = store->answerRemoveProfiles("Night");
    EXPECT_EQ(errorOf(removed).number, 0);
    EXPECT_EQ(idsOf(removed), QStringList{"Night"});
    EXPECT_EQ(store->profileNames(), QStringList{"Default"});
    // Already gone (another window removed it): the control's list should follow the store.
    EXPECT_EQ(idsOf(store->answerRemoveProfiles("Night")), QStringList{"Night"});
}

TEST_F(ProfileStoreTest, SaveAsStoresTheProfileAndListsAllNamesSoRenamingWorks)
{
    auto store = openStore();
    ASSERT_EQ(errorOf(store->answerPutProfiles(setOf({viewProfile("Default", "C1")}))).number, 0);
    const QString saved = store->answerSaveProfileAs(setOf({viewProfile("Morning", "C1|C3")}));
    EXPECT_EQ(errorOf(saved).number, 0);
    EXPECT_EQ(idsOf(saved), (QStringList{"Default", "Morning"}));
    // Rename: save as the new name, remove the old one.
    ASSERT_EQ(errorOf(store->answerSaveProfileAs(setOf({viewProfile("Early", "C1|C3")}))).number,
              0);
    ASSERT_EQ(errorOf(store->answerRemoveProfiles("Morning")).number, 0);
    EXPECT_EQ(store->profileNames(), (QStringList{"Default", "Early"}));
    EXPECT_EQ(store->profile("Early")->section(u"DLVSelect")->field(1, u"BUList"), "C1|C3");
}

TEST_F(ProfileStoreTest, ARefusedRequestIsAnsweredWithAnErrorAndChangesNothing)
{
    const struct
    {
        const char *function;
        QString profileName;
        QString xml;
        int number;
        const char *mentions;
    } cases[] = {
        {"PutProfiles", {}, "<WebProfiles><WebProfile>", 5, ""},
        // One bad name spoils the whole set: nothing of it is stored.
        {"PutProfiles",
         {},
         setOf({viewProfile("Default", "C7"), viewProfile("A<B", "C8")}),
         5,
         "A<B"},
        {"AddProfiles", "DEFAULT", {}, 457, "DEFAULT"},
        {"AddProfiles", "R&D", {}, 5, "R&D"},
        {"AddProfiles", " Night ", {}, 5, "blanks"},
        {"RemoveProfiles", "", {}, 5, "name"},
        {"SaveProfileAs",
         {},
         setOf({viewProfile("X", ""), viewProfile("Y", "")}),
         5,
         "one profile"},
        {"getprofiles", "Default", {}, 5, ""}, // function names are exact
    };
    auto store = openStore();
    ASSERT_EQ(errorOf(store->answerPutProfiles(setOf({viewProfile("Default", "C1")}))).number, 0);
    for (const auto &c : cases) {
        const Outcome outcome = errorOf(store->answer(c.function, c.profileName, c.xml));
        EXPECT_EQ(outcome.number, c.number) << c.function;
        EXPECT_TRUE(outcome.description.contains(QString::fromUtf8(c.mentions)))
            << outcome.description.toStdString();
        EXPECT_EQ(store->profileNames(), QStringList{"Default"});
        EXPECT_EQ(store->profile("Default")->section(u"DLVSelect")->field(1, u"BUList"), "C1");
    }
}

TEST_F(ProfileStoreTest, ALockedDatabaseIsAnsweredAsBusyAndWorksAgainAfterwards)
{
    auto store = std::make_unique<ProfileStore>(path(), "ana", "DashlonViewer");
    store->setBusyTimeout(0);
    ASSERT_TRUE(store->open()) << store->lastError().toStdString();
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "locker");
        other.setDatabaseName(path());
        ASSERT_TRUE(other.open());
        QSqlQuery lock(other);
        ASSERT_TRUE(lock.exec(QStringLiteral("BEGIN EXCLUSIVE")));

        const Outcome put =
            errorOf(store->answerPutProfiles(setOf({viewProfile("Default", "C1")})));
        EXPECT_EQ(put.number, ProfileStore::DatabaseBusy);
        EXPECT_TRUE(put.description.contains(QStringLiteral("locked")))
            << put.description.toStdString();
        const Outcome list = errorOf(store->answerGetProfileList());
        EXPECT_EQ(list.number, ProfileStore::DatabaseBusy);
        const QString profiles = store->answerGetProfiles("Default");
        EXPECT_TRUE(profiles.contains(QStringLiteral("<WebProfiles>")));
        EXPECT_EQ(errorOf(profiles).number, ProfileStore::DatabaseBusy);

        ASSERT_TRUE(lock.exec(QStringLiteral("ROLLBACK")));
        lock.finish();
        other.close();
    }
    QSqlDatabase::removeDatabase("locker");
    EXPECT_EQ(errorOf(store->answerPutProfiles(setOf({viewProfile("Default", "C1")}))).number, 0);
    EXPECT_EQ(store->profileNames(), QStringList{"Default"});
}

TEST_F(ProfileStoreTest, AStoreLockedAtStartAnswersBusyAndOpensOnceTheLockIsGone)
{
    ASSERT_TRUE(openStore()->open()); // the file exists, set up by an earlier session
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "locker");
        other.setDatabaseName(path());
        ASSERT_TRUE(other.open());
        QSqlQuery lock(other);
        ASSERT_TRUE(lock.exec(QStringLiteral("BEGIN EXCLUSIVE")));

        ProfileStore store(path(), "ana", "DashlonViewer");
        store.setBusyTimeout(0);
        EXPECT_FALSE(store.open());
        const Outcome list = errorOf(store.answerGetProfileList());
        EXPECT_EQ(list.number, ProfileStore::DatabaseBusy) << list.description.toStdString();

        ASSERT_TRUE(lock.exec(QStringLiteral("ROLLBACK")));
        lock.finish();
        other.close();

        // The lock is gone: the next request opens the store and is answered.
        EXPECT_EQ(errorOf(store.answerPutProfiles(setOf({viewProfile("Night", "C1")}))).number, 0);
        EXPECT_TRUE(store.isOpen());
        EXPECT_EQ(store.profileNames(), QStringList{"Night"});
    }
    QSqlDatabase::removeDatabase("locker");
}

TEST_F(ProfileStoreTest, AStoreThatCannotOpenAnswersEveryRequestWithItsReason)
{
    // A folder where the database file should be.
    ASSERT_TRUE(QDir().mkpath(path()));
    ProfileStore store(path(), "ana", "DashlonViewer");
    EXPECT_FALSE(store.open());
    EXPECT_FALSE(store.lastError().isEmpty());
    for (const char *function : {"GetProfileList", "GetProfiles", "PutProfiles", "AddProfiles",
                                 "RemoveProfiles", "SaveProfileAs"}) {
        const Outcome o = errorOf(store.answer(function, "Default", setOf({viewProfile("D", "")})));
        EXPECT_EQ(o.number, ProfileStore::StoreUnavailable) << function;
        EXPECT_TRUE(o.description.contains(QStringLiteral("cannot be stored"))) << function;
    }
}

} // namespace

// Moving view settings between the view and the current profile, and the collapsed-node lists.
#include "fakeprofilehost.h"
#include "profiles/profiledocument.h"
#include "webdata/qzwebprofile.h"

#include <gtest/gtest.h>

namespace {

using Request = ProfileHost::Request;

class Document : public ::testing::Test
{
protected:
    Document()
    {
        host.exchange = &exchange;
        host.mode = AnswerMode::Later; // answers are not the subject here
    }

    ProfileDocument &doc() { return exchange.document(); }

    /// Makes a profile current, built by the caller.
    QZWebProfile &current(const std::function<void(QZWebProfile &)> &build = {})
    {
        QZWebProfiles set;
        QZWebProfile &p = set.add(QStringLiteral("Default"));
        if (build)
            build(p);
        doc().replaceProfiles(std::move(set));
        doc().setCurrentProfile(1);
        return *doc().currentProfile();
    }
    static QZWebTable &select(QZWebProfile &p, const QString &buList, const QString &summary,
                              const QString &display)
    {
        QZWebTable &s = p.addSection(QStringLiteral("DLVSelect"),
                                     QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
        s.appendRow({buList, summary, display});
        return s;
    }
    static QZWebTable &nodes(QZWebProfile &p, const QList<QStringList> &rows)
    {
        QZWebTable &n = p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
        for (const QStringList &row : rows)
            n.appendRow(row);
        return n;
    }
    void items(const QStringList &ids)
    {
        host.items.clear();
        for (const QString &id : ids)
            host.items.push_back({QStringLiteral("_") + id, false});
    }

    FakeProfileHost host;
    ProfileExchange exchange{host};
};

TEST_F(Document, NothingHappensWithoutACurrentProfile)
{
    doc().UpdateCurrentProfile(false);
    doc().InitProfileSettings();
    EXPECT_TRUE(host.raised.empty());
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_F(Document, InitGivesANewProfileBothSectionsAndSendsItOnce)
{
    current();
    doc().InitProfileSettings();
    ASSERT_EQ(host.requests(), std::vector{Request::PutProfiles});
    EXPECT_FALSE(host.raised[0].hourglass);
    const QZWebProfile &p = *doc().currentProfile();
    EXPECT_EQ(p.section(u"DLVSelect")->rowCount(), 1);
    EXPECT_EQ(p.section(u"CollapsedNodes")->rowCount(), 3);

    host.raised.clear();
    doc().InitProfileSettings(); // complete now: nothing to send
    EXPECT_TRUE(host.raised.empty());
}

TEST_F(Document, InitCompletesWhatIsMissing)
{
    struct Case
    {
        const char *name;
        std::function<void(QZWebProfile &)> build;
        bool sends;
        int selectRows;
        int nodeRows;
    };
    const std::vector<Case> cases = {
        {"select without rows",
         [](QZWebProfile &p) {
             p.addSection(QStringLiteral("DLVSelect"),
                          QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
             nodes(p, {{"JobTypes", ""}, {"BUWorkOrders", ""}, {"BUPoints", ""}});
         },
         true, 1, 3},
        {"nodes without rows",
         [](QZWebProfile &p) {
             select(p, {}, {}, {});
             p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
         },
         true, 1, 3},
        {"nodes with two rows are left for the next save",
         [](QZWebProfile &p) {
             select(p, {}, {}, {});
             nodes(p, {{"JobTypes", "TOTAL"}, {"BUWorkOrders", "#"}});
         },
         false, 1, 2},
        {"section names in another case count",
         [](QZWebProfile &p) {
             p.addSection(QStringLiteral("dlvselect"),
                          QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"))
                 .addRow();
             QZWebTable &n =
                 p.addSection(QStringLiteral("COLLAPSEDNODES"), QStringLiteral("ID,List"));
             n.addRow();
         },
         false, 1, 1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        host.raised.clear();
        current(c.build);
        doc().InitProfileSettings();
        EXPECT_EQ(host.raised.size(), c.sends ? 1u : 0u);
        EXPECT_EQ(doc().currentProfile()->section(u"DLVSelect")->rowCount(), c.selectRows);
        EXPECT_EQ(doc().currentProfile()->section(u"CollapsedNodes")->rowCount(), c.nodeRows);
    }
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_F(Document, SaveMendsACollapsedNodesSectionOfTwoRows)
{
    current([](QZWebProfile &p) {
        select(p, {}, {}, {});
        nodes(p, {{"Stale", "A|B"}, {"Stale", "C"}});
    });
    host.collapsed[2] = {QStringLiteral("#")};
    doc().UpdateCurrentProfile(false);

    const QZWebTable &n = *doc().currentProfile()->section(u"CollapsedNodes");
    ASSERT_EQ(n.rowCount(), 3);
    EXPECT_EQ(n.field(1, u"ID"), QStringLiteral("JobTypes"));
    EXPECT_EQ(n.field(1, u"List"), QString());
    EXPECT_EQ(n.field(2, u"ID"), QStringLiteral("BUWorkOrders"));
    EXPECT_EQ(n.field(3, u"ID"), QStringLiteral("BUPoints"));
    EXPECT_EQ(n.field(3, u"List"), QStringLiteral("#"));
    ASSERT_EQ(host.requests(), std::vector{Request::PutProfiles});
    EXPECT_TRUE(host.raised[0].hourglass);
}

TEST_F(Document, SaveWithoutTheSectionsIsReportedAndKeepsWhatWasWritten)
{
    current([](QZWebProfile &p) { select(p, {}, {}, {}); });
    host.selectedIds = {QStringLiteral("5")};
    doc().UpdateCurrentProfile(false);
    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].location, QStringLiteral("DLViewer.UpdateCurrentProfile"));
    EXPECT_EQ(host.reporter.reports[0].number, 9);
    EXPECT_EQ(doc().currentProfile()->section(u"DLVSelect")->field(1, u"BUList"),
              QStringLiteral("5"));
    EXPECT_TRUE(host.raised.empty());
    EXPECT_FALSE(host.hourglass);
}

TEST_F(Document, OptionsAreReadInAnyLetterCaseAndBadOnesReported)
{
    const struct
    {
        const char *summary, *display;
        bool summaryFirst, displayFirst;
    } rows[] = {{"FALSE", "false", false, false},
                {"", "", true, true}, // empty means the first option
                {"tRUE", "False", true, false},
                {"0", "-1", false, true}};
    for (const auto &r : rows) {
        SCOPED_TRACE(testing::Message() << r.summary << " " << r.display);
        current([&](QZWebProfile &p) { select(p, {}, r.summary, r.display); });
        host.summary = !r.summaryFirst;
        host.display = !r.displayFirst;
        doc().LoadProfileSettings();
        EXPECT_EQ(host.summary, r.summaryFirst);
        EXPECT_EQ(host.display, r.displayFirst);
    }
    EXPECT_TRUE(host.reporter.reports.empty());
    current([](QZWebProfile &p) { select(p, {}, QStringLiteral("maybe"), {}); });
    doc().LoadProfileSettings();
    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].number, 13);
    EXPECT_EQ(host.reporter.reports[0].location, QStringLiteral("DLViewer.LoadProfileSettings"));
}

TEST_F(Document, SelectionFollowsBUList)
{
    const std::pair<const char *, QStringList> rows[] = {
        {"40|10", {"_10", "_40"}}, // order does not matter
        {"99|98", {"_10"}},        // vanished units select the first
        {"", {"_10"}},
        {"1|4", {"_10"}}, // ids compare exactly
        {"99|7", {"_7"}}};
    for (const auto &[buList, expected] : rows) {
        SCOPED_TRACE(buList);
        current([&](QZWebProfile &p) { select(p, buList, {}, {}); });
        items({QStringLiteral("10"), QStringLiteral("12"), QStringLiteral("40"),
               QStringLiteral("7")});
        host.items[1].selected = true; // whatever was selected before goes
        doc().LoadProfileSettings();
        EXPECT_EQ(host.selectedKeys(), expected);
    }
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_F(Document, ARepeatedUnitIsReportedBeforeTheSelectionChanges)
{
    current([](QZWebProfile &p) { select(p, QStringLiteral("12|40|12"), {}, {}); });
    items({QStringLiteral("10"), QStringLiteral("12")});
    host.items[0].selected = true;
    doc().LoadProfileSettings();
    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].number, 457);
    EXPECT_EQ(host.selectedKeys(), QStringList{QStringLiteral("_10")});
}

TEST_F(Document, WithoutTheSelectRowTheViewGetsItsDefaults)
{
    const std::vector<std::pair<const char *, std::function<void(QZWebProfile &)>>> cases = {
        {"no section", {}},
        {"no row",
         [](QZWebProfile &p) {
             p.addSection(QStringLiteral("DLVSelect"),
                          QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
         }},
    };
    for (const auto &[name, build] : cases) {
        SCOPED_TRACE(name);
        current(build);
        items({QStringLiteral("10"), QStringLiteral("12")});
        host.items[1].selected = true;
        host.summary = false;
        host.display = false;
        doc().LoadProfileSettings();
        EXPECT_TRUE(host.summary);
        EXPECT_TRUE(host.display);
        EXPECT_EQ(host.selectedKeys(), QStringList{QStringLiteral("_10")});
    }
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_F(Document, LoadingBeforeAnyProfileGivesTheDefaultView)
{
    items({QStringLiteral("10")});
    host.summary = false;
    doc().LoadProfileSettings();
    EXPECT_TRUE(host.summary);
    EXPECT_EQ(host.selectedKeys(), QStringList{QStringLiteral("_10")});
    EXPECT_EQ(doc().currentProfile(), nullptr);
}

TEST_F(Document, LoadingRestoresTheHierarchyNodesOnlyOnceTheGridsAreFilled)
{
    current([](QZWebProfile &p) {
        select(p, {}, {}, {});
        nodes(p, {{"JobTypes", "TOTAL"}, {"BUWorkOrders", "10|11"}, {"BUPoints", "#"}});
    });
    doc().LoadProfileSettings();
    EXPECT_TRUE(host.gridLog.isEmpty());

    host.gridsFilled = true;
    doc().LoadProfileSettings();
    EXPECT_EQ(host.gridLog, (QStringList{"expand 1", "expand 1", "collapse 1 10|11", "expand 2",
                                         "expand 2", "collapse 2 #"}));
}

TEST_F(Document, RestoreAppliesOnlyExactlyThreeRows)
{
    const struct
    {
        QList<QStringList> rows;
        QStringList log;
    } cases[] = {
        {{{"JobTypes", ""}, {"  BUWorkOrders ", "#"}, {"BUPoints", ""}}, // id trimmed
         {"expand 1", "expand 1", "collapse 1 #"}},
        {{{"BUWorkOrders", "7"}, {"JobTypes", ""}, {"BUPoints", ""}}, // any row order
         {"expand 1", "expand 1", "collapse 1 7"}},
        {{{"JobTypes", ""}, {"buworkorders", "7"}, {"BUPoints", ""}}, {"expand 1"}}, // exact id
        {{{"JobTypes", "A"}, {"BUWorkOrders", "10"}}, {"expand 1"}},
        {{{"JobTypes", ""}, {"BUWorkOrders", "10"}, {"BUPoints", ""}, {"X", ""}}, {"expand 1"}},
        {{{"JobTypes", ""}, {"BUWorkOrders", ""}, {"BUPoints", ""}}, {"expand 1"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.rows.size());
        current([&](QZWebProfile &p) { nodes(p, c.rows); });
        host.gridLog.clear();
        doc().RestoreNodes(QStringLiteral("BUWorkOrders"), 1);
        EXPECT_EQ(host.gridLog, c.log);
    }
    current(); // no section at all
    host.gridLog.clear();
    doc().RestoreNodes(QStringLiteral("BUWorkOrders"), 1);
    EXPECT_EQ(host.gridLog, QStringList{"expand 1"});
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_F(Document, ARepeatedNodeKeyIsReportedAndTheGridUntouched)
{
    QZWebProfile &p = current();
    QZWebTable &n = nodes(p, {{"JobTypes", ""}, {"BUWorkOrders", "10|11|10"}, {"BUPoints", ""}});
    doc().SetCollapsedNodes(1, n, 2);
    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].number, 457);
    EXPECT_EQ(host.reporter.reports[0].location, QStringLiteral("DLViewer.SetCollapsedNodes"));
    EXPECT_TRUE(host.gridLog.isEmpty());
}

TEST_F(Document, NodesSavedAndReadBackRoundTrip)
{
    current([](QZWebProfile &p) {
        select(p, {}, {}, {});
        nodes(p, {{"", ""}, {"", ""}, {"", ""}});
    });
    host.collapsed[0] = {QStringLiteral("TOTAL"), QStringLiteral("A")};
    host.collapsed[1] = {QStringLiteral("#")};
    host.collapsed[2] = {QStringLiteral("10"), QStringLiteral("11"), QStringLiteral("12")};
    doc().UpdateCurrentProfile(false);
    const QString sent = host.raised.at(0).params.ProfilesXML;

    QZWebProfiles back = QZWebProfiles::fromXml(sent);
    doc().replaceProfiles(std::move(back));
    doc().setCurrentProfile(1);
    host.gridsFilled = true;
    doc().LoadProfileSettings();
    EXPECT_EQ(host.gridLog, (QStringList{"expand 1", "expand 1", "collapse 1 #", "expand 2",
                                         "expand 2", "collapse 2 10|11|12"}));
}

} // namespace

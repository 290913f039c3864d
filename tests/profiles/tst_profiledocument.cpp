// Moving view settings between the view and the current profile.
#include "fakeprofilehost.h"
#include "profiles/profiledocument.h"
#include "webdata/qzwebprofile.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using Request = ProfileHost::Request;

class Document : public ::testing::Test
{
protected:
    Document() { host.exchange = &exchange; }

    ProfileDocument &doc() { return exchange.document(); }

    /// Makes "Default" current with a select row and the given collapsed-node rows.
    QZWebProfile &current(const QString &buList, const QString &summary,
                          const QList<QStringList> &nodeRows = {})
    {
        QZWebProfiles set;
        QZWebProfile &p = set.add(QStringLiteral("Default"));
        p.addSection(QStringLiteral("DLVSelect"),
                     QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"))
            .appendRow({buList, summary, {}});
        QZWebTable &n = p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
        for (const QStringList &row : nodeRows)
            n.appendRow(row);
        doc().replaceProfiles(std::move(set));
        doc().setCurrentProfile(1);
        host.gridLog.clear();
        return *doc().currentProfile();
    }

    FakeProfileHost host{AnswerMode::Later};
    ProfileExchange exchange{host};
};

TEST_F(Document, SummaryOptionIsReadInAnyLetterCase)
{
    const std::pair<const char *, bool> rows[] = {{"false", false}, {"FALSE", false}, {"", true}};
    for (const auto &[summary, first] : rows) {
        SCOPED_TRACE(summary);
        current({}, QString::fromUtf8(summary));
        host.choice.setSingleUnits(!first);
        doc().LoadProfileSettings();
        EXPECT_EQ(host.choice.singleUnits(), first);
    }
    EXPECT_TRUE(host.reporter.reports.empty());
}

TEST_F(Document, SelectionFollowsBUList)
{
    const std::pair<const char *, QStringList> rows[] = {
        {"40|10", {"_10", "_40"}}, {"99|98", {"_10"}}, // vanished units select the first
    };
    for (const auto &[buList, expected] : rows) {
        SCOPED_TRACE(buList);
        current(QString::fromUtf8(buList), {});
        host.choice.setUnits({"_10", "_12", "_40"}, {0, 1, 0});
        doc().LoadProfileSettings();
        EXPECT_EQ(host.selectedKeys(), expected);
    }
}

TEST_F(Document, SaveMendsACollapsedNodesSectionOfTwoRows)
{
    current({}, {}, {{"Stale", "A|B"}, {"Stale", "C"}});
    host.collapsed[2] = {QStringLiteral("#")};
    doc().UpdateCurrentProfile(false);
    const QZWebTable &n = *doc().currentProfile()->section(u"CollapsedNodes");
    ASSERT_EQ(n.rowCount(), 3);
    const QStringList ids{"JobTypes", "BUWorkOrders", "BUPoints"};
    const QStringList lists{"", "", "#"};
    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ(n.field(row, u"ID"), ids[row - 1]);
        EXPECT_EQ(n.field(row, u"List"), lists[row - 1]);
    }
    EXPECT_EQ(host.requests(), std::vector{Request::PutProfiles});
}

TEST_F(Document, RestoreAppliesOnlyExactlyThreeRows)
{
    const std::pair<QList<QStringList>, QStringList> rows[] = {
        {{{"JobTypes", ""}, {"BUWorkOrders", "7"}, {"BUPoints", ""}},
         {"expand 1", "expand 1", "collapse 1 7"}},
        {{{"JobTypes", ""}, {"BUWorkOrders", "7"}}, {"expand 1"}},
        {{{"JobTypes", ""}, {"BUWorkOrders", "7"}, {"BUPoints", ""}, {"X", ""}}, {"expand 1"}},
    };
    for (const auto &[nodeRows, log] : rows) {
        SCOPED_TRACE(nodeRows.size());
        current({}, {}, nodeRows);
        doc().RestoreNodes(QStringLiteral("BUWorkOrders"), 1);
        EXPECT_EQ(host.gridLog, log);
    }
}

TEST_F(Document, ARepeatedNodeKeyIsReportedAndTheGridUntouched)
{
    QZWebProfile &p =
        current({}, {}, {{"JobTypes", ""}, {"BUWorkOrders", "10|11|10"}, {"BUPoints", ""}});
    doc().SetCollapsedNodes(1, *p.section(u"CollapsedNodes"), 2);
    ASSERT_EQ(host.reporter.reports.size(), 1u);
    EXPECT_EQ(host.reporter.reports[0].number, 457);
    EXPECT_EQ(host.reporter.reports[0].location, QStringLiteral("DLViewer.SetCollapsedNodes"));
    EXPECT_TRUE(host.gridLog.isEmpty());
}

} // namespace

// The control's widget tree as hosts and tests find it: every named child under the frame it has
// always had, the summary frame's keyboard order, and the private side's accessors handing out
// exactly the named widgets (the tests and the benchmark reach the parts through them).
#include "controlfixture.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>
#include <QToolBar>
#include <utility>
#include <vector>

namespace {

class WidgetTree : public ControlFixture
{};

QString parentName(const QObject *object)
{
    return object->parent() ? object->parent()->objectName() : QStringLiteral("<none>");
}

} // namespace

TEST_F(WidgetTree, EveryNamedControlLivesUnderItsFrame)
{
    const std::vector<std::pair<const char *, const char *>> rows = {
        {"fraDLV", "DLViewer"},
        {"tbMain", "fraDLV"},
        {"SaveGrid", "tbMain"},
        {"PrintGrid", "tbMain"},
        {"Profiles", "tbMain"},
        {"Help", "tbMain"},
        {"mnuProfileSection", "DLViewer"},
        {"mnuUse", "mnuProfileSection"},
        {"mnuSaveProfile", "mnuProfileSection"},
        {"mnuSaveProfileAs", "mnuProfileSection"},
        {"mnuManage", "mnuProfileSection"},
        {"lblProfile", "fraDLV"},
        {"lblCurrentProfile", "fraDLV"},
        {"lblLastTime", "fraDLV"},
        {"lblLastRefreshTime", "fraDLV"},
        {"lblNextTime", "fraDLV"},
        {"lblNextRefreshTime", "fraDLV"},
        {"lblFreshness", "fraDLV"},
        {"fraSelection", "fraDLV"},
        {"lblBUName", "fraSelection"},
        {"lvBU", "fraSelection"},
        {"fraStatus", "fraDLV"},
        {"lblStatus", "fraStatus"},
        {"Tabs", "fraDLV"},
        {"fraBU0", "fraDLV"},
        {"fraBU1", "fraDLV"},
        {"lblTechCount", "fraBU0"},
        {"lblTechCountCaption", "fraBU0"},
        {"lblPtsOpen", "fraBU0"},
        {"lblPtsOpenCaption", "fraBU0"},
        {"lblProdPerTech", "fraBU0"},
        {"lblPtsPerHr", "fraBU0"},
        {"lblWOsPerHrToday", "fraBU0"},
        {"lblPtsPerHrReq", "fraBU0"},
        {"optBU0", "fraBU0"},
        {"optBU1", "fraBU0"},
        {"cmdView", "fraBU0"},
        {"vsFlex0", "fraBU0"},
        {"lblDisplayBy", "fraBU1"},
        {"optDisplay0", "fraBU1"},
        {"optDisplay1", "fraBU1"},
        {"vsFlex1", "fraBU1"},
        {"vsFlex2", "fraBU1"},
    };
    for (const auto &[name, parent] : rows) {
        const auto found = viewer->findChildren<QObject *>(QString::fromLatin1(name));
        ASSERT_EQ(found.size(), 1) << name;
        EXPECT_EQ(parentName(found.front()), QString::fromLatin1(parent)) << name;
    }
}

TEST_F(WidgetTree, TheSummaryFrameIsTabbedThroughFromTheTechnicianCountToTheGrid)
{
    initialize();
    const QStringList order = {"lblTechCount", "optBU0", "optBU1", "cmdView", "vsFlex0"};
    QStringList seen;
    QWidget *start = child("lblTechCount");
    ASSERT_NE(start, nullptr);
    for (QWidget *w = start; seen.size() < order.size(); w = w->nextInFocusChain()) {
        if (order.contains(w->objectName()) && !seen.contains(w->objectName()))
            seen << w->objectName();
        if (w->nextInFocusChain() == start)
            break;
    }
    EXPECT_EQ(seen, order);
}

TEST_F(WidgetTree, ThePartsHandOutTheNamedWidgets)
{
    const std::vector<std::pair<const QObject *, const char *>> rows = {
        {d().frame(), "fraDLV"},
        {d().toolbar().toolBar(), "tbMain"},
        {d().toolbar().saveButton(), "SaveGrid"},
        {d().toolbar().printButton(), "PrintGrid"},
        {d().toolbar().profilesButton(), "Profiles"},
        {d().toolbar().helpButton(), "Help"},
        {d().toolbar().saveProfileItem(), "mnuSaveProfile"},
        {d().topRow().refreshTimeLabels()[0], "lblLastRefreshTime"},
        {d().topRow().refreshTimeLabels()[1], "lblNextRefreshTime"},
        {d().topRow().freshnessLabel(), "lblFreshness"},
        {d().status().label(), "lblStatus"},
        {d().unitListWidget(), "lvBU"},
        {d().options().tabs(), "Tabs"},
        {d().options().frame(0), "fraBU0"},
        {d().options().frame(1), "fraBU1"},
        {d().options().summaryOption(0), "optBU0"},
        {d().options().summaryOption(1), "optBU1"},
        {d().options().displayOption(0), "optDisplay0"},
        {d().options().displayOption(1), "optDisplay1"},
        {d().options().viewButton(), "cmdView"},
        {d().panel().techCount(), "lblTechCount"},
        {d().views().view(0), "vsFlex0"},
        {d().views().view(1), "vsFlex1"},
        {d().views().view(2), "vsFlex2"},
    };
    for (const auto &[object, name] : rows) {
        ASSERT_NE(object, nullptr) << name;
        EXPECT_EQ(object->objectName(), QString::fromLatin1(name));
        EXPECT_EQ(viewer->findChild<QObject *>(QString::fromLatin1(name)), object) << name;
    }
    // The panel's figures in DLViewer::PanelFigure order.
    const char *const figures[] = {"lblTechCount",     "lblHrsWorked",     "lblHrsRemaining",
                                   "lblWODone",        "lblWOOpen",        "lblPtsDone",
                                   "lblPtsOpen",       "lblWOsPerHrToday", "lblWOsPerHrReq",
                                   "lblPtsPerHrToday", "lblPtsPerHrReq"};
    const auto &labels = d().panel().figures();
    ASSERT_EQ(labels.size(), std::size(figures));
    for (std::size_t i = 0; i < labels.size(); ++i)
        EXPECT_EQ(labels[i]->objectName(), QString::fromLatin1(figures[i])) << i;
}

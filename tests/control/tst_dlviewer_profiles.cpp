// A saved view comes back in a new control; pictures of it with a realistic organisation, for a
// human look at the layout, are written next to the build.
#include "controlfixture.h"
#include "tst_dlviewer_views_data.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <array>

namespace {

class DLViewerProfiles : public ControlFixture
{
protected:
    /// A control whose host keeps its profiles in `store`, given one data message.
    void run(const QZWebProfiles &store)
    {
        SetUp();
        host = std::make_unique<ScriptedHost>(*viewer);
        host->store = store;
        initialize();
        QStringList units;
        for (int r = 1; r <= 4; ++r) {
            units << QStringLiteral("R%1").arg(r);
            for (int t = 1; t <= 3; ++t)
                units << QStringLiteral("R%1D%2").arg(r).arg(t);
        }
        viewer->SetSessionBUIDList(units);
        send(realisticOrganisation());
    }

    QStringList collapsedKeys(int grid)
    {
        StringSet list;
        d().views().SaveCollapsedList(grid, list);
        QStringList keys;
        for (const auto &entry : list)
            keys << entry.key;
        return keys;
    }
};

} // namespace

TEST_F(DLViewerProfiles, ASavedViewComesBackInANewControl)
{
    run({});
    ASSERT_GT(d().unitListWidget()->topLevelItemCount(), 4);
    // Two regions, the aggregate summary and display by points, then view.
    select({"_R1", "_R3"});
    d().options().summaryOption(1)->setChecked(true);
    d().options().viewButton()->click();
    d().options().displayOption(1)->click();
    // Collapse a job-type group in the summary, a unit in the work-order hierarchy and the root
    // in the points hierarchy.
    OutlineGrid &summary = d().views().grid(0);
    int group = -1;
    for (int r = 3; r < summary.rowCount() && group < 0; ++r)
        if (summary.isNode(r) && !summary.rowData(r).isEmpty())
            group = r;
    ASSERT_GE(group, 0);
    summary.setCollapsed(group, true);
    d().views().grid(1).setCollapsed(d().views().grid(1).findRow(QStringLiteral("R2")), true);
    d().views().grid(2).setCollapsed(2, true);

    const QStringList selected = listKeys(true);
    std::array<QStringList, 3> collapsed;
    for (int g = 0; g < 3; ++g)
        collapsed[g] = collapsedKeys(g);
    ASSERT_EQ(selected, (QStringList{"_R3", "_R1"})); // the list is sorted by description
    ASSERT_EQ(collapsed[0].size(), 1);
    ASSERT_EQ(collapsed[1], QStringList{"R2"});
    ASSERT_EQ(collapsed[2], QStringList{"#"});

    d().toolbar().saveProfileItem()->trigger();
    EXPECT_TRUE(host->requests.contains(QStringLiteral("PutProfiles")));
    EXPECT_TRUE(dialogs->calls.empty());
    const QZWebProfiles store = host->store;
    viewer->StopControl();

    run(store);
    EXPECT_EQ(listKeys(true), selected);
    EXPECT_TRUE(d().options().summaryOption(1)->isChecked());
    EXPECT_TRUE(d().options().displayOption(1)->isChecked());
    for (int g = 0; g < 3; ++g)
        EXPECT_EQ(collapsedKeys(g), collapsed[g]) << "grid " << g;
    EXPECT_TRUE(dialogs->calls.empty());

    // The next refresh fills the hierarchy rows of the chosen units.
    send(realisticOrganisation());
    d().views().grid(2).setCollapsed(2, false);
    viewer->show();
    for (const auto &[index, view] :
         {std::pair{0, "summary"}, std::pair{2, "hierarchy-points"}, std::pair{1, "hierarchy"}}) {
        showGrid(index);
        QApplication::processEvents();
        EXPECT_TRUE(viewer->grab().save(
            QStringLiteral(DLV_SCREENSHOT_DIR "/dlviewer-%1-1280x800.png").arg(view)));
    }
    EXPECT_TRUE(dialogs->calls.empty());
}

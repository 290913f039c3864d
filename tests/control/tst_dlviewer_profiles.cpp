#include "controlfixture.h"
#include "scriptedhost.h"
#include "tst_dlviewer_views_data.h"

#include "model/cdlvcontroller.h"

#include <QAction>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

namespace {

/// A control started by a host that keeps its profiles in `store`, then given one data message.
struct RunningControl
{
    explicit RunningControl(QZWebProfiles &store)
    {
        viewer.resize(1280, 800);
        auto recording = std::make_unique<RecordingDialogHost>();
        dialogs = recording.get();
        DLViewerTestAccess::d(viewer).setDialogHost(std::move(recording));
        host.store = store;
        viewer.Initialize(std::make_shared<QZWebTransport>(QStringLiteral("EN")));
        QStringList units;
        const DLVDataBuilder data = realisticOrganisation();
        for (const QString &id : unitIds())
            units << id;
        viewer.SetSessionBUIDList(units);
        QVariant message = data.variant();
        viewer.ReceiveMessage(message, QVariant(0), QVariant());
    }

    static QStringList unitIds()
    {
        QStringList ids;
        for (int r = 1; r <= 4; ++r) {
            ids << QStringLiteral("R%1").arg(r);
            for (int t = 1; t <= 3; ++t)
                ids << QStringLiteral("R%1D%2").arg(r).arg(t);
        }
        return ids;
    }

    DLViewerPrivate &d() { return DLViewerTestAccess::d(viewer); }

    QStringList selectedKeys()
    {
        QStringList keys;
        for (int i = 0; i < d().lvBU->topLevelItemCount(); ++i)
            if (d().lvBU->topLevelItem(i)->isSelected())
                keys << d().buListKey(i);
        return keys;
    }

    QStringList collapsedKeys(int grid)
    {
        StringSet list;
        d().SaveCollapsedList(grid, list);
        QStringList keys;
        for (const auto &entry : list)
            keys << entry.key;
        return keys;
    }

    DLViewer viewer;
    ScriptedHost host{viewer};
    RecordingDialogHost *dialogs = nullptr;
};

} // namespace

TEST(DLViewerProfiles, ASavedViewComesBackInANewControl)
{
    QZWebProfiles store;
    QStringList selected;
    std::array<QStringList, 3> collapsed;
    {
        RunningControl first(store);
        DLViewerPrivate &d = first.d();
        ASSERT_GT(d.lvBU->topLevelItemCount(), 4);
        // Choose two units, the aggregate summary and display by points, then view.
        d.lvBU->clearSelection();
        d.lvBU->topLevelItem(1)->setSelected(true);
        d.lvBU->topLevelItem(4)->setSelected(true);
        d.optBU[1]->setChecked(true);
        d.cmdView->click();
        d.optDisplay[1]->click();
        // Collapse a job-type group in the summary, a unit in the work-order hierarchy and the
        // root in the points hierarchy.
        OutlineGrid &summary = d.grids[0];
        int group = -1;
        for (int r = 3; r < summary.rowCount() && group < 0; ++r)
            if (summary.isNode(r) && !summary.rowData(r).isEmpty())
                group = r;
        ASSERT_GE(group, 0);
        summary.setCollapsed(group, true);
        d.grids[1].setCollapsed(d.grids[1].findRow(QStringLiteral("R2")), true);
        d.grids[2].setCollapsed(2, true);

        selected = first.selectedKeys();
        for (int g = 0; g < 3; ++g)
            collapsed[g] = first.collapsedKeys(g);
        ASSERT_EQ(selected.size(), 2);
        ASSERT_EQ(collapsed[0].size(), 1);
        ASSERT_EQ(collapsed[1], QStringList{QStringLiteral("R2")});
        ASSERT_EQ(collapsed[2], QStringList{QStringLiteral("#")});

        d.mnuSaveProfile->trigger();
        EXPECT_TRUE(first.host.requests.contains(QStringLiteral("PutProfiles")));
        EXPECT_TRUE(first.dialogs->calls.empty());
        store = first.host.store;
        first.viewer.StopControl();
    }

    RunningControl second(store);
    DLViewerPrivate &d = second.d();
    EXPECT_EQ(second.selectedKeys(), selected);
    EXPECT_TRUE(d.optBU[1]->isChecked());
    EXPECT_TRUE(d.optDisplay[1]->isChecked());
    for (int g = 0; g < 3; ++g)
        EXPECT_EQ(second.collapsedKeys(g), collapsed[g]) << "grid " << g;
    EXPECT_TRUE(second.dialogs->calls.empty());
}

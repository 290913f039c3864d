// Pictures of the control with a realistic organisation, for a human look at the layout: both
// tabs at 1280x800, and the summary at a wide and a narrow size. Written next to the build.
#include "controlfixture.h"
#include "scriptedhost.h"
#include "tst_dlviewer_views_data.h"
#include "views/outlinegrid.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTreeWidget>

namespace {

class DLViewerPictures : public ControlFixture
{
protected:
    void show(const QSize &size)
    {
        viewer->resize(size);
        viewer->show();
        QApplication::processEvents();
    }
    void save(const QString &name)
    {
        QApplication::processEvents();
        const QString path = QDir(QStringLiteral(DLV_SCREENSHOT_DIR)).filePath(name);
        ASSERT_TRUE(viewer->grab().save(path)) << path.toStdString();
    }
};

} // namespace

TEST_F(DLViewerPictures, RealisticOrganisationAtThreeSizes)
{
    ScriptedHost host(*viewer);
    initialize();
    QStringList session;
    const DLVDataBuilder data = realisticOrganisation();
    session << "R1"
            << "R2"
            << "R3"
            << "R4";
    for (int r = 1; r <= 4; ++r)
        for (int t = 1; t <= 3; ++t) {
            session << QStringLiteral("R%1D%2").arg(r).arg(t);
            for (int c = 1; c <= 3; ++c)
                session << QStringLiteral("R%1D%2C%3").arg(r).arg(t).arg(c);
        }
    viewer->SetSessionBUIDList(session);
    show(QSize(1280, 800));
    QVariant message = data.variant();
    viewer->ReceiveMessage(message, QVariant(0), QVariant());

    // Two regions and their districts, summed with everything below them (each unit once); a
    // refresh then fills the hierarchy rows of the chosen units.
    auto *list = child<QTreeWidget>("lvBU");
    list->clearSelection();
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        const QString key = list->topLevelItem(i)->data(0, Qt::UserRole).toString();
        if ((key.startsWith("_R1") || key.startsWith("_R3")) && !key.contains(u'C'))
            list->topLevelItem(i)->setSelected(true);
    }
    child<QRadioButton>("optBU1")->setChecked(true);
    child<QPushButton>("cmdView")->click();
    viewer->ReceiveMessage(message, QVariant(0), QVariant());
    ASSERT_TRUE(dialogs->calls.empty());

    // A tidy tree: the regions that are not chosen and some districts folded away.
    for (OutlineGrid *grid : {&d().grids[1], &d().grids[2]}) {
        for (const char *id : {"R2", "R4", "R1D2", "R3D1", "R3D3"})
            grid->setCollapsed(grid->findRow(QString::fromLatin1(id)), true);
    }
    OutlineGrid &summary = d().grids[0];
    for (int r = 3; r < summary.rowCount(); ++r) {
        if (summary.isNode(r) && r > 12)
            summary.setCollapsed(r, true);
    }

    save(QStringLiteral("dlviewer-summary-1280x800.png"));
    child<QTabBar>("Tabs")->setCurrentIndex(1);
    save(QStringLiteral("dlviewer-hierarchy-1280x800.png"));
    child<QRadioButton>("optDisplay1")->click();
    save(QStringLiteral("dlviewer-hierarchy-points-1280x800.png"));
    child<QRadioButton>("optDisplay0")->click();

    show(QSize(1920, 1080));
    save(QStringLiteral("dlviewer-hierarchy-1920x1080.png"));
    child<QTabBar>("Tabs")->setCurrentIndex(0);
    save(QStringLiteral("dlviewer-summary-1920x1080.png"));
    show(QSize(1024, 640));
    save(QStringLiteral("dlviewer-summary-1024x640.png"));
    child<QTabBar>("Tabs")->setCurrentIndex(1);
    save(QStringLiteral("dlviewer-hierarchy-1024x640.png"));
}

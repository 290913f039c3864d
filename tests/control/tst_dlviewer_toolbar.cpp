// The toolbar of the control: its pictures, the about box, the profile menu, and saving and
// printing the grid in view through the dialog seam.

#include "controlfixture.h"
#include "model/dlvdatabuilder.h"
#include "scriptedhost.h"
#include "views/gridexporter.h"
#include "views/outlinegridview.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QPrinter>
#include <QProcess>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>

namespace {

using Kind = RecordingDialogHost::Kind;

DLVDataBuilder toolbarData()
{
    DLVDataBuilder b;
    b.unit("#", "All units", "#")
        .unit("N", "Norte, \"Sul\" & São João", "#")
        .unit("S", "Süd\nWest", "#")
        .jobType("INS", "Installation, new")
        .jobClass("A", "Class \"A\"")
        .format("EN", "hh:mm")
        .general("N", "N", "10", "8", "4")
        .general("S", "S", "5", "4", "2")
        .detail("N", "INS", "A", {"3", "1", "0", "0", "7"})
        .detail("S", "INS", "A", {"2", "0", "1", "0", "1"})
        .property("tqJeopardyThreshold", "30");
    return b;
}

class DLViewerToolbar : public ControlFixture
{
protected:
    /// A started control with data, both units chosen and the summary redrawn with them.
    void start(const QString &language = QStringLiteral("EN"))
    {
        host = std::make_unique<ScriptedHost>(*viewer);
        initialize(language);
        QStringList units{"N", "S"};
        viewer->SetSessionBUIDList(units);
        QVariant data = toolbarData().variant();
        viewer->ReceiveMessage(data, QVariant(0), QVariant());
        for (int i = 0; i < d().lvBU->topLevelItemCount(); ++i)
            d().lvBU->topLevelItem(i)->setSelected(true);
        d().cmdView_Click();
        viewer->ReceiveMessage(data, QVariant(0), QVariant());
        viewer->show();
    }

    void showGrid(int index)
    {
        d().Tabs->setCurrentIndex(index == 0 ? 0 : 1);
        if (index > 0)
            d().optDisplay[size_t(index - 1)]->click();
        ASSERT_EQ(d().currentGridIndex(), index);
    }

    std::unique_ptr<ScriptedHost> host;
};

bool hasInk(const QPixmap &pm)
{
    const QImage image = pm.toImage();
    int opaque = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            opaque += qAlpha(image.pixel(x, y)) > 200 ? 1 : 0;
    return opaque > image.width() * image.height() / 5;
}

} // namespace

TEST_F(DLViewerToolbar, ButtonsHaveKeysCaptionsAndPicturesAtEveryPixelRatio)
{
    initialize();
    const std::vector<std::pair<const char *, QString>> buttons = {
        {"SaveGrid", "Save Grid"},
        {"PrintGrid", "Print Grid"},
        {"Profiles", "Profiles"},
        {"Help", "About Dashlon Viewer"},
    };
    for (const auto &[key, tip] : buttons) {
        auto *action = viewer->findChild<QAction *>(QString::fromLatin1(key));
        ASSERT_NE(action, nullptr) << key;
        EXPECT_EQ(action->toolTip(), tip) << key;
        const QIcon icon = action->icon();
        for (const qreal dpr : {1.0, 2.0}) {
            const QPixmap pm = icon.pixmap(QSize(20, 20), dpr);
            EXPECT_EQ(pm.size(), QSize(20, 20) * dpr) << key << " drawn at device resolution";
            EXPECT_DOUBLE_EQ(pm.devicePixelRatio(), dpr) << key;
            EXPECT_TRUE(hasInk(pm)) << key;
        }
        const QImage normal = icon.pixmap(QSize(24, 24), 1.0).toImage();
        const QImage disabled = icon.pixmap(QSize(24, 24), 1.0, QIcon::Disabled).toImage();
        EXPECT_NE(normal, disabled) << key << ": a disabled button looks disabled";
    }
}

TEST_F(DLViewerToolbar, PicturesOfTheToolbarAtNormalAndDoublePixelRatio)
{
    start(); // data arrived: all four buttons are shown
    for (QAction *button : {d().btnSaveGrid, d().btnPrintGrid, d().btnProfiles, d().btnHelp})
        EXPECT_TRUE(button->isVisible()) << button->objectName().toStdString();
    QToolBar *bar = d().tbMain;
    EXPECT_TRUE(bar->grab().save(QStringLiteral(DLV_SCREENSHOT_DIR "/toolbar_1x.png")));
    // The same toolbar painted for a 2x screen: icons are drawn at device resolution.
    QPixmap twice(bar->size() * 2);
    twice.setDevicePixelRatio(2.0);
    twice.fill(Qt::transparent);
    {
        QPainter painter(&twice);
        bar->render(&painter);
    }
    EXPECT_TRUE(twice.save(QStringLiteral(DLV_SCREENSHOT_DIR "/toolbar_2x.png")));
}

TEST_F(DLViewerToolbar, HelpShowsTheAboutBoxInTheControllersLanguage)
{
    struct Case
    {
        const char *language;
        QString description;
        bool rights;
    };
    const std::vector<Case> cases = {
        {"EN", "Real-Time BusinessUnit Productivity", true},
        {"PO", "Produtividade de Hora Real de Unidades de Negócios", true},
        {"SP", "Productividad de Hora Real de Unidades de Negocios", true},
        {"XX", "", false},
    };
    for (const Case &c : cases) {
        SetUp();
        initialize(QString::fromLatin1(c.language));
        d().btnHelp->trigger();
        const auto about = dialogs->callsOf(Kind::About);
        ASSERT_EQ(about.size(), 1u) << c.language;
        EXPECT_EQ(about[0].title, d().caption("AboutDLV")) << c.language;
        EXPECT_EQ(about[0].versionLabel, d().caption("Version")) << c.language;
        EXPECT_EQ(about[0].productName, "Dashlon Viewer");
        EXPECT_EQ(about[0].description, c.description) << c.language;
        EXPECT_EQ(!about[0].rights.isEmpty(), c.rights) << c.language;
        EXPECT_FALSE(about[0].comments.isEmpty());
        EXPECT_TRUE(about[0].version.contains(QRegularExpression("^\\d+\\.\\d+\\.\\d+$")));
        EXPECT_EQ(about[0].owner, d().fraDLV);
    }
    SetUp();
    initialize();
    EXPECT_EQ(dialogs->callsOf(Kind::About).size(), 0u);
    d().btnHelp->trigger();
    EXPECT_EQ(dialogs->callsOf(Kind::About)[0].title, "About Dashlon Viewer");
}

TEST_F(DLViewerToolbar, ProfilesButtonAndItsArrowRebuildAndDropTheMenu)
{
    start();
    QMenu *menu = d().mnuProfileSection;
    d().mnuProfile.front()->setText(QString()); // stale: the rebuild must name it again
    d().btnProfiles->trigger();
    EXPECT_TRUE(menu->isVisible());
    EXPECT_EQ(d().mnuProfile.front()->text(), "Default");
    menu->close();

    auto *button = qobject_cast<QToolButton *>(d().tbMain->widgetForAction(d().btnProfiles));
    ASSERT_NE(button, nullptr);
    d().mnuProfile.front()->setText(QString());
    bool shown = false;
    QTimer::singleShot(0, [&] {
        shown = menu->isVisible();
        menu->close();
    });
    button->showMenu(); // the arrow: returns when the menu closes
    EXPECT_TRUE(shown);
    EXPECT_EQ(d().mnuProfile.front()->text(), "Default");
}

TEST_F(DLViewerToolbar, SaveWritesTheGridInViewAndRemembersTheFolder)
{
    start();
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    for (const int index : {0, 1, 2}) {
        SCOPED_TRACE(index);
        showGrid(index);
        const QString path = QDir(dir.path()).filePath(QStringLiteral("grid%1.csv").arg(index));
        dialogs->saveFileAnswers.push_back(path);
        d().btnSaveGrid->trigger();
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(f.readAll(), GridExporter::bytes(d().grids[size_t(index)]));
        EXPECT_TRUE(d().fraDLV->isEnabled());
    }
    const auto calls = dialogs->callsOf(Kind::SaveFile);
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].folder, "") << "empty at start";
    EXPECT_EQ(calls[1].folder, dir.path());
    EXPECT_EQ(calls[0].filter, "Comma-separated Files (*.csv)");
    EXPECT_EQ(calls[0].defaultSuffix, "csv");
    EXPECT_EQ(calls[0].title, "Save Grid");
    EXPECT_FALSE(calls[0].ownerEnabledDuringCall);
    EXPECT_EQ(calls[0].owner, d().fraDLV);

    // Points view: grid element 2, its header rows and the outline column first.
    QFile points(QDir(dir.path()).filePath("grid2.csv"));
    ASSERT_TRUE(points.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(points.readAll().mid(3));
    EXPECT_TRUE(text.startsWith(",,,,Points,")) << text.left(80).toStdString();
    EXPECT_TRUE(text.contains("\r\n" + d().caption("BusinessUnits") + ","));
}

TEST_F(DLViewerToolbar, CancelledBlankOrFailedSavesWriteNothingAndShowNothing)
{
    start();
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    d().lastSaveFolder = dir.path();
    const std::vector<std::pair<const char *, QString>> answers = {
        {"cancelled", QString()},
        {"blanks only", QStringLiteral("   ")},
        {"folder that does not exist", QDir(dir.path()).filePath("missing/grid.csv")},
    };
    for (const auto &[name, answer] : answers) {
        dialogs->saveFileAnswers.push_back(answer);
        d().btnSaveGrid->trigger();
        EXPECT_TRUE(d().fraDLV->isEnabled()) << name;
        EXPECT_TRUE(QDir(dir.path()).entryList(QDir::Files).isEmpty()) << name;
        EXPECT_TRUE(dialogs->callsOf(Kind::Error).empty()) << name;
    }
    // Cancel and blanks keep the folder; a chosen name moves it even when writing then fails.
    EXPECT_EQ(d().lastSaveFolder, QDir(dir.path()).filePath("missing"));
    EXPECT_EQ(dialogs->callsOf(Kind::SaveFile)[1].folder, dir.path());
}

TEST_F(DLViewerToolbar, NothingIsSavedOrPrintedWhileTheGridIsHidden)
{
    start();
    d().vsFlex[0]->setVisible(false);
    d().btnSaveGrid->trigger();
    d().btnPrintGrid->trigger();
    EXPECT_TRUE(dialogs->calls.empty());
    EXPECT_FALSE(viewer->ExportGrid(QDir::temp().filePath("never.csv")));
    EXPECT_FALSE(QFile::exists(QDir::temp().filePath("never.csv")));
}

TEST_F(DLViewerToolbar, PrintPresetsLandscapeAndTitlesThePrintoutByTab)
{
    start();
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::vector<std::pair<int, QString>> cases = {{0, "BU Summary"}, {2, "BU Hierarchy"}};
    for (const auto &[index, title] : cases) {
        SCOPED_TRACE(index);
        showGrid(index);
        const QString path = QDir(dir.path()).filePath(QStringLiteral("print%1.pdf").arg(index));
        dialogs->printScripts.push_back([path](QPrinter &printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(path);
            return true;
        });
        d().btnPrintGrid->trigger();
        EXPECT_TRUE(d().fraDLV->isEnabled());
        const auto call = dialogs->callsOf(Kind::Print).back();
        EXPECT_EQ(call.orientation, QPageLayout::Landscape);
        EXPECT_EQ(call.docName, title);
        EXPECT_FALSE(call.ownerEnabledDuringCall);

        QProcess info;
        info.start("pdfinfo", {path});
        ASSERT_TRUE(info.waitForFinished(60000));
        const QString out = QString::fromUtf8(info.readAllStandardOutput());
        EXPECT_TRUE(out.contains(QRegularExpression("Title:\\s+" + title))) << out.toStdString();
        EXPECT_TRUE(out.contains(QRegularExpression("Page size:\\s+(\\d+) x (\\d+)")));
        const auto size = QRegularExpression("Page size:\\s+([\\d.]+) x ([\\d.]+)").match(out);
        EXPECT_GT(size.captured(1).toDouble(), size.captured(2).toDouble()) << "landscape";
    }
    // A cancelled dialog prints nothing and leaves the frame enabled.
    const int before = int(dialogs->callsOf(Kind::Print).size());
    d().btnPrintGrid->trigger();
    EXPECT_EQ(int(dialogs->callsOf(Kind::Print).size()), before + 1);
    EXPECT_TRUE(d().fraDLV->isEnabled());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    EXPECT_TRUE(dialogs->callsOf(Kind::Error).empty());
}

TEST_F(DLViewerToolbar, BatchExportIsReadBackByPythonWithTheGridsCells)
{
    start();
    showGrid(1);
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = QDir(dir.path()).filePath("hierarchy.csv");
    ASSERT_TRUE(viewer->ExportGrid(path));
    EXPECT_TRUE(dialogs->calls.empty()) << "no dialog in batch mode";

    QProcess python;
    python.start("python3", {"-c",
                             "import csv,json,sys\n"
                             "rows=list(csv.reader(open(sys.argv[1],newline='',"
                             "encoding='utf-8-sig')))\n"
                             "json.dump(rows,sys.stdout)",
                             path});
    ASSERT_TRUE(python.waitForFinished(60000));
    ASSERT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    const QJsonArray rows = QJsonDocument::fromJson(python.readAllStandardOutput()).array();
    const OutlineGrid &grid = d().grids[1];
    ASSERT_EQ(rows.size(), grid.rowCount());
    bool sawAwkwardName = false;
    for (int r = 0; r < grid.rowCount(); ++r) {
        const QJsonArray cells = rows[r].toArray();
        ASSERT_EQ(cells.size(), grid.colCount());
        for (int c = 0; c < grid.colCount(); ++c)
            EXPECT_EQ(cells[c].toString(), grid.text(r, c)) << r << "," << c;
        sawAwkwardName |= grid.text(r, 0) == "Norte, \"Sul\" & São João";
    }
    EXPECT_TRUE(sawAwkwardName);

    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QDir(dir.path()).filePath("hierarchy.pdf"));
    EXPECT_TRUE(viewer->PrintGrid(printer));
    EXPECT_EQ(printer.docName(), "BU Hierarchy");
    EXPECT_TRUE(QFile::exists(printer.outputFileName()));
}

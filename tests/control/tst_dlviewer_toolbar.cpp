// The toolbar of the control: its pictures, the about box, and saving and printing the grid in
// view through the dialog seam.

#include "controlfixture.h"
#include "views/gridexporter.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QToolBar>

namespace {

using Kind = RecordingDialogHost::Kind;

using DLViewerToolbar = ControlFixture;

/// A picture that is no blank: a fifth of its pixels opaque.
bool hasInk(const QPixmap &pm)
{
    const QImage image = pm.toImage();
    int opaque = 0;
    for (int i = 0; i < image.width() * image.height(); ++i)
        opaque += qAlpha(image.pixel(i % image.width(), i / image.width())) > 200;
    return opaque > image.width() * image.height() / 5;
}

} // namespace

TEST_F(DLViewerToolbar, ButtonsHaveCaptionsAndPicturesAtEveryPixelRatio)
{
    startChosen(); // data arrived: all four buttons are shown
    const std::vector<std::pair<QAction *, QString>> buttons = {
        {d().toolbar().saveButton(), "Save Grid"},
        {d().toolbar().printButton(), "Print Grid"},
        {d().toolbar().profilesButton(), "Profiles"},
        {d().toolbar().helpButton(), "About Dashlon Viewer"},
    };
    for (const auto &[action, tip] : buttons) {
        SCOPED_TRACE(tip.toStdString());
        EXPECT_TRUE(action->isVisible());
        EXPECT_EQ(action->toolTip(), tip);
        for (const qreal dpr : {1.0, 2.0}) {
            const QPixmap pm = action->icon().pixmap(QSize(20, 20), dpr);
            EXPECT_EQ(pm.size(), QSize(20, 20) * dpr) << "drawn at device resolution";
            EXPECT_TRUE(hasInk(pm));
        }
        EXPECT_NE(action->icon().pixmap(QSize(24, 24), 1.0).toImage(),
                  action->icon().pixmap(QSize(24, 24), 1.0, QIcon::Disabled).toImage())
            << "a disabled button looks disabled";
    }
    // Pictures of the toolbar, also painted for a 2x screen.
    QToolBar *bar = d().toolbar().toolBar();
    EXPECT_TRUE(bar->grab().save(QStringLiteral(DLV_SCREENSHOT_DIR "/toolbar_1x.png")));
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
    for (const char *language : {"PO", "XX"}) {
        SCOPED_TRACE(language);
        SetUp();
        initialize(QString::fromLatin1(language));
        d().toolbar().helpButton()->trigger();
        const auto about = dialogs->callsOf(Kind::About);
        ASSERT_EQ(about.size(), 1u);
        EXPECT_EQ(about[0].title, d().caption("AboutDLV"));
        EXPECT_EQ(about[0].versionLabel, d().caption("Version"));
        EXPECT_EQ(about[0].productName, "Dashlon Viewer");
        EXPECT_EQ(about[0].description, QByteArray(language) == "PO"
                                            ? "Produtividade de Hora Real de Unidades de Negócios"
                                            : "");
        EXPECT_TRUE(about[0].version.contains(QRegularExpression("^\\d+\\.\\d+\\.\\d+$")));
        EXPECT_EQ(about[0].owner, d().frame());
    }
}

TEST_F(DLViewerToolbar, SaveWritesTheGridInViewAndRemembersTheFolder)
{
    startChosen();
    QTemporaryDir dir;
    for (const int index : {0, 2}) {
        showGrid(index);
        ASSERT_EQ(d().options().currentGridIndex(), index);
        const QString path = QDir(dir.path()).filePath(QStringLiteral("grid%1.csv").arg(index));
        dialogs->saveFileAnswers.push_back(path);
        d().toolbar().saveButton()->trigger();
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(f.readAll(), GridExporter::bytes(d().views().grid(index))) << index;
        EXPECT_TRUE(d().frame()->isEnabled());
    }
    // Cancel and blanks keep the folder; a chosen name moves it even when writing then fails.
    for (const QString &answer :
         {QString(), QStringLiteral("   "), QDir(dir.path()).filePath("missing/grid.csv")}) {
        dialogs->saveFileAnswers.push_back(answer);
        d().toolbar().saveButton()->trigger();
        EXPECT_TRUE(d().frame()->isEnabled());
    }
    const auto calls = dialogs->callsOf(Kind::SaveFile);
    ASSERT_EQ(calls.size(), 5u);
    EXPECT_EQ(calls[0].folder, "") << "empty at start";
    for (const size_t i : {1, 2, 3, 4})
        EXPECT_EQ(calls[i].folder, dir.path()) << i;
    EXPECT_EQ(d().output().lastSaveFolder(), QDir(dir.path()).filePath("missing"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    EXPECT_EQ(calls[0].filter, "Comma-separated Files (*.csv)");
    EXPECT_EQ(calls[0].defaultSuffix, "csv");
    EXPECT_EQ(calls[0].title, "Save Grid");
    EXPECT_FALSE(calls[0].ownerEnabledDuringCall);
    EXPECT_EQ(calls[0].owner, d().frame());
    EXPECT_TRUE(dialogs->callsOf(Kind::Error).empty());

    // Nothing is saved or printed while the grid is hidden.
    d().views().view(2)->setVisible(false);
    d().toolbar().saveButton()->trigger();
    d().toolbar().printButton()->trigger();
    EXPECT_EQ(dialogs->calls.size(), 5u);
}

TEST_F(DLViewerToolbar, PrintPresetsLandscapeAndTitlesThePrintoutByTab)
{
    startChosen();
    QTemporaryDir dir;
    for (const auto &[index, title] : {std::pair{0, "BU Summary"}, std::pair{2, "BU Hierarchy"}}) {
        SCOPED_TRACE(index);
        showGrid(index);
        const QString path = QDir(dir.path()).filePath(QStringLiteral("print%1.pdf").arg(index));
        dialogs->printScripts.push_back([path](QPrinter &printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(path);
            return true;
        });
        d().toolbar().printButton()->trigger();
        EXPECT_TRUE(d().frame()->isEnabled());
        const auto call = dialogs->callsOf(Kind::Print).back();
        EXPECT_EQ(call.orientation, QPageLayout::Landscape);
        EXPECT_EQ(call.docName, title);
        EXPECT_FALSE(call.ownerEnabledDuringCall);
    }
    // A cancelled dialog prints nothing and leaves the frame enabled.
    d().toolbar().printButton()->trigger();
    EXPECT_EQ(dialogs->callsOf(Kind::Print).size(), 3u);
    EXPECT_TRUE(d().frame()->isEnabled());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
}

#include "modaldriver.h"
#include "support/recordingdialoghost.h"
#include "testwidgetdialoghost.h"
#include "ui/aboutinfo.h"
#include "ui/frmgenabout.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct AboutTextCase
{
    const char *code;
    const char *description;
    bool hasRights;
};

class AboutTexts : public ::testing::TestWithParam<AboutTextCase>
{};

TEST_P(AboutTexts, ByLanguageCode)
{
    const AboutTextCase &c = GetParam();
    const QString code = QString::fromLatin1(c.code);
    EXPECT_EQ(AboutInfo::description(code), QString::fromUtf8(c.description));
    EXPECT_EQ(!AboutInfo::rights(code).isEmpty(), c.hasRights);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, AboutTexts,
    ::testing::Values(
        AboutTextCase{"EN", "Real-Time BusinessUnit Productivity", true},
        AboutTextCase{"PO", "Produtividade de Hora Real de Unidades de Negócios", true},
        AboutTextCase{"SP", "Productividad de Hora Real de Unidades de Negocios", true},
        AboutTextCase{"po", "Produtividade de Hora Real de Unidades de Negócios", true},
        AboutTextCase{"FR", "", false}, AboutTextCase{"", "", false}));

TEST(AboutInfo, RightsLineIsInItsOwnLanguage)
{
    const QString en = AboutInfo::rights(QStringLiteral("EN"));
    const QString po = AboutInfo::rights(QStringLiteral("PO"));
    const QString sp = AboutInfo::rights(QStringLiteral("SP"));
    EXPECT_NE(en, po);
    EXPECT_NE(en, sp);
    EXPECT_NE(po, sp);
}

TEST(AboutInfo, VersionIsMajorMinorRevisionOfTheBuild)
{
    EXPECT_EQ(AboutInfo::versionText(), QStringLiteral(DLV_EXPECTED_VERSION));
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+$"))
                    .match(AboutInfo::versionText())
                    .hasMatch());
    EXPECT_EQ(AboutInfo::productName(), QStringLiteral("Dashlon Viewer"));
    EXPECT_FALSE(AboutInfo::comments().isEmpty());
}

// ---- layout

struct LayoutCase
{
    const char *name;
    const char *title;
    const char *description;
    const char *rights;
    const char *versionLabel;
};

class AboutLayout : public ::testing::TestWithParam<LayoutCase>
{};

QRect geometryOf(const QWidget &box, const char *name)
{
    const auto *w = box.findChild<QWidget *>(QString::fromLatin1(name));
    EXPECT_NE(w, nullptr) << name;
    return w ? w->geometry() : QRect();
}

// Bottom edge as "top + height" (QRect::bottom() is one less).
int below(const QRect &r)
{
    return r.y() + r.height();
}
int rightOf(const QRect &r)
{
    return r.x() + r.width();
}

TEST_P(AboutLayout, KeepsItsRelations)
{
    const LayoutCase &c = GetParam();
    frmGenAbout box;
    box.setTexts(QString::fromUtf8(c.title), QStringLiteral("Dashlon Viewer"),
                 QString::fromUtf8(c.description), AboutInfo::comments(),
                 QString::fromUtf8(c.rights), QStringLiteral("1.0.0"),
                 QString::fromUtf8(c.versionLabel));

    const QRect logo = geometryOf(box, "imgLogo");
    const QRect title = geometryOf(box, "lblTitle");
    const QRect description = geometryOf(box, "lblDescription");
    const QRect comments = geometryOf(box, "lblComments");
    const QRect rights = geometryOf(box, "lblRights");
    const QRect line0 = geometryOf(box, "linSeparator0");
    const QRect line1 = geometryOf(box, "linSeparator1");
    const QRect name = geometryOf(box, "imgName");
    const QRect verText = geometryOf(box, "lblVerText");
    const QRect version = geometryOf(box, "lblVersion");
    const QRect ok = geometryOf(box, "cmdOK");

    const int contentRight = rightOf(comments);
    // Title right-aligned to the content edge, beside the logo.
    EXPECT_EQ(rightOf(title), contentRight);
    EXPECT_GE(title.x(), rightOf(logo));
    EXPECT_EQ(title.y(), logo.y());
    // Subtitle directly under the title, from its left edge, tall enough for its text.
    EXPECT_EQ(description.x(), title.x());
    EXPECT_EQ(description.y(), below(title));
    const auto *descriptionLabel = box.findChild<QLabel *>(QStringLiteral("lblDescription"));
    EXPECT_GE(description.height(), descriptionLabel->heightForWidth(description.width()));
    // Comments under the text block, rights directly under the comments, same width.
    EXPECT_EQ(comments.y(), std::max(below(logo), below(description)));
    EXPECT_EQ(rights.y(), below(comments));
    EXPECT_EQ(rights.x(), comments.x());
    EXPECT_EQ(rights.width(), comments.width());
    // Separator 1 px under the rights, from the logo's left edge to the rights' right edge.
    EXPECT_EQ(line0.y(), below(rights) + 1);
    EXPECT_EQ(line1.y(), below(line0));
    EXPECT_EQ(line0.x(), logo.x());
    EXPECT_EQ(rightOf(line0), rightOf(rights));
    // Lower block: name picture and version column 4 px under the separator.
    EXPECT_EQ(name.y(), below(line1) + 4);
    EXPECT_EQ(name.x(), logo.x() + 5);
    EXPECT_EQ(verText.y(), name.y());
    EXPECT_EQ(rightOf(verText), contentRight - 7);
    EXPECT_EQ(version.x(), verText.x());
    EXPECT_EQ(version.y(), below(verText) + 4);
    EXPECT_EQ(ok.x(), verText.x());
    EXPECT_EQ(ok.y(), below(version) + 4);
    EXPECT_LE(rightOf(name), verText.x());
    // The box holds the lower of the name picture and the OK button, with a margin.
    EXPECT_GT(box.height(), std::max(below(name), below(ok)));
    EXPECT_GT(box.width(), contentRight);

    EXPECT_EQ(box.windowTitle(), QString::fromUtf8(c.title));
    EXPECT_EQ(box.findChild<QLabel *>(QStringLiteral("lblVersion"))->text(),
              QStringLiteral("1.0.0"));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, AboutLayout,
    ::testing::Values(
        LayoutCase{"English", "About Dashlon Viewer", "Real-Time BusinessUnit Productivity",
                   "© 2026 Dashlon. All rights reserved.", "Version"},
        LayoutCase{"Portuguese", "Sobre o Dashlon Viewer",
                   "Produtividade de Hora Real de Unidades de Negócios",
                   "© 2026 Dashlon. Todos os direitos reservados.", "Versão"},
        LayoutCase{"UnknownLanguage", "About Dashlon Viewer", "", "", "Version"},
        LayoutCase{"LongSubtitleWraps", "About",
                   "A very long subtitle that certainly needs more than one line of text to be "
                   "shown in full without being cut off at the right edge of the box",
                   "Rights", "Version"},
        LayoutCase{"LongVersionWord", "About", "Subtitle", "Rights",
                   "Versionsnummer der Komponente"}),
    [](const ::testing::TestParamInfo<LayoutCase> &info) { return info.param.name; });

TEST(AboutLayout, LongSubtitleGrowsDownwardsNotSideways)
{
    frmGenAbout shortBox;
    shortBox.setTexts(QStringLiteral("About"), QStringLiteral("Dashlon Viewer"),
                      QStringLiteral("Short"), QString(), QString(), QStringLiteral("1.0.0"),
                      QStringLiteral("Version"));
    frmGenAbout longBox;
    longBox.setTexts(QStringLiteral("About"), QStringLiteral("Dashlon Viewer"),
                     QStringLiteral("word ").repeated(60), QString(), QString(),
                     QStringLiteral("1.0.0"), QStringLiteral("Version"));
    EXPECT_EQ(longBox.width(), shortBox.width());
    EXPECT_GT(longBox.height(), shortBox.height());
}

// ---- showing

struct Surface
{
    QWidget window;
    QWidget *frame = new QWidget(&window);
    Surface() { window.show(); }
};

void clickOk(QWidget *dialog)
{
    auto *ok = dialog->findChild<QPushButton *>(QStringLiteral("cmdOK"));
    ASSERT_NE(ok, nullptr);
    QTest::mouseClick(ok, Qt::LeftButton);
}

TEST(AboutBox, ShowsTextsAndLocksTheOwnerUntilOk)
{
    Surface surface;
    bool seen = false;
    onNextModal([&](QWidget *dialog) {
        seen = true;
        EXPECT_EQ(dialog->objectName(), QStringLiteral("frmGenAbout"));
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("About Dashlon Viewer"));
        const auto text = [dialog](const char *name) {
            return dialog->findChild<QLabel *>(QString::fromLatin1(name))->text();
        };
        EXPECT_EQ(text("lblTitle"), QStringLiteral("Dashlon Viewer"));
        EXPECT_EQ(text("lblDescription"), QStringLiteral("Real-Time BusinessUnit Productivity"));
        EXPECT_EQ(text("lblComments"), QStringLiteral("Comments"));
        EXPECT_EQ(text("lblRights"), QStringLiteral("Rights"));
        EXPECT_EQ(text("lblVerText"), QStringLiteral("Version"));
        EXPECT_EQ(text("lblVersion"), QStringLiteral("2.0.15"));
        EXPECT_FALSE(surface.frame->isEnabled());
        EXPECT_TRUE(dialog->isEnabled());
        EXPECT_EQ(dialog->parentWidget(), &surface.window);
        clickOk(dialog);
    });
    TestWidgetDialogHost host;
    host.showAbout(QStringLiteral("About Dashlon Viewer"), QStringLiteral("Dashlon Viewer"),
                   QStringLiteral("Real-Time BusinessUnit Productivity"),
                   QStringLiteral("Comments"), QStringLiteral("Rights"), QStringLiteral("2.0.15"),
                   QStringLiteral("Version"), surface.frame);
    EXPECT_TRUE(seen);
    EXPECT_TRUE(surface.frame->isEnabled());
}

TEST(AboutBox, EscapeClosesAndReenablesTheOwner)
{
    Surface surface;
    onNextModal([](QWidget *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    frmGenAbout::ShowAbout(QStringLiteral("About"), QStringLiteral("Dashlon Viewer"), QString(),
                           QString(), QString(), QStringLiteral("1.0.0"), QStringLiteral("Version"),
                           surface.frame);
    EXPECT_TRUE(surface.frame->isEnabled());
}

TEST(AboutBox, Screenshots)
{
    for (const char *language : {"EN", "PO"}) {
        const QString code = QString::fromLatin1(language);
        Surface surface;
        onNextModal([&](QWidget *dialog) {
            EXPECT_TRUE(saveScreenshot(dialog, QStringLiteral("frmGenAbout-%1").arg(code)));
            clickOk(dialog);
        });
        frmGenAbout::ShowAbout(
            code == QLatin1String("PO") ? QStringLiteral("Sobre o Dashlon Viewer")
                                        : QStringLiteral("About Dashlon Viewer"),
            AboutInfo::productName(), AboutInfo::description(code), AboutInfo::comments(),
            AboutInfo::rights(code), AboutInfo::versionText(),
            code == QLatin1String("PO") ? QStringLiteral("Versão") : QStringLiteral("Version"),
            surface.frame);
    }
}

} // namespace

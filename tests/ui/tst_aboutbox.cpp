#include "support/modaldriver.h"
#include "testwidgetdialoghost.h"
#include "ui/aboutinfo.h"
#include "ui/frmgenabout.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>

namespace {

TEST(AboutInfo, TextsByLanguageCodeAndBuildVersion)
{
    const std::pair<const char *, const char *> rows[] = {
        {"EN", "Real-Time BusinessUnit Productivity"},
        {"po", "Produtividade de Hora Real de Unidades de Negócios"},
        {"SP", "Productividad de Hora Real de Unidades de Negocios"},
        {"FR", ""}};
    for (const auto &[code, description] : rows) {
        EXPECT_EQ(AboutInfo::description(QString::fromLatin1(code)),
                  QString::fromUtf8(description));
        EXPECT_EQ(AboutInfo::rights(QString::fromLatin1(code)).isEmpty(), !*description) << code;
    }
    EXPECT_NE(AboutInfo::rights(QStringLiteral("EN")), AboutInfo::rights(QStringLiteral("PO")));
    EXPECT_EQ(AboutInfo::versionText(), QStringLiteral(DLV_EXPECTED_VERSION));
}

QRect geometryOf(const QWidget &box, const char *name)
{
    const auto *w = box.findChild<QWidget *>(QString::fromLatin1(name));
    EXPECT_NE(w, nullptr) << name;
    return w ? w->geometry() : QRect();
}

// Edges as "top + height" and "left + width" (QRect::bottom() and right() are one less).
int below(const QRect &r)
{
    return r.y() + r.height();
}
int rightOf(const QRect &r)
{
    return r.x() + r.width();
}

TEST(AboutLayout, KeepsItsRelations)
{
    // A subtitle long enough to wrap, and a long version label.
    frmGenAbout box;
    box.setTexts(QStringLiteral("About"), QStringLiteral("Dashlon Viewer"),
                 QStringLiteral("A very long subtitle ").repeated(6), AboutInfo::comments(),
                 QStringLiteral("© 2026 Dashlon. All rights reserved."), QStringLiteral("1.0.0"),
                 QStringLiteral("Versionsnummer der Komponente"));
    const QRect logo = geometryOf(box, "imgLogo"), title = geometryOf(box, "lblTitle"),
                description = geometryOf(box, "lblDescription"),
                comments = geometryOf(box, "lblComments"), rights = geometryOf(box, "lblRights"),
                line0 = geometryOf(box, "linSeparator0"), line1 = geometryOf(box, "linSeparator1"),
                name = geometryOf(box, "imgName"), verText = geometryOf(box, "lblVerText"),
                version = geometryOf(box, "lblVersion"), ok = geometryOf(box, "cmdOK");
    const int contentRight = rightOf(comments);
    // Title right-aligned to the content edge beside the logo; subtitle directly under it.
    EXPECT_EQ(rightOf(title), contentRight);
    EXPECT_GE(title.x(), rightOf(logo));
    EXPECT_EQ(title.y(), logo.y());
    EXPECT_EQ(description.x(), title.x());
    EXPECT_EQ(description.y(), below(title));
    const auto *descriptionLabel = box.findChild<QLabel *>(QStringLiteral("lblDescription"));
    EXPECT_GE(description.height(), descriptionLabel->heightForWidth(description.width()));
    // Comments under the text block, rights directly under the comments, same width.
    EXPECT_EQ(comments.y(), std::max(below(logo), below(description)));
    EXPECT_EQ(rights.y(), below(comments));
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
    EXPECT_EQ(ok.y(), below(version) + 4);
    EXPECT_LE(rightOf(name), verText.x());
    EXPECT_GT(box.height(), std::max(below(name), below(ok)));
    EXPECT_GT(box.width(), contentRight);
}

TEST(AboutBox, ShowsTextsAndLocksTheOwnerUntilClosed)
{
    const std::function<void(QWidget *)> ways[] = {
        [](QWidget *d) {
            QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("cmdOK")), Qt::LeftButton);
        },
        [](QWidget *d) { QTest::keyClick(d, Qt::Key_Escape); }};
    for (const auto &close : ways) {
        QWidget window;
        auto *frame = new QWidget(&window);
        window.show();
        bool seen = false;
        onNextModal([&](QWidget *dialog) {
            seen = true;
            EXPECT_EQ(dialog->windowTitle(), QStringLiteral("About Dashlon Viewer"));
            QStringList texts;
            for (const char *name : {"lblTitle", "lblDescription", "lblComments", "lblRights",
                                     "lblVerText", "lblVersion"})
                texts << dialog->findChild<QLabel *>(QString::fromLatin1(name))->text();
            EXPECT_EQ(texts, (QStringList{"Dashlon Viewer", "Subtitle", "Comments", "Rights",
                                          "Version", "2.0.15"}));
            EXPECT_FALSE(frame->isEnabled());
            EXPECT_TRUE(dialog->isEnabled());
            EXPECT_EQ(dialog->parentWidget(), &window);
            EXPECT_TRUE(saveScreenshot(dialog, QStringLiteral("frmGenAbout")));
            close(dialog);
        });
        TestWidgetDialogHost host;
        host.showAbout(QStringLiteral("About Dashlon Viewer"), QStringLiteral("Dashlon Viewer"),
                       QStringLiteral("Subtitle"), QStringLiteral("Comments"),
                       QStringLiteral("Rights"), QStringLiteral("2.0.15"),
                       QStringLiteral("Version"), frame);
        EXPECT_TRUE(seen);
        EXPECT_TRUE(frame->isEnabled());
    }
}

} // namespace

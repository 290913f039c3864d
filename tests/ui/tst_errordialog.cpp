#include "common/dlverror.h"
#include "support/modaldriver.h"
#include "support/recordingdialoghost.h"
#include "testwidgetdialoghost.h"
#include "ui/captioncatalogue.h"
#include "ui/errorreport.h"
#include "ui/frmerror.h"
#include "webdata/qzwebtransport.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace {

// The control's surface in miniature: a window holding the main frame that dialogs disable.
struct Surface
{
    QWidget window;
    QWidget *frame = new QWidget(&window);
    Surface() { window.show(); }
};

QString textOf(QWidget *dialog, const char *name)
{
    if (auto *label = dialog->findChild<QLabel *>(QString::fromLatin1(name)))
        return label->text();
    auto *button = dialog->findChild<QPushButton *>(QString::fromLatin1(name));
    return button ? button->text() : QStringLiteral("<missing %1>").arg(QLatin1String(name));
}

void clickContinue(QWidget *dialog)
{
    auto *button = dialog->findChild<QPushButton *>(QStringLiteral("cmdCont"));
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
}

// Without a catalogue the dialog shows its own English, which must be the English table's; with
// one, the catalogue's texts (host overrides included). The report routine through the widget
// host shows the same dialog. However it is closed, the owner frame is enabled again.
TEST(ErrorDialog, ShowsFixedTextsAndTheErrorAndLocksTheOwnerUntilClosed)
{
    const QStringList keys{"frmError-Caption", "fraError-Label1", "fraError-Label2",
                           "fraError-Label3",  "fraError-Label4", "fraError-Label5",
                           "fraError-cmdCont"};
    const struct
    {
        const char *language; // nullptr: no caption lookup
        QHash<QString, QString> overrides;
        bool viaReport;
        std::function<void(QWidget *)> close;
    } rows[] = {{nullptr, {}, false, [](QWidget *d) { QTest::keyClick(d, Qt::Key_Escape); }},
                {"PO", {}, false, clickContinue},
                {"SP",
                 {{QStringLiteral("fraError-cmdCont"), QStringLiteral("Seguir")}},
                 true,
                 [](QWidget *d) { d->close(); }}};
    for (const auto &r : rows) {
        const QString name = QString::fromLatin1(r.language ? r.language : "EN");
        SCOPED_TRACE(name.toStdString());
        Surface surface;
        const auto captions = r.language ? catalogueFor(name, r.overrides) : nullptr;
        QStringList expected;
        for (const QString &key : keys) {
            expected << (captions ? captions->caption(key)
                                  : CaptionCatalogue::builtInText("EN", key).value_or("?"));
        }
        bool seen = false;
        onNextModal([&](QWidget *dialog) {
            seen = true;
            QStringList shown{dialog->windowTitle()};
            for (const char *label : {"Label1", "Label2", "Label3", "Label4", "Label5", "cmdCont"})
                shown << textOf(dialog, label);
            EXPECT_EQ(shown, expected);
            EXPECT_EQ(textOf(dialog, "lblErrNum"), QStringLiteral("-2147217900"));
            EXPECT_EQ(textOf(dialog, "lblErrStr"), QStringLiteral("Subscript out of range"));
            EXPECT_EQ(textOf(dialog, "lblErrLoc"), QStringLiteral("cDLVController.LoadData"));
            EXPECT_FALSE(surface.frame->isEnabled());
            // Not a child of the disabled frame, else it would be disabled with it.
            EXPECT_EQ(dialog->parentWidget(), &surface.window);
            EXPECT_TRUE(dialog->isEnabled());
            EXPECT_TRUE(saveScreenshot(dialog, QStringLiteral("frmError-") + name));
            r.close(dialog);
        });
        TestWidgetDialogHost host;
        ErrorReport report(&host);
        report.setCaptions(captions.get());
        report.setOwner(surface.frame);
        if (r.viaReport)
            report.reportError(-2147217900, QStringLiteral("Subscript out of range"),
                               QStringLiteral("cDLVController.LoadData"));
        else
            frmError::ShowError(-2147217900, QStringLiteral("Subscript out of range"),
                                QStringLiteral("cDLVController.LoadData"), captions.get(),
                                surface.frame);
        EXPECT_TRUE(seen);
        EXPECT_TRUE(surface.frame->isEnabled());
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }
}

// A second error over an open dialog must not wake the frame that the first still holds.
TEST(ErrorDialog, KeepsAFrameDisabledThatWasDisabledBefore)
{
    Surface surface;
    surface.frame->setEnabled(false);
    onNextModal(clickContinue);
    frmError::ShowError(13, QStringLiteral("Type mismatch"), QStringLiteral("DLViewer.ShowBUs"),
                        nullptr, surface.frame);
    EXPECT_FALSE(surface.frame->isEnabled());
}

TEST(ErrorReport, HandsEveryReportToTheDialogHostWithCaptionsAndOwner)
{
    RecordingDialogHost host;
    ErrorReport report(&host);
    {
        QWidget gone;
        report.setOwner(&gone);
    }
    report.reportError(6, QStringLiteral("Overflow"), QStringLiteral("BusinessUnit.CalcTotal"));
    Surface surface;
    report.setOwner(surface.frame);
    const auto captions = catalogueFor(QStringLiteral("PO"));
    report.setCaptions(captions.get());
    static_cast<ErrorReporter &>(report).report(DLVError::duplicateKey(QStringLiteral("BU1")),
                                                QStringLiteral("DLViewer.SetCollapsedNodes"));
    ASSERT_EQ(host.calls.size(), 2u);
    const auto &first = host.calls[0];
    EXPECT_EQ(first.kind, RecordingDialogHost::Kind::Error);
    EXPECT_EQ(first.number, 6);
    EXPECT_EQ(first.description, QStringLiteral("Overflow"));
    EXPECT_EQ(first.location, QStringLiteral("BusinessUnit.CalcTotal"));
    EXPECT_EQ(first.captions, nullptr); // before Initialize: English texts
    EXPECT_EQ(first.owner, nullptr);    // the owner destroyed meanwhile is not used
    const auto &second = host.calls[1];
    EXPECT_EQ(second.number, 457);
    EXPECT_EQ(second.captions, captions.get());
    EXPECT_EQ(second.owner, surface.frame);
}

} // namespace

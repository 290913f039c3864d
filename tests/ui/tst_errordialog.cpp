#include "common/dlverror.h"
#include "modaldriver.h"
#include "support/recordingdialoghost.h"
#include "testwidgetdialoghost.h"
#include "ui/captioncatalogue.h"
#include "ui/errorreport.h"
#include "ui/frmerror.h"
#include "webdata/qzwebtransport.h"

#include <QCoreApplication>
#include <QEvent>
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

    Surface()
    {
        frame->setObjectName(QStringLiteral("fraDLV"));
        window.resize(400, 300);
        window.show();
    }
};

std::unique_ptr<CaptionCatalogue> catalogueFor(const QString &language,
                                               const QHash<QString, QString> &overrides = {})
{
    auto transport = std::make_shared<QZWebTransport>(language);
    for (auto it = overrides.cbegin(); it != overrides.cend(); ++it)
        transport->setCaptionOverride(it.key(), it.value());
    auto catalogue = std::make_unique<CaptionCatalogue>();
    catalogue->attach(transport);
    return catalogue;
}

QString textOf(QWidget *dialog, const char *name)
{
    auto *label = dialog->findChild<QLabel *>(QString::fromLatin1(name));
    if (label)
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

struct TextsCase
{
    const char *name;
    const char *language; // nullptr: no caption lookup
    QHash<QString, QString> overrides;
    const char *title;
    const char *label1;
    const char *label2;
    const char *label3;
    const char *label4;
    const char *label5;
    const char *button;
};

class ErrorDialogTexts : public ::testing::TestWithParam<TextsCase>
{};

TEST_P(ErrorDialogTexts, ShowsFixedTextsAndTheErrorAndLocksTheOwner)
{
    const TextsCase &c = GetParam();
    Surface surface;
    const auto captions =
        c.language ? catalogueFor(QString::fromLatin1(c.language), c.overrides) : nullptr;

    bool seen = false;
    onNextModal([&](QWidget *dialog) {
        seen = true;
        EXPECT_EQ(dialog->objectName(), QStringLiteral("frmError"));
        EXPECT_EQ(dialog->windowTitle(), QString::fromUtf8(c.title));
        EXPECT_EQ(textOf(dialog, "Label1"), QString::fromUtf8(c.label1));
        EXPECT_EQ(textOf(dialog, "Label2"), QString::fromUtf8(c.label2));
        EXPECT_EQ(textOf(dialog, "Label3"), QString::fromUtf8(c.label3));
        EXPECT_EQ(textOf(dialog, "Label4"), QString::fromUtf8(c.label4));
        EXPECT_EQ(textOf(dialog, "Label5"), QString::fromUtf8(c.label5));
        EXPECT_EQ(textOf(dialog, "cmdCont"), QString::fromUtf8(c.button));
        EXPECT_EQ(textOf(dialog, "lblErrNum"), QStringLiteral("-2147217900"));
        EXPECT_EQ(textOf(dialog, "lblErrStr"),
                  QStringLiteral("Subscript out of range: BUGeneralInfo"));
        EXPECT_EQ(textOf(dialog, "lblErrLoc"), QStringLiteral("cDLVController.LoadData"));
        EXPECT_FALSE(surface.frame->isEnabled());
        // Not a child of the disabled frame, else it would be disabled with it.
        EXPECT_EQ(dialog->parentWidget(), &surface.window);
        EXPECT_TRUE(dialog->isEnabled());
        clickContinue(dialog);
    });
    frmError::ShowError(-2147217900, QStringLiteral("Subscript out of range: BUGeneralInfo"),
                        QStringLiteral("cDLVController.LoadData"), captions.get(), surface.frame);

    EXPECT_TRUE(seen);
    EXPECT_TRUE(surface.frame->isEnabled());
}

INSTANTIATE_TEST_SUITE_P(
    Languages, ErrorDialogTexts,
    ::testing::Values(
        TextsCase{"NoCaptionLookup",
                  nullptr,
                  {},
                  "An Error Has Occurred",
                  "Dashlon Viewer has experienced the following problem:",
                  "Error:",
                  "Description:",
                  "Function:",
                  "If you continue to experience problems with Dashlon Viewer, please reload the "
                  "application. If problems persist, contact your system administrator.",
                  "Continue"},
        TextsCase{"Portuguese",
                  "PO",
                  {},
                  "Ocorreu um erro",
                  "O Dashlon Viewer encontrou o seguinte problema:",
                  "Erro:",
                  "Descrição:",
                  "Função:",
                  "Se os problemas com o Dashlon Viewer continuarem, recarregue o aplicativo. Se "
                  "persistirem, entre em contato com o administrador do sistema.",
                  "Continuar"},
        TextsCase{"SpanishWithHostOverride",
                  "SP",
                  {{QStringLiteral("fraError-cmdCont"), QStringLiteral("Seguir")}},
                  "Se ha producido un error",
                  "Dashlon Viewer ha experimentado el siguiente problema:",
                  "Error:",
                  "Descripción:",
                  "Función:",
                  "Si sigue teniendo problemas con Dashlon Viewer, vuelva a cargar la aplicación. "
                  "Si los problemas persisten, póngase en contacto con el administrador del "
                  "sistema.",
                  "Seguir"}),
    [](const ::testing::TestParamInfo<TextsCase> &info) { return info.param.name; });

struct CloseCase
{
    const char *name;
    std::function<void(QWidget *dialog)> close;
};

class ErrorDialogClosing : public ::testing::TestWithParam<CloseCase>
{};

TEST_P(ErrorDialogClosing, ReenablesTheOwnerHoweverClosed)
{
    Surface surface;
    bool closedFromDialog = false;
    onNextModal([&](QWidget *dialog) {
        EXPECT_FALSE(surface.frame->isEnabled());
        GetParam().close(dialog);
        closedFromDialog = true;
    });
    frmError::ShowError(5, QStringLiteral("Invalid procedure call or argument"),
                        QStringLiteral("DLViewer.ShowBUs"), nullptr, surface.frame);
    EXPECT_TRUE(closedFromDialog);
    EXPECT_TRUE(surface.frame->isEnabled());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, ErrorDialogClosing,
    ::testing::Values(CloseCase{"ContinueButton", clickContinue},
                      CloseCase{"EnterKey", [](QWidget *d) { QTest::keyClick(d, Qt::Key_Return); }},
                      CloseCase{"EscapeKey",
                                [](QWidget *d) { QTest::keyClick(d, Qt::Key_Escape); }},
                      CloseCase{"WindowCloseButton", [](QWidget *d) { d->close(); }}),
    [](const ::testing::TestParamInfo<CloseCase> &info) { return info.param.name; });

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

TEST(ErrorDialog, ShowsWithoutOwner)
{
    bool seen = false;
    onNextModal([&](QWidget *dialog) {
        seen = true;
        EXPECT_EQ(dialog->parentWidget(), nullptr);
        EXPECT_TRUE(dialog->isModal());
        clickContinue(dialog);
    });
    frmError::ShowError(457, QStringLiteral("This key is already associated with an element"),
                        QStringLiteral("DLViewer.SetCollapsedNodes"), nullptr, nullptr);
    EXPECT_TRUE(seen);
}

TEST(ErrorDialog, Screenshots)
{
    for (const char *language : {"EN", "PO"}) {
        Surface surface;
        const auto captions = catalogueFor(QString::fromLatin1(language));
        onNextModal([&](QWidget *dialog) {
            EXPECT_TRUE(
                saveScreenshot(dialog, QStringLiteral("frmError-%1").arg(QLatin1String(language))));
            clickContinue(dialog);
        });
        frmError::ShowError(9,
                            QStringLiteral("Subscript out of range: table \"BUDetailsInfo\" has "
                                           "no column \"WOJeopardy\""),
                            QStringLiteral("cDLVController.LoadData"), captions.get(),
                            surface.frame);
    }
}

// ---- the shared report routine

TEST(ErrorReport, HandsEveryReportToTheDialogHostWithCaptionsAndOwner)
{
    Surface surface;
    RecordingDialogHost host;
    ErrorReport report(&host);
    report.setOwner(surface.frame);

    report.reportError(6, QStringLiteral("Overflow"), QStringLiteral("BusinessUnit.CalcTotal"));
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
    EXPECT_EQ(first.owner, surface.frame);

    const auto &second = host.calls[1];
    EXPECT_EQ(second.number, 457);
    EXPECT_EQ(second.location, QStringLiteral("DLViewer.SetCollapsedNodes"));
    EXPECT_EQ(second.captions, captions.get());
}

// Posted events (repaints, deferred signals) get their turn before the failing procedure returns.
TEST(ErrorReport, LetsPendingEventsRunOnce)
{
    struct Counter final : QObject
    {
        int seen = 0;
        bool event(QEvent *e) override
        {
            if (e->type() == QEvent::User)
                ++seen;
            return QObject::event(e);
        }
    } counter;

    RecordingDialogHost host;
    host.whileShown = [&](const RecordingDialogHost::Call &) {
        QCoreApplication::postEvent(&counter, new QEvent(QEvent::User));
    };
    ErrorReport report(&host);
    report.reportError(5, QStringLiteral("Invalid procedure call"), QStringLiteral("X.Y"));
    EXPECT_EQ(counter.seen, 1);
}

TEST(ErrorReport, OwnerDestroyedMeanwhileIsNotUsed)
{
    RecordingDialogHost host;
    ErrorReport report(&host);
    {
        QWidget frame;
        report.setOwner(&frame);
    }
    report.reportError(5, QStringLiteral("Invalid procedure call"), QStringLiteral("X.Y"));
    ASSERT_EQ(host.calls.size(), 1u);
    EXPECT_EQ(host.calls[0].owner, nullptr);
}

TEST(ErrorReport, ThroughTheWidgetHostShowsTheErrorDialog)
{
    Surface surface;
    TestWidgetDialogHost host;
    ErrorReport report(&host);
    const auto captions = catalogueFor(QStringLiteral("SP"));
    report.setCaptions(captions.get());
    report.setOwner(surface.frame);

    QString shownLocation;
    QString shownTitle;
    onNextModal([&](QWidget *dialog) {
        shownLocation = textOf(dialog, "lblErrLoc");
        shownTitle = dialog->windowTitle();
        EXPECT_FALSE(surface.frame->isEnabled());
        clickContinue(dialog);
    });
    report.reportError(13, QStringLiteral("Type mismatch"),
                       QStringLiteral("DLViewer.ReceiveMessage"));
    EXPECT_EQ(shownLocation, QStringLiteral("DLViewer.ReceiveMessage"));
    EXPECT_EQ(shownTitle, QStringLiteral("Se ha producido un error"));
    EXPECT_TRUE(surface.frame->isEnabled());
}

} // namespace

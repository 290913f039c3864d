#include "modaldriver.h"
#include "testwidgetdialoghost.h"
#include "ui/captioncatalogue.h"
#include "webdata/qzwebtransport.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Kind = DialogHost::MessageKind;
using Result = DialogHost::MessageResult;

struct MessageCase
{
    const char *name;
    Kind kind;
    const char *language; // nullptr: no caption lookup
    std::function<void(QMessageBox *)> act;
    Result expected;
    QMessageBox::Icon icon;
    QStringList buttonTexts; // empty: not checked
};

void pressEnter(QMessageBox *box)
{
    QTest::keyClick(box, Qt::Key_Return);
}
void pressEscape(QMessageBox *box)
{
    QTest::keyClick(box, Qt::Key_Escape);
}
void clickYes(QMessageBox *box)
{
    QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
}

class MessageBoxes : public ::testing::TestWithParam<MessageCase>
{};

TEST_P(MessageBoxes, AnswerAndButtons)
{
    const MessageCase &c = GetParam();
    QWidget window;
    auto *frame = new QWidget(&window);
    window.show();

    std::unique_ptr<CaptionCatalogue> captions;
    if (c.language) {
        captions = std::make_unique<CaptionCatalogue>();
        captions->attach(std::make_shared<QZWebTransport>(QString::fromLatin1(c.language)));
    }

    bool seen = false;
    onNextModal([&](QWidget *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        ASSERT_NE(box, nullptr);
        seen = true;
        EXPECT_EQ(box->windowTitle(), QStringLiteral("Profile : Weekly"));
        EXPECT_EQ(box->text(), QStringLiteral("Overwrite?"));
        EXPECT_EQ(box->icon(), c.icon);
        EXPECT_EQ(box->parentWidget(), &window);
        if (!c.buttonTexts.isEmpty()) {
            QStringList texts;
            for (QAbstractButton *button : box->buttons())
                texts << button->text();
            texts.sort();
            QStringList expected = c.buttonTexts;
            expected.sort();
            EXPECT_EQ(texts, expected);
        }
        c.act(box);
    });
    TestWidgetDialogHost host;
    const Result result =
        host.messageBox(c.kind, QStringLiteral("Overwrite?"), QStringLiteral("Profile : Weekly"),
                        captions.get(), frame);
    EXPECT_TRUE(seen);
    EXPECT_EQ(result, c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MessageBoxes,
    ::testing::Values(MessageCase{"QuestionDefaultsToNo",
                                  Kind::Question,
                                  nullptr,
                                  pressEnter,
                                  Result::No,
                                  QMessageBox::Question,
                                  {}},
                      MessageCase{"QuestionYes",
                                  Kind::Question,
                                  nullptr,
                                  clickYes,
                                  Result::Yes,
                                  QMessageBox::Question,
                                  {}},
                      MessageCase{"QuestionEscapeIsNo",
                                  Kind::Question,
                                  nullptr,
                                  pressEscape,
                                  Result::No,
                                  QMessageBox::Question,
                                  {}},
                      MessageCase{"QuestionButtonsInPortuguese",
                                  Kind::Question,
                                  "PO",
                                  clickYes,
                                  Result::Yes,
                                  QMessageBox::Question,
                                  {QStringLiteral("Sim"), QStringLiteral("Não")}},
                      MessageCase{"InformationOk",
                                  Kind::Information,
                                  nullptr,
                                  pressEnter,
                                  Result::Ok,
                                  QMessageBox::Information,
                                  {}},
                      MessageCase{"InformationOkInSpanish",
                                  Kind::Information,
                                  "SP",
                                  pressEnter,
                                  Result::Ok,
                                  QMessageBox::Information,
                                  {QStringLiteral("Aceptar")}},
                      MessageCase{"WarningEscapeIsOk",
                                  Kind::Warning,
                                  "EN",
                                  pressEscape,
                                  Result::Ok,
                                  QMessageBox::Warning,
                                  {QStringLiteral("OK")}}),
    [](const ::testing::TestParamInfo<MessageCase> &info) { return info.param.name; });

} // namespace

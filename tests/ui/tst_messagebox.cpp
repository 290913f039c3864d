#include "support/modaldriver.h"
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

TEST(MessageBoxes, AnswerIconAndButtonTexts)
{
    const auto press = [](Qt::Key key) {
        return [key](QMessageBox *box) { QTest::keyClick(box, key); };
    };
    const auto clickYes = [](QMessageBox *box) {
        QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
    };
    const struct
    {
        Kind kind;
        const char *language; // nullptr: no caption lookup
        std::function<void(QMessageBox *)> act;
        Result expected;
        QMessageBox::Icon icon;
        QStringList buttonTexts; // sorted; empty: not checked
    } rows[] = {
        {Kind::Question, nullptr, press(Qt::Key_Return), Result::No, QMessageBox::Question, {}},
        {Kind::Question, nullptr, press(Qt::Key_Escape), Result::No, QMessageBox::Question, {}},
        {Kind::Question, "PO", clickYes, Result::Yes, QMessageBox::Question, {"Não", "Sim"}},
        {Kind::Information,
         "SP",
         press(Qt::Key_Return),
         Result::Ok,
         QMessageBox::Information,
         {"Aceptar"}},
        {Kind::Warning, "EN", press(Qt::Key_Escape), Result::Ok, QMessageBox::Warning, {"OK"}},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(testing::Message() << int(r.kind) << " " << (r.language ? r.language : "-"));
        QWidget window;
        auto *frame = new QWidget(&window);
        window.show();
        const auto captions = r.language ? catalogueFor(QString::fromLatin1(r.language)) : nullptr;
        bool seen = false;
        onNextModal([&](QWidget *dialog) {
            auto *box = qobject_cast<QMessageBox *>(dialog);
            ASSERT_NE(box, nullptr);
            seen = true;
            EXPECT_EQ(box->windowTitle(), QStringLiteral("Profile : Weekly"));
            EXPECT_EQ(box->text(), QStringLiteral("Overwrite?"));
            EXPECT_EQ(box->icon(), r.icon);
            EXPECT_EQ(box->parentWidget(), &window);
            QStringList texts;
            for (QAbstractButton *button : box->buttons())
                texts << button->text();
            texts.sort();
            if (!r.buttonTexts.isEmpty()) {
                EXPECT_EQ(texts, r.buttonTexts);
            }
            r.act(box);
        });
        TestWidgetDialogHost host;
        EXPECT_EQ(host.messageBox(r.kind, QStringLiteral("Overwrite?"),
                                  QStringLiteral("Profile : Weekly"), captions.get(), frame),
                  r.expected);
        EXPECT_TRUE(seen);
    }
}

} // namespace

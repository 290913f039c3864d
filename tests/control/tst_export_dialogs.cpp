// The real save-file and print dialogs of the widget dialog host, driven as a user would.

#include "support/modaldriver.h"
#include "ui/testwidgetdialoghost.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFrame>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QString kFilter = QStringLiteral("Comma-separated Files (*.csv)");

struct Window
{
    Window()
    {
        owner = new QFrame(&top);
        top.resize(400, 300);
        top.show();
    }
    QWidget top;
    QFrame *owner = nullptr; ///< owned by top
};

void answerBox(QWidget *widget, QMessageBox::StandardButton which, int &asked)
{
    auto *box = qobject_cast<QMessageBox *>(widget);
    ASSERT_NE(box, nullptr);
    ++asked;
    box->button(which)->click();
}

} // namespace

TEST(SaveFileDialog, StartsInTheFolderAndReplacesAnExistingFileOnlyAfterConfirmation)
{
    QTemporaryDir dir;
    const QString existing = QDir(dir.path()).filePath("grid.csv");
    {
        QFile f(existing);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    Window w;
    TestWidgetDialogHost host;
    // No: the dialog stays open and the user then cancels it.
    int asked = 0;
    onNextModal([&](QWidget *widget) {
        auto *dialog = qobject_cast<QFileDialog *>(widget);
        ASSERT_NE(dialog, nullptr);
        onNextModal([&](QWidget *box) {
            answerBox(box, QMessageBox::No, asked);
            onNextModal([](QWidget *again) { static_cast<QFileDialog *>(again)->reject(); });
        });
        dialog->selectFile(existing);
        static_cast<QDialog *>(dialog)->accept(); // as the Save button does
    });
    EXPECT_EQ(host.getSaveFileName("Save Grid", dir.path(), kFilter, "csv", w.owner), QString());
    EXPECT_EQ(asked, 1);

    // Yes: the file is the answer. A new name gets the suffix.
    for (const QString &name : {existing, QStringLiteral("report")}) {
        bool ownerDisabled = false;
        onNextModal([&](QWidget *widget) {
            auto *dialog = qobject_cast<QFileDialog *>(widget);
            ASSERT_NE(dialog, nullptr);
            ownerDisabled = !w.owner->isEnabled();
            EXPECT_EQ(QDir(dialog->directory().absolutePath()), QDir(dir.path()));
            EXPECT_EQ(dialog->nameFilters(), QStringList{kFilter});
            if (name == existing)
                onNextModal([&](QWidget *box) { answerBox(box, QMessageBox::Yes, asked); });
            dialog->selectFile(name);
            static_cast<QDialog *>(dialog)->accept();
        });
        EXPECT_EQ(QFileInfo(host.getSaveFileName("Save Grid", dir.path(), kFilter, "csv", w.owner))
                      .absoluteFilePath(),
                  QDir(dir.path()).filePath(name == existing ? "grid.csv" : "report.csv"));
        EXPECT_TRUE(ownerDisabled);
        EXPECT_TRUE(w.owner->isEnabled());
    }
    EXPECT_EQ(asked, 2);
}

TEST(PrintDialog, ShowsThePresetPrinterAndReportsCancel)
{
    Window w;
    TestWidgetDialogHost host;
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    bool sawDialog = false;
    bool ownerDisabled = false;
    onNextModal([&](QWidget *widget) {
        auto *dialog = qobject_cast<QPrintDialog *>(widget);
        ASSERT_NE(dialog, nullptr);
        sawDialog = dialog->printer() == &printer;
        ownerDisabled = !w.owner->isEnabled();
        dialog->reject();
    });
    EXPECT_FALSE(host.selectPrinter(printer, w.owner));
    EXPECT_TRUE(sawDialog);
    EXPECT_TRUE(ownerDisabled);
    EXPECT_TRUE(w.owner->isEnabled());
    EXPECT_EQ(printer.pageLayout().orientation(), QPageLayout::Landscape);
}

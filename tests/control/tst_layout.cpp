// The layout at whatever resolution the screen has: the test runs once at the machine's DPI and
// once more at a logical 144 DPI without scaling (a ctest entry sets QT_FONT_DPI), where fonts
// and twips are half as large again in pixels while the control keeps its size.
#include "controlfixture.h"

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

TEST_F(ControlFixture, LayoutPanelAndGridsFitTheirFramesAtThisResolution)
{
    startChosen();
    QCoreApplication::processEvents();
    const double dpi = viewer->logicalDpiX();
    RecordProperty("dpi", int(dpi));
    EXPECT_DOUBLE_EQ(d().twipsPerPixelX(), 1440.0 / dpi);

    // Every panel label, option and button lies inside the summary frame, none over another, and
    // a text that does not fit is shortened with its whole text in the tool tip.
    QFrame *frame = d().options().frame(0);
    std::vector<QWidget *> parts;
    for (QWidget *w : frame->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (w->isVisibleTo(frame) &&
            (qobject_cast<QLabel *>(w) || qobject_cast<QRadioButton *>(w) ||
             qobject_cast<QPushButton *>(w)))
            parts.push_back(w);
    }
    ASSERT_GE(parts.size(), 20u);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const QWidget *a = parts[i];
        EXPECT_TRUE(frame->rect().contains(a->geometry())) << a->objectName().toStdString();
        for (std::size_t j = i + 1; j < parts.size(); ++j) {
            // Marker labels of the live options sit on their figure by design.
            if (a->parent() != parts[j]->parent())
                continue;
            EXPECT_FALSE(a->geometry().intersects(parts[j]->geometry()))
                << a->objectName().toStdString() << " over "
                << parts[j]->objectName().toStdString();
        }
        if (const auto *label = qobject_cast<const QLabel *>(a)) {
            const int needed = label->fontMetrics().horizontalAdvance(label->text());
            if (needed > label->contentsRect().width()) {
                EXPECT_FALSE(label->toolTip().isEmpty()) << label->objectName().toStdString();
            }
        }
    }

    // The grid fills the frame's width and its columns fit it without a horizontal scroll.
    const OutlineGridView *grid = d().views().view(0);
    EXPECT_TRUE(frame->rect().contains(grid->geometry()));
    EXPECT_GE(grid->width(), frame->width() * 9 / 10);
    int columns = 0;
    for (int c = 0; c < grid->model()->columnCount(); ++c)
        columns += grid->columnWidth(c);
    EXPECT_LE(columns, grid->viewport()->width() + 2);
}

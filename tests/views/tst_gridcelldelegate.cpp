#include "views/gridcelldelegate.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStandardItemModel>
#include <QTreeView>
#include <gtest/gtest.h>

namespace {

struct CellCase
{
    const char *name = "";
    QString text = {};
    Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter;
    bool bold = false;
    QColor back = {};
    QColor fore = {};
    QStyle::State extra = {};
    QSize size = QSize(90, 20);
    bool enabled = true;
    bool active = true;
    bool byStyle = false; ///< left to the style altogether
};

/// The cell painted into a fresh picture by the given delegate, with the options a view gives.
QImage painted(const QStyledItemDelegate &delegate, QStandardItemModel &model, QWidget &view,
               const CellCase &c)
{
    QStyleOptionViewItem option;
    option.initFrom(&view);
    option.widget = &view;
    option.rect = QRect(QPoint(3, 2), c.size);
    option.state |= c.extra;
    if (!c.enabled)
        option.state &= ~QStyle::State_Enabled;
    if (c.active)
        option.state |= QStyle::State_Active;
    else
        option.state &= ~QStyle::State_Active;
    option.showDecorationSelected = true;
    option.textElideMode = Qt::ElideRight; // as the views paint
    option.features |= QStyleOptionViewItem::HasDisplay;
    QImage image(c.size + QSize(6, 4), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    delegate.paint(&painter, option, model.index(0, 0));
    return image;
}

} // namespace

// The fast painting gives the style's very pixels, whatever the cell holds, and leaves to the
// style what it does not paint itself (elided texts, the focused cell).
TEST(GridCellDelegate, PaintsTheStylesPixels)
{
    using A = Qt::Alignment;
    const A right = Qt::AlignRight | Qt::AlignVCenter;
    const CellCase cases[] = {
        {.name = "plain left", .text = QStringLiteral("Field Team A")},
        {.name = "number right", .text = QStringLiteral("1234"), .align = right},
        {.name = "centred", .text = QStringLiteral("Open"), .align = Qt::AlignCenter},
        {.name = "top", .text = QStringLiteral("x"), .align = A(Qt::AlignLeft | Qt::AlignTop)},
        {.name = "bottom",
         .text = QStringLiteral("y"),
         .align = A(Qt::AlignRight | Qt::AlignBottom)},
        {.name = "bold on colour",
         .text = QStringLiteral("Total"),
         .bold = true,
         .back = QColor(224, 224, 224)},
        {.name = "cue colours",
         .text = QStringLiteral("\u25B2 17"),
         .align = right,
         .back = QColor(255, 230, 230),
         .fore = QColor(160, 0, 0)},
        {.name = "selected",
         .text = QStringLiteral("42"),
         .align = right,
         .extra = QStyle::State_Selected},
        {.name = "selected, inactive window",
         .text = QStringLiteral("42"),
         .align = right,
         .extra = QStyle::State_Selected,
         .active = false},
        {.name = "focused",
         .text = QStringLiteral("42"),
         .align = right,
         .extra = QStyle::State_HasFocus | QStyle::State_Selected,
         .byStyle = true},
        {.name = "too wide", .text = QStringLiteral("A description far wider than its cell")},
        {.name = "lower than its font", .text = QStringLiteral("Tall"), .size = QSize(60, 6)},
        {.name = "empty", .text = QString(), .back = QColor(200, 220, 255), .byStyle = true},
        {.name = "disabled", .text = QStringLiteral("12"), .align = right, .enabled = false},
    };
    QTreeView view;
    view.resize(200, 100);
    QFont bold = view.font();
    bold.setBold(true);
    for (const CellCase &c : cases) {
        SCOPED_TRACE(c.name);
        QStandardItemModel model(1, 1);
        const QModelIndex index = model.index(0, 0);
        model.setData(index, c.text, Qt::DisplayRole);
        model.setData(index, QVariant(c.align), Qt::TextAlignmentRole);
        if (c.bold)
            model.setData(index, bold, Qt::FontRole);
        if (c.back.isValid())
            model.setData(index, c.back, Qt::BackgroundRole);
        if (c.fore.isValid())
            model.setData(index, c.fore, Qt::ForegroundRole);
        QStyledItemDelegate style;
        GridCellDelegate fast;
        // Twice: the second paint comes from the laid-out text the first one kept.
        for (int round = 0; round < 2; ++round)
            EXPECT_EQ(painted(fast, model, view, c), painted(style, model, view, c));
        EXPECT_EQ(fast.cachedTexts(), c.byStyle ? 0 : 1); // it painted the text itself
    }
}

// A long-lived view meets every text its cells ever held: the kept layouts stay bounded.
TEST(GridCellDelegate, KeepsABoundedNumberOfTexts)
{
    QTreeView view;
    QStandardItemModel model(1, 1);
    GridCellDelegate fast;
    const CellCase c{.name = "numbers"};
    for (int i = 0; i < GridCellDelegate::MaxCachedTexts + 100; ++i) {
        model.setData(model.index(0, 0), QString::number(i), Qt::DisplayRole);
        (void)painted(fast, model, view, c);
        ASSERT_LE(fast.cachedTexts(), GridCellDelegate::MaxCachedTexts);
    }
    EXPECT_GT(fast.cachedTexts(), 0);
}

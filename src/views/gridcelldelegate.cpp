#include "views/gridcelldelegate.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace {

// A view's cells use its font and its bold form; a few more cover a font change on the fly.
constexpr std::size_t MaxFonts = 4;

bool paintsPlainly(const QStyleOptionViewItem &opt)
{
    constexpr auto special = QStyleOptionViewItem::HasCheckIndicator |
                             QStyleOptionViewItem::HasDecoration | QStyleOptionViewItem::WrapText;
    return !(opt.state & QStyle::State_HasFocus) && !(opt.features & special) &&
           opt.textElideMode == Qt::ElideRight && !opt.text.contains(u'\n') &&
           !opt.text.contains(QChar::LineSeparator);
}

} // namespace

GridCellDelegate::GridCellDelegate(QObject *parent) : QStyledItemDelegate(parent) {}

GridCellDelegate::~GridCellDelegate() = default;

int GridCellDelegate::cachedTexts() const
{
    qsizetype n = 0;
    for (const FontTexts &f : m_fonts)
        n += f.texts.size();
    return int(n);
}

const QStaticText &GridCellDelegate::laidOut(const QFont &font, const QString &text) const
{
    auto slot = std::find_if(m_fonts.begin(), m_fonts.end(),
                             [&font](const FontTexts &f) { return f.font == font; });
    if (slot == m_fonts.end()) {
        if (m_fonts.size() >= MaxFonts)
            m_fonts.clear();
        m_fonts.push_back(FontTexts{font, {}});
        slot = m_fonts.end() - 1;
    }
    auto found = slot->texts.constFind(text);
    if (found != slot->texts.constEnd())
        return *found;
    if (slot->texts.size() >= MaxCachedTexts)
        slot->texts.clear();
    QStaticText laid(text);
    laid.setTextFormat(Qt::PlainText);
    laid.setPerformanceHint(QStaticText::AggressiveCaching);
    laid.prepare(QTransform(), font);
    return *slot->texts.insert(text, laid);
}

void GridCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                             const QModelIndex &index) const
{
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    if (!paintsPlainly(opt)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QWidget *widget = opt.widget;
    const QStyle *style = widget ? widget->style() : QApplication::style();
    // The same text box and colours as the style's item painting.
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
    const QRect box = opt.rect.adjusted(margin, 0, -margin, 0);
    const QStaticText *text = opt.text.isEmpty() ? nullptr : &laidOut(opt.font, opt.text);
    const qreal width = text ? text->size().width() : 0;
    if (width > box.width()) {
        // Too wide: the style elides it (rare, and its way exactly).
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &opt, painter, widget);
    if (!text)
        return;

    const QPalette::ColorGroup group = !(opt.state & QStyle::State_Enabled) ? QPalette::Disabled
                                       : (opt.state & QStyle::State_Active) ? QPalette::Normal
                                                                            : QPalette::Inactive;
    const QPalette::ColorRole role =
        (opt.state & QStyle::State_Selected) ? QPalette::HighlightedText : QPalette::Text;
    const Qt::Alignment align = QStyle::visualAlignment(opt.direction, opt.displayAlignment);
    const int height = opt.fontMetrics.height();
    qreal x = box.left();
    if (align & Qt::AlignRight)
        x = box.left() + box.width() - width;
    else if (align & Qt::AlignHCenter)
        x = box.left() + (box.width() - width) / 2;
    int y = box.top();
    if (align & Qt::AlignBottom)
        y = box.top() + box.height() - height;
    else if (!(align & Qt::AlignTop))
        y = box.top() + (box.height() - height) / 2;

    painter->save();
    if (height > box.height())
        painter->setClipRect(opt.rect, Qt::IntersectClip);
    painter->setFont(opt.font);
    painter->setPen(opt.palette.color(group, role));
    painter->drawStaticText(QPointF(x, y), *text);
    painter->restore();
}

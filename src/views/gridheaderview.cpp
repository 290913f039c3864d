#include "views/gridheaderview.h"

#include "views/outlinegridmodel.h"

#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPalette>
#include <algorithm>

namespace {

const QColor LineColor(160, 160, 160);

/// Draws a caption, stepping the font down (to 70 %) when a word is wider than its column, so
/// that narrow status columns still show whole words. A one-line caption that is still too wide
/// (large fonts on a narrow column) ends in an ellipsis rather than losing both its ends.
void drawFittedText(QPainter *painter, const QRect &rect, int flags, const QString &text,
                    QFont font)
{
    const qreal base = font.pointSizeF() > 0 ? font.pointSizeF() : 9.0;
    bool fits = false;
    for (qreal size = base; size >= base * 0.7 && !fits; size -= 0.5) {
        font.setPointSizeF(size);
        const QRect need = QFontMetrics(font).boundingRect(rect, flags, text);
        fits = need.width() <= rect.width() && need.height() <= rect.height();
    }
    painter->setFont(font);
    if (!fits && !text.contains(u'\n') && !text.contains(u' '))
        painter->drawText(rect, flags,
                          QFontMetrics(font).elidedText(text, Qt::ElideRight, rect.width()));
    else
        painter->drawText(rect, flags, text);
}

} // namespace

GridHeaderView::GridHeaderView(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(false);
    setHighlightSections(false);
    setSortIndicatorShown(false);
    setStretchLastSection(false);
    setSectionResizeMode(QHeaderView::Interactive);
    setMinimumSectionSize(4);
    setDefaultAlignment(Qt::AlignCenter);
}

GridHeaderView::~GridHeaderView() = default;

double GridHeaderView::twipsPerPixelY() const
{
    return 1440.0 / std::max(1, logicalDpiY());
}

QString GridHeaderView::bandText(int logicalIndex) const
{
    return model() ? model()
                         ->headerData(logicalIndex, orientation(), OutlineGridModel::BandTextRole)
                         .toString()
                   : QString();
}

int GridHeaderView::bandHeight() const
{
    if (!model() || count() == 0)
        return 0;
    const int twips =
        model()->headerData(0, orientation(), OutlineGridModel::BandHeightRole).toInt();
    return twips > 0 ? qRound(twips / twipsPerPixelY()) : 0;
}

int GridHeaderView::captionHeight() const
{
    if (!model() || count() == 0)
        return 0;
    const int twips =
        model()->headerData(0, orientation(), OutlineGridModel::CaptionHeightRole).toInt();
    if (twips <= 0)
        return 0;
    int h = qRound(twips / twipsPerPixelY());
    // Captions wrap; make room for the tallest one in its column width.
    QFont bold = font();
    bold.setBold(true);
    for (int i = 0; i < count(); ++i) {
        if (isSectionHidden(i) || sectionSize(i) <= 4)
            continue;
        const QString text = model()->headerData(i, orientation(), Qt::DisplayRole).toString();
        if (text.isEmpty())
            continue;
        const bool isBold =
            model()->headerData(i, orientation(), OutlineGridModel::CaptionBoldRole).toBool();
        const QFontMetrics fm(isBold ? bold : font());
        const QRect need = fm.boundingRect(QRect(0, 0, sectionSize(i) - 6, 10000),
                                           Qt::AlignCenter | Qt::TextWordWrap, text);
        h = std::max(h, need.height() + 6);
    }
    return h;
}

int GridHeaderView::headerRowAt(int y) const
{
    const int band = bandHeight();
    if (y < 0 || y >= band + captionHeight())
        return -1;
    if (band > 0)
        return y < band ? 0 : 1;
    return 0;
}

std::pair<int, int> GridHeaderView::bandRange(int section) const
{
    const QString text = bandText(section);
    if (text.isEmpty())
        return {section, section};
    // Walk visual neighbours, skipping hidden columns, while the band text stays the same.
    int first = section;
    int last = section;
    for (int v = visualIndex(section) - 1; v >= 0; --v) {
        const int l = logicalIndex(v);
        if (isSectionHidden(l))
            continue;
        if (bandText(l) != text)
            break;
        first = l;
    }
    for (int v = visualIndex(section) + 1; v < count(); ++v) {
        const int l = logicalIndex(v);
        if (isSectionHidden(l))
            continue;
        if (bandText(l) != text)
            break;
        last = l;
    }
    return {first, last};
}

QSize GridHeaderView::sizeHint() const
{
    QSize s = QHeaderView::sizeHint();
    const int h = bandHeight() + captionHeight();
    if (h > 0)
        s.setHeight(h);
    return s;
}

void GridHeaderView::paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const
{
    if (!rect.isValid() || !model())
        return;
    QAbstractItemModel *m = model();
    const QColor base = palette().color(QPalette::Button);
    const int band = bandHeight();

    painter->save();
    painter->setClipRect(rect);
    if (band > 0) {
        const QRect part(rect.left(), rect.top(), rect.width(), band);
        const QVariant bg =
            m->headerData(logicalIndex, orientation(), OutlineGridModel::BandBackgroundRole);
        painter->fillRect(part, bg.isValid() ? bg.value<QColor>() : base);

        const auto [first, last] = bandRange(logicalIndex);
        const int left = sectionViewportPosition(first);
        const int right = sectionViewportPosition(last) + sectionSize(last);
        const QRect whole(left, rect.top(), right - left, band);
        const QString text = bandText(logicalIndex);
        if (!text.isEmpty()) {
            QFont f = font();
            f.setBold(m->headerData(logicalIndex, orientation(), OutlineGridModel::BandBoldRole)
                          .toBool());
            painter->setPen(palette().color(QPalette::ButtonText));
            drawFittedText(painter, whole.adjusted(2, 0, -2, 0),
                           Qt::AlignCenter | Qt::TextSingleLine, text, f);
        }
        painter->setPen(LineColor);
        painter->drawLine(part.left(), part.bottom(), part.right(), part.bottom());
        if (logicalIndex == last)
            painter->drawLine(part.right(), part.top(), part.right(), part.bottom());
    }

    const QRect caption(rect.left(), rect.top() + band, rect.width(), rect.height() - band);
    const QVariant bg = m->headerData(logicalIndex, orientation(), Qt::BackgroundRole);
    painter->fillRect(caption, bg.isValid() ? bg.value<QColor>() : base);
    const QString text = m->headerData(logicalIndex, orientation(), Qt::DisplayRole).toString();
    if (!text.isEmpty()) {
        QFont f = font();
        f.setBold(
            m->headerData(logicalIndex, orientation(), OutlineGridModel::CaptionBoldRole).toBool());
        painter->setPen(palette().color(QPalette::ButtonText));
        drawFittedText(painter, caption.adjusted(2, 1, -2, -1), Qt::AlignCenter | Qt::TextWordWrap,
                       text, f);
    }
    painter->setPen(LineColor);
    painter->drawLine(caption.left(), caption.bottom(), caption.right(), caption.bottom());
    painter->drawLine(caption.right(), caption.top(), caption.right(), caption.bottom());
    painter->restore();
}

#include "views/outlinegridprinter.h"

#include "views/outlinegrid.h"

#include <QFont>
#include <QFontMetricsF>
#include <QMarginsF>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>
#include <QRectF>
#include <algorithm>

namespace {

constexpr int IndentTwips = 240;
const QColor PrintLineColor(150, 150, 150);

/// Steps the font down (to 70 %) until the text fits its cell, so narrow captions keep whole
/// words; returns the font to draw with.
QFont fittedFont(QFont font, const QRectF &rect, int flags, const QString &text,
                 QPaintDevice *device)
{
    const int base = font.pixelSize();
    for (int size = base; size >= std::max(4, base * 7 / 10); --size) {
        font.setPixelSize(size);
        const QRectF need = QFontMetricsF(font, device).boundingRect(rect, flags, text);
        if (need.width() <= rect.width() && need.height() <= rect.height())
            break;
    }
    return font;
}

} // namespace

OutlineGridPrinter::OutlineGridPrinter(const OutlineGrid &grid) : m_grid(grid) {}

std::vector<int> OutlineGridPrinter::printedRows() const
{
    std::vector<int> rows;
    rows.reserve(size_t(std::max(0, m_grid.rowCount() - m_grid.fixedRows())));
    for (int r = m_grid.fixedRows(); r < m_grid.rowCount(); ++r) {
        if (m_grid.isRowVisible(r))
            rows.push_back(r);
    }
    return rows;
}

int OutlineGridPrinter::headerTwips() const
{
    int h = 0;
    for (int r = 0; r < m_grid.fixedRows(); ++r)
        h += m_grid.rowHeight(r);
    return h;
}

std::vector<std::vector<int>> OutlineGridPrinter::pages(int bodyTwips) const
{
    std::vector<std::vector<int>> out;
    std::vector<int> page;
    int used = 0;
    for (int r : printedRows()) {
        const int h = m_grid.rowHeight(r);
        if (!page.empty() && used + h > bodyTwips) {
            out.push_back(std::move(page));
            page.clear();
            used = 0;
        }
        page.push_back(r);
        used += h;
    }
    if (!page.empty() || out.empty())
        out.push_back(std::move(page));
    return out;
}

bool OutlineGridPrinter::print(QPrinter &printer, const QString &docName, int marginTwips) const
{
    printer.setDocName(docName);
    const double inches = marginTwips / 1440.0;
    printer.setPageMargins(QMarginsF(inches, inches, inches, inches), QPageLayout::Inch);

    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution());
    const QRectF body(0, 0, page.width(), page.height());
    double scale = printer.resolution() / 1440.0;
    int widthTwips = 0;
    for (int c = 0; c < m_grid.colCount(); ++c)
        widthTwips += m_grid.colWidth(c);
    if (widthTwips > 0 && widthTwips * scale > body.width())
        scale = body.width() / widthTwips;
    const int bodyTwips = int(body.height() / scale) - headerTwips();

    bool first = true;
    for (const std::vector<int> &rows : pages(std::max(1, bodyTwips))) {
        if (!first)
            printer.newPage();
        first = false;
        paintPage(painter, body, scale, rows);
    }
    return painter.end();
}

void OutlineGridPrinter::paintPage(QPainter &painter, const QRectF &rect, double scale,
                                   const std::vector<int> &rows) const
{
    painter.save();
    painter.translate(rect.topLeft());
    painter.setClipRect(QRectF(QPointF(0, 0), rect.size()));
    QFont base = painter.font();
    // Text of 180 twips (9 points) that shrinks with the columns, so the grid keeps its looks.
    base.setPixelSize(std::max(4, qRound(180 * scale)));
    QFont bold = base;
    bold.setBold(true);

    std::vector<double> left(size_t(m_grid.colCount()) + 1, 0.0);
    for (int c = 0; c < m_grid.colCount(); ++c)
        left[size_t(c) + 1] = left[size_t(c)] + m_grid.colWidth(c) * scale;

    const int fixed = m_grid.fixedRows();
    double y = 0;
    const auto cellText = [this](int r, int c) -> QString {
        const QString &t = m_grid.text(r, c);
        if (t.isEmpty() && r >= m_grid.fixedRows() && c == m_grid.outlineCol() &&
            m_grid.outlineTextCol() >= 0 && m_grid.isNode(r))
            return m_grid.text(r, m_grid.outlineTextCol());
        return t;
    };
    const auto paintRow = [&](int r, bool header) {
        const double h = m_grid.rowHeight(r) * scale;
        for (int c = 0; c < m_grid.colCount(); ++c) {
            if (m_grid.isColHidden(c))
                continue;
            // A header band spans adjacent columns with the same text; paint it once.
            int last = c;
            const QString text = header ? m_grid.text(r, c) : cellText(r, c);
            if (header && r < fixed - 1 && !text.isEmpty()) {
                while (last + 1 < m_grid.colCount() &&
                       (m_grid.isColHidden(last + 1) || m_grid.text(r, last + 1) == text))
                    ++last;
                while (last > c && m_grid.isColHidden(last))
                    --last;
            }
            const QRectF cell(left[size_t(c)], y, left[size_t(last) + 1] - left[size_t(c)], h);
            const QColor back = m_grid.backColor(r, c);
            if (back.isValid())
                painter.fillRect(cell, back);
            painter.setPen(PrintLineColor);
            painter.drawRect(cell);
            QRectF textRect = cell.adjusted(2 * scale * 15, 0, -2 * scale * 15, 0);
            int flags = Qt::AlignVCenter | Qt::TextWordWrap;
            if (header) {
                flags |= Qt::AlignHCenter;
            } else if (c == m_grid.outlineCol()) {
                textRect.setLeft(textRect.left() + m_grid.outlineLevel(r) * IndentTwips * scale);
                flags |= Qt::AlignLeft;
            } else {
                const bool numeric =
                    !text.isEmpty() && (text.front().isDigit() || text.front() == u'-');
                flags |= numeric ? Qt::AlignRight : Qt::AlignLeft;
            }
            const QFont &font = m_grid.isBold(r, c) ? bold : base;
            painter.setFont(header ? fittedFont(font, textRect, flags, text, painter.device())
                                   : font);
            painter.setPen(Qt::black);
            painter.drawText(textRect, flags, text);
            c = last;
        }
        y += h;
    };
    for (int r = 0; r < fixed; ++r)
        paintRow(r, true);
    for (int r : rows)
        paintRow(r, false);
    painter.restore();
}

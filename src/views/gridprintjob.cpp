#include "views/gridprintjob.h"

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
constexpr int TextPaddingTwips = 30;
constexpr int BodyFontTwips = 180; // 9 points
constexpr int FooterFontTwips = 150;
const QColor LineColor(150, 150, 150);

// Narrow header captions step their font down (to 70 %) so whole words stay readable.
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

GridPrintJob::GridPrintJob(const OutlineGrid &grid) : m_grid(grid) {}

std::vector<int> GridPrintJob::shownCols() const
{
    std::vector<int> cols;
    for (int c = 0; c < m_grid.colCount(); ++c)
        if (!m_grid.isColHidden(c))
            cols.push_back(c);
    return cols;
}

int GridPrintJob::headerTwips() const
{
    int h = 0;
    for (int r = 0; r < m_grid.fixedRows(); ++r)
        h += m_grid.rowHeight(r);
    return h;
}

std::vector<std::vector<int>> GridPrintJob::columnBands(double bodyWidthTwips) const
{
    const std::vector<int> cols = shownCols();
    std::vector<std::vector<int>> bands;
    if (cols.empty())
        return {{}};
    double total = 0;
    for (int c : cols)
        total += m_grid.colWidth(c);
    if (total <= bodyWidthTwips)
        return {cols};

    // Columns up to the outline column name the rows; every band repeats them.
    std::vector<int> keys;
    double keyWidth = 0;
    for (int c : cols) {
        if (c > m_grid.outlineCol())
            break;
        keys.push_back(c);
        keyWidth += m_grid.colWidth(c);
    }
    if (keyWidth >= bodyWidthTwips / 2) {
        keys.clear(); // the names would crowd out the figures: do not repeat them
        keyWidth = 0;
    }

    size_t next = 0;
    std::vector<int> band;
    double used = 0;
    while (next < cols.size()) {
        const bool firstBand = bands.empty();
        band = firstBand ? std::vector<int>{} : keys;
        used = firstBand ? 0 : keyWidth;
        size_t taken = 0;
        while (next < cols.size()) {
            const double w = m_grid.colWidth(cols[next]);
            // A band takes at least one column of its own, even one wider than the page.
            if (taken > 0 && used + w > bodyWidthTwips)
                break;
            band.push_back(cols[next]);
            used += w;
            ++next;
            ++taken;
        }
        bands.push_back(std::move(band));
    }
    return bands;
}

std::vector<std::vector<int>> GridPrintJob::rowPages(int rowSpaceTwips) const
{
    std::vector<std::vector<int>> pages;
    std::vector<int> page;
    int used = 0;
    for (int r = m_grid.fixedRows(); r < m_grid.rowCount(); ++r) {
        if (!m_grid.isRowVisible(r))
            continue;
        const int h = m_grid.rowHeight(r);
        if (!page.empty() && used + h > rowSpaceTwips) {
            pages.push_back(std::move(page));
            page.clear();
            used = 0;
        }
        page.push_back(r);
        used += h;
    }
    if (!page.empty() || pages.empty())
        pages.push_back(std::move(page));
    return pages;
}

GridPrintJob::Layout GridPrintJob::layout(double bodyWidthTwips, double bodyHeightTwips) const
{
    Layout result;
    double total = 0;
    for (int c : shownCols())
        total += m_grid.colWidth(c);
    if (total > bodyWidthTwips && total * MinShrink <= bodyWidthTwips)
        result.scale = bodyWidthTwips / total;

    const double width = bodyWidthTwips / result.scale;
    const double height = bodyHeightTwips / result.scale;
    const int rowSpace = std::max(1, int(height) - headerTwips() - FooterTwips);
    const std::vector<std::vector<int>> bands = columnBands(width);
    for (const std::vector<int> &rows : rowPages(rowSpace))
        for (const std::vector<int> &cols : bands)
            result.pages.push_back(Page{rows, cols});
    return result;
}

bool GridPrintJob::print(QPrinter &printer, const QString &docName, int marginTwips) const
{
    printer.setDocName(docName);
    const double inches = marginTwips / 1440.0;
    printer.setPageMargins(QMarginsF(inches, inches, inches, inches), QPageLayout::Inch);

    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const QRectF paint = printer.pageLayout().paintRectPixels(printer.resolution());
    const QRectF body(0, 0, paint.width(), paint.height());
    const double twipToDevice = printer.resolution() / 1440.0;
    const Layout plan = layout(body.width() / twipToDevice, body.height() / twipToDevice);

    const int count = int(plan.pages.size());
    for (int i = 0; i < count; ++i) {
        if (i > 0 && !printer.newPage()) {
            painter.end();
            return false;
        }
        const QString footer = QStringLiteral("%1 / %2").arg(i + 1).arg(count);
        paintPage(painter, body, twipToDevice * plan.scale, plan.pages[size_t(i)],
                  docName.isEmpty() ? footer : docName + QStringLiteral("    ") + footer);
    }
    return painter.end();
}

void GridPrintJob::paintPage(QPainter &painter, const QRectF &body, double scale, const Page &page,
                             const QString &footer) const
{
    painter.save();
    painter.translate(body.topLeft());
    painter.setClipRect(QRectF(QPointF(0, 0), body.size()));
    QFont base = painter.font();
    base.setPixelSize(std::max(4, qRound(BodyFontTwips * scale)));
    QFont bold = base;
    bold.setBold(true);

    const size_t n = page.cols.size();
    std::vector<double> left(n + 1, 0.0);
    for (size_t i = 0; i < n; ++i)
        left[i + 1] = left[i] + m_grid.colWidth(page.cols[i]) * scale;

    const int fixed = m_grid.fixedRows();
    const auto cellText = [this, fixed](int r, int c) -> QString {
        const QString &t = m_grid.text(r, c);
        // Group rows of the summary keep their caption in a hidden column and show it here.
        if (t.isEmpty() && r >= fixed && c == m_grid.outlineCol() && m_grid.outlineTextCol() >= 0 &&
            m_grid.isNode(r))
            return m_grid.text(r, m_grid.outlineTextCol());
        return t;
    };

    double y = 0;
    const auto paintRow = [&](int r, bool header) {
        const double h = m_grid.rowHeight(r) * scale;
        for (size_t i = 0; i < n; ++i) {
            const int c = page.cols[i];
            const QString text = cellText(r, c);
            // A group caption spans neighbouring columns with the same text; paint it once.
            size_t last = i;
            if (header && r < fixed - 1 && !text.isEmpty())
                while (last + 1 < n && page.cols[last + 1] == page.cols[last] + 1 &&
                       m_grid.text(r, page.cols[last + 1]) == text)
                    ++last;
            const QRectF cell(left[i], y, left[last + 1] - left[i], h);
            const QColor back = m_grid.backColor(r, c);
            if (back.isValid())
                painter.fillRect(cell, back);
            painter.setPen(LineColor);
            painter.drawRect(cell);

            const double pad = TextPaddingTwips * scale;
            QRectF textRect = cell.adjusted(pad, 0, -pad, 0);
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
            i = last;
        }
        y += h;
    };
    for (int r = 0; r < fixed; ++r)
        paintRow(r, true);
    for (int r : page.rows)
        paintRow(r, false);

    QFont small = base;
    small.setPixelSize(std::max(4, qRound(FooterFontTwips * scale)));
    painter.setFont(small);
    painter.setPen(Qt::darkGray);
    const double footerHeight = FooterTwips * scale;
    painter.drawText(QRectF(0, body.height() - footerHeight, body.width(), footerHeight),
                     Qt::AlignRight | Qt::AlignBottom, footer);
    painter.restore();
}

#pragma once

#include <QString>
#include <vector>

class OutlineGrid;
class QPainter;
class QPrinter;
class QRectF;

/// Prints an OutlineGrid as the user sees it: the fixed header rows on top of every page (equal
/// band texts merged into one caption), then the data rows that no collapsed node hides, with
/// indentation by outline level in the outline column, back colours and bold. Columns keep their
/// widths and shrink together when they are wider than the page; hidden columns are left out.
/// Printer choice and orientation belong to the caller (the print dialog).
class OutlineGridPrinter
{
public:
    explicit OutlineGridPrinter(const OutlineGrid &grid);

    /// Data rows that print: from the first non-fixed row, those whose ancestors are expanded.
    [[nodiscard]] std::vector<int> printedRows() const;
    /// printedRows() split into pages whose body (below the header rows) is bodyTwips high. Every
    /// page holds at least one row.
    [[nodiscard]] std::vector<std::vector<int>> pages(int bodyTwips) const;

    /// Prints with the given document name and equal margins (twips) on all sides. False when
    /// the printer cannot start.
    [[nodiscard]] bool print(QPrinter &printer, const QString &docName,
                             int marginTwips = 1200) const;

    /// Paints one page into rect (device units), `scale` device units per twip.
    void paintPage(QPainter &painter, const QRectF &rect, double scale,
                   const std::vector<int> &rows) const;

private:
    [[nodiscard]] int headerTwips() const;

    const OutlineGrid &m_grid;
};

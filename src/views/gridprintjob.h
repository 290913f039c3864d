#pragma once

#include <QString>
#include <vector>

class OutlineGrid;
class QPainter;
class QPrinter;
class QRectF;

/// Prints a whole grid over as many pages as it needs, down and across. Rows are those the user
/// sees (rows under a collapsed node stay folded away, as on screen), with indentation by outline
/// level in the outline column; the header rows repeat at the top of every page.
///
/// A grid slightly wider than the page shrinks to fit (down to MinShrink of its size); a wider one
/// keeps its size and splits into column bands, each band repeating the columns up to the outline
/// column so every page names its rows. Pages run across the bands first, then down. Each page
/// carries a footer with the document name and "page / pages".
class GridPrintJob final
{
public:
    /// The smallest scale at which a grid is shrunk onto one band instead of split.
    static constexpr double MinShrink = 0.8;
    /// Height of the footer line below the grid, in twips (1/6 inch).
    static constexpr int FooterTwips = 240;

    struct Page
    {
        std::vector<int> rows; ///< data rows, top to bottom
        std::vector<int> cols; ///< columns, left to right
    };

    struct Layout
    {
        double scale = 1.0; ///< applied to the grid's twips (1.0: natural size)
        std::vector<Page> pages;
    };

    explicit GridPrintJob(const OutlineGrid &grid);

    /// The pages for a printable body of the given size (twips at natural size).
    [[nodiscard]] Layout layout(double bodyWidthTwips, double bodyHeightTwips) const;
    /// Column bands for a body width (twips at the given scale).
    [[nodiscard]] std::vector<std::vector<int>> columnBands(double bodyWidthTwips) const;
    /// The rows that show (no collapsed node hides them) in blocks of at most rowSpaceTwips;
    /// a block takes at least one row, and a grid without rows gives one empty block.
    [[nodiscard]] std::vector<std::vector<int>> rowPages(int rowSpaceTwips) const;

    /// Prints with the given document name and equal margins (twips) on all sides, on the printer
    /// as the caller set it up (orientation, output). False when the printer cannot start.
    [[nodiscard]] bool print(QPrinter &printer, const QString &docName,
                             int marginTwips = 1200) const;

private:
    void paintPage(QPainter &painter, const QRectF &body, double deviceScale, const Page &page,
                   const QString &footer) const;
    [[nodiscard]] std::vector<int> shownCols() const;
    [[nodiscard]] int headerTwips() const;

    const OutlineGrid &m_grid;
};

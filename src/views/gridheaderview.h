#pragma once

#include <QHeaderView>
#include <utility>

/// The two-row column header of an outline grid. The upper band row shows one caption over each
/// run of adjacent columns whose band text is the same (empty band cells stay plain blanks); the
/// caption row below shows each column's caption, word-wrapped. Texts, back colours, bold and row
/// heights come from the model's horizontal header data (OutlineGridModel's band and caption
/// roles), so the grid's fixed rows drive the header.
class GridHeaderView final : public QHeaderView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(GridHeaderView)

public:
    explicit GridHeaderView(QWidget *parent = nullptr);
    ~GridHeaderView() override;

    /// Height of the band row in pixels (0 without a band row).
    [[nodiscard]] int bandHeight() const;
    /// Height of the caption row in pixels: the grid's height, or more when a caption needs it.
    [[nodiscard]] int captionHeight() const;
    /// 0 over the band row, 1 over the caption row (grid row numbers), -1 outside.
    [[nodiscard]] int headerRowAt(int y) const;
    /// The first and last logical column of the band that holds a column.
    [[nodiscard]] std::pair<int, int> bandRange(int section) const;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override;

private:
    [[nodiscard]] QString bandText(int logicalIndex) const;
    [[nodiscard]] double twipsPerPixelY() const;
};

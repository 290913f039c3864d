#pragma once

#include <QFont>
#include <QHash>
#include <QStaticText>
#include <QString>
#include <QStyledItemDelegate>
#include <vector>

/// Paints the cells of the outline grids and the unit list. A cell of one line of text on its
/// background is painted directly, from the glyph runs of the texts painted lately; anything
/// else (the focused cell, check boxes, icons, wrapped text) goes to the style as before.
/// A screenful of a grid is about a thousand cells, and the style lays each text out three
/// times per paint (to size it, to elide it, to draw it): that was most of every repaint.
class GridCellDelegate final : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(GridCellDelegate)

public:
    explicit GridCellDelegate(QObject *parent = nullptr);
    ~GridCellDelegate() override;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

    /// How many texts the delegate holds laid out (for tests).
    [[nodiscard]] int cachedTexts() const;

    /// At most this many laid-out texts are kept per font; a full cache starts again empty.
    static constexpr int MaxCachedTexts = 8192;

private:
    [[nodiscard]] const QStaticText &laidOut(const QFont &font, const QString &text) const;

    struct FontTexts
    {
        QFont font;
        QHash<QString, QStaticText> texts;
    };
    mutable std::vector<FontTexts> m_fonts;
};

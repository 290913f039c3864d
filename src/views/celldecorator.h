#pragma once

#include <QColor>
#include <QString>

/// Something drawn over a grid's own cell attributes without changing the grid's data (so export,
/// printing and drill-down see the figures exactly as filled). OutlineGridModel asks it for each
/// data cell it shows.
class CellDecorator
{
public:
    struct Decoration
    {
        QColor text;    ///< invalid: the cell's own text colour
        QColor back;    ///< invalid: the cell's own back colour
        QString marker; ///< shown before the cell's text (empty: none)
    };

    virtual ~CellDecorator() = default;
    [[nodiscard]] virtual Decoration decoration(int row, int col) const = 0;
};

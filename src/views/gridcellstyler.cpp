#include "views/gridcellstyler.h"

#include "views/changecues.h"
#include "views/cuepalette.h"
#include "views/outlinegrid.h"

CellDecorator::Decoration GridCellStyler::decoration(int row, int col) const
{
    Decoration d;
    if (m_exceptions) {
        switch (ExceptionRules::cellKind(m_grid, m_kind, row, col)) {
        case ExceptionRules::Kind::Jeopardy:
            d.text = CuePalette::jeopardy().text;
            d.back = CuePalette::jeopardy().back;
            break;
        case ExceptionRules::Kind::Late:
            d.text = CuePalette::late().text;
            d.back = CuePalette::late().back;
            break;
        case ExceptionRules::Kind::BelowRate:
            d.text = CuePalette::belowRate().text;
            d.back = CuePalette::belowRate().back;
            break;
        case ExceptionRules::Kind::None:
            break;
        }
    }
    if (m_stopped)
        d.text = CuePalette::stopped().text;

    if (m_cues) {
        const ChangeCues::Direction dir = m_cues->direction(m_grid, row, col);
        const double strength =
            dir == ChangeCues::Direction::None ? 0 : m_cues->strength(m_clock());
        if (strength > 0) {
            const CuePalette::Pair cue =
                dir == ChangeCues::Direction::Up ? CuePalette::risen() : CuePalette::fallen();
            QColor base = d.back;
            if (!base.isValid())
                base = m_grid.backColor(row, col);
            if (!base.isValid())
                base = Qt::white;
            d.back = CuePalette::mix(cue.back, base, strength);
            d.text = cue.text;
            d.marker = ChangeCues::marker(dir);
        }
    }
    return d;
}

#pragma once

#include "views/celldecorator.h"
#include "views/exceptionrules.h"

#include <functional>

class ChangeCues;
class OutlineGrid;

/// The cues one grid shows over its figures, in this order of precedence: a fresh change (up or
/// down, with a marker glyph, fading into the colour below it), the trouble colour of the cell,
/// and the grey text of figures from a stopped server. Each part is switched on its own; with all
/// off the grid looks exactly as filled.
class GridCellStyler final : public CellDecorator
{
public:
    using Clock = std::function<qint64()>; ///< milliseconds, any origin

    GridCellStyler(const OutlineGrid &grid, ExceptionRules::GridKind kind, Clock clock)
        : m_grid(grid), m_kind(kind), m_clock(std::move(clock))
    {}

    void setExceptionsShown(bool on) { m_exceptions = on; }
    /// The change memory of this grid; nullptr: no change cues.
    void setChangeCues(const ChangeCues *cues) { m_cues = cues; }
    void setServerStopped(bool stopped) { m_stopped = stopped; }

    [[nodiscard]] Decoration decoration(int row, int col) const override;

private:
    const OutlineGrid &m_grid;
    ExceptionRules::GridKind m_kind;
    Clock m_clock;
    const ChangeCues *m_cues = nullptr;
    bool m_exceptions = false;
    bool m_stopped = false;
};

#include "views/exceptionrules.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "views/outlinegrid.h"
#include "views/panelvalues.h"

namespace {

// Summary: counter index s lives in column s + 3; jeopardy is index 2 (work orders) and 9
// (points), late 3 and 10.
constexpr int kSummaryJeopardyCols[] = {5, 12};
constexpr int kSummaryLateCols[] = {6, 13};
// Hierarchy: 1 technicians, 2 hours remaining, 3 hours worked, 4..10 the seven statuses, 11 the
// productivity of the row.
constexpr int kTreeHoursRemainingCol = 2;
constexpr int kTreeOpenCol = 4;
constexpr int kTreeJeopardyCol = 6;
constexpr int kTreeLateCol = 7;
constexpr int kTreeProductivityCol = 11;

bool positiveCount(const OutlineGrid &grid, int row, int col)
{
    return Conv::leadingNumber(grid.text(row, col)) > 0;
}

bool unitBelowRate(const OutlineGrid &grid, int row)
{
    if (grid.colCount() <= kTreeProductivityCol)
        return false;
    try {
        const double open = Conv::toLong(Conv::leadingNumber(grid.text(row, kTreeOpenCol)));
        const double remaining =
            Conv::toLong(Conv::leadingNumber(grid.text(row, kTreeHoursRemainingCol)));
        const double required = Conv::rate(open, remaining);
        return Conv::leadingNumber(grid.text(row, kTreeProductivityCol)) < required;
    } catch (const DLVError &) {
        return false; // figures past the 32-bit range are shown as they are, without a cue
    }
}

} // namespace

ExceptionRules::Kind ExceptionRules::cellKind(const OutlineGrid &grid, GridKind kind, int row,
                                              int col)
{
    if (row < grid.fixedRows() || row >= grid.rowCount() || col < 0 || col >= grid.colCount())
        return Kind::None;
    if (kind == GridKind::Summary) {
        for (int c : kSummaryJeopardyCols)
            if (col == c && positiveCount(grid, row, col))
                return Kind::Jeopardy;
        for (int c : kSummaryLateCols)
            if (col == c && positiveCount(grid, row, col))
                return Kind::Late;
        return Kind::None;
    }
    if (grid.isEmpty(row, 1))
        return Kind::None; // a unit no chosen unit reached: no figures to judge
    if (col == kTreeJeopardyCol && positiveCount(grid, row, col))
        return Kind::Jeopardy;
    if (col == kTreeLateCol && positiveCount(grid, row, col))
        return Kind::Late;
    if ((col == 0 || col == kTreeProductivityCol) && unitBelowRate(grid, row))
        return Kind::BelowRate;
    return Kind::None;
}

ExceptionRules::Kind ExceptionRules::panelKind(const PanelValues &panel, int figure)
{
    if (figure == 7 && panel.wosPerHrToday < panel.wosPerHrReq)
        return Kind::BelowRate;
    if (figure == 9 && panel.ptsPerHrToday < panel.ptsPerHrReq)
        return Kind::BelowRate;
    return Kind::None;
}

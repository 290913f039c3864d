#include "views/drilldown.h"

#include "views/outlinegrid.h"

#include <array>

namespace {

const QString kWorkOrder = QStringLiteral("WORKORDER");
const QString kUser = QStringLiteral("USER");

// The host lists work orders for a point figure too, so every status carries the "WO" prefix.
const std::array<QString, 7> kStatuses = {
    QStringLiteral("WOOpen"),    QStringLiteral("WOWarning"),   QStringLiteral("WOJeopardy"),
    QStringLiteral("WOLate"),    QStringLiteral("WOCompleted"), QStringLiteral("WOCanceled"),
    QStringLiteral("WONotDone"),
};

// Summary grid: work orders in columns 3..9, points in 10..16, both in status order.
QString summaryStatus(int col)
{
    if (col >= 3 && col <= 9)
        return kStatuses[size_t(col - 3)];
    if (col >= 10 && col <= 16)
        return kStatuses[size_t(col - 10)];
    return {};
}

constexpr int kFirstDataRow = 2;
constexpr int kTechCountCol = 1;
constexpr int kFirstStatusCol = 4;
constexpr int kLastStatusCol = 10;

} // namespace

DrillDown::DrillDown(Sources sources) : m_sources(std::move(sources)) {}

qint16 DrillDown::buttonCode(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return LeftButton;
    case Qt::RightButton:
        return RightButton;
    case Qt::MiddleButton:
        return MiddleButton;
    default:
        return NoButton;
    }
}

QString DrillDown::joinMembers(const QStringList &ids, const QSet<QString> &members)
{
    QString joined;
    for (const QString &id : ids) {
        if (members.contains(id)) {
            joined += id;
            joined += u'|';
        }
    }
    if (joined.endsWith(u'|'))
        joined.chop(1);
    return joined;
}

std::optional<DLVParams> DrillDown::gridRequest(const OutlineGrid &grid, const Click &click) const
{
    if (click.lastButton != LeftButton)
        return std::nullopt;
    if (grid.rowCount() < 3 || grid.currentCol() != click.mouseCol)
        return std::nullopt;
    if (click.gridIndex == Summary)
        return summaryRequest(grid, click);
    if (click.gridIndex == WorkOrderHierarchy || click.gridIndex == PointHierarchy)
        return hierarchyRequest(grid, click);
    return std::nullopt;
}

std::optional<DLVParams> DrillDown::summaryRequest(const OutlineGrid &grid,
                                                   const Click &click) const
{
    const int row = grid.currentRow();
    const int col = grid.currentCol();
    if (col < 2)
        return std::nullopt; // the name columns
    // A click on the last row while the current cell still sits on the grand total (row 2) asks
    // for the grand total: the original grid reported its current row that way.
    if (row != click.mouseRow && !(click.mouseRow == grid.rowCount() - 1 && row == kFirstDataRow))
        return std::nullopt;

    DLVParams params;
    params.Info = kWorkOrder;
    params.JeopardyThreshold = threshold();
    params.BUID = currentBUIDs();
    const QString &key = grid.rowData(row);
    if (!key.isEmpty()) {
        // "type|class" for a class row, "|class" for a per-class total, "type" for a group row.
        const QStringList pieces = key.split(u'|');
        params.JobType = pieces.front();
        if (pieces.size() == 2)
            params.JobClass = pieces.back();
    }
    params.JobStatus = summaryStatus(col);
    return params;
}

std::optional<DLVParams> DrillDown::hierarchyRequest(const OutlineGrid &grid,
                                                     const Click &click) const
{
    const int row = grid.currentRow();
    const int col = grid.currentCol();
    if (row < kFirstDataRow)
        return std::nullopt;
    if (row != click.mouseRow) {
        if (!(click.mouseRow == grid.rowCount() - 1 && row == kFirstDataRow))
            return std::nullopt;
    } else if (grid.isEmpty(row, kTechCountCol)) {
        return std::nullopt; // a grey row: no chosen unit reaches it
    }

    DLVParams params;
    const QStringList ids =
        m_sources.buIdList ? m_sources.buIdList(grid.rowData(row)) : QStringList();
    params.BUID = joinedMembers(ids);
    if (col == kTechCountCol) {
        params.Info = kUser;
    } else if (col >= kFirstStatusCol && col <= kLastStatusCol) {
        params.Info = kWorkOrder;
        params.JobStatus = kStatuses[size_t(col - kFirstStatusCol)];
    } else {
        return std::nullopt; // hours and productivity have no records behind them
    }
    params.JeopardyThreshold = threshold();
    return params;
}

DLVParams DrillDown::techCountRequest() const
{
    DLVParams params;
    params.Info = kUser;
    params.JeopardyThreshold = threshold();
    params.BUID = currentBUIDs();
    return params;
}

QString DrillDown::currentBUIDs() const
{
    return joinedMembers(m_sources.currentBUs ? m_sources.currentBUs() : QStringList());
}

QString DrillDown::joinedMembers(const QStringList &ids) const
{
    if (ids.isEmpty())
        return {};
    static const QSet<QString> none;
    return joinMembers(ids, m_sources.unitIds ? m_sources.unitIds() : none);
}

QString DrillDown::threshold() const
{
    return m_sources.jeopardyThreshold ? m_sources.jeopardyThreshold() : QString();
}

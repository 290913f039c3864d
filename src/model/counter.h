#pragma once

/// The work-order statuses and the fourteen counters each job class keeps: work orders per status
/// at Counter::workOrders(status), points per status at Counter::points(status), in the order of
/// the detail table's columns ("WOOpen" .. "WONotDone", "PtsOpen" .. "PtsNotDone").
namespace Counter {

enum Status : int
{
    Open = 0,
    Warning,
    Jeopardy,
    Late,
    Completed,
    Canceled,
    NotDone,
};
inline constexpr int StatusCount = 7;
inline constexpr int Count = 2 * StatusCount;

/// The counter index of the work orders in a status.
[[nodiscard]] constexpr int workOrders(Status status)
{
    return status;
}
/// The counter index of the points in a status.
[[nodiscard]] constexpr int points(Status status)
{
    return StatusCount + status;
}

} // namespace Counter

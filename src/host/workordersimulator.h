#pragma once

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QString>

class WorkOrderDatabase;

/// Moves a generated working day on (dlv-host --db-simulate), so that a demo on a work-order
/// database shows the day going by. Each step advances the database's clock (the "clock"
/// setting that --db-generate writes) and, in one transaction, does what the dispatch system
/// would record: technicians on shift work the step's minutes, each of them finishes the
/// earliest-due open order now and then (completed, sometimes not done), and the open orders
/// move through warning and jeopardy to late as their due time comes near and passes.
class WorkOrderSimulator
{
    Q_DECLARE_TR_FUNCTIONS(WorkOrderSimulator)

public:
    static constexpr int StepMinutes = 10;

    /// Works on the database given (opened for writing; not owned, must outlive this object).
    WorkOrderSimulator(WorkOrderDatabase &database, quint32 seed);

    /// Advances the day by `minutes`. Returns the problem (no "clock" setting, a failed
    /// statement), or an empty text; on a problem nothing is changed.
    [[nodiscard]] QString advance(int minutes = StepMinutes);

private:
    WorkOrderDatabase &m_database;
    QRandomGenerator m_random;
};

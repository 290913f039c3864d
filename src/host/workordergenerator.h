#pragma once

#include "host/detailrecords.h"

#include <QCoreApplication>
#include <QDate>
#include <QRandomGenerator>
#include <QString>
#include <QTime>
#include <vector>

class WorkOrderDatabase;

/// A realistic working day for a work-order database (dlv-host --db-generate): a company of
/// three regions, three districts each and three crews per district (39 units), 18 to 22
/// technicians per crew on staggered shifts, five to eight planned work orders per technician
/// on duty and urgent calls that came in during the morning, some not assigned yet. Statuses
/// follow the clock: each technician works through the orders in due order, finished ones are
/// completed (now and then not done), a few were canceled, and the rest are open, in warning,
/// in jeopardy or late by how far their due time is from the clock. Everything follows one
/// seeded generator: a seed gives the same records every time (only the date differs).
class WorkOrderGenerator
{
    Q_DECLARE_TR_FUNCTIONS(WorkOrderGenerator)

public:
    static constexpr int JeopardyMinutes = 30;
    static constexpr int WarningMinutes = 60;

    struct Unit
    {
        QString id;
        QString description;
        QString parentId; ///< empty for a top-level unit
    };

    struct Technician
    {
        QString id;
        QString name;
        QString buid;
        bool onDuty = true;
        int shiftStart = 0; ///< minutes after midnight
        int shiftEnd = 0;
        int workedMinutes = 0;
        int remainingMinutes = 0;
    };

    struct WorkOrder
    {
        QString id;
        QString buid;
        QString jobType;
        QString jobClass;
        DetailRecords::Status status = DetailRecords::Status::Open;
        int points = 0;
        int technician = -1; ///< index into technicians(), -1 while unassigned
        QString customer;
        QString address;
        int created = 0; ///< minutes after midnight
        int due = 0;
        int completed = -1; ///< -1 while not finished
    };

    explicit WorkOrderGenerator(quint32 seed, QTime clock = QTime(10, 30),
                                QDate date = QDate::currentDate());

    [[nodiscard]] const std::vector<Unit> &units() const { return m_units; }
    [[nodiscard]] const std::vector<Technician> &technicians() const { return m_technicians; }
    [[nodiscard]] const std::vector<WorkOrder> &workOrders() const { return m_orders; }
    [[nodiscard]] static QString companyName();

    /// The status as the database stores it: "Open", "Warning", ... "NotDone".
    [[nodiscard]] static QString statusText(DetailRecords::Status status);

    /// Creates the schema and writes the day in one transaction. Refuses a database that holds
    /// any of the schema's tables already, so that no data are overwritten. Returns the problem,
    /// or an empty text.
    [[nodiscard]] QString write(WorkOrderDatabase &database) const;

private:
    void buildUnits();
    void buildRoster();
    void planDay();
    void addOrder(int crew, int technician, int jobType, int created, int due);
    [[nodiscard]] int weighted(const std::vector<int> &weights);
    [[nodiscard]] QString timestamp(int minutes) const;

    QRandomGenerator m_random;
    int m_clock;
    QDate m_date;
    std::vector<Unit> m_units;
    std::vector<int> m_crews; // indices into m_units
    std::vector<Technician> m_technicians;
    std::vector<std::vector<int>> m_crewTechnicians; // per crew, indices into m_technicians
    std::vector<WorkOrder> m_orders;
    int m_nextOrder = 500001;
};

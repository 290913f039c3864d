#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QTime>
#include <optional>
#include <vector>

class QZWebTable;

/// The records behind the control's figures: the individual work orders and technicians of the
/// units, which the host lists when the control asks for details. A data feed keeps them
/// consistent with the counts it sends. Read from and written as the optional "Details" table of
/// a data document (columns: docs/host-protocol.md, "Reference host").
class DetailRecords
{
public:
    /// The work-order statuses in the control's counter order.
    enum class Status
    {
        Open,
        Warning,
        Jeopardy,
        Late,
        Completed,
        Canceled,
        NotDone
    };
    static constexpr int StatusCount = 7;

    struct WorkOrder
    {
        QString id;
        QString buid;
        QString jobType;
        QString jobClass;
        Status status = Status::Open;
        int points = 0;
        QString technician; ///< the technician's name; empty while unassigned
        QTime due;          ///< invalid when the order has no due time
    };

    struct Technician
    {
        QString id;
        QString name;
        QString buid;
        double hoursWorked = 0;
        double hoursRemaining = 0;
    };

    /// What the control asked for: the units (an empty list matches nothing), and optional job
    /// type, job class and status ("WOOpen" .. "WONotDone"); an empty value matches everything.
    struct Query
    {
        QStringList buids;
        QString jobType;
        QString jobClass;
        QString jobStatus;
    };

    /// "WOOpen", "WOWarning", ... "WONotDone": the status texts of the control's requests.
    [[nodiscard]] static QString statusKey(Status status);
    /// The status of a request text (exact, as the control sends it), or nothing.
    [[nodiscard]] static std::optional<Status> statusFromKey(const QString &key);
    /// "Open", "Warning", ... "Not done": for people, in the host's language.
    [[nodiscard]] static QString statusName(Status status);
    [[nodiscard]] static bool isFinal(Status status)
    {
        return status == Status::Completed || status == Status::Canceled ||
               status == Status::NotDone;
    }

    std::vector<WorkOrder> workOrders;
    std::vector<Technician> technicians;

    [[nodiscard]] bool isEmpty() const { return workOrders.empty() && technicians.empty(); }

    /// The work orders that match the query, in record order. A status text that is not one of
    /// the seven matches nothing.
    [[nodiscard]] std::vector<const WorkOrder *> selectWorkOrders(const Query &query) const;
    /// The technicians of the query's units (job type, class and status do not apply to people).
    [[nodiscard]] std::vector<const Technician *> selectTechnicians(const Query &query) const;
    /// Completed work orders per technician, keyed by unit and name ("BUID\nName").
    [[nodiscard]] QHash<QString, int> completedByTechnician() const;
    [[nodiscard]] static QString technicianKey(const QString &buid, const QString &name)
    {
        return buid + u'\n' + name;
    }

    /// The "Details" table of a data document.
    [[nodiscard]] QZWebTable toTable() const;
    /// Reads a "Details" table; throws DLVError with the row and column at fault for a table
    /// that lacks a column or holds an unknown record kind, status, number or time.
    [[nodiscard]] static DetailRecords fromTable(const QZWebTable &table);
    [[nodiscard]] static QStringList tableColumns();
};

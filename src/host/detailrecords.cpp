#include "host/detailrecords.h"

#include "common/dlverror.h"
#include "webdata/qzwebtable.h"

#include <QCoreApplication>
#include <QSet>
#include <array>

namespace {

constexpr std::array<const char16_t *, DetailRecords::StatusCount> kStatusKeys = {
    u"WOOpen", u"WOWarning", u"WOJeopardy", u"WOLate", u"WOCompleted", u"WOCanceled", u"WONotDone"};

// Shown to people, so in their language (the keys above are what hosts exchange).
constexpr std::array<const char *, DetailRecords::StatusCount> kStatusNames = {
    QT_TRANSLATE_NOOP("DetailRecords", "Open"),      QT_TRANSLATE_NOOP("DetailRecords", "Warning"),
    QT_TRANSLATE_NOOP("DetailRecords", "Jeopardy"),  QT_TRANSLATE_NOOP("DetailRecords", "Late"),
    QT_TRANSLATE_NOOP("DetailRecords", "Completed"), QT_TRANSLATE_NOOP("DetailRecords", "Canceled"),
    QT_TRANSLATE_NOOP("DetailRecords", "Not done")};

const QString kWorkOrder = QStringLiteral("WORKORDER");
const QString kUser = QStringLiteral("USER");

// Codes come from the host's own tables, where the control compares them without regard to
// case; a request therefore matches the records the same way.
bool matches(const QString &wanted, const QString &value)
{
    return wanted.isEmpty() || wanted.compare(value, Qt::CaseInsensitive) == 0;
}

QSet<QString> unitSet(const QStringList &buids)
{
    QSet<QString> set;
    for (const QString &id : buids)
        if (!id.isEmpty())
            set.insert(id);
    return set;
}

QString formatHours(double hours)
{
    return QString::number(hours, 'f', 2);
}

} // namespace

QString DetailRecords::statusKey(Status status)
{
    return QString::fromUtf16(kStatusKeys[std::size_t(status)]);
}

std::optional<DetailRecords::Status> DetailRecords::statusFromKey(const QString &key)
{
    for (std::size_t i = 0; i < kStatusKeys.size(); ++i)
        if (key == QStringView(kStatusKeys[i]))
            return Status(i);
    return std::nullopt;
}

QString DetailRecords::statusName(Status status)
{
    return QCoreApplication::translate("DetailRecords", kStatusNames[std::size_t(status)]);
}

std::vector<const DetailRecords::WorkOrder *>
DetailRecords::selectWorkOrders(const Query &query) const
{
    std::vector<const WorkOrder *> out;
    std::optional<Status> status;
    if (!query.jobStatus.isEmpty()) {
        status = statusFromKey(query.jobStatus);
        if (!status)
            return out;
    }
    const QSet<QString> units = unitSet(query.buids);
    for (const WorkOrder &wo : workOrders) {
        if (!units.contains(wo.buid))
            continue;
        if (status && wo.status != *status)
            continue;
        if (!matches(query.jobType, wo.jobType) || !matches(query.jobClass, wo.jobClass))
            continue;
        out.push_back(&wo);
    }
    return out;
}

std::vector<const DetailRecords::Technician *>
DetailRecords::selectTechnicians(const Query &query) const
{
    std::vector<const Technician *> out;
    const QSet<QString> units = unitSet(query.buids);
    for (const Technician &t : technicians)
        if (units.contains(t.buid))
            out.push_back(&t);
    return out;
}

QHash<QString, int> DetailRecords::completedByTechnician() const
{
    QHash<QString, int> counts;
    for (const WorkOrder &wo : workOrders)
        if (wo.status == Status::Completed && !wo.technician.isEmpty())
            ++counts[technicianKey(wo.buid, wo.technician)];
    return counts;
}

QStringList DetailRecords::tableColumns()
{
    return {QStringLiteral("Info"),          QStringLiteral("ID"),
            QStringLiteral("BUID"),          QStringLiteral("JobType"),
            QStringLiteral("JobClass"),      QStringLiteral("JobStatus"),
            QStringLiteral("Points"),        QStringLiteral("Technician"),
            QStringLiteral("DueTime"),       QStringLiteral("HoursWorked"),
            QStringLiteral("HoursRemaining")};
}

QZWebTable DetailRecords::toTable() const
{
    QZWebTable table(QStringLiteral("Details"), tableColumns());
    table.reserve(int(workOrders.size() + technicians.size()), 0);
    for (const WorkOrder &wo : workOrders)
        table.appendRow({kWorkOrder, wo.id, wo.buid, wo.jobType, wo.jobClass, statusKey(wo.status),
                         QString::number(wo.points), wo.technician,
                         wo.due.isValid() ? wo.due.toString(QStringLiteral("HH:mm")) : QString(),
                         QString(), QString()});
    for (const Technician &t : technicians)
        table.appendRow({kUser, t.id, t.buid, QString(), QString(), QString(), QString(), t.name,
                         QString(), formatHours(t.hoursWorked), formatHours(t.hoursRemaining)});
    return table;
}

DetailRecords DetailRecords::fromTable(const QZWebTable &table)
{
    const QStringList columns = tableColumns();
    std::array<int, 11> col{};
    for (int i = 0; i < columns.size(); ++i)
        col[std::size_t(i)] = table.requireColumn(columns[i]);
    enum
    {
        Info,
        Id,
        Buid,
        JobType,
        JobClass,
        JobStatus,
        Points,
        Tech,
        Due,
        Worked,
        Remaining
    };

    auto fail = [&table](int row, const QString &what) {
        return DLVError(
            DLVError::InvalidCall,
            QStringLiteral("Table '%1', row %2: %3").arg(table.name()).arg(row).arg(what));
    };
    auto number = [&](int row, int c, const QString &name) {
        const QString text = table.value(row, col[std::size_t(c)]).toString().trimmed();
        if (text.isEmpty())
            return 0.0;
        bool ok = false;
        const double v = text.toDouble(&ok);
        if (!ok || v < 0)
            throw fail(row,
                       QStringLiteral("%1 \"%2\" is not a number of zero or more").arg(name, text));
        return v;
    };

    DetailRecords records;
    for (int row = 1; row <= table.rowCount(); ++row) {
        auto value = [&](int c) { return table.value(row, col[std::size_t(c)]).toString(); };
        const QString info = value(Info).trimmed();
        if (info.compare(kWorkOrder, Qt::CaseInsensitive) == 0) {
            WorkOrder wo;
            wo.id = value(Id);
            wo.buid = value(Buid);
            wo.jobType = value(JobType);
            wo.jobClass = value(JobClass);
            const auto status = statusFromKey(value(JobStatus).trimmed());
            if (!status)
                throw fail(row, QStringLiteral("JobStatus \"%1\" is not one of WOOpen, WOWarning, "
                                               "WOJeopardy, WOLate, WOCompleted, WOCanceled, "
                                               "WONotDone")
                                    .arg(value(JobStatus)));
            wo.status = *status;
            const double points = number(row, Points, QStringLiteral("Points"));
            if (points != double(int(points)))
                throw fail(
                    row, QStringLiteral("Points \"%1\" is not a whole number").arg(value(Points)));
            wo.points = int(points);
            wo.technician = value(Tech);
            const QString due = value(Due).trimmed();
            if (!due.isEmpty()) {
                wo.due = QTime::fromString(due, QStringLiteral("H:mm"));
                if (!wo.due.isValid())
                    throw fail(
                        row,
                        QStringLiteral("DueTime \"%1\" is not a time of day (HH:mm)").arg(due));
            }
            records.workOrders.push_back(std::move(wo));
        } else if (info.compare(kUser, Qt::CaseInsensitive) == 0) {
            Technician t;
            t.id = value(Id);
            t.buid = value(Buid);
            t.name = value(Tech);
            t.hoursWorked = number(row, Worked, QStringLiteral("HoursWorked"));
            t.hoursRemaining = number(row, Remaining, QStringLiteral("HoursRemaining"));
            records.technicians.push_back(std::move(t));
        } else {
            throw fail(row, QStringLiteral("Info \"%1\" is neither WORKORDER nor USER").arg(info));
        }
    }
    return records;
}

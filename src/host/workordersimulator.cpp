#include "host/workordersimulator.h"

#include "host/detailrecords.h"
#include "host/workorderdatabase.h"
#include "host/workordergenerator.h"

#include <QDateTime>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <vector>

namespace {

const QString kStampFormat = QStringLiteral("yyyy-MM-dd HH:mm");

// A failed statement inside a step; caught in advance(), which rolls the step back.
struct StepFailure
{
    QString text;
};

QSqlQuery execStep(const QSqlDatabase &db, const QString &sql, const QVariantList &values = {})
{
    QSqlQuery query(db);
    query.setForwardOnly(true);
    bool ok = query.prepare(sql);
    for (int i = 0; ok && i < values.size(); ++i)
        query.bindValue(i, values[i]);
    if (!ok || !query.exec())
        throw StepFailure{WorkOrderSimulator::tr("the step failed: %1")
                              .arg(query.lastError().text().simplified())};
    return query;
}

QDateTime stamp(const QVariant &value)
{
    return QDateTime::fromString(value.toString().trimmed(), kStampFormat);
}

} // namespace

WorkOrderSimulator::WorkOrderSimulator(WorkOrderDatabase &database, quint32 seed)
    : m_database(database), m_random(seed)
{}

QString WorkOrderSimulator::advance(int minutes)
{
    QSqlDatabase db = m_database.database();
    if (!db.transaction())
        return tr("cannot start a transaction: %1").arg(db.lastError().text().simplified());
    try {
        QHash<QString, QString> settings;
        for (QSqlQuery q = execStep(db, QStringLiteral("SELECT name, value FROM settings"));
             q.next();)
            settings.insert(q.value(0).toString().trimmed(), q.value(1).toString());
        const QDateTime from = stamp(settings.value(QStringLiteral("clock")));
        if (!from.isValid())
            throw StepFailure{tr("the database has no \"clock\" setting (YYYY-MM-DD HH:MM) to "
                                 "move on; --db-generate writes one")};
        const QDateTime to = from.addSecs(qint64(minutes) * 60);
        bool ok = false;
        const int jeopardy =
            settings.value(QStringLiteral("jeopardy_threshold_minutes")).trimmed().toInt(&ok);
        const int jeopardyMinutes = ok ? jeopardy : WorkOrderGenerator::JeopardyMinutes;

        // Hours of the technicians on duty follow the clock through their shift.
        struct OnShift
        {
            QString id;
            bool working = false; // on shift during the step
        };
        std::vector<OnShift> technicians;
        for (QSqlQuery q =
                 execStep(db, QStringLiteral("SELECT id, shift_start, shift_end FROM "
                                             "technicians WHERE on_duty = 1 ORDER BY id"));
             q.next();) {
            const QDateTime start = stamp(q.value(1));
            const QDateTime end = stamp(q.value(2));
            if (!start.isValid() || !end.isValid() || end < start)
                continue; // no shift recorded: the dispatch system keeps the hours
            const qint64 length = start.secsTo(end) / 60;
            const qint64 worked = std::clamp<qint64>(start.secsTo(to) / 60, 0, length);
            execStep(db,
                     QStringLiteral("UPDATE technicians SET worked_minutes = ?, "
                                    "remaining_minutes = ? WHERE id = ?"),
                     {worked, length - worked, q.value(0)});
            technicians.push_back({q.value(0).toString(), start < to && end > from});
        }

        // Each technician at work finishes the earliest-due open order now and then (about one
        // an hour).
        const QString open = QStringLiteral("('Open', 'Warning', 'Jeopardy', 'Late')");
        for (const OnShift &t : technicians) {
            if (!t.working || int(m_random.bounded(60)) >= minutes)
                continue;
            QSqlQuery next = execStep(db,
                                      QStringLiteral("SELECT id FROM work_orders WHERE "
                                                     "technician_id = ? AND status IN %1 "
                                                     "ORDER BY due_at, id")
                                          .arg(open),
                                      {t.id});
            if (!next.next())
                continue;
            const QString order = next.value(0).toString();
            next.finish();
            const auto status = m_random.bounded(100) < 7 ? DetailRecords::Status::NotDone
                                                          : DetailRecords::Status::Completed;
            execStep(db,
                     QStringLiteral("UPDATE work_orders SET status = ?, completed_at = ? "
                                    "WHERE id = ?"),
                     {WorkOrderGenerator::statusText(status), to.toString(kStampFormat), order});
        }

        // Open orders take the status their due time gives at the new clock.
        std::vector<std::pair<QString, QString>> changes;
        for (QSqlQuery q = execStep(
                 db, QStringLiteral("SELECT id, status, due_at FROM work_orders WHERE status IN %1")
                         .arg(open));
             q.next();) {
            const QDateTime due = stamp(q.value(2));
            if (!due.isValid())
                continue;
            const qint64 left = to.secsTo(due) / 60;
            DetailRecords::Status status = DetailRecords::Status::Open;
            if (to > due)
                status = DetailRecords::Status::Late;
            else if (left <= jeopardyMinutes)
                status = DetailRecords::Status::Jeopardy;
            else if (left <= WorkOrderGenerator::WarningMinutes)
                status = DetailRecords::Status::Warning;
            const QString text = WorkOrderGenerator::statusText(status);
            if (text != q.value(1).toString())
                changes.emplace_back(q.value(0).toString(), text);
        }
        for (const auto &[id, status] : changes)
            execStep(db, QStringLiteral("UPDATE work_orders SET status = ? WHERE id = ?"),
                     {status, id});
        execStep(db, QStringLiteral("UPDATE settings SET value = ? WHERE name = 'clock'"),
                 {to.toString(kStampFormat)});
    } catch (const StepFailure &failure) {
        db.rollback();
        return failure.text;
    }
    if (!db.commit())
        return tr("cannot write the step: %1").arg(db.lastError().text().simplified());
    return {};
}

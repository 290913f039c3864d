#include "host/databasefeed.h"

#include "host/documentfeed.h"
#include "host/hostlog.h"
#include "host/workorderdatabase.h"
#include "host/workordersimulator.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QDateTime>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QTime>
#include <array>
#include <cmath>

namespace {

// The status texts of the database, in the control's counter order (DetailRecords::Status).
constexpr std::array<const char *, DetailRecords::StatusCount> kStatuses = {
    "Open", "Warning", "Jeopardy", "Late", "Completed", "Canceled", "NotDone"};

// A failed statement inside a refresh; caught in read(), which rolls the transaction back.
struct ReadFailure
{
    QString text;
};

QSqlQuery runQuery(const QSqlDatabase &db, const QString &sql)
{
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (!query.exec(sql))
        throw ReadFailure{DatabaseFeed::tr("the query failed: %1 (%2)")
                              .arg(query.lastError().text().simplified(), sql.simplified())};
    return query;
}

QString field(const QSqlQuery &query, int column)
{
    return query.value(column).toString();
}

QString countField(const QSqlQuery &query, int column)
{
    return QString::number(query.value(column).toLongLong());
}

// Due times are "YYYY-MM-DD HH:MM" text in the shipped schema; a database that declares the
// column as a timestamp hands over a date-time instead. Anything else shows no due time.
QTime dueTimeOf(const QVariant &value)
{
    if (value.isNull())
        return {};
    if (value.metaType() == QMetaType::fromType<QDateTime>())
        return value.toDateTime().time();
    const QString text = value.toString().trimmed();
    const QDateTime stamp = QDateTime::fromString(text, Qt::ISODate);
    if (stamp.isValid())
        return stamp.time();
    const QString clock = text.section(u' ', -1).section(u'T', -1);
    QTime time = QTime::fromString(clock, QStringLiteral("H:mm"));
    if (!time.isValid())
        time = QTime::fromString(clock, QStringLiteral("H:mm:ss"));
    return time;
}

// The fourteen counters of one (unit, job type, class) group: work orders, then points, per
// status. Portable SQL: both SQLite and PostgreSQL sum a CASE.
QString detailsSql()
{
    QStringList columns;
    for (const char *what : {"1", "points"})
        for (const char *status : kStatuses)
            columns.append(QStringLiteral("SUM(CASE WHEN status = '%1' THEN %2 ELSE 0 END)")
                               .arg(QLatin1StringView(status), QLatin1StringView(what)));
    return QStringLiteral("SELECT bu_id, job_type, job_class, %1 FROM work_orders "
                          "GROUP BY bu_id, job_type, job_class "
                          "ORDER BY bu_id, job_type, job_class")
        .arg(columns.join(QStringLiteral(", ")));
}

} // namespace

DatabaseFeed::DatabaseFeed(std::unique_ptr<WorkOrderDatabase> database, int refreshSeconds)
    : m_database(std::move(database)), m_refreshSeconds(std::max(1, refreshSeconds))
{}

DatabaseFeed::~DatabaseFeed() = default;

std::unique_ptr<DatabaseFeed> DatabaseFeed::open(const QString &url, QString *error,
                                                 int refreshSeconds, bool simulate, quint32 seed)
{
    auto fail = [error](const QString &text) {
        if (error)
            *error = text;
        return std::unique_ptr<DatabaseFeed>();
    };
    QString problem;
    auto database = WorkOrderDatabase::open(url, WorkOrderDatabase::Mode::Read, &problem);
    if (!database)
        return fail(problem);
    problem = database->checkSchema();
    if (!problem.isEmpty())
        return fail(tr("%1: not a work-order database: %2").arg(database->displayName(), problem));

    std::unique_ptr<DatabaseFeed> feed(new DatabaseFeed(std::move(database), refreshSeconds));
    if (simulate) {
        feed->m_writer = WorkOrderDatabase::open(url, WorkOrderDatabase::Mode::Create, &problem);
        if (!feed->m_writer)
            return fail(problem);
        feed->m_simulator = std::make_unique<WorkOrderSimulator>(*feed->m_writer, seed);
    }
    feed->m_first = feed->read(&problem);
    if (!feed->m_first.message)
        return fail(tr("%1: %2").arg(feed->m_database->displayName(), problem));
    const QZWebTable &units = feed->m_first.message->data(1)->table(u"BusinessUnits");
    const int c = units.columnIndex(u"BUID");
    for (int row = 1; row <= units.rowCount(); ++row) {
        const QString id = units.value(row, c).toString();
        if (id != u"#")
            feed->m_unitIds.append(id);
    }
    return feed;
}

QString DatabaseFeed::hoursText(qint64 minutes)
{
    QString text = QString::number(std::round(double(minutes) / 60.0 * 100.0) / 100.0, 'f', 2);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    return text;
}

DataFeed::Frame DatabaseFeed::read(QString *error)
{
    // After a failed refresh the connection may be gone (a database server that restarted does
    // not take it back): open it afresh.
    if (m_failed)
        m_database->reconnect();
    QSqlDatabase db = m_database->database();
    // One snapshot for every statement: figures and records must describe the same moment.
    if (!db.transaction()) {
        *error = tr("cannot read the database: %1").arg(db.lastError().text().simplified());
        return {};
    }
    auto data = std::make_shared<QZWebData>();
    auto records = std::make_shared<DetailRecords>();
    auto message = std::make_shared<QZWebMessage>(QStringLiteral("DLVData"));
    QString clock; // the moment the data describe, when the database records one
    try {
        if (m_database->isPostgres())
            (void)runQuery(db, QStringLiteral("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ, "
                                              "READ ONLY"));

        QHash<QString, QString> settings;
        for (QSqlQuery q = runQuery(db, QStringLiteral("SELECT name, value FROM settings"));
             q.next();)
            settings.insert(field(q, 0).trimmed(), field(q, 1));
        clock = settings.value(QStringLiteral("clock")).trimmed().section(u' ', -1);

        QZWebTable units(
            QStringLiteral("BusinessUnits"),
            {QStringLiteral("BUID"), QStringLiteral("BUDesc"), QStringLiteral("ParentBUID")});
        // The hierarchy's top node: a unit "#" of the database if there is one, else the
        // company's name from the settings.
        QString rootText = settings.value(QStringLiteral("company_name"));
        QList<QStringList> unitRows;
        for (QSqlQuery q = runQuery(db, QStringLiteral("SELECT id, description, parent_id FROM "
                                                       "business_units ORDER BY id"));
             q.next();) {
            if (field(q, 0) == u"#") {
                rootText = field(q, 1);
                continue;
            }
            const QString parent = field(q, 2);
            unitRows.append(
                {field(q, 0), field(q, 1), parent.isEmpty() ? QStringLiteral("#") : parent});
        }
        units.appendRow({QStringLiteral("#"), rootText.isEmpty() ? tr("All units") : rootText,
                         QStringLiteral("#")});
        for (const QStringList &row : std::as_const(unitRows))
            units.appendRow(row);
        data->addTable(std::move(units));

        QZWebTable types(QStringLiteral("JobTypes"),
                         {QStringLiteral("JobType"), QStringLiteral("JobTypeDesc")});
        for (QSqlQuery q = runQuery(db, QStringLiteral("SELECT code, description FROM job_types "
                                                       "ORDER BY code"));
             q.next();)
            types.appendRow({field(q, 0), field(q, 1)});
        data->addTable(std::move(types));

        QZWebTable classes(QStringLiteral("JobClasses"),
                           {QStringLiteral("JobClass"), QStringLiteral("JobClassDesc")});
        for (QSqlQuery q = runQuery(db, QStringLiteral("SELECT code, description FROM job_classes "
                                                       "ORDER BY code"));
             q.next();)
            classes.appendRow({field(q, 0), field(q, 1)});
        data->addTable(std::move(classes));

        QZWebTable formats(QStringLiteral("RegionalFormats"),
                           {QStringLiteral("languageCode"), QStringLiteral("timeformat")});
        for (QSqlQuery q = runQuery(db, QStringLiteral("SELECT language_code, time_format FROM "
                                                       "regional_formats ORDER BY language_code"));
             q.next();)
            formats.appendRow({field(q, 0), field(q, 1)});
        data->addTable(std::move(formats));

        // Every unit gets a row; units without technicians on duty show zeros.
        QZWebTable general(QStringLiteral("BUGeneralInfo"),
                           {QStringLiteral("BUID"), QStringLiteral("BUDesc"),
                            QStringLiteral("TechCount"), QStringLiteral("HoursWorked"),
                            QStringLiteral("HoursRemaining")});
        for (QSqlQuery q =
                 runQuery(db, QStringLiteral(
                                  "SELECT u.id, u.description, COUNT(t.id), "
                                  "COALESCE(SUM(t.worked_minutes), 0), "
                                  "COALESCE(SUM(t.remaining_minutes), 0) "
                                  "FROM business_units u LEFT JOIN technicians t "
                                  "ON t.bu_id = u.id AND t.on_duty = 1 "
                                  "WHERE u.id <> '#' GROUP BY u.id, u.description ORDER BY u.id"));
             q.next();)
            general.appendRow({field(q, 0), field(q, 1), countField(q, 2),
                               hoursText(q.value(3).toLongLong()),
                               hoursText(q.value(4).toLongLong())});
        data->addTable(std::move(general));

        QStringList detailColumns = {QStringLiteral("BUID"), QStringLiteral("JobType"),
                                     QStringLiteral("JobClass")};
        for (const char *prefix : {"WO", "Pts"})
            for (const char *status : kStatuses)
                detailColumns.append(QLatin1StringView(prefix) + QLatin1StringView(status));
        QZWebTable detail(QStringLiteral("BUDetailsInfo"), detailColumns);
        for (QSqlQuery q = runQuery(db, detailsSql()); q.next();) {
            QStringList row = {field(q, 0), field(q, 1), field(q, 2)};
            for (int c = 0; c < 2 * DetailRecords::StatusCount; ++c)
                row.append(countField(q, 3 + c));
            detail.appendRow(row);
        }
        data->addTable(std::move(detail));

        // The records behind the figures, from the same snapshot.
        for (QSqlQuery q =
                 runQuery(db, QStringLiteral("SELECT w.id, w.bu_id, w.job_type, w.job_class, "
                                             "w.status, w.points, t.name, w.due_at "
                                             "FROM work_orders w LEFT JOIN technicians t "
                                             "ON t.id = w.technician_id ORDER BY w.id"));
             q.next();) {
            DetailRecords::WorkOrder wo;
            wo.id = field(q, 0);
            wo.buid = field(q, 1);
            wo.jobType = field(q, 2);
            wo.jobClass = field(q, 3);
            const QString status = field(q, 4);
            const auto known = DetailRecords::statusFromKey(QStringLiteral("WO") + status);
            if (!known)
                throw ReadFailure{tr("work order \"%1\" has the status \"%2\", not one of Open, "
                                     "Warning, Jeopardy, Late, Completed, Canceled, NotDone")
                                      .arg(wo.id, status)};
            wo.status = *known;
            wo.points = int(q.value(5).toLongLong());
            wo.technician = field(q, 6);
            wo.due = dueTimeOf(q.value(7));
            records->workOrders.push_back(std::move(wo));
        }
        for (QSqlQuery q =
                 runQuery(db, QStringLiteral("SELECT id, name, bu_id, worked_minutes, "
                                             "remaining_minutes FROM technicians WHERE on_duty = 1 "
                                             "ORDER BY id"));
             q.next();)
            records->technicians.push_back({field(q, 0), field(q, 1), field(q, 2),
                                            q.value(3).toLongLong() / 60.0,
                                            q.value(4).toLongLong() / 60.0});

        const QString interval = settings.value(QStringLiteral("refresh_interval_minutes"));
        message->setProperty(QStringLiteral("tqDBRefreshInterval"),
                             interval.trimmed().isEmpty()
                                 ? QString::number(m_refreshSeconds / 60.0, 'g', 6)
                                 : interval);
        const QString threshold = settings.value(QStringLiteral("jeopardy_threshold_minutes"));
        message->setProperty(QStringLiteral("tqJeopardyThreshold"),
                             threshold.trimmed().isEmpty() ? QString::number(DefaultJeopardyMinutes)
                                                           : threshold);
    } catch (const ReadFailure &failure) {
        db.rollback();
        *error = failure.text;
        return {};
    }
    // Nothing was written; ending the transaction only releases the snapshot.
    db.commit();
    message->addData(std::move(data));
    if (const QString problem = DocumentFeed::validate(*message); !problem.isEmpty()) {
        *error = tr("the data cannot be shown: %1").arg(problem);
        return {};
    }
    m_position = tr("read at %1: %2 work orders, %3 technicians on duty")
                     .arg(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")))
                     .arg(records->workOrders.size())
                     .arg(records->technicians.size());
    if (!clock.isEmpty())
        m_position += tr(", day at %1").arg(clock);
    return {std::move(message), std::move(records)};
}

DataFeed::Frame DatabaseFeed::next()
{
    if (m_firstPending) {
        m_firstPending = false;
        return std::move(m_first);
    }
    QString error;
    if (m_simulator) {
        const QString problem = m_simulator->advance();
        if (!problem.isEmpty())
            qCWarning(lcHost) << "the work-order day cannot be moved on:" << problem;
    }
    Frame frame = read(&error);
    m_failed = !frame.message;
    if (frame.message)
        return frame;
    // Like a server that went down: the control keeps its figures and marks them; the next
    // refresh tries again.
    qCWarning(lcHost) << "the work-order database cannot be read:" << error;
    m_position = tr("cannot be read (%1)").arg(error);
    return {std::make_shared<QZWebMessage>(QStringLiteral("DLVServerStopped")),
            std::make_shared<const DetailRecords>()};
}

QStringList DatabaseFeed::unitIds() const
{
    return m_unitIds;
}

QString DatabaseFeed::description() const
{
    return tr("Work-order database %1").arg(m_database->displayName());
}

QString DatabaseFeed::position() const
{
    return m_position;
}

#pragma once

#include "host/datafeed.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <memory>

class WorkOrderDatabase;
class WorkOrderSimulator;

/// Data from a work-order database (schema: src/host/sql/schema.sql; URL forms: see
/// WorkOrderDatabase). Every refresh reads the database afresh inside one read transaction:
/// the six tables of the data message are computed with SQL (GROUP BY over the technicians and
/// work orders of each unit, job type, class and status), and the work orders and technicians
/// behind them are read as the records the host lists for detail requests. Reading figures and
/// records from the same snapshot keeps a drill-down's list in step with the figure clicked,
/// even while another program changes the data. A refresh that fails (database gone, data the
/// control cannot take) sends "DLVServerStopped" and the next refresh tries again.
class DatabaseFeed final : public DataFeed
{
    Q_DECLARE_TR_FUNCTIONS(DatabaseFeed)

public:
    static constexpr int DefaultJeopardyMinutes = 30;

    /// Opens the database and reads the first refresh. Returns nothing, with a one-line reason
    /// in *error, for a URL that cannot be opened, missing tables or columns, or data the control
    /// cannot take. refreshSeconds gives "tqDBRefreshInterval" when the database's settings do
    /// not.
    /// With `simulate`, every refresh after the first moves the day on by one step first
    /// (WorkOrderSimulator, seeded with `seed`), through a connection of its own that writes.
    [[nodiscard]] static std::unique_ptr<DatabaseFeed> open(const QString &url, QString *error,
                                                            int refreshSeconds = 30,
                                                            bool simulate = false,
                                                            quint32 seed = 0);
    ~DatabaseFeed() override;

    [[nodiscard]] Frame next() override;
    [[nodiscard]] QStringList unitIds() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QString position() const override;

    /// Hours as the control's figures show them: two decimals at most, no trailing zeros.
    [[nodiscard]] static QString hoursText(qint64 minutes);

private:
    explicit DatabaseFeed(std::unique_ptr<WorkOrderDatabase> database, int refreshSeconds);

    /// One refresh, or an empty frame with the reason in *error.
    [[nodiscard]] Frame read(QString *error);

    std::unique_ptr<WorkOrderDatabase> m_database;
    std::unique_ptr<WorkOrderDatabase> m_writer;     // only while simulating
    std::unique_ptr<WorkOrderSimulator> m_simulator; // works through m_writer
    int m_refreshSeconds;
    Frame m_first; // read when opened, sent by the first next()
    bool m_firstPending = true;
    bool m_failed = false; // the last refresh could not read the database
    QStringList m_unitIds;
    QString m_position;
};

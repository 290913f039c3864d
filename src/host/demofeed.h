#pragma once

#include "host/datafeed.h"

#include <QRandomGenerator>
#include <QString>
#include <QTime>
#include <vector>

class QZWebMessage;

/// The built-in demo organisation: a field-service company ("#", "Dashlon Field Services") with
/// four regions, three districts a region and four crews a district, 25 technicians on each crew's
/// roster, ten job types and six job classes.
///
/// It simulates a working day: every on-duty technician has a plan of work orders with due times
/// and works through them in due order (work plus travel time); finished orders become completed
/// (now and then not done), a few are canceled, urgent calls arrive during the day, and orders
/// nobody reaches in time pass through warning and jeopardy to late. Each refresh moves the demo
/// clock on by ten minutes; after the evening a new day starts. The first refresh shows the day
/// in progress at 10:30. Everything is driven by one seeded generator, so a seed gives the same
/// figures every time. The counts sent are computed from the individual work-order and
/// technician records, which the host lists for the control's detail requests.
class DemoFeed final : public DataFeed
{
public:
    static constexpr quint32 DefaultSeed = 20240611;
    static constexpr int StepMinutes = 10;
    static constexpr int JeopardyMinutes = 30; ///< "tqJeopardyThreshold"
    static constexpr int WarningMinutes = 60;

    struct Unit
    {
        QString id;
        QString description;
        QString parent; ///< "#" for a region
        bool isCrew = false;
    };

    struct Code
    {
        QString code;
        QString description;
    };

    explicit DemoFeed(quint32 seed = DefaultSeed, int refreshSeconds = 30);
    ~DemoFeed() override;

    [[nodiscard]] Frame next() override;
    [[nodiscard]] QStringList unitIds() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QString position() const override;

    /// Moves the demo clock on by one step.
    void advance();
    /// The "DLVData" message of the current state.
    [[nodiscard]] std::shared_ptr<QZWebMessage> message() const;
    /// The records of the current state.
    [[nodiscard]] DetailRecords details() const;
    [[nodiscard]] QTime clock() const;
    [[nodiscard]] int day() const { return m_day; }

    [[nodiscard]] const std::vector<Unit> &units() const { return m_units; }
    [[nodiscard]] static const std::vector<Code> &jobTypes();
    /// The work of a job type: share of the planned work, minutes on site, points.
    struct JobTypeWork
    {
        int planWeight;
        int workMinutes;
        int points;
    };
    /// Per job type of jobTypes(), in the same order.
    [[nodiscard]] static const std::array<JobTypeWork, 10> &jobTypeWork();
    /// An index drawn from random with the chance of each index proportional to its weight.
    [[nodiscard]] static int weightedPick(QRandomGenerator &random,
                                          const std::vector<int> &weights);
    [[nodiscard]] static const std::vector<Code> &jobClasses();
    [[nodiscard]] static QString rootDescription();

private:
    struct Order
    {
        QString id;
        int crew = 0; // index into m_crews
        int jobType = 0;
        int jobClass = 0;
        int points = 0;
        int technician = -1; // index into m_technicians, -1 while unassigned
        int due = 0;         // minutes after midnight
        int workMinutes = 0; // work plus travel
        bool finished = false;
        DetailRecords::Status finalStatus = DetailRecords::Status::Completed;
    };

    struct Technician
    {
        QString id;
        QString name;
        int crew = 0;
        bool onDuty = true;
        int shiftStart = 0; // minutes after midnight
        int shiftLength = 0;
        int progress = 0;        // minutes spent on the current order
        std::vector<int> orders; // indices into m_orders, by due time
    };

    void buildOrganisation();
    void startDay();
    void addOrder(int crew, int technician, int jobType, int due);
    void step();
    [[nodiscard]] DetailRecords::Status statusOf(const Order &order) const;
    [[nodiscard]] double hoursWorked(const Technician &t) const;
    [[nodiscard]] double hoursRemaining(const Technician &t) const;
    [[nodiscard]] int weighted(const std::vector<int> &weights);

    QRandomGenerator m_random;
    int m_refreshSeconds;
    std::vector<Unit> m_units;
    std::vector<int> m_crews; // indices into m_units
    std::vector<Technician> m_technicians;
    std::vector<Order> m_orders;
    int m_clock = 0; // minutes after midnight
    int m_day = 0;
    int m_nextOrderNumber = 100001;
    bool m_started = false;
};

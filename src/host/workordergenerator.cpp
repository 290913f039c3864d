#include "host/workordergenerator.h"

#include "host/demofeed.h"
#include "host/workorderdatabase.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <array>

namespace {

struct DayDistrict
{
    const char16_t *code;
    const char16_t *city;
};

struct DayRegion
{
    const char16_t *code;
    const char16_t *name;
    std::array<DayDistrict, 3> districts;
};

const std::array<DayRegion, 3> kDayRegions = {{
    {u"LKS",
     u"Great Lakes Region",
     {{{u"CLE", u"Cleveland"}, {u"TOL", u"Toledo"}, {u"BUF", u"Buffalo"}}}},
    {u"PLN",
     u"Plains Region",
     {{{u"OMA", u"Omaha"}, {u"WIC", u"Wichita"}, {u"DSM", u"Des Moines"}}}},
    {u"PAC",
     u"Pacific Region",
     {{{u"PDX", u"Portland"}, {u"SAC", u"Sacramento"}, {u"SJC", u"San Jose"}}}},
}};

const std::array<const char16_t *, 3> kCrewNames = {u"North", u"Central", u"South"};

// The demo organisation's job types and their work; emergency call-outs (the last type) are
// never planned here, they come in only as urgent calls.
const std::array<DemoFeed::JobTypeWork, 10> &kDayJobTypes = DemoFeed::jobTypeWork();
constexpr int kDayRepair = 1;
constexpr int kDayEmergency = 9;
const std::vector<int> kDayClassWeights = {50, 20, 10, 8, 7, 5};

const std::array<const char16_t *, 24> kDayFirstNames = {
    u"Alice", u"Bruno",  u"Chen",  u"Dana",  u"Emil",  u"Farah",  u"Gus",   u"Hana",
    u"Ivan",  u"Joana",  u"Kofi",  u"Lena",  u"Mateo", u"Nina",   u"Oscar", u"Paula",
    u"Quinn", u"Rafael", u"Selma", u"Tomas", u"Uma",   u"Viktor", u"Wanda", u"Yusuf"};
const std::array<const char16_t *, 24> kDayLastNames = {
    u"Abbott",  u"Barros", u"Coleman",  u"Diaz",      u"Eriksen", u"Fischer", u"Gomes",  u"Hughes",
    u"Ibrahim", u"Jensen", u"Kowalski", u"Lindqvist", u"Moreau",  u"Novak",   u"Okafor", u"Park",
    u"Quist",   u"Rossi",  u"Sato",     u"Tanaka",    u"Ulrich",  u"Varga",   u"Weber",  u"Zhou"};
const std::array<const char16_t *, 12> kStreets = {
    u"Main St",     u"Oak Ave",   u"Maple Dr", u"Cedar Ln",  u"Pine St",  u"Elm St",
    u"Lakeview Rd", u"Park Blvd", u"Mill Rd",  u"Church St", u"River Rd", u"Hillcrest Dr"};
const std::array<const char16_t *, 8> kBusinesses = {u"Bakery",        u"Clinic",  u"Auto Repair",
                                                     u"Dental Office", u"Grocery", u"Warehouse",
                                                     u"Hotel",         u"School"};

constexpr int kShiftsStart = 7 * 60;
constexpr int kDayNoShift = 24 * 60;

QString dayText(const char16_t *text)
{
    return QString::fromUtf16(text);
}

DetailRecords::Status dayStatusByDue(int due, int clock)
{
    const int left = due - clock;
    if (left < 0)
        return DetailRecords::Status::Late;
    if (left <= WorkOrderGenerator::JeopardyMinutes)
        return DetailRecords::Status::Jeopardy;
    if (left <= WorkOrderGenerator::WarningMinutes)
        return DetailRecords::Status::Warning;
    return DetailRecords::Status::Open;
}

QString dayClockText(int minutes)
{
    return QStringLiteral("%1:%2")
        .arg(minutes / 60 % 24, 2, 10, QChar(u'0'))
        .arg(minutes % 60, 2, 10, QChar(u'0'));
}

} // namespace

WorkOrderGenerator::WorkOrderGenerator(quint32 seed, QTime clock, QDate date)
    : m_random(seed), m_clock(clock.isValid() ? clock.hour() * 60 + clock.minute() : 10 * 60 + 30),
      m_date(date.isValid() ? date : QDate(2026, 1, 1))
{
    buildUnits();
    buildRoster();
    planDay();
}

QString WorkOrderGenerator::companyName()
{
    return QStringLiteral("Lakeside Utility Services");
}

QString WorkOrderGenerator::statusText(DetailRecords::Status status)
{
    return DetailRecords::statusKey(status).mid(2); // "WOOpen" -> "Open"
}

int WorkOrderGenerator::weighted(const std::vector<int> &weights)
{
    return DemoFeed::weightedPick(m_random, weights);
}

QString WorkOrderGenerator::timestamp(int minutes) const
{
    // Plans are made the evening before: minutes before midnight fall on the day before.
    const int day = minutes >= 0 ? minutes / (24 * 60) : -1 - (-minutes - 1) / (24 * 60);
    return m_date.addDays(day).toString(QStringLiteral("yyyy-MM-dd")) + u' ' +
           dayClockText(minutes - day * 24 * 60);
}

void WorkOrderGenerator::buildUnits()
{
    for (const DayRegion &region : kDayRegions) {
        const QString regionId = dayText(region.code);
        m_units.push_back({regionId, dayText(region.name), QString()});
        for (const DayDistrict &district : region.districts) {
            const QString districtId = regionId + u'-' + dayText(district.code);
            m_units.push_back(
                {districtId, dayText(district.city) + QStringLiteral(" District"), regionId});
            for (std::size_t c = 0; c < kCrewNames.size(); ++c) {
                m_crews.push_back(int(m_units.size()));
                m_units.push_back({districtId + QStringLiteral("-%1").arg(c + 1),
                                   dayText(district.city) + u' ' + dayText(kCrewNames[c]) +
                                       QStringLiteral(" Crew"),
                                   districtId});
            }
        }
    }
}

void WorkOrderGenerator::buildRoster()
{
    // Every name once, dealt out in a seeded order.
    std::vector<int> names(kDayFirstNames.size() * kDayLastNames.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = int(i);
    for (std::size_t i = names.size() - 1; i > 0; --i)
        std::swap(names[i], names[m_random.bounded(quint32(i + 1))]);
    std::size_t next = 0;
    m_crewTechnicians.resize(m_crews.size());
    for (std::size_t c = 0; c < m_crews.size(); ++c) {
        const int size = 18 + int(m_random.bounded(5));
        for (int k = 0; k < size; ++k) {
            const int n = names[next % names.size()];
            Technician t;
            t.id = QStringLiteral("E%1").arg(20001 + int(next));
            t.name = dayText(kDayFirstNames[std::size_t(n) % kDayFirstNames.size()]) + u' ' +
                     dayText(kDayLastNames[std::size_t(n) / kDayFirstNames.size()]);
            t.buid = m_units[std::size_t(m_crews[c])].id;
            t.onDuty = m_random.bounded(100) >= 6; // leave, training, sickness
            const int start = kShiftsStart + 30 * int(m_random.bounded(5));
            const int length = (m_random.bounded(5) == 0 ? 10 : 8) * 60;
            t.shiftStart = t.onDuty ? start : kDayNoShift;
            t.shiftEnd = t.onDuty ? start + length : kDayNoShift;
            if (t.onDuty) {
                t.workedMinutes = std::clamp(m_clock - start, 0, length);
                t.remainingMinutes = length - t.workedMinutes;
            }
            m_crewTechnicians[c].push_back(int(m_technicians.size()));
            m_technicians.push_back(std::move(t));
            ++next;
        }
    }
}

void WorkOrderGenerator::addOrder(int crew, int technician, int jobType, int created, int due)
{
    const DemoFeed::JobTypeWork &profile = kDayJobTypes[std::size_t(jobType)];
    WorkOrder o;
    o.id = QStringLiteral("WO%1").arg(m_nextOrder++);
    o.buid = m_units[std::size_t(m_crews[std::size_t(crew)])].id;
    o.jobType = DemoFeed::jobTypes()[std::size_t(jobType)].code;
    const int jobClass = weighted(kDayClassWeights);
    o.jobClass = DemoFeed::jobClasses()[std::size_t(jobClass)].code;
    // Enterprise and industrial customers have larger jobs.
    o.points = profile.points + (jobClass == 2 || jobClass == 3 ? 1 : 0);
    o.technician = technician;
    o.created = created;
    o.due = due;
    const QString city = m_units[std::size_t(m_crews[std::size_t(crew)])].description.section(
        u' ', 0, -3); // "Des Moines North Crew" -> "Des Moines"
    o.address = QStringLiteral("%1 %2, %3")
                    .arg(10 + m_random.bounded(9990))
                    .arg(dayText(kStreets[m_random.bounded(quint32(kStreets.size()))]), city);
    if (jobClass == 0)
        o.customer = dayText(kDayFirstNames[m_random.bounded(quint32(kDayFirstNames.size()))]) +
                     u' ' + dayText(kDayLastNames[m_random.bounded(quint32(kDayLastNames.size()))]);
    else
        o.customer = dayText(kDayLastNames[m_random.bounded(quint32(kDayLastNames.size()))]) +
                     u' ' + dayText(kBusinesses[m_random.bounded(quint32(kBusinesses.size()))]);
    m_orders.push_back(std::move(o));
}

void WorkOrderGenerator::planDay()
{
    std::vector<int> planWeights;
    for (const DemoFeed::JobTypeWork &p : kDayJobTypes)
        planWeights.push_back(p.planWeight);
    planWeights.back() = 0; // emergency call-outs only come in as urgent calls

    for (std::size_t c = 0; c < m_crews.size(); ++c) {
        // The plan made the evening before: orders spread over each shift.
        for (int index : m_crewTechnicians[c]) {
            const Technician &t = m_technicians[std::size_t(index)];
            if (!t.onDuty)
                continue;
            const int planned = 5 + int(m_random.bounded(4));
            const int length = t.shiftEnd - t.shiftStart;
            const std::size_t first = m_orders.size();
            for (int k = 0; k < planned; ++k) {
                const int slot = length * (k + 1) / (planned + 1);
                const int due = t.shiftStart + slot + 45 + 5 * (int(m_random.bounded(9)) - 4);
                addOrder(int(c), index, weighted(planWeights), -5 * 60 + 17 * k, due);
            }
            // The technician works through them in due order until the clock or the shift's end.
            std::vector<std::size_t> byDue;
            for (std::size_t o = first; o < m_orders.size(); ++o)
                byDue.push_back(o);
            std::stable_sort(byDue.begin(), byDue.end(), [this](std::size_t a, std::size_t b) {
                return m_orders[a].due < m_orders[b].due;
            });
            int at = t.shiftStart;
            bool busy = false; // the current order is not finished yet
            for (std::size_t o : byDue) {
                WorkOrder &order = m_orders[o];
                if (m_random.bounded(100) < 2) {
                    order.status = DetailRecords::Status::Canceled;
                    continue;
                }
                const auto type = std::find_if(
                    DemoFeed::jobTypes().begin(), DemoFeed::jobTypes().end(),
                    [&order](const DemoFeed::Code &code) { return code.code == order.jobType; });
                const int base =
                    kDayJobTypes[std::size_t(type - DemoFeed::jobTypes().begin())].workMinutes;
                const int minutes = base + int(m_random.bounded(base / 2 + 1)) - base / 4 + 15 +
                                    int(m_random.bounded(16)); // work plus travel
                if (!busy && at + minutes <= std::min(m_clock, t.shiftEnd)) {
                    at += minutes;
                    order.completed = at;
                    order.status = m_random.bounded(100) < 7 ? DetailRecords::Status::NotDone
                                                             : DetailRecords::Status::Completed;
                } else {
                    busy = true;
                    order.status = dayStatusByDue(order.due, m_clock);
                }
            }
        }

        // Urgent calls of the morning: most went to a technician on shift, the latest may wait.
        for (int arrival = kShiftsStart + 20; arrival < m_clock; arrival += 40) {
            if (m_random.bounded(100) >= 45)
                continue;
            const int type = m_random.bounded(2) == 0 ? kDayEmergency : kDayRepair;
            const int created = arrival + int(m_random.bounded(40));
            if (created >= m_clock)
                continue;
            const int due = created + 120 + 10 * int(m_random.bounded(12));
            std::vector<int> onShift;
            for (int index : m_crewTechnicians[c]) {
                const Technician &t = m_technicians[std::size_t(index)];
                if (t.onDuty && t.shiftStart <= created && t.shiftEnd >= due - 30)
                    onShift.push_back(index);
            }
            const bool waiting = onShift.empty() || m_clock - created < 20;
            const int technician =
                waiting ? -1 : onShift[m_random.bounded(quint32(onShift.size()))];
            addOrder(int(c), technician, type, created, due);
            WorkOrder &order = m_orders.back();
            const int finish = created + kDayJobTypes[std::size_t(type)].workMinutes + 30;
            if (technician >= 0 && finish <= m_clock && m_random.bounded(100) < 80) {
                order.completed = finish;
                order.status = DetailRecords::Status::Completed;
            } else {
                order.status = dayStatusByDue(due, m_clock);
            }
        }
    }
}

QString WorkOrderGenerator::write(WorkOrderDatabase &database) const
{
    if (database.hasAnyTable())
        return tr("%1 holds work-order tables already; give a new file or an empty database")
            .arg(database.displayName());
    if (QString problem = database.createSchema(); !problem.isEmpty())
        return problem;

    QSqlDatabase db = database.database();
    if (!db.transaction())
        return tr("cannot start a transaction: %1").arg(db.lastError().text().simplified());
    QString problem;
    auto insert = [&db, &problem](const QString &sql, const QVariantList &values) {
        if (!problem.isEmpty())
            return;
        QSqlQuery query(db);
        query.prepare(sql);
        for (const QVariant &v : values)
            query.addBindValue(v);
        if (!query.exec())
            problem = tr("cannot write the data: %1").arg(query.lastError().text().simplified());
    };
    // Prepared once per table: thousands of rows go through one statement each.
    auto insertAll = [&db, &problem](const QString &sql, int count, auto &&values) {
        if (!problem.isEmpty())
            return;
        QSqlQuery query(db);
        if (!query.prepare(sql)) {
            problem = tr("cannot write the data: %1").arg(query.lastError().text().simplified());
            return;
        }
        for (int i = 0; i < count; ++i) {
            const QVariantList row = values(i);
            for (int k = 0; k < row.size(); ++k)
                query.bindValue(k, row[k]);
            if (!query.exec()) {
                problem =
                    tr("cannot write the data: %1").arg(query.lastError().text().simplified());
                return;
            }
        }
    };
    const QVariant null = QVariant(QMetaType::fromType<QString>());

    insert(QStringLiteral("INSERT INTO settings (name, value) VALUES (?, ?)"),
           {QStringLiteral("refresh_interval_minutes"), QStringLiteral("0.5")});
    insert(QStringLiteral("INSERT INTO settings (name, value) VALUES (?, ?)"),
           {QStringLiteral("jeopardy_threshold_minutes"), QString::number(JeopardyMinutes)});
    insert(QStringLiteral("INSERT INTO settings (name, value) VALUES (?, ?)"),
           {QStringLiteral("company_name"), companyName()});
    // The moment the records describe; --db-simulate moves it on.
    insert(QStringLiteral("INSERT INTO settings (name, value) VALUES (?, ?)"),
           {QStringLiteral("clock"), timestamp(m_clock)});
    for (const auto &[language, format] :
         {std::pair{"EN", "h:nn AM/PM"}, std::pair{"PO", "hh:nn"}, std::pair{"SP", "hh:nn"}})
        insert(QStringLiteral("INSERT INTO regional_formats (language_code, time_format) "
                              "VALUES (?, ?)"),
               {QString::fromLatin1(language), QString::fromLatin1(format)});
    for (const DemoFeed::Code &c : DemoFeed::jobTypes())
        insert(QStringLiteral("INSERT INTO job_types (code, description) VALUES (?, ?)"),
               {c.code, c.description});
    for (const DemoFeed::Code &c : DemoFeed::jobClasses())
        insert(QStringLiteral("INSERT INTO job_classes (code, description) VALUES (?, ?)"),
               {c.code, c.description});
    // Parents come before their children, as the foreign key wants.
    insertAll(QStringLiteral("INSERT INTO business_units (id, description, parent_id) "
                             "VALUES (?, ?, ?)"),
              int(m_units.size()), [&](int i) {
                  const Unit &u = m_units[std::size_t(i)];
                  return QVariantList{u.id, u.description,
                                      u.parentId.isEmpty() ? null : QVariant(u.parentId)};
              });
    insertAll(QStringLiteral("INSERT INTO technicians (id, name, bu_id, on_duty, shift_start, "
                             "shift_end, worked_minutes, remaining_minutes) "
                             "VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
              int(m_technicians.size()), [&](int i) {
                  const Technician &t = m_technicians[std::size_t(i)];
                  return QVariantList{t.id,
                                      t.name,
                                      t.buid,
                                      t.onDuty ? 1 : 0,
                                      t.onDuty ? QVariant(timestamp(t.shiftStart)) : null,
                                      t.onDuty ? QVariant(timestamp(t.shiftEnd)) : null,
                                      t.workedMinutes,
                                      t.remainingMinutes};
              });
    insertAll(QStringLiteral("INSERT INTO work_orders (id, bu_id, job_type, job_class, status, "
                             "points, technician_id, customer, address, created_at, due_at, "
                             "completed_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
              int(m_orders.size()), [&](int i) {
                  const WorkOrder &o = m_orders[std::size_t(i)];
                  return QVariantList{o.id,
                                      o.buid,
                                      o.jobType,
                                      o.jobClass,
                                      statusText(o.status),
                                      o.points,
                                      o.technician >= 0
                                          ? QVariant(m_technicians[std::size_t(o.technician)].id)
                                          : null,
                                      o.customer,
                                      o.address,
                                      timestamp(o.created),
                                      timestamp(o.due),
                                      o.completed >= 0 ? QVariant(timestamp(o.completed)) : null};
              });
    if (!problem.isEmpty()) {
        db.rollback();
        return problem;
    }
    if (!db.commit())
        return tr("cannot write the data: %1").arg(db.lastError().text().simplified());
    return {};
}

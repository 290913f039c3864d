#include "host/demofeed.h"

#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QCoreApplication>
#include <QHash>
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>

namespace {

constexpr int kDayStart = 7 * 60;           // first shifts start at 07:00
constexpr int kFirstRefresh = 10 * 60 + 30; // the demo opens on a day in progress
constexpr int kDayEnd = 19 * 60;            // after the late shift a new day starts
constexpr int kLastArrival = 15 * 60;       // urgent calls come in until mid-afternoon
constexpr int kRoster = 25;

struct District
{
    const char16_t *code;
    const char16_t *city;
    std::array<const char16_t *, 4> crews;
};

struct Region
{
    const char16_t *code;
    const char16_t *name;
    std::array<District, 3> districts;
};

const std::array<Region, 4> kRegions = {{
    {u"NE",
     u"Northeast Region",
     {{{u"BOS", u"Boston", {u"Dorchester", u"Cambridge", u"Quincy", u"Newton"}},
       {u"HFD", u"Hartford", {u"West Hartford", u"New Britain", u"Middletown", u"Bristol"}},
       {u"ALB", u"Albany", {u"Troy", u"Schenectady", u"Saratoga", u"Colonie"}}}}},
    {u"SE",
     u"Southeast Region",
     {{{u"ATL", u"Atlanta", {u"Decatur", u"Marietta", u"Sandy Springs", u"Peachtree City"}},
       {u"CLT", u"Charlotte", {u"Concord", u"Gastonia", u"Matthews", u"Huntersville"}},
       {u"ORL", u"Orlando", {u"Kissimmee", u"Winter Park", u"Sanford", u"Lake Mary"}}}}},
    {u"MW",
     u"Midwest Region",
     {{{u"CHI", u"Chicago", {u"Evanston", u"Oak Park", u"Naperville", u"Joliet"}},
       {u"DET", u"Detroit", {u"Dearborn", u"Sterling Heights", u"Warren", u"Livonia"}},
       {u"MSP", u"Minneapolis", {u"St. Paul", u"Bloomington", u"Edina", u"Plymouth"}}}}},
    {u"WE",
     u"West Region",
     {{{u"DEN", u"Denver", {u"Aurora", u"Lakewood", u"Boulder", u"Littleton"}},
       {u"PHX", u"Phoenix", {u"Mesa", u"Tempe", u"Scottsdale", u"Glendale"}},
       {u"SEA", u"Seattle", {u"Bellevue", u"Tacoma", u"Everett", u"Redmond"}}}}},
}};

const std::array<DemoFeed::JobTypeWork, 10> kJobTypeProfiles = {{
    {15, 90, 5}, // INST
    {20, 60, 3}, // REP
    {15, 45, 2}, // MAINT
    {10, 30, 1}, // INSP
    {5, 20, 1},  // DISC
    {5, 20, 1},  // RECON
    {8, 75, 4},  // UPG
    {10, 40, 2}, // METER
    {5, 40, 2},  // SURV
    {2, 60, 3},  // EMRG: mostly arrives during the day
}};
constexpr int kRepair = 1;
constexpr int kEmergency = 9;

const std::vector<int> kClassWeights = {50, 20, 10, 8, 7, 5};

const std::array<const char16_t *, 40> kFirstNames = {
    u"James",  u"Maria",   u"Robert", u"Ana",   u"Michael", u"Sofia",  u"David",  u"Laura",
    u"John",   u"Lucia",   u"Daniel", u"Emma",  u"Carlos",  u"Olivia", u"Thomas", u"Isabel",
    u"Joseph", u"Fatima",  u"Kevin",  u"Grace", u"Miguel",  u"Chloe",  u"Samuel", u"Hannah",
    u"Paulo",  u"Beatriz", u"Andrew", u"Mei",   u"Ryan",    u"Priya",  u"Marcus", u"Elena",
    u"Jorge",  u"Nora",    u"Ethan",  u"Aisha", u"Lucas",   u"Rachel", u"Tyler",  u"Camila"};

const std::array<const char16_t *, 40> kLastNames = {
    u"Smith",   u"Johnson",  u"Garcia", u"Miller", u"Davis",  u"Rodriguez", u"Martinez",
    u"Wilson",  u"Anderson", u"Taylor", u"Thomas", u"Moore",  u"Jackson",   u"Martin",
    u"Lee",     u"Thompson", u"White",  u"Harris", u"Clark",  u"Lewis",     u"Walker",
    u"Hall",    u"Allen",    u"Young",  u"King",   u"Wright", u"Lopez",     u"Hill",
    u"Scott",   u"Green",    u"Adams",  u"Baker",  u"Nelson", u"Carter",    u"Mitchell",
    u"Pereira", u"Silva",    u"Santos", u"Costa",  u"Nguyen"};

QString str(const char16_t *text)
{
    return QString::fromUtf16(text);
}

// Hours as the server writes them: at most two decimals, no trailing zeros.
QString hoursText(double hours)
{
    QString text = QString::number(std::round(hours * 100.0) / 100.0, 'f', 2);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    return text;
}

} // namespace

DemoFeed::DemoFeed(quint32 seed, int refreshSeconds)
    : m_random(seed), m_refreshSeconds(std::max(1, refreshSeconds))
{
    buildOrganisation();
    startDay();
    while (m_clock < kFirstRefresh)
        step();
}

DemoFeed::~DemoFeed() = default;

const std::array<DemoFeed::JobTypeWork, 10> &DemoFeed::jobTypeWork()
{
    return kJobTypeProfiles;
}

const std::vector<DemoFeed::Code> &DemoFeed::jobTypes()
{
    static const std::vector<Code> types = {
        {QStringLiteral("INST"), QStringLiteral("Installation")},
        {QStringLiteral("REP"), QStringLiteral("Repair")},
        {QStringLiteral("MAINT"), QStringLiteral("Preventive maintenance")},
        {QStringLiteral("INSP"), QStringLiteral("Inspection")},
        {QStringLiteral("DISC"), QStringLiteral("Disconnection")},
        {QStringLiteral("RECON"), QStringLiteral("Reconnection")},
        {QStringLiteral("UPG"), QStringLiteral("Service upgrade")},
        {QStringLiteral("METER"), QStringLiteral("Meter replacement")},
        {QStringLiteral("SURV"), QStringLiteral("Site survey")},
        {QStringLiteral("EMRG"), QStringLiteral("Emergency call-out")},
    };
    return types;
}

const std::vector<DemoFeed::Code> &DemoFeed::jobClasses()
{
    static const std::vector<Code> classes = {
        {QStringLiteral("RES"), QStringLiteral("Residential")},
        {QStringLiteral("SMB"), QStringLiteral("Small business")},
        {QStringLiteral("ENT"), QStringLiteral("Enterprise")},
        {QStringLiteral("IND"), QStringLiteral("Industrial")},
        {QStringLiteral("PUB"), QStringLiteral("Public sector")},
        {QStringLiteral("KEY"), QStringLiteral("Key account")},
    };
    return classes;
}

QString DemoFeed::rootDescription()
{
    return QStringLiteral("Dashlon Field Services");
}

void DemoFeed::buildOrganisation()
{
    for (const Region &region : kRegions) {
        const QString regionId = str(region.code);
        m_units.push_back({regionId, str(region.name), QStringLiteral("#"), false});
        for (const District &district : region.districts) {
            const QString districtId = regionId + u'-' + str(district.code);
            m_units.push_back(
                {districtId, str(district.city) + QStringLiteral(" District"), regionId, false});
            int n = 0;
            for (const char16_t *crew : district.crews) {
                m_crews.push_back(int(m_units.size()));
                m_units.push_back({districtId + QStringLiteral("-%1").arg(++n, 2, 10, QChar(u'0')),
                                   str(crew) + QStringLiteral(" Crew"), districtId, true});
            }
        }
    }

    // A fixed roster: every name once, dealt out to the crews in a seeded order.
    std::vector<int> names(kFirstNames.size() * kLastNames.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = int(i);
    for (std::size_t i = names.size() - 1; i > 0; --i)
        std::swap(names[i], names[m_random.bounded(quint32(i + 1))]);
    int next = 0;
    for (std::size_t c = 0; c < m_crews.size(); ++c) {
        for (int k = 0; k < kRoster; ++k) {
            const int n = names[std::size_t(next)];
            Technician t;
            t.id = QStringLiteral("T%1").arg(10001 + next);
            t.name = str(kFirstNames[std::size_t(n) % kFirstNames.size()]) + u' ' +
                     str(kLastNames[std::size_t(n) / kFirstNames.size()]);
            t.crew = int(c);
            m_technicians.push_back(std::move(t));
            ++next;
        }
    }
}

int DemoFeed::weighted(const std::vector<int> &weights)
{
    return weightedPick(m_random, weights);
}

int DemoFeed::weightedPick(QRandomGenerator &random, const std::vector<int> &weights)
{
    int total = 0;
    for (int w : weights)
        total += w;
    int pick = int(random.bounded(total));
    for (std::size_t i = 0; i < weights.size(); ++i) {
        if (pick < weights[i])
            return int(i);
        pick -= weights[i];
    }
    return int(weights.size()) - 1;
}

void DemoFeed::addOrder(int crew, int technician, int jobType, int due)
{
    const JobTypeWork &profile = kJobTypeProfiles[std::size_t(jobType)];
    Order order;
    order.id = QStringLiteral("WO%1").arg(m_nextOrderNumber++);
    order.crew = crew;
    order.jobType = jobType;
    order.jobClass = weighted(kClassWeights);
    // Larger customers have larger jobs.
    order.points = profile.points + (order.jobClass == 2 || order.jobClass == 3 ? 1 : 0);
    order.technician = technician;
    order.due = due;
    const int jitter = int(m_random.bounded(profile.workMinutes / 2 + 1)) - profile.workMinutes / 4;
    order.workMinutes = profile.workMinutes + jitter + 15 + int(m_random.bounded(16)); // + travel
    m_orders.push_back(order);
    if (technician >= 0) {
        auto &list = m_technicians[std::size_t(technician)].orders;
        const int index = int(m_orders.size()) - 1;
        const auto at = std::upper_bound(list.begin(), list.end(), index, [this](int a, int b) {
            return m_orders[std::size_t(a)].due < m_orders[std::size_t(b)].due;
        });
        list.insert(at, index);
    }
}

void DemoFeed::startDay()
{
    ++m_day;
    m_clock = kDayStart;
    m_orders.clear();
    std::vector<int> planWeights;
    for (const JobTypeWork &p : kJobTypeProfiles)
        planWeights.push_back(p.planWeight);

    for (std::size_t i = 0; i < m_technicians.size(); ++i) {
        Technician &t = m_technicians[i];
        t.orders.clear();
        t.progress = 0;
        t.onDuty = m_random.bounded(100) >= 6; // leave, training, sickness
        // Staggered starts; a few work four long days a week.
        t.shiftStart = kDayStart + 30 * int(m_random.bounded(5));
        t.shiftLength = (m_random.bounded(5) == 0 ? 10 : 8) * 60;
        if (!t.onDuty)
            continue;
        const int planned = 5 + int(m_random.bounded(4));
        for (int k = 0; k < planned; ++k) {
            const int slot = t.shiftLength * (k + 1) / (planned + 1);
            const int due = t.shiftStart + slot + 45 + 5 * (int(m_random.bounded(9)) - 4);
            addOrder(t.crew, int(i), weighted(planWeights), due);
        }
    }
}

DetailRecords::Status DemoFeed::statusOf(const Order &order) const
{
    if (order.finished)
        return order.finalStatus;
    const int left = order.due - m_clock;
    if (left < 0)
        return DetailRecords::Status::Late;
    if (left <= JeopardyMinutes)
        return DetailRecords::Status::Jeopardy;
    if (left <= WarningMinutes)
        return DetailRecords::Status::Warning;
    return DetailRecords::Status::Open;
}

double DemoFeed::hoursWorked(const Technician &t) const
{
    const int worked = std::clamp(m_clock - t.shiftStart, 0, t.shiftLength);
    return worked / 60.0;
}

double DemoFeed::hoursRemaining(const Technician &t) const
{
    return t.shiftLength / 60.0 - hoursWorked(t);
}

void DemoFeed::step()
{
    const int from = m_clock;
    const int to = m_clock + StepMinutes;

    // Customers cancel now and then.
    for (Order &o : m_orders)
        if (!o.finished && m_random.bounded(1000) < 3) {
            o.finished = true;
            o.finalStatus = DetailRecords::Status::Canceled;
        }

    // Urgent calls arrive and go to the technician with the least open work who is on shift
    // long enough to reach them; when nobody is, the order waits unassigned.
    if (from < kLastArrival) {
        for (std::size_t c = 0; c < m_crews.size(); ++c) {
            if (m_random.bounded(100) >= 35)
                continue;
            const int type = m_random.bounded(2) == 0 ? kEmergency : kRepair;
            const int due = to + 90 + 10 * int(m_random.bounded(16));
            int best = -1;
            int bestOpen = 0;
            for (std::size_t i = c * kRoster; i < (c + 1) * kRoster; ++i) {
                const Technician &t = m_technicians[i];
                if (!t.onDuty || t.shiftStart > from || t.shiftStart + t.shiftLength < due - 30)
                    continue;
                int open = 0;
                for (int o : t.orders)
                    open += m_orders[std::size_t(o)].finished ? 0 : 1;
                if (best < 0 || open < bestOpen) {
                    best = int(i);
                    bestOpen = open;
                }
            }
            addOrder(int(c), best, type, due);
        }
    }

    // Everybody on shift works through their orders in due order.
    for (Technician &t : m_technicians) {
        if (!t.onDuty)
            continue;
        int budget = std::min(to, t.shiftStart + t.shiftLength) - std::max(from, t.shiftStart);
        for (int index : t.orders) {
            if (budget <= 0)
                break;
            Order &o = m_orders[std::size_t(index)];
            if (o.finished)
                continue;
            const int need = o.workMinutes - t.progress;
            if (budget < need) {
                t.progress += budget;
                budget = 0;
                break;
            }
            budget -= need;
            t.progress = 0;
            o.finished = true;
            o.finalStatus = m_random.bounded(100) < 7 ? DetailRecords::Status::NotDone
                                                      : DetailRecords::Status::Completed;
        }
    }
    m_clock = to;
}

void DemoFeed::advance()
{
    if (m_clock + StepMinutes > kDayEnd)
        startDay();
    else
        step();
}

DataFeed::Frame DemoFeed::next()
{
    if (m_started)
        advance();
    m_started = true;
    return {message(), std::make_shared<const DetailRecords>(details())};
}

QStringList DemoFeed::unitIds() const
{
    QStringList ids;
    for (const Unit &u : m_units)
        ids.append(u.id);
    return ids;
}

QString DemoFeed::description() const
{
    return QCoreApplication::translate("DemoFeed", "Demo organisation");
}

QString DemoFeed::position() const
{
    return QCoreApplication::translate("DemoFeed", "demo day %1, %2")
        .arg(m_day)
        .arg(clock().toString(QStringLiteral("HH:mm")));
}

QTime DemoFeed::clock() const
{
    return QTime(m_clock / 60, m_clock % 60);
}

DetailRecords DemoFeed::details() const
{
    DetailRecords records;
    records.workOrders.reserve(m_orders.size());
    for (const Order &o : m_orders) {
        DetailRecords::WorkOrder wo;
        wo.id = o.id;
        wo.buid = m_units[std::size_t(m_crews[std::size_t(o.crew)])].id;
        wo.jobType = jobTypes()[std::size_t(o.jobType)].code;
        wo.jobClass = jobClasses()[std::size_t(o.jobClass)].code;
        wo.status = statusOf(o);
        wo.points = o.points;
        if (o.technician >= 0)
            wo.technician = m_technicians[std::size_t(o.technician)].name;
        wo.due = QTime(o.due / 60 % 24, o.due % 60);
        records.workOrders.push_back(std::move(wo));
    }
    for (const Technician &t : m_technicians) {
        if (!t.onDuty)
            continue;
        records.technicians.push_back({t.id, t.name,
                                       m_units[std::size_t(m_crews[std::size_t(t.crew)])].id,
                                       hoursWorked(t), hoursRemaining(t)});
    }
    return records;
}

std::shared_ptr<QZWebMessage> DemoFeed::message() const
{
    auto data = std::make_shared<QZWebData>();

    QZWebTable units(
        QStringLiteral("BusinessUnits"),
        {QStringLiteral("BUID"), QStringLiteral("BUDesc"), QStringLiteral("ParentBUID")});
    units.appendRow({QStringLiteral("#"), rootDescription(), QStringLiteral("#")});
    for (const Unit &u : m_units)
        units.appendRow({u.id, u.description, u.parent});
    data->addTable(std::move(units));

    QZWebTable types(QStringLiteral("JobTypes"),
                     {QStringLiteral("JobType"), QStringLiteral("JobTypeDesc")});
    for (const Code &c : jobTypes())
        types.appendRow({c.code, c.description});
    data->addTable(std::move(types));

    QZWebTable classes(QStringLiteral("JobClasses"),
                       {QStringLiteral("JobClass"), QStringLiteral("JobClassDesc")});
    for (const Code &c : jobClasses())
        classes.appendRow({c.code, c.description});
    data->addTable(std::move(classes));

    QZWebTable formats(QStringLiteral("RegionalFormats"),
                       {QStringLiteral("languageCode"), QStringLiteral("timeformat")});
    formats.appendRow({QStringLiteral("EN"), QStringLiteral("h:nn AM/PM")});
    formats.appendRow({QStringLiteral("PO"), QStringLiteral("hh:nn")});
    formats.appendRow({QStringLiteral("SP"), QStringLiteral("hh:nn")});
    data->addTable(std::move(formats));

    // Unit figures from the technicians on duty.
    struct Crew
    {
        int techs = 0;
        double worked = 0;
        double remaining = 0;
    };
    std::vector<Crew> crews(m_crews.size());
    for (const Technician &t : m_technicians) {
        if (!t.onDuty)
            continue;
        Crew &c = crews[std::size_t(t.crew)];
        ++c.techs;
        c.worked += hoursWorked(t);
        c.remaining += hoursRemaining(t);
    }
    QZWebTable general(QStringLiteral("BUGeneralInfo"),
                       {QStringLiteral("BUID"), QStringLiteral("BUDesc"),
                        QStringLiteral("TechCount"), QStringLiteral("HoursWorked"),
                        QStringLiteral("HoursRemaining")});
    std::vector<int> crewOfUnit(m_units.size(), -1);
    for (std::size_t c = 0; c < m_crews.size(); ++c)
        crewOfUnit[std::size_t(m_crews[c])] = int(c);
    for (std::size_t u = 0; u < m_units.size(); ++u) {
        // Regions and districts have no technicians of their own; their figures are the sums
        // of their crews, which the control forms from the hierarchy.
        const Crew c = crewOfUnit[u] >= 0 ? crews[std::size_t(crewOfUnit[u])] : Crew{};
        general.appendRow({m_units[u].id, m_units[u].description, QString::number(c.techs),
                           hoursText(c.worked), hoursText(c.remaining)});
    }
    data->addTable(std::move(general));

    // Counters per crew, job type and class, from the orders themselves.
    using Key = std::tuple<int, int, int>; // crew, type, class
    std::map<Key, std::array<int, 2 * DetailRecords::StatusCount>> counters;
    for (const Order &o : m_orders) {
        auto &c = counters[{o.crew, o.jobType, o.jobClass}];
        const int s = int(statusOf(o));
        c[std::size_t(s)] += 1;
        c[std::size_t(s + DetailRecords::StatusCount)] += o.points;
    }
    QStringList detailColumns = {QStringLiteral("BUID"), QStringLiteral("JobType"),
                                 QStringLiteral("JobClass")};
    for (const char *prefix : {"WO", "Pts"})
        for (const char *status :
             {"Open", "Warning", "Jeopardy", "Late", "Completed", "Canceled", "NotDone"})
            detailColumns.append(QString::fromLatin1(prefix) + QString::fromLatin1(status));
    QZWebTable detail(QStringLiteral("BUDetailsInfo"), detailColumns);
    detail.reserve(int(counters.size()), 0);
    for (const auto &[key, values] : counters) {
        const auto [crew, type, cls] = key;
        QStringList row = {m_units[std::size_t(m_crews[std::size_t(crew)])].id,
                           jobTypes()[std::size_t(type)].code, jobClasses()[std::size_t(cls)].code};
        for (int v : values)
            row.append(QString::number(v));
        detail.appendRow(row);
    }
    data->addTable(std::move(detail));

    auto message = std::make_shared<QZWebMessage>(QStringLiteral("DLVData"));
    // Minutes, as the server writes its own interval; it matches the host's refresh timer.
    message->setProperty(QStringLiteral("tqDBRefreshInterval"),
                         QString::number(m_refreshSeconds / 60.0, 'g', 6));
    message->setProperty(QStringLiteral("tqJeopardyThreshold"), QString::number(JeopardyMinutes));
    message->addData(std::move(data));
    return message;
}

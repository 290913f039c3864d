#include "datagenerator.h"

#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

// Units per level 1..depth, growing geometrically so that the deepest level holds most units,
// as in a real organisation.
std::vector<int> levelSizes(int units, int depth)
{
    std::vector<int> sizes;
    if (units <= 0)
        return sizes;
    depth = std::clamp(depth, 1, units);
    double branching = 1.0;
    const auto total = [&](double b) {
        double sum = 0;
        for (int l = 1; l <= depth; ++l)
            sum += std::max(1.0, std::floor(std::pow(b, l)));
        return sum;
    };
    while (total(branching + 0.01) <= units)
        branching += 0.01;
    int placed = 0;
    for (int l = 1; l <= depth; ++l) {
        int size = int(std::max(1.0, std::floor(std::pow(branching, l))));
        size = std::min(size, units - placed - (depth - l));
        sizes.push_back(size);
        placed += size;
    }
    sizes.back() += units - placed;
    return sizes;
}

QString number(int value)
{
    return QString::number(value);
}

} // namespace

std::shared_ptr<QZWebMessage> DataGenerator::generate() const
{
    const Options &o = m_options;
    std::mt19937 rng(o.seed);
    const auto below = [&rng](int n) { return int(rng() % quint32(std::max(n, 1))); };

    QZWebTable units(QStringLiteral("BusinessUnits"), {"BUID", "BUDesc", "ParentBUID"});
    QZWebTable general(QStringLiteral("BUGeneralInfo"),
                       {"BUID", "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"});
    units.reserve(o.units + 1, qsizetype(o.units + 1) * 24);
    general.reserve(o.units, qsizetype(o.units) * 32);
    units.appendRow({"#", "All business units", "#"});

    std::vector<QString> ids;
    ids.reserve(std::size_t(std::max(o.units, 0)));
    int previousBegin = -1;
    int previousEnd = -1;
    int level = 1;
    for (const int size : levelSizes(o.units, o.depth)) {
        const int begin = int(ids.size());
        for (int k = 0; k < size; ++k) {
            const QString id = QStringLiteral("BU%1").arg(ids.size() + 1, 6, 10, QLatin1Char('0'));
            const QString parent =
                previousBegin < 0
                    ? QStringLiteral("#")
                    : ids[std::size_t(previousBegin + below(previousEnd - previousBegin))];
            const QString desc =
                QStringLiteral("Unit %1 (level %2)").arg(ids.size() + 1).arg(level);
            units.appendRow({id, desc, parent});
            general.appendRow({id, desc, number(below(30)),
                               QStringLiteral("%1.%2").arg(below(200)).arg(below(10)),
                               number(below(200))});
            ids.push_back(id);
        }
        previousBegin = begin;
        previousEnd = int(ids.size());
        ++level;
    }

    QZWebTable jobTypes(QStringLiteral("JobTypes"), {"JobType", "JobTypeDesc"});
    for (int t = 1; t <= o.jobTypes; ++t)
        jobTypes.appendRow({QStringLiteral("JT%1").arg(t), QStringLiteral("Job type %1").arg(t)});
    QZWebTable jobClasses(QStringLiteral("JobClasses"), {"JobClass", "JobClassDesc"});
    for (int c = 1; c <= o.jobClasses; ++c)
        jobClasses.appendRow(
            {QStringLiteral("JC%1").arg(c), QStringLiteral("Job class %1").arg(c)});
    QZWebTable formats(QStringLiteral("RegionalFormats"), {"languageCode", "timeformat"});
    formats.appendRow({"EN", "h:nn AMPM"});
    formats.appendRow({"PO", "hh:nn"});
    formats.appendRow({"SP", "hh:nn"});

    QStringList detailColumns{"BUID", "JobType", "JobClass"};
    detailColumns << QStringList{"WOOpen",      "WOWarning",   "WOJeopardy", "WOLate",
                                 "WOCompleted", "WOCanceled",  "WONotDone",  "PtsOpen",
                                 "PtsWarning",  "PtsJeopardy", "PtsLate",    "PtsCompleted",
                                 "PtsCanceled", "PtsNotDone"};
    QZWebTable details(QStringLiteral("BUDetailsInfo"), detailColumns);
    details.reserve(o.detailRows, qsizetype(o.detailRows) * 40);
    if (!ids.empty() && o.jobTypes > 0 && o.jobClasses > 0) {
        QStringList row;
        for (int r = 0; r < o.detailRows; ++r) {
            row.clear();
            row << ids[std::size_t(below(int(ids.size())))]
                << QStringLiteral("JT%1").arg(below(o.jobTypes) + 1)
                << QStringLiteral("JC%1").arg(below(o.jobClasses) + 1);
            for (int s = 0; s < 14; ++s)
                row << number(below(s < 7 ? 20 : 60));
            details.appendRow(row);
        }
    }

    auto data = std::make_shared<QZWebData>();
    data->addTable(std::move(units));
    data->addTable(std::move(jobTypes));
    data->addTable(std::move(jobClasses));
    data->addTable(std::move(formats));
    data->addTable(std::move(general));
    data->addTable(std::move(details));
    auto message = std::make_shared<QZWebMessage>(QStringLiteral("DLVData"));
    message->setProperty(QStringLiteral("tqDBRefreshInterval"), QStringLiteral("15"));
    message->setProperty(QStringLiteral("tqJeopardyThreshold"), QStringLiteral("30"));
    message->addData(std::move(data));
    return message;
}

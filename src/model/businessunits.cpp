#include "model/businessunits.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/detailcolumns.h"
#include "model/errortrap.h"
#include "model/pairindex.h"
#include "model/spellingindex.h"
#include "webdata/qzwebtable.h"

namespace {

// Empties an array for about n elements, keeping its memory unless far more than that.
template <class T> void reuse(std::vector<T> &v, std::size_t n)
{
    if (v.capacity() > 2 * n + 4096)
        v = std::vector<T>();
    v.clear();
}

} // namespace

BusinessUnits::BusinessUnits(Storage storage)
    : m_types(std::move(storage.types)), m_classes(std::move(storage.classes)),
      m_totals(std::move(storage.totals)), m_scratch(std::move(storage.scratch))
{
    m_types.clear();
    m_classes.clear();
    m_totals.clear();
}

BusinessUnits::Storage BusinessUnits::ReleaseStorage()
{
    Terminate();
    Storage storage;
    storage.types = std::move(m_types);
    storage.classes = std::move(m_classes);
    storage.totals = std::move(m_totals);
    storage.scratch = std::move(m_scratch);
    storage.types.clear();
    storage.classes.clear();
    storage.totals.clear();
    m_types = {};
    m_classes = {};
    m_totals = {};
    return storage;
}

BusinessUnit &BusinessUnits::Add(const QZWebRow &row, GeneralColumns &columns)
{
    auto unit = std::make_unique<BusinessUnit>();
    unit->Initialize(row, columns);
    unit->m_owner = this;
    const QString key = unit->BUID();
    BusinessUnit &added = *m_items.add(key, std::move(unit));
    m_byIndexValid = false;
    return added;
}

namespace {

// The position of a detail row's unit, from its BUID text. Hundreds of thousands of rows name a
// few thousand units, each in one spelling or a few: each spelling is looked up once, then found
// by its exact text in a small index. Hosts that send the rows unit by unit are served by the
// previous row's unit first.
class RowUnits
{
public:
    explicit RowUnits(const OrderedDict<std::unique_ptr<BusinessUnit>> &units) : m_units(units) {}

    /// The unit's position in the collection, or -1 for a unit it does not hold.
    int unitOf(QStringView id)
    {
        if (!m_first && id == m_previousId)
            return m_unit;
        const int spelling = m_spellings.add(id);
        if (m_spellings.lastAdded())
            m_unitOfSpelling.push_back(int(m_units.indexOf(id)));
        m_unit = m_unitOfSpelling[std::size_t(spelling)];
        m_previousId = id;
        m_first = false;
        return m_unit;
    }

private:
    const OrderedDict<std::unique_ptr<BusinessUnit>> &m_units;
    SpellingIndex m_spellings;
    std::vector<int> m_unitOfSpelling;
    QStringView m_previousId;
    int m_unit = -1;
    bool m_first = true;
};

} // namespace

void BusinessUnits::LoadDetails(const QZWebTable &details, DetailColumns &columns)
{
    try {
        loadGrouped(details, columns);
    } catch (const DLVError &) {
        // The grouped reading does the same lookups and conversions, only in another order, so
        // it fails exactly when the reading in table order does. That reading then gives the
        // first failing row's error and the partial model the rows before it leave.
        LoadDetailsInOrder(details, columns);
    }
}

void BusinessUnits::resetLoad()
{
    for (auto &entry : m_items) {
        entry.value->m_jobTypes = ::JobTypes();
        entry.value->m_allClasses = JobClasses();
    }
    m_types.clear();
    m_classes.clear();
    m_typeCodes = CodeTable();
    m_classCodes = CodeTable();
}

void BusinessUnits::loadGrouped(const QZWebTable &details, DetailColumns &columns)
{
    resetLoad();
    const int rows = details.rowCount();
    const std::size_t units = std::size_t(Count());

    // 1. In table order: each row's unit, job-type and class spellings, numbered as the rows
    // first show them. Rows of other units are left out.
    Storage::Scratch &scratch = m_scratch;
    std::vector<int> &rowOf = scratch.rowOf;
    std::vector<int> &unitOf = scratch.unitOf;
    std::vector<int> &typeOf = scratch.typeOf;
    std::vector<int> &classOf = scratch.classOf;
    for (std::vector<int> *v : {&rowOf, &unitOf, &typeOf, &classOf}) {
        reuse(*v, std::size_t(rows));
        v->reserve(std::size_t(rows));
    }
    {
        RowUnits rowUnits(m_items);
        for (int i = 1; i <= rows; ++i) {
            const QZWebRow row(details, i);
            const int unit = rowUnits.unitOf(row.value(columns.buid()));
            if (unit < 0)
                continue;
            rowOf.push_back(i);
            unitOf.push_back(unit);
            typeOf.push_back(m_typeCodes.number(row.value(columns.jobType())));
            classOf.push_back(m_classCodes.number(row.value(columns.jobClass())));
        }
    }
    const std::size_t entries = rowOf.size();

    // 2. The entries grouped by unit, in table order within each unit (a counting sort), with
    // what the grouping needs carried along so that step 3 reads one array front to back.
    using Grouped = Storage::Scratch::Grouped;
    std::vector<int> unitStart(units + 1, 0);
    for (const int unit : unitOf)
        ++unitStart[std::size_t(unit) + 1];
    for (std::size_t u = 0; u < units; ++u)
        unitStart[u + 1] += unitStart[u];
    std::vector<Grouped> &grouped = scratch.grouped;
    reuse(grouped, entries);
    grouped.resize(entries);
    {
        std::vector<int> next(unitStart.begin(), unitStart.end() - 1);
        for (std::size_t k = 0; k < entries; ++k)
            grouped[std::size_t(next[std::size_t(unitOf[k])]++)] =
                Grouped{int(k), typeOf[k], classOf[k]};
    }

    // 3. Unit by unit, with tables the size of one unit: a job type is created by the unit's
    // first row of its code, a class by the first row of its code in the job type; the classes
    // that rows create get their places, type by type in creation order.
    std::vector<int> &placeOf = scratch.placeOf; // per entry: its class's place, or -1
    reuse(placeOf, entries);
    placeOf.assign(entries, -1);
    struct Type
    {
        int number;
        int classes;
    };
    std::vector<Type> types;
    std::vector<int> typeStart(units + 1, 0);
    std::vector<int> classStart(units + 1, 0);
    {
        std::vector<int> localOfFold(std::size_t(m_typeCodes.foldCount()), -1);
        PairIndex classesOfUnit;
        std::vector<std::pair<int, int>> created; // (entry, local type) in creation order
        std::vector<int> next;
        int placed = 0;
        for (std::size_t u = 0; u < units; ++u) {
            const int firstType = int(types.size());
            typeStart[u] = firstType;
            classStart[u] = placed;
            const int begin = unitStart[u];
            const int end = unitStart[u + 1];
            classesOfUnit.clear(std::size_t(end - begin));
            created.clear();
            for (int g = begin; g < end; ++g) {
                const Grouped &row = grouped[std::size_t(g)];
                int &local = localOfFold[std::size_t(m_typeCodes.fold(row.type))];
                if (local < 0) {
                    local = int(types.size()) - firstType;
                    types.push_back(Type{row.type, 0});
                }
                const std::uint64_t key = PairIndex::key(local, m_classCodes.fold(row.jobClass));
                if (classesOfUnit.findOrInsert(key, 0) >= 0)
                    continue; // the first row of a class wins
                created.emplace_back(row.entry, local);
                ++types[std::size_t(firstType + local)].classes;
            }
            const int typeCount = int(types.size()) - firstType;
            next.assign(std::size_t(typeCount), 0);
            for (int t = 0; t < typeCount; ++t) {
                next[std::size_t(t)] = placed;
                placed += types[std::size_t(firstType + t)].classes;
                localOfFold[std::size_t(
                    m_typeCodes.fold(types[std::size_t(firstType + t)].number))] = -1;
            }
            for (const auto &[entry, local] : created) {
                placeOf[std::size_t(entry)] = next[std::size_t(local)]++;
                // A class carries its job type's first spelling, whatever its own row spelled.
                typeOf[std::size_t(entry)] = types[std::size_t(firstType + local)].number;
            }
        }
        typeStart[units] = int(types.size());
        classStart[units] = placed;
    }

    // 4. The model's arrays at their final size, so the views handed out never move.
    reuse(m_classes, std::size_t(classStart[units]));
    m_classes.assign(std::size_t(classStart[units]), JobClass());
    reuse(m_types, types.size());
    m_types.reserve(types.size());
    {
        std::size_t at = 0;
        for (const Type &type : types) {
            m_types.emplace_back(m_typeCodes.code(type.number),
                                 JobClasses(m_classes.data() + at, type.classes));
            at += std::size_t(type.classes);
        }
    }
    for (std::size_t u = 0; u < units; ++u) {
        BusinessUnit &bu = At(qsizetype(u));
        const std::size_t first = std::size_t(typeStart[u]);
        const std::size_t last = std::size_t(typeStart[u + 1]);
        bu.m_jobTypes = ::JobTypes(m_types.data() + first, int(last - first));
        bu.m_allClasses =
            JobClasses(m_classes.data() + classStart[u], classStart[u + 1] - classStart[u]);
    }

    // 5. In table order again: the counters of each row that created a class, straight into
    // the class's place. The places are scattered over an array of many megabytes; asking for
    // the place sixteen rows ahead lets those misses overlap instead of stalling one by one.
    for (std::size_t k = 0; k < entries; ++k) {
        if (k + 16 < entries && placeOf[k + 16] >= 0) {
            const char *ahead = reinterpret_cast<const char *>(m_classes.data() + placeOf[k + 16]);
            __builtin_prefetch(ahead, 1);
            __builtin_prefetch(ahead + 64, 1);
        }
        const int place = placeOf[k];
        if (place < 0)
            continue;
        columns.resolveClassFields();
        const QZWebRow row(details, rowOf[k]);
        JobClass::Counters counters;
        for (int s = 0; s < JobClass::CounterCount; ++s)
            counters[std::size_t(s)] = Conv::textToLong(row.value(columns.counter(s)));
        m_classes[std::size_t(place)] =
            JobClass(m_classCodes.code(classOf[k]), classOf[k], counters, typeOf[k]);
    }
}

namespace {

// The job types and classes in the order the rows create them, before they are laid out unit by
// unit and type by type.
struct Created
{
    struct Type
    {
        int unit;
        int number;
    };
    std::vector<Type> types;
    std::vector<JobClass> classes;
    std::vector<int> typeOfClass;
};

} // namespace

void BusinessUnits::LoadDetailsInOrder(const QZWebTable &details, DetailColumns &columns)
{
    resetLoad();
    Created created;
    // Lays the created types and classes out unit by unit (types) and type by type (classes),
    // each group in creation order: two counting sorts.
    const auto layOut = [&] {
        const std::size_t units = std::size_t(Count());
        std::vector<int> typeStart(units + 1, 0);
        for (const Created::Type &type : created.types)
            ++typeStart[std::size_t(type.unit) + 1];
        for (std::size_t u = 0; u < units; ++u)
            typeStart[u + 1] += typeStart[u];
        std::vector<int> typeAt(created.types.size());
        {
            std::vector<int> next(typeStart.begin(), typeStart.end() - 1);
            for (std::size_t t = 0; t < created.types.size(); ++t)
                typeAt[t] = next[std::size_t(created.types[t].unit)]++;
        }
        std::vector<int> classStart(created.types.size() + 1, 0);
        for (const int type : created.typeOfClass)
            ++classStart[std::size_t(typeAt[std::size_t(type)]) + 1];
        for (std::size_t t = 0; t < created.types.size(); ++t)
            classStart[t + 1] += classStart[t];
        {
            // Each class moves to its place in the array it is in (following the cycles of the
            // permutation), so the classes are never held twice.
            std::vector<int> place(created.classes.size());
            std::vector<int> next(classStart.begin(), classStart.end() - 1);
            for (std::size_t c = 0; c < created.classes.size(); ++c)
                place[c] = next[std::size_t(typeAt[std::size_t(created.typeOfClass[c])])]++;
            for (std::size_t c = 0; c < place.size(); ++c) {
                while (place[c] != int(c)) {
                    const std::size_t to = std::size_t(place[c]);
                    std::swap(created.classes[c], created.classes[to]);
                    std::swap(place[c], place[to]);
                }
            }
        }
        m_classes = std::move(created.classes);
        m_types.assign(created.types.size(), JobType());
        for (std::size_t t = 0; t < created.types.size(); ++t) {
            const std::size_t at = std::size_t(typeAt[t]);
            const int number = created.types[t].number;
            m_types[at] =
                JobType(m_typeCodes.code(number), JobClasses(m_classes.data() + classStart[at],
                                                             classStart[at + 1] - classStart[at]));
        }
        for (std::size_t u = 0; u < units; ++u) {
            BusinessUnit &bu = At(qsizetype(u));
            bu.m_jobTypes =
                ::JobTypes(m_types.data() + typeStart[u], typeStart[u + 1] - typeStart[u]);
            const int firstClass = classStart[std::size_t(typeStart[u])];
            bu.m_allClasses = JobClasses(m_classes.data() + firstClass,
                                         classStart[std::size_t(typeStart[u + 1])] - firstClass);
        }
    };

    try {
        RowUnits rowUnits(m_items);
        PairIndex typeOf;  // (unit, folded type code) -> created type
        PairIndex classOf; // (created type, folded class code) -> created class
        const int rows = details.rowCount();
        // At most one class per row: reserved once, the growing array is never copied (a copy
        // would hold the classes twice at the peak of the load).
        created.classes.reserve(std::size_t(rows));
        created.typeOfClass.reserve(std::size_t(rows));
        for (int i = 1; i <= rows; ++i) {
            const QZWebRow row(details, i);
            const int unit = rowUnits.unitOf(row.value(columns.buid()));
            if (unit < 0)
                continue;

            const int typeNumber = m_typeCodes.number(row.value(columns.jobType()));
            int type = typeOf.findOrInsert(PairIndex::key(unit, m_typeCodes.fold(typeNumber)),
                                           int(created.types.size()));
            if (type < 0) {
                type = int(created.types.size());
                created.types.push_back(Created::Type{unit, typeNumber});
            }

            const int classNumber = m_classCodes.number(row.value(columns.jobClass()));
            const std::uint64_t classKey = PairIndex::key(type, m_classCodes.fold(classNumber));
            if (classOf.find(classKey) >= 0)
                continue; // the first row of a class wins
            columns.resolveClassFields();
            JobClass::Counters counters;
            for (int s = 0; s < JobClass::CounterCount; ++s)
                counters[std::size_t(s)] = Conv::textToLong(row.value(columns.counter(s)));
            classOf.findOrInsert(classKey, int(created.classes.size()));
            created.classes.emplace_back(m_classCodes.code(classNumber), classNumber, counters,
                                         created.types[std::size_t(type)].number);
            created.typeOfClass.push_back(type);
        }
    } catch (...) {
        layOut();
        throw;
    }
    layOut();
}

void BusinessUnits::CalcTotals(ErrorReporter *reporter)
{
    // A unit's "TOTAL" classes are never more than its classes: reserved once, the storage never
    // moves under the views handed out.
    reuse(m_totals, m_classes.size());
    m_totals.reserve(m_classes.size());
    TotalScratch scratch;
    scratch.totalOfFold.assign(std::size_t(m_classCodes.foldCount()), -1);
    for (qsizetype p = 0; p < m_items.count(); ++p) {
        BusinessUnit &bu = At(p);
        ErrorTrap::run(reporter, QStringLiteral("BusinessUnit.CalcTotal"),
                       [&] { calcTotal(bu, scratch); });
    }
}

void BusinessUnits::calcTotal(BusinessUnit &bu, TotalScratch &scratch)
{
    constexpr int CounterCount = BusinessUnit::CounterCount;
    // The "TOTAL" classes are the union of all class codes, first appearance first. The sums are
    // then addressed through an exact-case lookup of each code, so a class whose code differs
    // only in case from an earlier one (kept once by the case-blind union) has no position: the
    // accumulator is addressed outside its bounds. The position of every (job type, class) pair
    // is resolved here, in the same walk.
    const std::size_t first = m_totals.size();
    std::vector<int> &totalOfFold = scratch.totalOfFold;
    std::vector<int> &positions = scratch.positions;
    std::vector<int> &folds = scratch.folds;
    positions.clear();
    folds.clear();
    for (const JobType &jobType : bu.m_jobTypes) {
        for (const JobClass &jobClass : jobType.Classes()) {
            const int fold = m_classCodes.fold(jobClass.Number());
            int &at = totalOfFold[std::size_t(fold)];
            if (at < 0) {
                at = int(m_totals.size() - first);
                folds.push_back(fold);
                m_totals.emplace_back(jobClass.Code(), jobClass.Number());
            }
            positions.push_back(
                m_totals[first + std::size_t(at)].Number() == jobClass.Number() ? at : -1);
        }
    }
    for (const int fold : folds)
        totalOfFold[std::size_t(fold)] = -1;
    const int n = int(m_totals.size() - first);
    bu.m_totalJobType = JobType(JobType::TotalCode, JobClasses(m_totals.data() + first, n));
    if (n < 1) {
        bu.m_plainTotals = true;
        return;
    }

    std::vector<JobClass::Counters> &accumulator = scratch.accumulator;
    accumulator.assign(std::size_t(n), JobClass::Counters{});
    bool nonNegative = true;
    std::size_t firstOfType = 0;
    for (const JobType &jobType : bu.m_jobTypes) {
        const JobClasses &classes = jobType.Classes();
        for (int s = 0; s < CounterCount; ++s) {
            std::size_t pair = firstOfType;
            for (const JobClass &jobClass : classes) {
                const int p = positions[pair++];
                if (p < 0)
                    throw DLVError::subscriptOutOfRange(
                        QStringLiteral("no total position for job class \"%1\"")
                            .arg(jobClass.Code()));
                const qint32 value = jobClass.JobDetails()[std::size_t(s)];
                nonNegative = nonNegative && value >= 0;
                qint32 &cell = accumulator[std::size_t(p)][std::size_t(s)];
                cell = Conv::addChecked(cell, value);
                bu.m_grandTotals[std::size_t(s)] =
                    Conv::addChecked(bu.m_grandTotals[std::size_t(s)], value);
            }
        }
        firstOfType += std::size_t(classes.Count());
    }

    for (int p = 0; p < n; ++p)
        m_totals[first + std::size_t(p)] =
            JobClass(m_totals[first + std::size_t(p)].Code(),
                     m_totals[first + std::size_t(p)].Number(), accumulator[std::size_t(p)]);
    bu.calcRates();
    bu.m_plainTotals = nonNegative;
}

BusinessUnit *BusinessUnits::Item(QStringView buid)
{
    const auto *found = m_items.find(buid);
    return found ? found->get() : nullptr;
}

const BusinessUnit *BusinessUnits::Item(QStringView buid) const
{
    const auto *found = m_items.find(buid);
    return found ? found->get() : nullptr;
}

const BusinessUnit *BusinessUnits::BUItem(qint32 index) const
{
    if (!m_byIndexValid) {
        m_byIndex.clear();
        m_byIndex.reserve(m_items.count());
        for (const auto &entry : m_items)
            if (!m_byIndex.contains(entry.value->BUIndex())) // the first one wins
                m_byIndex.insert(entry.value->BUIndex(), entry.value.get());
        m_byIndexValid = true;
    }
    return m_byIndex.value(index, nullptr);
}

bool BusinessUnits::Remove(QStringView buid)
{
    m_byIndexValid = false;
    return m_items.remove(buid);
}

void BusinessUnits::Terminate()
{
    for (auto &entry : m_items) {
        entry.value->m_jobTypes = ::JobTypes();
        entry.value->m_allClasses = JobClasses();
        entry.value->m_totalJobType = JobType();
    }
    m_types = {};
    m_classes = {};
    m_totals = {};
}

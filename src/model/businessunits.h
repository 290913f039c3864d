#pragma once

#include "common/ordereddict.h"
#include "model/businessunit.h"
#include "model/codetable.h"
#include "model/collectioniterator.h"

#include <QHash>
#include <memory>
#include <utility>
#include <vector>

class DetailColumns;
class ErrorReporter;
class GeneralColumns;
class QZWebRow;
class QZWebTable;

/// The business units of one data refresh, keyed by BUID without regard to letter case, in the
/// order of first appearance in the general-information table. Owns its units and, in three flat
/// arrays, every unit's job types, job classes and "TOTAL" classes; the job-type and job-class
/// codes are numbered once per message (CodeTable), so the views sum by number. A unit stays at
/// the same address until it is removed or the collection is destroyed, so views may keep
/// pointers for the life of one refresh. Not copyable or movable (units point back to it).
class BusinessUnits
{
public:
    using const_iterator = CollectionIterator<
        decltype(std::declval<const OrderedDict<std::unique_ptr<BusinessUnit>> &>().begin()),
        const BusinessUnit>;

    /// What a collection hands on to the next one: its arrays, emptied, with their capacity. A
    /// load of a message like the last one then writes into memory already in use: a fresh
    /// array of tens of megabytes comes from the system, which clears every page on first touch.
    struct Storage
    {
        std::vector<JobType> types;
        std::vector<JobClass> classes;
        std::vector<JobClass> totals;
        /// Working arrays of the grouped reading of the detail rows.
        struct Scratch
        {
            struct Grouped
            {
                int entry;
                int type;
                int jobClass;
            };
            std::vector<int> rowOf;
            std::vector<int> unitOf;
            std::vector<int> typeOf;
            std::vector<int> classOf;
            std::vector<int> placeOf;
            std::vector<Grouped> grouped;
        } scratch;
    };

    BusinessUnits() = default;
    /// A collection that reuses storage another one handed on.
    explicit BusinessUnits(Storage storage);
    BusinessUnits(const BusinessUnits &) = delete;
    BusinessUnits &operator=(const BusinessUnits &) = delete;
    ~BusinessUnits() = default;

    /// Creates a unit from a general-information row, adds it under its BUID and returns it.
    /// Throws what the row's conversion throws, or DLVError(457) when the BUID is present; the
    /// collection is unchanged then.
    BusinessUnit &Add(const QZWebRow &row, GeneralColumns &columns);

    /// Reads the detail rows, in table order, into the job types and classes of the units they
    /// name (rows of other units are skipped). A job type is created on the first row of its code
    /// in the unit, a class on the first row of its code in the job type; later rows of a class
    /// are ignored. Codes compare without regard to letter case, the first spelling stays.
    /// Throws DLVError at the first row that fails (missing column, counter outside 32 bits);
    /// the units then hold what the rows before it gave, and the failing row's new job type.
    /// Works unit by unit over the rows grouped by unit, so its lookups stay in tables the size
    /// of one unit whatever the size of the message.
    void LoadDetails(const QZWebTable &details, DetailColumns &columns);
    /// The same reading, one row after the other in table order: LoadDetails gives the same
    /// model (and, for a failing table, reads it this way).
    void LoadDetailsInOrder(const QZWebTable &details, DetailColumns &columns);
    /// Builds every unit's "TOTAL" job type, grand totals and rates, once per load. The "TOTAL"
    /// classes are the union of the unit's class codes, first appearance first. A unit that fails
    /// is reported (location "BusinessUnit.CalcTotal") and keeps the totals reached; the next
    /// unit is totalled all the same.
    void CalcTotals(ErrorReporter *reporter);

    /// The unit with that BUID (any letter case), or nullptr.
    [[nodiscard]] BusinessUnit *Item(QStringView buid);
    [[nodiscard]] const BusinessUnit *Item(QStringView buid) const;
    /// The first unit, in collection order, whose BUIndex equals index, or nullptr. Served from an
    /// index built on first use after a change, so repeated calls do not rescan the collection.
    [[nodiscard]] const BusinessUnit *BUItem(qint32 index) const;

    [[nodiscard]] int Count() const { return int(m_items.count()); }
    bool Remove(QStringView buid);
    /// Releases every unit's job types and classes.
    void Terminate();
    /// Terminate(), handing the arrays on for the next collection.
    [[nodiscard]] Storage ReleaseStorage();

    [[nodiscard]] const_iterator begin() const { return const_iterator(m_items.begin()); }
    [[nodiscard]] const_iterator end() const { return const_iterator(m_items.end()); }
    /// Mutable access in collection order, for the loader.
    [[nodiscard]] BusinessUnit &At(qsizetype position) { return *m_items.at(position).value; }

    /// The message's job-type and job-class codes: JobType::Number() and JobClass::Number()
    /// index them.
    [[nodiscard]] const CodeTable &JobTypeCodes() const { return m_typeCodes; }
    [[nodiscard]] const CodeTable &JobClassCodes() const { return m_classCodes; }

private:
    friend class BusinessUnit;
    void buIndexChanged() { m_byIndexValid = false; }
    /// Working storage of CalcTotals, kept from unit to unit.
    struct TotalScratch
    {
        std::vector<int> totalOfFold; ///< by class fold: position among the unit's totals, or -1
        std::vector<int> positions;   ///< per class of the unit: its total's position, or -1
        std::vector<int> folds;       ///< the folds the unit set in totalOfFold
        std::vector<JobClass::Counters> accumulator;
    };
    void calcTotal(BusinessUnit &bu, TotalScratch &scratch);
    /// LoadDetails unit by unit, over the rows grouped by unit.
    void loadGrouped(const QZWebTable &details, DetailColumns &columns);
    /// Forgets what a load built: the units' lists, the arrays and the code tables.
    void resetLoad();

    OrderedDict<std::unique_ptr<BusinessUnit>> m_items{KeyCompare::CaseInsensitive};
    mutable QHash<qint32, const BusinessUnit *> m_byIndex;
    mutable bool m_byIndexValid = false;

    CodeTable m_typeCodes;
    CodeTable m_classCodes;
    // Every unit's job types one after the other, each type's classes one after the other; the
    // units' and types' views point into them, so they are filled once and never grow after.
    std::vector<JobType> m_types;
    std::vector<JobClass> m_classes;
    std::vector<JobClass> m_totals;
    Storage::Scratch m_scratch;
};

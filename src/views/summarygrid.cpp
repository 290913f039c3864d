#include "views/summarygrid.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/businessunit.h"
#include "model/businessunits.h"
#include "model/errortrap.h"
#include "model/pairindex.h"
#include "views/outlinegrid.h"
#include "views/panelvalues.h"

#include <QHash>
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

namespace {

constexpr int Counters = BusinessUnit::CounterCount;
constexpr int SummaryLastCol = SummaryGrid::ColumnCount - 1;
// Beyond this many class codes the per-class totals are read from the units' "TOTAL" classes.
constexpr int PlainTotalsClassLimit = 4096;

/// A class row while its counters are summed over the units.
struct SumRow
{
    QString key;
    QString col1;
    QString col2;
    std::array<qint32, Counters> sum{};
    std::size_t line = 0; ///< its line once the rows are grouped
    bool touchedByClassTotals = false;
};

/// One grid row as it will be written: texts of columns 1 and 2, of the counter columns, and the
/// row data. Group rows are outline nodes, grey and bold across the row.
struct Line
{
    QString key;
    QString col1;
    QString col2;
    std::array<QString, Counters> counters;
    bool node = false;
};

const QString &descriptionOr(const StringSet &lookup, const QString &code)
{
    const QString *description = lookup.find(code);
    return description && !description->isEmpty() ? *description : code;
}

void setCountersText(Line &line, const std::array<qint32, Counters> &values)
{
    for (int s = 0; s < Counters; ++s)
        line.counters[std::size_t(s)] = QString::number(values[std::size_t(s)]);
}

[[nodiscard]] bool lessText(const QString &a, const QString &b)
{
    return QString::compare(a, b, Qt::CaseSensitive) < 0;
}

/// The four rates of the panel's sums. The rates take the sums as 32-bit operands, so a sum past
/// that range fails with the overflow error, after the rates before it were set.
void setPanelRates(PanelValues &panel)
{
    const auto operand = [](qint64 v) { return double(Conv::toLong(double(v))); };
    panel.wosPerHrToday = Conv::rate(operand(panel.woDone), operand(panel.hoursWorked));
    panel.ptsPerHrToday = Conv::rate(operand(panel.ptsDone), operand(panel.hoursWorked));
    panel.wosPerHrReq = Conv::rate(operand(panel.woOpen), operand(panel.hoursRemaining));
    panel.ptsPerHrReq = Conv::rate(operand(panel.ptsOpen), operand(panel.hoursRemaining));
}

/// Adds one unit to the panel sums. The panel's rates are those of the sums after every unit, so
/// they are set once at the end (finishPanel), unless a sum leaves the 32-bit range here: then
/// the rates are set as they stood after the previous unit and the failing unit's rates are set
/// until the one that fails, as adding unit by unit and setting the rates each time would leave
/// them.
void addToPanel(PanelValues &panel, const BusinessUnit &bu)
{
    const PanelValues before = panel;
    panel.techCount += bu.TechCount();
    panel.hoursWorked += bu.HoursWorked();
    panel.hoursRemaining += bu.HoursRemaining();
    using namespace Counter;
    panel.woDone += bu.GrandTotals()[workOrders(Completed)];
    panel.woOpen += bu.GrandTotals()[workOrders(Open)];
    panel.ptsDone += bu.GrandTotals()[points(Completed)];
    panel.ptsOpen += bu.GrandTotals()[points(Open)];
    const auto in32 = [](qint64 v) { return v >= INT32_MIN && v <= INT32_MAX; };
    if (in32(panel.woDone) && in32(panel.woOpen) && in32(panel.ptsDone) && in32(panel.ptsOpen) &&
        in32(panel.hoursWorked) && in32(panel.hoursRemaining)) [[likely]]
        return;
    PanelValues rates = before;
    setPanelRates(rates); // the previous unit's sums were in range: this does not fail
    panel.wosPerHrToday = rates.wosPerHrToday;
    panel.ptsPerHrToday = rates.ptsPerHrToday;
    panel.wosPerHrReq = rates.wosPerHrReq;
    panel.ptsPerHrReq = rates.ptsPerHrReq;
    setPanelRates(panel); // fails, part way
}

/// All fourteen sums side by side, four to a vector register (-O2 leaves a loop of fourteen
/// scalar steps alone); a sum outside 32 bits fails the fill once all are added, and a failed
/// fill shows none of its rows, so the order of the check is not seen.
void addCounters(std::array<qint32, Counters> &sum, const JobClass &jc)
{
    using Lanes = quint32 __attribute__((vector_size(16)));
    constexpr std::size_t Width = sizeof(Lanes) / sizeof(quint32);
    const qint32 *counters = jc.JobDetails().data();
    qint32 *sums = sum.data();
    // Wrapping adds; a sum overflowed when its sign differs from both operands' signs.
    Lanes overflow{};
    std::size_t s = 0;
    for (; s + Width <= Counters; s += Width) {
        Lanes a;
        Lanes b;
        std::memcpy(&a, sums + s, sizeof a);
        std::memcpy(&b, counters + s, sizeof b);
        const Lanes result = a + b;
        overflow |= (a ^ result) & (b ^ result);
        std::memcpy(sums + s, &result, sizeof result);
    }
    quint32 rest = 0;
    for (; s < Counters; ++s) {
        const quint32 a = quint32(sums[s]);
        const quint32 b = quint32(counters[s]);
        const quint32 result = a + b;
        rest |= (a ^ result) & (b ^ result);
        sums[s] = qint32(result);
    }
    for (std::size_t lane = 0; lane < Width; ++lane)
        rest |= overflow[lane];
    if (rest & 0x80000000u) [[unlikely]]
        throw DLVError::overflow();
}

/// Whether the message's codes hold the row data's separator "|", looked at once per code.
class BarCodes
{
public:
    explicit BarCodes(const CodeTable &codes)
        : m_codes(&codes), m_bar(std::size_t(codes.count()), -1)
    {}
    [[nodiscard]] bool operator()(int number)
    {
        if (number < 0)
            return false;
        signed char &bar = m_bar[std::size_t(number)];
        if (bar < 0)
            bar = m_codes->code(number).contains(u'|') ? 1 : 0;
        return bar != 0;
    }

private:
    const CodeTable *m_codes;
    std::vector<signed char> m_bar;
};

/// The class rows of one fill, by the numbers of their two codes. A pair of codes without "|"
/// gives row data with exactly one "|", which no pair holding a "|" can give: such a pair is its
/// row's only pair. Pairs holding a "|" share a row when their row data are equal ("A|B" + "C"
/// and "A" + "B|C"), so they are found by the text once, then by their numbers too.
class SumRowIndex
{
public:
    static constexpr std::size_t None = std::size_t(-1);

    SumRowIndex(const CodeTable &types, const CodeTable &classes)
        : m_typeBar(types), m_classBar(classes), m_classCount(classes.count())
    {
        // A message has a few dozen job types and classes: every pair gets a slot of its own.
        const qint64 pairs = qint64(types.count()) * classes.count();
        if (pairs <= DenseLimit)
            m_dense.assign(std::size_t(pairs), -1);
    }

    /// The row of the pair, looked up by its numbers only.
    [[nodiscard]] std::size_t findPair(int type, int jobClass) const
    {
        int row = -1;
        if (type >= 0 && !m_dense.empty())
            row = m_dense[std::size_t(type) * std::size_t(m_classCount) + std::size_t(jobClass)];
        else if (m_dense.empty())
            row = m_byPair.find(PairIndex::key(type, jobClass));
        return row < 0 ? None : std::size_t(row);
    }
    /// Whether the pair's row data hold no "|" but the separator.
    [[nodiscard]] bool plain(int type, int jobClass)
    {
        return !m_typeBar(type) && !m_classBar(jobClass);
    }
    /// The row of the pair by its row data key (a pair holding a "|"), or None.
    [[nodiscard]] std::size_t findText(const QString &key) const
    {
        const auto it = m_byText.constFind(key);
        return it == m_byText.constEnd() ? None : it.value();
    }
    void insertPair(int type, int jobClass, std::size_t row)
    {
        if (!m_dense.empty())
            m_dense[std::size_t(type) * std::size_t(m_classCount) + std::size_t(jobClass)] =
                int(row);
        else
            m_byPair.findOrInsert(PairIndex::key(type, jobClass), int(row));
    }
    void insertText(const QString &key, std::size_t row) { m_byText.insert(key, row); }

private:
    static constexpr qint64 DenseLimit = 1 << 16;
    BarCodes m_typeBar;
    BarCodes m_classBar;
    int m_classCount;
    std::vector<int> m_dense; // by type * class count + class, when small enough
    PairIndex m_byPair;       // otherwise
    QHash<QString, std::size_t> m_byText;
};

/// Sets key to a + separator + b, reusing its buffer (no allocation once it is large enough).
void setKey(QString &key, QStringView a, QChar separator, QStringView b)
{
    key.resize(a.size() + 1 + b.size());
    QChar *out = key.data();
    out = std::copy(a.begin(), a.end(), out);
    *out++ = separator;
    std::copy(b.begin(), b.end(), out);
}

} // namespace

int SummaryGrid::pixelsToTwips(double pixels, double twipsPerPixel)
{
    return Conv::toLong(pixels * twipsPerPixel);
}

void SummaryGrid::InitSingleBUGrid(const CaptionLookup &caption, double twipsPerPixelX)
{
    OutlineGrid::RedrawSuspender suspend(m_grid);
    m_grid.clear();
    m_grid.setRowCount(0);
    m_grid.setColCount(ColumnCount);
    m_grid.setColWidth(0, pixelsToTwips(15, twipsPerPixelX));
    m_grid.setColWidth(1, 0);
    m_grid.setColWidth(2, pixelsToTwips(111, twipsPerPixelX));
    for (int c = FirstCounterCol; c < ColumnCount; ++c)
        m_grid.setColWidth(c, pixelsToTwips(52, twipsPerPixelX));
    // A few empty rows make the grid look ready before the first data arrive.
    m_grid.setRowCount(12);
    m_grid.setFixedRows(2);
    m_grid.setRowHeight(1, 2 * m_grid.rowHeight(0));

    m_grid.setBackColor(0, 0, 1, SummaryLastCol, OutlineGrid::fromBgr(HeaderBgr));
    m_grid.setBackColor(0, 3, 1, 9, OutlineGrid::fromBgr(WorkOrdersBgr));
    m_grid.setBackColor(0, 10, 1, SummaryLastCol, OutlineGrid::fromBgr(PointsBgr));
    m_grid.setBold(0, 0, 0, SummaryLastCol, true);

    // The same caption in every cell of a block: the header merges equal cells into one band.
    m_grid.setText(0, 3, 0, 9, caption(QStringLiteral("WorkOrders")));
    m_grid.setText(0, 10, 0, SummaryLastCol, caption(QStringLiteral("Points")));
    m_grid.setText(1, 2, caption(QStringLiteral("JobTypesAndJobClasses")));
    static const char *const statuses[] = {"Open",      "Warning",  "Jeopardy", "Late",
                                           "Completed", "Canceled", "NotDone"};
    for (int i = 0; i < 7; ++i) {
        const QString text = caption(QString::fromLatin1(statuses[i]));
        m_grid.setText(1, 3 + i, text);
        m_grid.setText(1, 10 + i, text);
    }
    m_grid.setOutlineCol(2);
    m_grid.setOutlineTextCol(1);
}

void SummaryGrid::ResetSummary(PanelValues &panel)
{
    panel = PanelValues();
    m_grid.removeSubtotals();
    if (m_grid.rowCount() > 2 && m_grid.colCount() > 0)
        m_grid.setText(2, 0, m_grid.rowCount() - 1, m_grid.colCount() - 1, QString());
    m_grid.setRowCount(2);
}

int SummaryGrid::GetMaxClassCnt(const StringSet &buSet, const BusinessUnits &bus,
                                ErrorReporter *reporter)
{
    int result = 0;
    ErrorTrap::run(reporter, QStringLiteral("DLViewer.GetMaxClassCnt"), [&] {
        for (const auto &entry : buSet) {
            if (const BusinessUnit *bu = bus.Item(entry.key))
                result = std::max(result, bu->TotalJobType().Classes().Count());
        }
    });
    return result;
}

double SummaryGrid::FitGridHeight(const OutlineGrid &grid, double topTwips, double frameHeightTwips,
                                  double twipsPerPixelY)
{
    const int rows = grid.rowCount();
    const double rowHeight = rows > 0 ? grid.rowHeight(0) : OutlineGrid::DefaultRowHeight;
    if (rows <= 2)
        return (rows + 2.25) * rowHeight;
    const double fitted = Conv::toLong((rows + 2.25) * rowHeight);
    const double margin = 3 * twipsPerPixelY;
    if (topTwips + fitted + margin <= frameHeightTwips)
        return fitted;
    return frameHeightTwips - topTwips - margin;
}

void SummaryGrid::ShowBUs(const BusinessUnits &bus, const StringSet &buSet,
                          const StringSet &jobTypeDescriptions,
                          const StringSet &jobClassDescriptions, const QString &totalCaption,
                          PanelValues &panel, ErrorReporter * /*reporter*/,
                          std::span<const BusinessUnit *const> setUnits)
{
    OutlineGrid::RedrawSuspender suspend(m_grid);
    ResetSummary(panel);

    // Units of the set that the model holds, in the set's order (an aggregate set may name units
    // the model never loaded).
    // The largest class count of a unit's "TOTAL" type bounds the sort of the per-class rows below.
    std::vector<const BusinessUnit *> units;
    units.reserve(std::size_t(buSet.count()));
    int maxClassCount = 0;
    // When every unit's "TOTAL" classes are plain sums of its classes (see
    // BusinessUnit::PlainTotals), the per-class totals are summed here from the class rows, by
    // code number, instead of reading every unit's "TOTAL" classes once more afterwards.
    bool plainTotals = bus.JobClassCodes().count() <= PlainTotalsClassLimit;
    const bool resolved = qsizetype(setUnits.size()) == buSet.count();
    for (qsizetype k = 0; k < buSet.count(); ++k) {
        if (const BusinessUnit *bu =
                resolved ? setUnits[std::size_t(k)] : bus.Item(buSet.keyAt(k))) {
            units.push_back(bu);
            maxClassCount = std::max(maxClassCount, bu->TotalJobType().Classes().Count());
            plainTotals = plainTotals && bu->PlainTotals();
        }
    }
    std::vector<std::array<qint64, Counters>> classSums;
    std::vector<int> classOrder; // class numbers in order of first appearance
    // With plain totals, each class's sums come from the rows afterwards: a pair of codes is
    // summed into its row as it comes, and the class of a pair's first sight is seen first there
    // too. That holds while no two pairs share a row (codes with a "|", rare): then the classes
    // are summed in a pass of their own.
    struct PairRow
    {
        int jobClass;
        std::size_t row;
    };
    std::vector<PairRow> pairRows; // every pair's row, in order of first appearance
    bool sharedRow = false;
    if (plainTotals)
        classSums.resize(std::size_t(bus.JobClassCodes().count()), {-1});

    // Class rows, shared across units: the same job type and class of two units add into one
    // row. Rows are found by the numbers of the codes, so finding an existing row neither builds
    // nor hashes its row data.
    std::vector<SumRow> rows;
    // The sums apart from the rows' texts: the hot loop then touches a few dozen kilobytes.
    std::vector<std::array<qint32, Counters>> sums;
    SumRowIndex rowOf(bus.JobTypeCodes(), bus.JobClassCodes());
    QString key;
    const CodeTable &typeCodes = bus.JobTypeCodes();
    const auto sumClasses = [&](const BusinessUnit &bu) {
        for (const JobClass &jc : bu.AllJobClasses()) {
            const int type = jc.TypeNumber();
            const int jobClass = jc.Number();
            if (const std::size_t known = rowOf.findPair(type, jobClass);
                known != SumRowIndex::None) {
                addCounters(sums[known], jc);
                continue;
            }
            const QString &typeCode = typeCodes.code(type);
            setKey(key, typeCode, u'|', jc.Code());
            const bool plain = rowOf.plain(type, jobClass);
            std::size_t r = plain ? SumRowIndex::None : rowOf.findText(key);
            if (r != SumRowIndex::None) {
                sharedRow = true;
            } else {
                r = rows.size();
                rows.push_back(SumRow{.key = key,
                                      .col1 = descriptionOr(jobTypeDescriptions, typeCode),
                                      .col2 = descriptionOr(jobClassDescriptions, jc.Code())});
                sums.emplace_back();
                if (!plain)
                    rowOf.insertText(rows.back().key, r);
            }
            rowOf.insertPair(type, jobClass, r);
            pairRows.push_back(PairRow{jobClass, r});
            addCounters(sums[r], jc);
        }
    };
    for (std::size_t i = 0; i < units.size(); ++i) {
        // The chosen units' classes lie in blocks all over tens of megabytes: ask for the next
        // unit's block (and the unit after's record) while this one is summed.
        if (i + 2 < units.size())
            __builtin_prefetch(units[i + 2]);
        if (i + 1 < units.size()) {
            const char *next =
                reinterpret_cast<const char *>(units[i + 1]->AllJobClasses().begin());
            for (int line = 0; next && line < 4; ++line) // a unit without classes has no block
                __builtin_prefetch(next + 64 * line);
        }
        const BusinessUnit *bu = units[i];
        addToPanel(panel, *bu);
        try {
            sumClasses(*bu);
        } catch (...) {
            setPanelRates(panel); // the panel shows the figures reached
            throw;
        }
    }
    setPanelRates(panel);
    if (plainTotals) {
        const auto countClass = [&](int jobClass) -> std::array<qint64, Counters> & {
            std::array<qint64, Counters> &classSum = classSums[std::size_t(jobClass)];
            if (classSum[0] < 0) {
                classSum.fill(0);
                classOrder.push_back(jobClass);
            }
            return classSum;
        };
        if (!sharedRow) {
            for (const PairRow &pair : pairRows) {
                std::array<qint64, Counters> &classSum = countClass(pair.jobClass);
                for (std::size_t s = 0; s < Counters; ++s)
                    classSum[s] += sums[pair.row][s];
            }
        } else {
            for (const BusinessUnit *bu : units) {
                for (const JobClass &jc : bu->AllJobClasses()) {
                    std::array<qint64, Counters> &classSum = countClass(jc.Number());
                    for (std::size_t s = 0; s < Counters; ++s)
                        classSum[s] += jc.JobDetails()[s];
                }
            }
        }
    }
    for (std::size_t r = 0; r < rows.size(); ++r)
        rows[r].sum = sums[r];

    m_grid.setOutlineCol(2);
    m_grid.setOutlineTextCol(1);
    m_grid.removeSubtotals();

    const QColor grey = OutlineGrid::fromBgr(GroupBgr);
    const auto boldColumn1 = [this] {
        if (m_grid.rowCount() > 0)
            m_grid.setBold(0, 1, m_grid.rowCount() - 1, 1, true);
    };

    if (rows.empty()) {
        // Nothing to show: one grey total row, labelled in the tree column.
        const int r = m_grid.addRow();
        m_grid.setText(r, 2, totalCaption);
        m_grid.setText(r, 3, r, SummaryLastCol, QStringLiteral("0"));
        m_grid.setBold(r, 0, r, SummaryLastCol, true);
        m_grid.setBackColor(r, 2, r, SummaryLastCol, grey);
        boldColumn1();
        return;
    }

    // An empty row on top, then the class rows by job-type and class description. The empty row
    // sorts first (its texts are empty) and becomes the grand total's only member below.
    std::vector<std::size_t> order(rows.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const int k = QString::compare(rows[a].col1, rows[b].col1, Qt::CaseSensitive);
        return k != 0 ? k < 0 : lessText(rows[a].col2, rows[b].col2);
    });
    std::vector<SumRow *> sequence;
    sequence.reserve(rows.size() + 1);
    sequence.push_back(nullptr); // the empty row
    for (std::size_t i : order)
        sequence.push_back(&rows[i]);

    // Group rows above each run of equal column-1 text, with the run's sums in "#" format. The
    // first run is the empty row's (and that of any class whose job type shows no text): it
    // becomes the grand total.
    static const QString noText;
    const auto groupText = [](const SumRow *row) -> const QString & {
        return row ? row->col1 : noText;
    };
    std::vector<Line> lines;
    lines.reserve(rows.size() + rows.size() / 2 + 2);
    std::array<qint64, Counters> firstGroupSums{};
    for (std::size_t k = 0; k < sequence.size();) {
        const QString &text = groupText(sequence[k]);
        std::array<qint64, Counters> sums{};
        std::size_t end = k;
        while (end < sequence.size() && groupText(sequence[end]) == text) {
            if (const SumRow *row = sequence[end]) {
                for (int s = 0; s < Counters; ++s)
                    sums[std::size_t(s)] += row->sum[std::size_t(s)];
            }
            ++end;
        }
        if (k == 0)
            firstGroupSums = sums;
        Line group;
        group.node = true;
        group.col1 = text;
        for (int s = 0; s < Counters; ++s)
            group.counters[std::size_t(s)] = Conv::formatHash(double(sums[std::size_t(s)]));
        lines.push_back(std::move(group));
        for (std::size_t j = k; j < end; ++j) {
            Line line;
            if (SumRow *row = sequence[j]) {
                line.key = row->key;
                line.col1 = row->col1;
                line.col2 = row->col2;
                setCountersText(line, row->sum);
                row->line = lines.size();
            }
            lines.push_back(std::move(line));
        }
        k = end;
    }

    // The grand total (row 2, the first group row): labelled in column 1, plus every unit's
    // grand totals.
    {
        Line &total = lines.front();
        total.col1 = totalCaption;
        std::array<qint32, Counters> values{};
        for (int s = 0; s < Counters; ++s)
            values[std::size_t(s)] = Conv::toLong(double(firstGroupSums[std::size_t(s)]));
        for (const BusinessUnit *bu : units) {
            for (int s = 0; s < Counters; ++s)
                values[std::size_t(s)] =
                    Conv::addChecked(values[std::size_t(s)], bu->GrandTotals()[std::size_t(s)]);
        }
        setCountersText(total, values);
    }

    // Per-class totals over all job types, with the row data "|class": found by the class code's
    // number. A new one goes directly below the grand total, so the newest stands first.
    std::vector<SumRow> classRows;
    std::vector<int> classRowOf(std::size_t(bus.JobClassCodes().count()), -1);
    const int emptyType = bus.JobTypeCodes().find(QStringView());
    // The row a class's total goes to: a class row of a job type with an empty code carries the
    // same row data, otherwise a per-class total row of its own (made on first sight).
    const auto totalRow = [&](int jobClass, const QString &code) -> std::array<qint32, Counters> & {
        if (const int known = classRowOf[std::size_t(jobClass)]; known >= 0)
            return classRows[std::size_t(known)].sum;
        setKey(key, QStringView(), u'|', code);
        const std::size_t d = rowOf.plain(emptyType, jobClass) ? rowOf.findPair(emptyType, jobClass)
                                                               : rowOf.findText(key);
        if (d != SumRowIndex::None) {
            rows[d].touchedByClassTotals = true;
            return rows[d].sum;
        }
        classRowOf[std::size_t(jobClass)] = int(classRows.size());
        classRows.push_back(SumRow{
            .key = key, .col1 = totalCaption, .col2 = descriptionOr(jobClassDescriptions, code)});
        return classRows.back().sum;
    };
    if (plainTotals) {
        // No counter is negative: a sum leaves the 32-bit range exactly when its total does.
        for (const int jobClass : classOrder) {
            std::array<qint32, Counters> &sum =
                totalRow(jobClass, bus.JobClassCodes().code(jobClass));
            const std::array<qint64, Counters> &classSum = classSums[std::size_t(jobClass)];
            for (std::size_t s = 0; s < Counters; ++s) {
                const qint64 total = qint64(sum[s]) + classSum[s];
                if (total > std::numeric_limits<qint32>::max())
                    throw DLVError::overflow();
                sum[s] = qint32(total);
            }
        }
    } else {
        for (const BusinessUnit *bu : units) {
            for (const JobClass &jc : bu->TotalJobType().Classes())
                addCounters(totalRow(jc.Number(), jc.Code()), jc);
        }
    }
    for (const SumRow &row : rows) {
        if (row.touchedByClassTotals)
            setCountersText(lines[row.line], row.sum);
    }

    std::vector<Line> grid;
    grid.reserve(lines.size() + classRows.size());
    grid.push_back(std::move(lines.front()));
    for (auto it = classRows.rbegin(); it != classRows.rend(); ++it) {
        Line line;
        line.key = it->key;
        line.col1 = it->col1;
        line.col2 = it->col2;
        setCountersText(line, it->sum);
        grid.push_back(std::move(line));
    }
    for (std::size_t i = 1; i < lines.size(); ++i)
        grid.push_back(std::move(lines[i]));

    // Only as many class rows are sorted as the largest single unit has classes; the rest keep
    // their order. Rows 3 to n + 2 are grid[1] to grid[n].
    const int n = maxClassCount;
    if (n >= 1) {
        const std::size_t last = std::min(std::size_t(n), grid.size() - 1);
        std::stable_sort(grid.begin() + 1, grid.begin() + std::ptrdiff_t(last) + 1,
                         [](const Line &a, const Line &b) {
                             const int k = QString::compare(a.col2, b.col2, Qt::CaseSensitive);
                             return k != 0 ? k < 0 : lessText(a.counters[0], b.counters[0]);
                         });
    }

    // Clean-up: rows whose first work-order cell is empty go (the empty row, and group rows whose
    // open work orders sum to zero); then each group row is named by its job type, taken from the
    // row data of the row below it.
    grid.erase(std::remove_if(grid.begin(), grid.end(),
                              [](const Line &line) { return line.counters[0].isEmpty(); }),
               grid.end());
    for (std::size_t i = grid.size(); i-- > 1;) {
        if (!grid[i].node || i + 1 >= grid.size())
            continue;
        const QString &next = grid[i + 1].key;
        const qsizetype bar = next.indexOf(u'|');
        if (bar >= 0)
            grid[i].key = next.left(bar);
    }

    for (const Line &line : grid) {
        const int r = line.node ? m_grid.addNodeRow(0) : m_grid.addRow();
        if (!line.col1.isEmpty())
            m_grid.setText(r, 1, line.col1);
        if (!line.col2.isEmpty())
            m_grid.setText(r, 2, line.col2);
        for (int s = 0; s < Counters; ++s) {
            if (!line.counters[std::size_t(s)].isEmpty())
                m_grid.setText(r, FirstCounterCol + s, line.counters[std::size_t(s)]);
        }
        if (line.node) {
            m_grid.setBackColor(r, 0, r, SummaryLastCol, grey);
            m_grid.setBold(r, 0, r, SummaryLastCol, true);
        }
        if (!line.key.isEmpty())
            m_grid.setRowData(r, line.key);
    }
    m_grid.setCurrentCell(0, 0);
    boldColumn1();
}

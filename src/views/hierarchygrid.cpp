#include "views/hierarchygrid.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "model/buhierarchy.h"
#include "model/businessunit.h"
#include "model/businessunits.h"
#include "model/counter.h"
#include "model/unitlookups.h"
#include "views/summarygrid.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <climits>

const QString HierarchyGrid::RootKey = QStringLiteral("#");

namespace {

constexpr int HierarchyLastCol = HierarchyGrid::ColumnCount - 1;
constexpr int StatusCount = Counter::StatusCount;

/// Figures of one row: technicians, hours remaining, hours worked, the seven work-order and the
/// seven point counts.
struct RowFigures
{
    qint32 techCount = 0;
    qint32 hoursRemaining = 0;
    qint32 hoursWorked = 0;
    std::array<qint32, StatusCount> workOrders{};
    std::array<qint32, StatusCount> points{};
    bool reached = false;

    void add(const BusinessUnit &bu)
    {
        techCount = Conv::addChecked(techCount, bu.TechCount());
        hoursRemaining = Conv::addChecked(hoursRemaining, bu.HoursRemaining());
        hoursWorked = Conv::addChecked(hoursWorked, bu.HoursWorked());
        const auto &totals = bu.GrandTotals();
        for (int s = 0; s < StatusCount; ++s) {
            workOrders[std::size_t(s)] =
                Conv::addChecked(workOrders[std::size_t(s)], totals[std::size_t(s)]);
            points[std::size_t(s)] =
                Conv::addChecked(points[std::size_t(s)], totals[std::size_t(s + StatusCount)]);
        }
        reached = true;
    }
};

/// Completed over hours worked, both whole numbers, rounded to 2 decimals; 0 without hours.
double productivity(qint32 completed, qint32 hoursWorked)
{
    return hoursWorked == 0 ? 0 : Conv::round2(double(completed) / double(hoursWorked));
}

void writeFigures(OutlineGrid &grid, int row, const RowFigures &f,
                  const std::array<qint32, StatusCount> &counts)
{
    grid.setNumber(row, 1, f.techCount);
    grid.setNumber(row, 2, f.hoursRemaining);
    grid.setNumber(row, 3, f.hoursWorked);
    for (int s = 0; s < StatusCount; ++s)
        grid.setNumber(row, 4 + s, counts[std::size_t(s)]);
    grid.setDecimal(row, HierarchyLastCol, productivity(counts[Counter::Completed], f.hoursWorked));
}

/// Disjoint sets over the units, each set being one subtree of the forest the moves have built so
/// far, with the subtree's top unit. A unit whose own move is still to come is always a top.
class SubtreeSets
{
public:
    explicit SubtreeSets(std::size_t n) : m_rep(n), m_top(n), m_size(n, 1)
    {
        for (std::size_t i = 0; i < n; ++i)
            m_rep[i] = m_top[i] = int(i);
    }

    [[nodiscard]] int topOf(int unit) { return m_top[std::size_t(find(unit))]; }

    /// Hangs the subtree topped by unit below parent's subtree.
    void attach(int unit, int parent)
    {
        const int a = find(unit);
        const int b = find(parent);
        const int top = m_top[std::size_t(b)];
        const int root = m_size[std::size_t(a)] > m_size[std::size_t(b)] ? a : b;
        const int other = root == a ? b : a;
        m_rep[std::size_t(other)] = root;
        m_size[std::size_t(root)] += m_size[std::size_t(other)];
        m_top[std::size_t(root)] = top;
    }

private:
    int find(int x)
    {
        while (m_rep[std::size_t(x)] != x) {
            m_rep[std::size_t(x)] = m_rep[std::size_t(m_rep[std::size_t(x)])];
            x = m_rep[std::size_t(x)];
        }
        return x;
    }

    std::vector<int> m_rep;
    std::vector<int> m_top;
    std::vector<int> m_size;
};

} // namespace

void HierarchyGrid::InitBUHierarchyGrid(OutlineGrid &grid, int index, const CaptionLookup &caption,
                                        double twipsPerPixelX)
{
    OutlineGrid::RedrawSuspender suspend(grid);
    grid.clear();
    grid.setRowCount(0);
    grid.setColCount(ColumnCount);
    grid.setRowCount(2);
    grid.setFixedRows(2);
    for (int c = 1; c < ColumnCount; ++c)
        grid.setColWidth(c, SummaryGrid::pixelsToTwips(63, twipsPerPixelX));
    grid.setColWidth(0, SummaryGrid::pixelsToTwips(150, twipsPerPixelX));

    grid.setBackColor(0, 0, 1, 3, OutlineGrid::fromBgr(HeaderBgr));
    grid.setBold(0, 0, 0, HierarchyLastCol, true);
    grid.setBackColor(0, HierarchyLastCol, 1, HierarchyLastCol,
                      OutlineGrid::fromBgr(ProductivityBgr));

    grid.setText(0, HierarchyLastCol, caption(QStringLiteral("Productivity")));
    static const char *const keys[] = {
        "BusinessUnits", "TechCount", "HoursRemaining", "HoursCompleted", "Open",   "Warning",
        "Jeopardy",      "Late",      "Completed",      "Canceled",       "NotDone"};
    for (int c = 0; c < HierarchyLastCol; ++c)
        grid.setText(1, c, caption(QString::fromLatin1(keys[c])));
    const bool points = index == 2;
    // The same caption over every count column: the header merges them into one band.
    grid.setText(0, 4, 0, HierarchyLastCol - 1,
                 caption(points ? QStringLiteral("Points") : QStringLiteral("WorkOrders")));
    grid.setText(1, HierarchyLastCol,
                 caption(points ? QStringLiteral("PtsPerHour") : QStringLiteral("WOsPerHour")));
    grid.setBackColor(0, 4, 1, HierarchyLastCol - 1, OutlineGrid::fromBgr(CountsBgr));
    grid.setOutlineCol(0);
    grid.setOutlineTextCol(-1);
}

std::vector<OutlineGrid::TreeNode> HierarchyGrid::BuildTree(const UnitLookups &lookups,
                                                            const BusinessUnits &bus,
                                                            std::vector<int> *nodeOfUnit)
{
    const StringSet &buDescriptions = lookups.descriptions;
    const StringSet &parentBUIDs = lookups.parents;
    // When both lookups list the same ids in the same order, an entry's position is its unit's
    // in both and in the hierarchy, which also knows each parent's position: no id is looked up.
    const bool aligned = lookups.aligned;
    // Units are numbered by their position in the description lookup: each has one row there.
    const std::size_t n = std::size_t(buDescriptions.count());
    const qsizetype rootPosition = buDescriptions.indexOf(RootKey);
    constexpr int UnderRoot = -2; // moved under the root
    constexpr int Stays = -1;     // never moved: stays where it was added, under the root
    std::vector<int> parentOf(n, Stays);
    std::vector<int> moved; // in the order of their moves
    moved.reserve(n);

    // Replay the moves. Rows are found by exact row data and an empty key finds no row, so an
    // empty unit or parent id moves nothing; the root itself never moves (everything lies in its
    // subtree).
    SubtreeSets sets(n);
    for (qsizetype position = 0; position < parentBUIDs.count(); ++position) {
        const auto &entry = parentBUIDs.at(position);
        const QString &unitId = entry.key;
        const QString &parentId = entry.value;
        if (unitId.isEmpty() || parentId.isEmpty() || unitId == RootKey)
            continue;
        const qsizetype unit = aligned ? position : buDescriptions.indexOf(unitId);
        if (unit < 0)
            continue;
        if (parentId == RootKey) {
            parentOf[std::size_t(unit)] = UnderRoot;
            moved.push_back(int(unit));
            continue;
        }
        const qsizetype parent = aligned ? lookups.hierarchy.parentIndex(int(position))
                                         : buDescriptions.indexOf(parentId);
        if (parent < 0)
            continue;
        // A node cannot move into its own subtree: a self-parent or a cycle leaves it put.
        if (sets.topOf(int(parent)) == int(unit))
            continue;
        parentOf[std::size_t(unit)] = int(parent);
        sets.attach(int(unit), int(parent));
        moved.push_back(int(unit));
    }

    // Prune: a unit stays when the model holds it or when one of its units below stays. Each unit
    // is marked once, walking up from every unit the model holds.
    std::vector<char> keep(n, 0);
    for (std::size_t i = 0; i < n; ++i) {
        if (qsizetype(i) == rootPosition ||
            !(aligned ? lookups.units[i] : bus.Item(buDescriptions.keyAt(qsizetype(i)))))
            continue;
        for (int x = int(i); x >= 0 && !keep[std::size_t(x)]; x = parentOf[std::size_t(x)])
            keep[std::size_t(x)] = 1;
    }

    // The root is pruned like any other node: once no unit below it stays, it stays only when the
    // model holds a unit "#" itself. Otherwise a grey row of zeros would stand for nothing.
    if (nodeOfUnit)
        nodeOfUnit->assign(n, -1);
    if (std::find(keep.begin(), keep.end(), char(1)) == keep.end() && !bus.Item(RootKey))
        return {};

    // Children keep their pre-sort order as the tie-break of the sort by text: the root's
    // children that were never moved come first in lookup order, then the units moved under
    // the root; every other node's children in the order they were moved.
    std::vector<OutlineGrid::TreeNode> nodes;
    nodes.reserve(n + 1);
    const QString *rootText = buDescriptions.find(RootKey);
    nodes.push_back({rootText ? *rootText : QString(), RootKey, -1});
    std::vector<int> nodeOf(n, -1);
    std::vector<int> unitOfNode{-1};
    unitOfNode.reserve(n + 1);
    const auto addNode = [&](std::size_t unit, int parent) {
        nodeOf[unit] = int(nodes.size());
        unitOfNode.push_back(int(unit));
        const auto &entry = buDescriptions.at(qsizetype(unit));
        nodes.push_back({entry.value, entry.key, parent});
    };
    for (std::size_t i = 0; i < n; ++i) {
        if (qsizetype(i) != rootPosition && keep[i] && parentOf[i] == Stays)
            addNode(i, 0);
    }
    const std::size_t firstMoved = nodes.size();
    for (const int unit : moved) {
        if (keep[std::size_t(unit)])
            addNode(std::size_t(unit), 0);
    }
    // A parent may have moved after its children: resolve parents once every node has its index.
    for (std::size_t k = firstMoved; k < nodes.size(); ++k) {
        const int parent = parentOf[std::size_t(unitOfNode[k])];
        nodes[k].parent = parent == UnderRoot ? 0 : nodeOf[std::size_t(parent)];
    }
    if (nodeOfUnit) {
        *nodeOfUnit = std::move(nodeOf);
        if (rootPosition >= 0)
            (*nodeOfUnit)[std::size_t(rootPosition)] = 0;
    }
    return nodes;
}

namespace {

/// One unit's or subtree's figures in the order of RowFigures. Figures are never negative here,
/// so a sum is 32 bits wide and stops at Capped once it leaves the 32-bit range: half the memory
/// of 64-bit sums, which for tens of thousands of units is what the sums' time goes by.
struct SubtreeFigures
{
    static constexpr int Count = 3 + 2 * StatusCount;
    static constexpr quint32 Capped = 0x80000000u; // INT32_MAX + 1: no figure reaches it
    std::array<quint32, Count> v{};
    bool reached = false;

    void add(const SubtreeFigures &o)
    {
        // Both at most Capped: the sum wraps only past 2^32 - 1, and then it is below either.
        for (int i = 0; i < Count; ++i) {
            const quint32 sum = v[std::size_t(i)] + o.v[std::size_t(i)];
            v[std::size_t(i)] = sum < v[std::size_t(i)] || sum > Capped ? Capped : sum;
        }
        reached = reached || o.reached;
    }
    /// The unit's own figures; false when one is negative.
    bool assign(const BusinessUnit &bu)
    {
        std::array<qint32, Count> own{};
        own[0] = bu.TechCount();
        own[1] = bu.HoursRemaining();
        own[2] = bu.HoursWorked();
        const auto &totals = bu.GrandTotals();
        for (int s = 0; s < 2 * StatusCount; ++s)
            own[std::size_t(3 + s)] = totals[std::size_t(s)];
        reached = true;
        for (int i = 0; i < Count; ++i) {
            if (own[std::size_t(i)] < 0)
                return false;
            v[std::size_t(i)] = quint32(own[std::size_t(i)]);
        }
        return true;
    }
    /// As RowFigures; false when a sum left the 32-bit range.
    bool narrow(RowFigures &f) const
    {
        if (std::any_of(v.begin(), v.end(), [](quint32 x) { return x >= Capped; }))
            return false;
        f.techCount = qint32(v[0]);
        f.hoursRemaining = qint32(v[1]);
        f.hoursWorked = qint32(v[2]);
        for (int s = 0; s < StatusCount; ++s) {
            f.workOrders[std::size_t(s)] = qint32(v[std::size_t(3 + s)]);
            f.points[std::size_t(s)] = qint32(v[std::size_t(3 + StatusCount + s)]);
        }
        f.reached = reached;
        return true;
    }
};

/// The rows' figures from subtree sums computed bottom-up once, so that the cost does not depend
/// on the depth of the tree. The sums equal the unit-by-unit addition exactly when no figure is
/// negative (a partial sum then overflows only if the whole does) and the tree has no cycle; the
/// caller takes the unit-by-unit way otherwise, which also reports an overflow where it occurs.
bool fillBottomUp(std::vector<RowFigures> &figures, const OutlineGrid &workOrders,
                  const UnitLookups &lookups, const BusinessUnits &bus, const StringSet &selection,
                  std::span<const int> positions, const std::vector<int> &rowOfUnit)
{
    const BUHierarchy &hierarchy = lookups.hierarchy;
    const int n = hierarchy.count();
    // Parents before children, each unit's children one run: the sums are kept in this order,
    // so that the bottom-up pass reads them one after the other. A unit that no top reaches
    // lies on a cycle.
    std::vector<int> order;
    order.reserve(std::size_t(n));
    for (int u = 0; u < n; ++u) {
        const int parent = hierarchy.parentIndex(u);
        if (parent < 0 || parent == u)
            order.push_back(u);
    }
    // The children of order[k] come after those of order[k - 1] (after the tops for the first).
    const int tops = int(order.size());
    std::vector<int> childrenEnd(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < order.size(); ++i) {
        for (const int child : hierarchy.childrenOf(order[i]))
            order.push_back(child);
        childrenEnd[i] = int(order.size());
    }
    if (int(order.size()) != n)
        return false;
    std::vector<int> placeOf(static_cast<std::size_t>(n));
    std::vector<SubtreeFigures> sums(static_cast<std::size_t>(n));
    constexpr std::size_t Ahead = 8; // units lie all over the heap: ask for them ahead
    for (std::size_t k = 0; k < order.size(); ++k) {
        if (k + Ahead < order.size()) {
            // The figures open the unit (BusinessUnit keeps them first) and may run into a
            // second cache line.
            const char *next =
                reinterpret_cast<const char *>(lookups.units[std::size_t(order[k + Ahead])]);
            if (next) {
                __builtin_prefetch(next);
                __builtin_prefetch(next + SubtreeFigures::Count * sizeof(qint32) - 1);
            }
        }
        placeOf[std::size_t(order[k])] = int(k);
        if (const BusinessUnit *bu = lookups.units[std::size_t(order[k])]) {
            if (!sums[k].assign(*bu))
                return false;
        }
    }
    for (std::size_t k = order.size(); k-- > 0;) {
        for (int c = k > 0 ? childrenEnd[k - 1] : tops; c < childrenEnd[k]; ++c)
            sums[k].add(sums[std::size_t(c)]);
    }

    std::vector<SubtreeFigures> rows(figures.size());
    const bool positioned = qsizetype(positions.size()) == selection.count();
    for (qsizetype k = 0; k < selection.count(); ++k) {
        const auto &entry = selection.at(k);
        const int unit = positioned ? positions[std::size_t(k)] : hierarchy.indexOf(entry.key);
        const int row = unit >= 0 && !rowOfUnit.empty() ? rowOfUnit[std::size_t(unit)]
                                                        : workOrders.findRow(entry.key);
        if (row < 0)
            continue;
        SubtreeFigures &f = rows[std::size_t(row)];
        if (unit >= 0) {
            f.add(sums[std::size_t(placeOf[std::size_t(unit)])]);
            continue;
        }
        // Not a unit of the tree (the root mark, say): its own figures and its children's.
        SubtreeFigures own;
        if (const BusinessUnit *bu = bus.Item(entry.key); bu && !own.assign(*bu))
            return false;
        f.add(own);
        for (const int child : hierarchy.children(entry.key))
            f.add(sums[std::size_t(placeOf[std::size_t(child)])]);
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (rows[row].reached && !rows[row].narrow(figures[row]))
            return false;
    }
    return true;
}

void fillUnitByUnit(std::vector<RowFigures> &figures, const OutlineGrid &workOrders,
                    const UnitLookups &lookups, const BusinessUnits &bus,
                    const StringSet &selection);

} // namespace

namespace {

// Whether some id that a row's figures go by lists as its comma pieces: a unit's (the bottom-up
// sums would add the unit itself where the listing adds its pieces) or a selected id that is no
// unit. The selected ids found as units are the hierarchy's own, which it has looked at already.
bool piecedIds(const StringSet &selection, std::span<const int> positions,
               const BUHierarchy &hierarchy)
{
    if (hierarchy.hasPiecedIds())
        return true;
    const bool positioned = qsizetype(positions.size()) == selection.count();
    for (qsizetype k = 0; k < selection.count(); ++k) {
        if (!(positioned && positions[std::size_t(k)] >= 0) && selection.keyAt(k).contains(u','))
            return true;
    }
    return false;
}

// Each row's figures: of the unit in the row and of every unit below it that the model holds, once
// per selected unit that reaches the row. The grid's rows are read, not written.
std::vector<RowFigures> rowFigures(const OutlineGrid &workOrders, const UnitLookups &lookups,
                                   const BusinessUnits &bus, const StringSet &selection,
                                   std::span<const int> positions,
                                   const std::vector<int> &rowOfUnit)
{
    std::vector<RowFigures> figures(std::size_t(workOrders.rowCount()));
    if (piecedIds(selection, positions, lookups.hierarchy) ||
        !fillBottomUp(figures, workOrders, lookups, bus, selection, positions, rowOfUnit)) {
        figures.assign(figures.size(), RowFigures{});
        fillUnitByUnit(figures, workOrders, lookups, bus, selection);
    }
    return figures;
}

// Every data row's cells besides the tree text, as a fill leaves them: figures on a reached row,
// an empty grey row where no selected unit reaches; without figures (a fill that failed), empty
// rows without colour. Rows kept from the previous fill then change only where a value changes.
void writeRows(OutlineGrid &grid, const std::vector<RowFigures> *figures,
               std::array<qint32, StatusCount> RowFigures::*counts,
               const std::vector<char> &asLeft = {})
{
    const QColor grey = OutlineGrid::fromBgr(HierarchyGrid::UnreachedBgr);
    for (int row = grid.fixedRows(); row < grid.rowCount(); ++row) {
        if (std::size_t(row) < asLeft.size() && asLeft[std::size_t(row)])
            continue;
        grid.setBold(row, 0, row, 0, true);
        const RowFigures *f = figures ? &(*figures)[std::size_t(row)] : nullptr;
        if (f && f->reached) {
            writeFigures(grid, row, *f, f->*counts);
            grid.setBackColor(row, 0, row, HierarchyLastCol, QColor());
        } else {
            grid.setText(row, 1, row, HierarchyLastCol, QString());
            grid.setBackColor(row, 0, row, HierarchyLastCol, f ? grey : QColor());
        }
        grid.setBold(row, 1, row, HierarchyLastCol, false);
    }
}

} // namespace

namespace {

// The figures as the rows' units are added one by one, each row over its unit and every
// descendant in the order of the step-by-step listing.
void fillUnitByUnit(std::vector<RowFigures> &figures, const OutlineGrid &workOrders,
                    const UnitLookups &lookups, const BusinessUnits &bus,
                    const StringSet &selection)
{
    // The descendants come from the children index. Its listing splits ids that
    // hold a comma into pieces; only then is the general id list needed.
    const BUHierarchy &hierarchy = lookups.hierarchy;
    const bool commaInIds = hierarchy.hasPiecedIds();
    std::vector<int> walk;

    for (const auto &entry : selection) {
        const int row = workOrders.findRow(entry.key);
        if (row < 0)
            continue;
        RowFigures &f = figures[std::size_t(row)];
        if (commaInIds || entry.key.contains(u',')) {
            StringSet ids(KeyCompare::Exact);
            hierarchy.appendIdList(entry.key, ids);
            for (const auto &id : ids) {
                if (const BusinessUnit *bu = bus.Item(id.key))
                    f.add(*bu);
            }
            continue;
        }
        if (const BusinessUnit *bu = bus.Item(entry.key))
            f.add(*bu);
        walk.clear();
        hierarchy.appendDescendants(entry.key, walk);
        for (const int unit : walk) {
            if (const BusinessUnit *bu = lookups.units[std::size_t(unit)])
                f.add(*bu);
        }
    }
}

} // namespace

void HierarchyGrid::Fill(OutlineGrid &workOrders, OutlineGrid &points, const UnitLookups &lookups,
                         const BusinessUnits &bus, const StringSet &selection,
                         std::span<const int> selectionPositions, std::vector<int> *unitOfRow,
                         WrittenRows *written)
{
    if (unitOfRow)
        unitOfRow->clear();
    OutlineGrid::RedrawSuspender suspendWorkOrders(workOrders);
    OutlineGrid::RedrawSuspender suspendPoints(points);
    // What the tree is made of: with aligned lookups, the lookups themselves (their epoch) and
    // which of their units the model holds (the prune keeps the others only above held units).
    std::vector<char> held;
    bool rootHeld = false;
    if (written && lookups.aligned) {
        held.resize(lookups.units.size());
        for (std::size_t u = 0; u < held.size(); ++u)
            held[u] = lookups.units[u] != nullptr;
        rootHeld = bus.Item(RootKey) != nullptr;
    }
    const bool treeStands =
        written && written->m_tree.valid && lookups.aligned &&
        written->m_tree.epoch == lookups.epoch && written->m_tree.rootHeld == rootHeld &&
        written->m_tree.held == held && written->m_tree.rows == workOrders.rowCount() &&
        written->m_tree.rows == points.rowCount() &&
        written->m_tree.shape == std::array{workOrders.shapeRevision(), points.shapeRevision()} &&
        written->m_tree.text == std::array{workOrders.textRevision(), points.textRevision()};
    // Each unit's row, when the lookups are aligned (a position is then a hierarchy index too):
    // the sums find the chosen units' rows without looking their ids up in the grid.
    std::vector<int> rowOfUnit;
    if (treeStands) {
        // The rows are the tree's, texts and all: what keepTree() would find and leave.
        rowOfUnit = std::move(written->m_tree.rowOfUnit); // back in when the fill ends
        for (OutlineGrid *grid : {&workOrders, &points}) {
            grid->resetDataRows();
            if (grid->rowCount() > 1)
                grid->setBold(1, 0, 1, 0, true);
        }
    } else {
        if (written)
            written->m_tree = WrittenRows::Tree();
        std::vector<int> nodeOfUnit;
        const std::vector<OutlineGrid::TreeNode> nodes = BuildTree(lookups, bus, &nodeOfUnit);
        const OutlineGrid::TreeLayout layout = OutlineGrid::layOutTree(nodes, true);
        for (OutlineGrid *grid : {&workOrders, &points}) {
            // The same tree as last time keeps its rows (a refresh mostly changes figures only).
            if (!grid->keepTree(nodes, layout, 0, 0)) {
                grid->removeSubtotals();
                grid->setRowCount(2);
                grid->appendTree(nodes, layout, 0, 0);
            }
            if (grid->rowCount() > 1) // the data rows' tree texts go bold with their figures
                grid->setBold(1, 0, 1, 0, true);
        }
        if (lookups.aligned) {
            std::vector<int> rowOfNode(nodes.size());
            for (std::size_t k = 0; k < layout.order.size(); ++k)
                rowOfNode[std::size_t(layout.order[k])] = workOrders.fixedRows() + int(k);
            rowOfUnit.assign(nodeOfUnit.size(), -1);
            for (std::size_t u = 0; u < nodeOfUnit.size(); ++u) {
                if (nodeOfUnit[u] >= 0)
                    rowOfUnit[u] = rowOfNode[std::size_t(nodeOfUnit[u])];
            }
        }
    }
    if (unitOfRow && lookups.aligned) {
        unitOfRow->assign(std::size_t(workOrders.rowCount()), -1);
        for (std::size_t u = 0; u < rowOfUnit.size(); ++u) {
            if (rowOfUnit[u] >= 0)
                (*unitOfRow)[std::size_t(rowOfUnit[u])] = int(u);
        }
    }
    std::vector<RowFigures> figures;
    try {
        figures = rowFigures(workOrders, lookups, bus, selection, selectionPositions, rowOfUnit);
    } catch (...) {
        if (written)
            *written = WrittenRows();
        writeRows(workOrders, nullptr, &RowFigures::workOrders);
        writeRows(points, nullptr, &RowFigures::points);
        throw;
    }
    if (!written) {
        writeRows(workOrders, &figures, &RowFigures::workOrders);
        writeRows(points, &figures, &RowFigures::points);
        return;
    }
    // Rows whose figures are those the last fill wrote, in both grids as it left them.
    const std::size_t rows = figures.size();
    const auto packed = [](const RowFigures &f) {
        std::array<qint32, WrittenRows::Figures> out{};
        out[0] = f.techCount;
        out[1] = f.hoursRemaining;
        out[2] = f.hoursWorked;
        std::copy(f.workOrders.begin(), f.workOrders.end(), out.begin() + 3);
        std::copy(f.points.begin(), f.points.end(), out.begin() + 3 + StatusCount);
        out[WrittenRows::Figures - 1] = f.reached;
        return out;
    };
    const bool alike = std::size_t(points.rowCount()) == rows; // one tree in both grids
    if (written->m_figures.size() != rows || written->m_cells[0].size() != rows ||
        written->m_cells[1].size() != rows || !alike) {
        *written = WrittenRows();
        written->m_figures.resize(rows);
        written->m_cells[0].resize(rows);
        written->m_cells[1].resize(rows);
    }
    std::vector<char> asLeft(rows, 0);
    for (std::size_t row = std::size_t(workOrders.fixedRows()); alike && row < rows; ++row) {
        asLeft[row] = written->m_figures[row] == packed(figures[row]) &&
                      workOrders.unchangedSince(int(row), written->m_cells[0][row]) &&
                      points.unchangedSince(int(row), written->m_cells[1][row]);
    }
    try {
        writeRows(workOrders, &figures, &RowFigures::workOrders, asLeft);
        writeRows(points, &figures, &RowFigures::points, asLeft);
    } catch (...) {
        *written = WrittenRows(); // rows written part way must not pass for written
        throw;
    }
    // Rows passed over keep their memory: the same figures, the same cells.
    for (std::size_t row = 0; alike && row < rows; ++row) {
        if (asLeft[row])
            continue;
        written->m_figures[row] = packed(figures[row]);
        written->m_cells[0][row] = workOrders.rowCells(int(row));
        written->m_cells[1][row] = points.rowCells(int(row));
    }
    if (lookups.aligned) { // aligned, so the tree's inputs were taken above
        WrittenRows::Tree &tree = written->m_tree;
        tree.epoch = lookups.epoch;
        tree.held = std::move(held);
        tree.rootHeld = rootHeld;
        tree.rowOfUnit = std::move(rowOfUnit);
        tree.rows = workOrders.rowCount();
        tree.shape = {workOrders.shapeRevision(), points.shapeRevision()};
        tree.text = {workOrders.textRevision(), points.textRevision()};
        tree.valid = true;
    }
}

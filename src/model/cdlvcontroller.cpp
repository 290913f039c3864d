#include "model/cdlvcontroller.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "common/errorreporter.h"
#include "common/sharedtext.h"
#include "model/detailcolumns.h"
#include "model/dlvsurface.h"
#include "model/errortrap.h"
#include "model/generalcolumns.h"
#include "model/modellog.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"
#include "webdata/webvariant.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace {

// Fills one exact-key lookup from two columns of a code table, row by row; a repeated key raises
// DLVError(457) with the rows before it kept.
void fillLookup(StringSet &lookup, const QZWebTable &table, QStringView keyColumn,
                QStringView valueColumn, const StringSet *keysOfRows = nullptr)
{
    lookup.clear();
    const int rows = table.rowCount();
    if (rows < 1)
        return;
    const int keyAt = table.requireColumn(keyColumn);
    const int valueAt = table.requireColumn(valueColumn);
    lookup.reserve(rows);
    for (int i = 1; i <= rows; ++i) {
        // A lookup just filled from the same rows' keys lends its key strings: the two then
        // share every key, which also shows at a glance that they list the same ids.
        lookup.add(keysOfRows ? keysOfRows->keyAt(i - 1) : table.value(i, keyAt).toString(),
                   table.value(i, valueAt).toString());
    }
}

// Whether the unit table lists exactly the ids, descriptions and parents that the two unit lookups
// hold, row for row: filling them again would give the same lookups. A table that lacks a column
// or whose fill stopped part way (a repeated id) never matches, so it is filled and fails as
// before.
bool sameUnitLookups(const StringSet &descriptions, const StringSet &parents,
                     const QZWebTable &table)
{
    const int rows = std::max(table.rowCount(), 0);
    if (descriptions.count() != rows || parents.count() != rows)
        return false;
    if (rows == 0)
        return true;
    const int keyAt = table.columnIndex(u"BUID");
    const int descriptionAt = table.columnIndex(u"BUDesc");
    const int parentAt = table.columnIndex(u"ParentBUID");
    if (keyAt < 0 || descriptionAt < 0 || parentAt < 0)
        return false;
    for (int i = 1; i <= rows; ++i) {
        const auto &description = descriptions.at(i - 1);
        const auto &parent = parents.at(i - 1);
        if (!SharedText::equal(description.key, parent.key) ||
            table.value(i, keyAt) != description.key ||
            table.value(i, descriptionAt) != description.value ||
            table.value(i, parentAt) != parent.value)
            return false;
    }
    return true;
}

// Epochs of unit lookups are unique across controllers, so that a view's kept positions never
// take one controller's lookups for another's.
quint64 newEpoch()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

// A time of day shifted by a number of minutes must stay inside the host platform's date range
// (years 100 to 9999); beyond it the addition overflows.
QDateTime addMinutes(const QDateTime &now, double minutes)
{
    constexpr double MaxOffsetMs = 1e16; // far beyond the date range, still exact in qint64
    const double ms = minutes * 60000.0;
    if (!std::isfinite(ms) || std::abs(ms) > MaxOffsetMs)
        throw DLVError::overflow();
    const QDateTime next = now.addMSecs(qint64(std::llround(ms)));
    if (!next.isValid() || next.date().year() < 100 || next.date().year() > 9999)
        throw DLVError::overflow();
    return next;
}

} // namespace

cDLVController::cDLVController(ErrorReporter *reporter, QObject *parent)
    : QObject(parent), m_reporter(reporter), m_bus(std::make_unique<BusinessUnits>())
{
    m_parentEpoch = newEpoch();
}

cDLVController::~cDLVController()
{
    if (m_bus)
        m_bus->Terminate();
}

void cDLVController::Initialize(DLVSurface *surface)
{
    m_surface = surface;
    m_keptChosen = KeptList();
    m_keptAggregate = KeptList();
    m_keptListUnits = KeptListUnits();
}

void cDLVController::Release()
{
    if (m_bus)
        m_bus->Terminate();
    m_bus = std::make_unique<BusinessUnits>();
    ++m_busEpoch;
    m_buDescriptions.clear();
    m_parentBUIDs.clear();
    m_jobTypeDescriptions.clear();
    m_jobClassDescriptions.clear();
    m_timeFormats.reset();
    m_hierarchyValid = false;
    m_parentEpoch = newEpoch();
}

void cDLVController::ReceiveMessage(const QVariant &data, qint32 DataType, const QString &Tag)
{
    Q_UNUSED(DataType);
    Q_UNUSED(Tag);
    std::shared_ptr<QZWebMessage> message;
    qint32 number = 0;
    QString description;
    try {
        if (WebVariant::typeName(data) != u"QZWebMessage")
            return;
        message = WebVariant::unwrap<QZWebMessage>(data);
        if (!message)
            return;
        const QString &name = message->name();
        if (name == u"DLVData") {
            if (m_busy.any()) {
                qCDebug(lcModel) << "data message dropped: a grid fill is still in progress";
                return;
            }
            FillBusy::Scope summary(m_busy, FillBusy::SummaryFill);
            FillBusy::Scope hierarchy(m_busy, FillBusy::HierarchyFill);
            // Once the load has raised the fills, they own the flags; a load that failed before
            // that gives them up here.
            if (LoadData(*message)) {
                summary.handOver();
                hierarchy.handOver();
            }
            emit HideStatus();
        } else if (name == u"DLVServerStopped") {
            emit ShowStatus(QStringLiteral("msg-DLVServerDown"), true);
        }
        return;
    } catch (const DLVError &e) {
        number = e.number();
        description = e.description();
    } catch (const std::bad_alloc &) {
        number = 7;
        description = QStringLiteral("Out of memory");
    } catch (const std::exception &e) {
        number = DLVError::InvalidCall;
        description = QString::fromLocal8Bit(e.what());
    }
    reportMessageError(message.get(), number, description);
}

void cDLVController::reportMessageError(const QZWebMessage *message, qint32 number,
                                        const QString &description)
{
    // A failing message reports the host's own error fields ("Number", "Description") rather
    // than the local failure. Deliberate choice: where the message carries no such field, the
    // local failure's number or description stands in, so the user never sees an empty error.
    qint32 shownNumber = number;
    QString shownDescription = description;
    if (message) {
        if (message->hasProperty(u"Number")) {
            try {
                shownNumber = Conv::textToLong(message->property(u"Number"));
            } catch (const DLVError &) {
                shownNumber = number; // a host number beyond 32 bits: keep the local one
            }
        }
        if (const QString text = message->property(u"Description"); !text.isEmpty())
            shownDescription = text;
    }
    ErrorTrap::report(m_reporter, shownNumber, shownDescription,
                      QStringLiteral("cDLVController.ReceiveMessage"));
}

bool cDLVController::LoadData(const QZWebMessage &message)
{
    bool reachedFill = false;
    ErrorTrap::run(m_reporter, QStringLiteral("cDLVController.LoadData"), [&] {
        const std::shared_ptr<QZWebData> data = message.data(1);
        if (!data)
            throw DLVError::invalidCall(QStringLiteral("the message's data item 1 is empty"));
        const QZWebTable &businessUnits = data->table(u"BusinessUnits");
        const QZWebTable &jobTypes = data->table(u"JobTypes");
        const QZWebTable &jobClasses = data->table(u"JobClasses");
        const QZWebTable &regionalFormats = data->table(u"RegionalFormats");
        LoadRegionalFormats(regionalFormats);
        LoadCodeLookups(businessUnits, jobTypes, jobClasses);
        const QZWebTable &general = data->table(u"BUGeneralInfo");
        const QZWebTable &details = data->table(u"BUDetailsInfo");
        bool ok = false;
        LoadBUData(general, details, ok);
        if (!ok)
            qCDebug(lcModel) << "figures only partly loaded";
        reachedFill = true;
        emit FillBUHierarchyGrid(*m_bus);
        UpdateRefreshTimes(message);
        m_jeopardyThreshold = message.property(u"tqJeopardyThreshold");
    });
    return reachedFill;
}

void cDLVController::LoadRegionalFormats(const QZWebTable &table)
{
    if (!m_timeFormats)
        m_timeFormats = std::make_unique<StringSet>(KeyCompare::Exact);
    fillLookup(*m_timeFormats, table, u"languageCode", u"timeformat");
}

void cDLVController::LoadCodeLookups(const QZWebTable &businessUnits, const QZWebTable &jobTypes,
                                     const QZWebTable &jobClasses)
{
    // Lookup by lookup: a failure leaves the later lookups as the previous load left them.
    // Units rarely change between two messages: lookups equal to the table stay, and with them
    // their epoch, the hierarchy and everything kept for them (positions, the aggregate list,
    // the grids' shared texts).
    if (!sameUnitLookups(m_buDescriptions, m_parentBUIDs, businessUnits)) {
        m_hierarchyValid = false;
        m_parentEpoch = newEpoch();
        fillLookup(m_buDescriptions, businessUnits, u"BUID", u"BUDesc");
        fillLookup(m_parentBUIDs, businessUnits, u"BUID", u"ParentBUID", &m_buDescriptions);
    }
    fillLookup(m_jobTypeDescriptions, jobTypes, u"JobType", u"JobTypeDesc");
    fillLookup(m_jobClassDescriptions, jobClasses, u"JobClass", u"JobClassDesc");
}

void cDLVController::LoadBUData(const QZWebTable &general, const QZWebTable &details, bool &ok)
{
    ErrorTrap::run(m_reporter, QStringLiteral("cDLVController.LoadBUData"), [&] {
        // The new model writes into the old one's arrays: a refresh of a message like the last
        // one then touches no fresh memory.
        m_bus = std::make_unique<BusinessUnits>(m_bus->ReleaseStorage());
        ++m_busEpoch;
        BusinessUnits &bus = *m_bus;

        GeneralColumns generalColumns(general);
        const int generalRows = general.rowCount();
        for (int i = 1; i <= generalRows; ++i) {
            const QZWebRow row(general, i);
            if (!bus.Item(row.value(generalColumns.buid())))
                bus.Add(row, generalColumns).SetBUIndex(i);
        }

        DetailColumns detailColumns(details);
        bus.LoadDetails(details, detailColumns);
        bus.CalcTotals(m_reporter);
        ok = true;
    });
}

void cDLVController::UpdateRefreshTimes(const QZWebMessage &message)
{
    QString format;
    if (m_timeFormats) {
        if (const QString *own = m_timeFormats->find(m_languageID))
            format = *own;
        else if (const QString *english = m_timeFormats->find(u"EN"))
            format = *english;
    }
    const QDateTime now = m_clock ? m_clock() : QDateTime::currentDateTime();
    const QString lastText = Conv::formatTime(now.time(), format);
    const double minutes = Conv::leadingNumber(message.property(u"tqDBRefreshInterval"));
    const QDateTime next = addMinutes(now, minutes);
    m_lastRefresh = now;
    m_nextRefresh = next;
    emit RefreshTimesChanged(lastText, Conv::formatTime(next.time(), format));
}

void cDLVController::FillSingleBU()
{
    emit FillSingleBUGrid(*m_bus);
}

const BUHierarchy &cDLVController::Hierarchy() const
{
    if (!m_hierarchyValid) {
        m_hierarchy.rebuild(m_parentBUIDs);
        m_hierarchyValid = true;
    }
    return m_hierarchy;
}

UnitLookups cDLVController::Lookups() const
{
    const BUHierarchy &hierarchy = Hierarchy();
    KeptUnits &kept = m_keptUnits;
    if (kept.parentEpoch != m_parentEpoch || kept.busEpoch != m_busEpoch) {
        // Every fill looks units up by position; each id is looked up once per load.
        kept.units.resize(std::size_t(hierarchy.count()));
        for (int u = 0; u < hierarchy.count(); ++u)
            kept.units[std::size_t(u)] = m_bus->Item(hierarchy.id(u));
        kept.aligned = m_buDescriptions.count() == m_parentBUIDs.count();
        for (qsizetype i = 0; kept.aligned && i < m_buDescriptions.count(); ++i) {
            kept.aligned = SharedText::equal(m_buDescriptions.keyAt(i), m_parentBUIDs.keyAt(i));
        }
        kept.parentEpoch = m_parentEpoch;
        kept.busEpoch = m_busEpoch;
    }
    return {m_buDescriptions, m_parentBUIDs, hierarchy, kept.units, kept.aligned, m_parentEpoch};
}

const std::vector<int> &cDLVController::ListPositions() const
{
    const quint64 revision = m_surface->buListItemsRevision();
    KeptListUnits &kept = m_keptListUnits;
    if (revision == 0 || revision != kept.itemsRevision || kept.epoch != m_parentEpoch) {
        const BUHierarchy &hierarchy = Hierarchy();
        const int count = m_surface->buListCount();
        kept.positions.resize(std::size_t(std::max(count, 0)));
        for (int i = 0; i < count; ++i)
            kept.positions[std::size_t(i)] = hierarchy.indexOf(m_surface->buListId(i));
        kept.itemsRevision = revision;
        kept.epoch = m_parentEpoch;
    }
    return kept.positions;
}

StringSet cDLVController::GetBUList()
{
    StringSet ids(KeyCompare::Exact);
    ErrorTrap::run(m_reporter, QStringLiteral("cDLVController.GetBUList"), [&] {
        if (!m_surface)
            throw DLVError::invalidCall(QStringLiteral("the controller has no surface to read"));
        const quint64 revision = m_surface->buListRevision();
        if (revision != 0 && revision == m_keptChosen.revision) {
            ids = m_keptChosen.ids;
            return;
        }
        const int count = m_surface->buListCount();
        // A unit's id goes in once, found by the bitmap of units listed so far instead of the
        // list's index; an id that is no unit is never a unit's, so only those need the index.
        const BUHierarchy &hierarchy = Hierarchy();
        const std::vector<int> &listed = ListPositions();
        std::vector<char> seen(std::size_t(hierarchy.count()), 0);
        for (int i = 0; i < count; ++i) {
            if (!m_surface->buListSelected(i))
                continue;
            const int unit = std::size_t(i) < listed.size() ? listed[std::size_t(i)] : -1;
            if (unit >= 0 && seen[std::size_t(unit)])
                continue;
            const QString id = m_surface->buListId(i);
            if (unit >= 0) {
                seen[std::size_t(unit)] = 1;
                ids.appendUnique(id, id);
            } else {
                ids.addIfAbsent(id, id);
            }
        }
        m_keptChosen = KeptList{revision, 0, ids, {}};
    });
    return ids;
}

StringSet cDLVController::GetAggregateBUList(std::vector<const BusinessUnit *> *units)
{
    StringSet ids(KeyCompare::Exact);
    if (units)
        units->clear();
    ErrorTrap::run(m_reporter, QStringLiteral("cDLVController.GetAggregateBUList"), [&] {
        if (!m_surface)
            throw DLVError::invalidCall(QStringLiteral("the controller has no surface to read"));
        const quint64 revision = m_surface->buListRevision();
        if (revision == 0 || revision != m_keptAggregate.revision ||
            m_parentEpoch != m_keptAggregate.epoch) {
            const int count = m_surface->buListCount();
            // Units listed by an earlier selected unit's walk bring all their descendants with
            // them: later walks skip them, so the whole list costs one visit per unit at any
            // depth.
            const BUHierarchy &hierarchy = Hierarchy();
            std::vector<char> done(std::size_t(hierarchy.count()), 0);
            std::vector<int> positions;
            // When every chosen id is a unit and no unit's id holds a comma, the list holds the
            // walks' units alone, each once: it is built without checking its keys.
            const std::vector<int> &listed = ListPositions();
            std::vector<int> starts;
            bool unitsOnly = !hierarchy.hasPiecedIds() && int(listed.size()) == count;
            for (int i = 0; i < count && unitsOnly; ++i) {
                if (m_surface->buListSelected(i)) {
                    starts.push_back(listed[std::size_t(i)]);
                    unitsOnly = starts.back() >= 0;
                }
            }
            for (int i = 0; i < count && !unitsOnly; ++i) {
                if (m_surface->buListSelected(i))
                    hierarchy.appendIdList(m_surface->buListId(i), ids, &done, &positions);
            }
            for (std::size_t k = 0; unitsOnly && k < starts.size(); ++k)
                hierarchy.appendUnitIdList(starts[k], ids, done, positions);
            m_keptAggregate = KeptList{revision, m_parentEpoch, ids, std::move(positions)};
        }
        ids = m_keptAggregate.ids;
        if (units) {
            // A fill sums thousands of listed units: their positions find them without hashing
            // every id once more.
            const std::span<const BusinessUnit *const> ofPosition = Lookups().units;
            const std::vector<int> &positions = m_keptAggregate.positions;
            units->reserve(std::size_t(ids.count()));
            for (qsizetype k = 0; k < ids.count(); ++k) {
                const int at = positions[std::size_t(k)];
                units->push_back(at >= 0 ? ofPosition[std::size_t(at)] : m_bus->Item(ids.keyAt(k)));
            }
        }
    });
    return ids;
}

StringSet cDLVController::GetBUIDList(const QString &buID)
{
    StringSet ids(KeyCompare::Exact);
    ErrorTrap::run(m_reporter, QStringLiteral("cDLVController.GetBUIDList"),
                   [&] { Hierarchy().appendIdList(buID, ids); });
    return ids;
}

QString cDLVController::GetChildBUIDList(const QString &buID)
{
    QString list;
    ErrorTrap::run(m_reporter, QStringLiteral("cDLVController.GetChildBUIDList"), [&] {
        const BUHierarchy &hierarchy = Hierarchy();
        m_walk.clear();
        hierarchy.appendDescendants(buID, m_walk);
        qsizetype length = 0;
        for (const int unit : m_walk)
            length += hierarchy.id(unit).size() + 1;
        list.reserve(length);
        for (const int unit : m_walk) {
            list += hierarchy.id(unit);
            list += u',';
        }
    });
    return list;
}

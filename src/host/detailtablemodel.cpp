#include "host/detailtablemodel.h"

#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

namespace {

enum OrderColumn
{
    OrderId,
    OrderUnit,
    OrderJobType,
    OrderJobClass,
    OrderStatus,
    OrderPoints,
    OrderTechnician,
    OrderDue,
    OrderColumns
};

enum TechnicianColumn
{
    TechName,
    TechUnit,
    TechWorked,
    TechRemaining,
    TechCompleted,
    TechColumns
};

QString describe(const QHash<QString, QString> &lookup, const QString &code)
{
    const QString description = lookup.value(code);
    return description.isEmpty() ? code : description;
}

void readLookup(const QZWebData &data, const char16_t *table, const char16_t *key,
                const char16_t *text, QHash<QString, QString> *into)
{
    if (!data.hasTable(table))
        return;
    const QZWebTable &t = data.table(table);
    const int k = t.columnIndex(key);
    const int v = t.columnIndex(text);
    if (k < 0 || v < 0)
        return;
    for (int row = 1; row <= t.rowCount(); ++row)
        into->insert(t.value(row, k).toString(), t.value(row, v).toString());
}

} // namespace

DetailTableModel::Descriptions DetailTableModel::descriptionsFrom(const QZWebMessage &message)
{
    Descriptions d;
    if (message.name() != u"DLVData" || message.dataCount() < 1)
        return d;
    const auto data = message.data(1);
    readLookup(*data, u"BusinessUnits", u"BUID", u"BUDesc", &d.units);
    readLookup(*data, u"JobTypes", u"JobType", u"JobTypeDesc", &d.jobTypes);
    readLookup(*data, u"JobClasses", u"JobClass", u"JobClassDesc", &d.jobClasses);
    return d;
}

DetailTableModel::DetailTableModel(Kind kind, std::shared_ptr<const DetailRecords> records,
                                   const DetailRecords::Query &query, Descriptions descriptions,
                                   QObject *parent)
    : QAbstractTableModel(parent), m_kind(kind), m_records(std::move(records)),
      m_descriptions(std::move(descriptions))
{
    if (!m_records)
        m_records = std::make_shared<const DetailRecords>();
    if (m_kind == Kind::WorkOrders) {
        m_orders = m_records->selectWorkOrders(query);
    } else {
        m_technicians = m_records->selectTechnicians(query);
        m_completed = m_records->completedByTechnician();
    }
}

DetailTableModel::~DetailTableModel() = default;

int DetailTableModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return int(m_kind == Kind::WorkOrders ? m_orders.size() : m_technicians.size());
}

int DetailTableModel::columnCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_kind == Kind::WorkOrders ? int(OrderColumns) : int(TechColumns);
}

QStringList DetailTableModel::headers() const
{
    if (m_kind == Kind::WorkOrders)
        return {tr("Work order"), tr("Unit"),   tr("Job type"),   tr("Job class"),
                tr("Status"),     tr("Points"), tr("Technician"), tr("Due")};
    return {tr("Technician"), tr("Unit"), tr("Hours worked"), tr("Hours remaining"),
            tr("Completed work orders")};
}

QVariant DetailTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    const QStringList h = headers();
    return section >= 0 && section < h.size() ? QVariant(h[section]) : QVariant();
}

QString DetailTableModel::text(int row, int column) const
{
    if (m_kind == Kind::WorkOrders) {
        const DetailRecords::WorkOrder &wo = *m_orders[std::size_t(row)];
        switch (column) {
        case OrderId:
            return wo.id;
        case OrderUnit:
            return describe(m_descriptions.units, wo.buid);
        case OrderJobType:
            return describe(m_descriptions.jobTypes, wo.jobType);
        case OrderJobClass:
            return describe(m_descriptions.jobClasses, wo.jobClass);
        case OrderStatus:
            return DetailRecords::statusName(wo.status);
        case OrderPoints:
            return QString::number(wo.points);
        case OrderTechnician:
            return wo.technician.isEmpty() ? tr("(unassigned)") : wo.technician;
        case OrderDue:
            return wo.due.isValid() ? wo.due.toString(QStringLiteral("HH:mm")) : QString();
        default:
            return {};
        }
    }
    const DetailRecords::Technician &t = *m_technicians[std::size_t(row)];
    switch (column) {
    case TechName:
        return t.name;
    case TechUnit:
        return describe(m_descriptions.units, t.buid);
    case TechWorked:
        return QString::number(t.hoursWorked, 'f', 2);
    case TechRemaining:
        return QString::number(t.hoursRemaining, 'f', 2);
    case TechCompleted:
        return QString::number(m_completed.value(DetailRecords::technicianKey(t.buid, t.name)));
    default:
        return {};
    }
}

QVariant DetailTableModel::sortValue(int row, int column) const
{
    if (m_kind == Kind::WorkOrders) {
        const DetailRecords::WorkOrder &wo = *m_orders[std::size_t(row)];
        switch (column) {
        case OrderStatus:
            return int(wo.status);
        case OrderPoints:
            return wo.points;
        case OrderDue:
            return wo.due.isValid() ? wo.due.msecsSinceStartOfDay() : -1;
        default:
            return text(row, column);
        }
    }
    const DetailRecords::Technician &t = *m_technicians[std::size_t(row)];
    switch (column) {
    case TechWorked:
        return t.hoursWorked;
    case TechRemaining:
        return t.hoursRemaining;
    case TechCompleted:
        return m_completed.value(DetailRecords::technicianKey(t.buid, t.name));
    default:
        return text(row, column);
    }
}

QVariant DetailTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return text(index.row(), index.column());
    case SortRole:
        return sortValue(index.row(), index.column());
    case Qt::TextAlignmentRole: {
        const bool numeric = m_kind == Kind::WorkOrders ? index.column() == OrderPoints
                                                        : (index.column() == TechWorked ||
                                                           index.column() == TechRemaining ||
                                                           index.column() == TechCompleted);
        return numeric ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    }
    default:
        return {};
    }
}

QStringList DetailTableModel::rowTexts(int row) const
{
    QStringList texts;
    for (int c = 0; c < columnCount(); ++c)
        texts.append(text(row, c));
    return texts;
}

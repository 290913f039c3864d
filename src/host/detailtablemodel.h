#pragma once

#include "host/detailrecords.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariant>
#include <memory>

class QZWebMessage;

/// A read-only table of the records behind one figure: work orders (id, unit, job type, class,
/// status, points, technician, due time) or technicians (name, unit, hours worked, hours
/// remaining, completed work orders). Display texts use the descriptions of the data message;
/// SortRole holds the raw values (numbers, times) so that a sort proxy orders them as values.
class DetailTableModel final : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DetailTableModel)

public:
    enum class Kind
    {
        WorkOrders,
        Technicians
    };
    static constexpr int SortRole = Qt::UserRole + 1;

    /// Code -> description lookups for the display texts.
    struct Descriptions
    {
        QHash<QString, QString> units;
        QHash<QString, QString> jobTypes;
        QHash<QString, QString> jobClasses;
    };

    /// Takes the lookups from the "BusinessUnits", "JobTypes" and "JobClasses" tables of a
    /// "DLVData" message (empty lookups for anything else).
    [[nodiscard]] static Descriptions descriptionsFrom(const QZWebMessage &message);

    /// Lists what the query selects from the records.
    DetailTableModel(Kind kind, std::shared_ptr<const DetailRecords> records,
                     const DetailRecords::Query &query, Descriptions descriptions,
                     QObject *parent = nullptr);
    ~DetailTableModel() override;

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    [[nodiscard]] QStringList headers() const;
    /// The display texts of one row.
    [[nodiscard]] QStringList rowTexts(int row) const;

private:
    [[nodiscard]] QString text(int row, int column) const;
    [[nodiscard]] QVariant sortValue(int row, int column) const;

    Kind m_kind;
    std::shared_ptr<const DetailRecords> m_records; // keeps the pointed-to records alive
    std::vector<const DetailRecords::WorkOrder *> m_orders;
    std::vector<const DetailRecords::Technician *> m_technicians;
    QHash<QString, int> m_completed;
    Descriptions m_descriptions;
};

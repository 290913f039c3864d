#pragma once

#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <map>
#include <memory>

/// Builds "DLVData" messages for tests: the six tables with their columns, plus the properties
/// "tqDBRefreshInterval" (default "15") and "tqJeopardyThreshold" (default "30"). Tables and
/// columns can be dropped to model a faulty host.
class DLVDataBuilder
{
public:
    DLVDataBuilder();

    DLVDataBuilder &unit(const QString &id, const QString &desc, const QString &parent)
    {
        return row(QStringLiteral("BusinessUnits"), {id, desc, parent});
    }
    DLVDataBuilder &jobType(const QString &code, const QString &desc)
    {
        return row(QStringLiteral("JobTypes"), {code, desc});
    }
    DLVDataBuilder &jobClass(const QString &code, const QString &desc)
    {
        return row(QStringLiteral("JobClasses"), {code, desc});
    }
    DLVDataBuilder &format(const QString &language, const QString &timeFormat)
    {
        return row(QStringLiteral("RegionalFormats"), {language, timeFormat});
    }
    DLVDataBuilder &general(const QString &id, const QString &desc = QStringLiteral("Unit"),
                            const QString &techCount = QStringLiteral("1"),
                            const QString &hoursWorked = QStringLiteral("1"),
                            const QString &hoursRemaining = QStringLiteral("1"))
    {
        return row(QStringLiteral("BUGeneralInfo"),
                   {id, desc, techCount, hoursWorked, hoursRemaining});
    }
    /// A detail row; counters are given from index 0 on and the rest are "0".
    DLVDataBuilder &detail(const QString &id, const QString &jobType, const QString &jobClass,
                           const QStringList &counters = {});
    DLVDataBuilder &property(const QString &key, const QString &value);
    DLVDataBuilder &withoutTable(const QString &table);
    DLVDataBuilder &withoutColumn(const QString &table, const QString &column);
    DLVDataBuilder &named(const QString &name);

    [[nodiscard]] std::shared_ptr<QZWebMessage> message() const;
    [[nodiscard]] QVariant variant() const;

private:
    DLVDataBuilder &row(const QString &table, const QStringList &values);

    QString m_name = QStringLiteral("DLVData");
    std::map<QString, QZWebTable> m_tables;
    QStringList m_order;
    QStringList m_dropped;
    std::map<QString, QString> m_properties;
};

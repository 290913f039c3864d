#include "model/dlvdatabuilder.h"

#include "webdata/qzwebdata.h"
#include "webdata/webvariant.h"

DLVDataBuilder::DLVDataBuilder()
{
    const std::pair<const char *, QStringList> tables[] = {
        {"BusinessUnits", {"BUID", "BUDesc", "ParentBUID"}},
        {"JobTypes", {"JobType", "JobTypeDesc"}},
        {"JobClasses", {"JobClass", "JobClassDesc"}},
        {"RegionalFormats", {"languageCode", "timeformat"}},
        {"BUGeneralInfo", {"BUID", "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"}},
        {"BUDetailsInfo",
         {"BUID", "JobType", "JobClass", "WOOpen", "WOWarning", "WOJeopardy", "WOLate",
          "WOCompleted", "WOCanceled", "WONotDone", "PtsOpen", "PtsWarning", "PtsJeopardy",
          "PtsLate", "PtsCompleted", "PtsCanceled", "PtsNotDone"}}};
    for (const auto &[name, columns] : tables) {
        m_tables.emplace(name, QZWebTable(name, columns));
        m_order << name;
    }
    m_properties["tqDBRefreshInterval"] = QStringLiteral("15");
    m_properties["tqJeopardyThreshold"] = QStringLiteral("30");
}

DLVDataBuilder &DLVDataBuilder::row(const QString &table, const QStringList &values)
{
    m_tables.at(table).appendRow(values);
    return *this;
}

DLVDataBuilder &DLVDataBuilder::detail(const QString &id, const QString &jobType,
                                       const QString &jobClass, const QStringList &counters)
{
    QStringList values{id, jobType, jobClass};
    for (int s = 0; s < 14; ++s)
        values << (s < counters.size() ? counters[s] : QStringLiteral("0"));
    return row(QStringLiteral("BUDetailsInfo"), values);
}

DLVDataBuilder &DLVDataBuilder::property(const QString &key, const QString &value)
{
    m_properties[key] = value;
    return *this;
}

DLVDataBuilder &DLVDataBuilder::withoutTable(const QString &name)
{
    m_dropped << name;
    return *this;
}

DLVDataBuilder &DLVDataBuilder::withoutColumn(const QString &name, const QString &column)
{
    const QZWebTable &old = m_tables.at(name);
    const int drop = old.requireColumn(column);
    QStringList columns = old.columns();
    columns.removeAt(drop);
    QZWebTable reduced(name, columns);
    for (int r = 1; r <= old.rowCount(); ++r) {
        QStringList values;
        for (int c = 0; c < old.columnCount(); ++c)
            if (c != drop)
                values << old.value(r, c).toString();
        reduced.appendRow(values);
    }
    m_tables[name] = reduced;
    return *this;
}

DLVDataBuilder &DLVDataBuilder::named(const QString &name)
{
    m_name = name;
    return *this;
}

std::shared_ptr<QZWebMessage> DLVDataBuilder::message() const
{
    auto data = std::make_shared<QZWebData>();
    for (const QString &name : m_order)
        if (!m_dropped.contains(name))
            data->addTable(m_tables.at(name));
    auto message = std::make_shared<QZWebMessage>(m_name);
    for (const auto &[key, value] : m_properties)
        message->setProperty(key, value);
    message->addData(data);
    return message;
}

QVariant DLVDataBuilder::variant() const
{
    return WebVariant::wrap(message());
}

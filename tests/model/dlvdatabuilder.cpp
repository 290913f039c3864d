#include "model/dlvdatabuilder.h"

#include "webdata/qzwebdata.h"
#include "webdata/webvariant.h"

DLVDataBuilder::DLVDataBuilder()
{
    const auto add = [this](const QString &name, const QStringList &columns) {
        m_tables.emplace(name, QZWebTable(name, columns));
        m_order << name;
    };
    add(QStringLiteral("BusinessUnits"), {"BUID", "BUDesc", "ParentBUID"});
    add(QStringLiteral("JobTypes"), {"JobType", "JobTypeDesc"});
    add(QStringLiteral("JobClasses"), {"JobClass", "JobClassDesc"});
    add(QStringLiteral("RegionalFormats"), {"languageCode", "timeformat"});
    add(QStringLiteral("BUGeneralInfo"),
        {"BUID", "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"});
    add(QStringLiteral("BUDetailsInfo"),
        {"BUID", "JobType", "JobClass", "WOOpen", "WOWarning", "WOJeopardy", "WOLate",
         "WOCompleted", "WOCanceled", "WONotDone", "PtsOpen", "PtsWarning", "PtsJeopardy",
         "PtsLate", "PtsCompleted", "PtsCanceled", "PtsNotDone"});
    m_properties["tqDBRefreshInterval"] = QStringLiteral("15");
    m_properties["tqJeopardyThreshold"] = QStringLiteral("30");
}

QZWebTable &DLVDataBuilder::table(const QString &name)
{
    return m_tables.at(name);
}

DLVDataBuilder &DLVDataBuilder::unit(const QString &id, const QString &desc, const QString &parent)
{
    table("BusinessUnits").appendRow({id, desc, parent});
    return *this;
}

DLVDataBuilder &DLVDataBuilder::jobType(const QString &code, const QString &desc)
{
    table("JobTypes").appendRow({code, desc});
    return *this;
}

DLVDataBuilder &DLVDataBuilder::jobClass(const QString &code, const QString &desc)
{
    table("JobClasses").appendRow({code, desc});
    return *this;
}

DLVDataBuilder &DLVDataBuilder::format(const QString &language, const QString &timeFormat)
{
    table("RegionalFormats").appendRow({language, timeFormat});
    return *this;
}

DLVDataBuilder &DLVDataBuilder::general(const QString &id, const QString &desc,
                                        const QString &techCount, const QString &hoursWorked,
                                        const QString &hoursRemaining)
{
    table("BUGeneralInfo").appendRow({id, desc, techCount, hoursWorked, hoursRemaining});
    return *this;
}

DLVDataBuilder &DLVDataBuilder::detail(const QString &id, const QString &jobType,
                                       const QString &jobClass, const QStringList &counters)
{
    QStringList row{id, jobType, jobClass};
    for (int s = 0; s < 14; ++s)
        row << (s < counters.size() ? counters[s] : QStringLiteral("0"));
    table("BUDetailsInfo").appendRow(row);
    return *this;
}

DLVDataBuilder &DLVDataBuilder::detailAt(const QString &id, const QString &jobType,
                                         const QString &jobClass, int index, const QString &value)
{
    QStringList counters;
    for (int s = 0; s < 14; ++s)
        counters << (s == index ? value : QStringLiteral("0"));
    return detail(id, jobType, jobClass, counters);
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
    const QZWebTable &old = table(name);
    QStringList columns = old.columns();
    const int drop = old.requireColumn(column);
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

#include "webdata/resultenvelope.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "common/errorreporter.h"
#include "webdata/webvariant.h"

#include <QCoreApplication>
#include <QVariant>
#include <limits>
#include <optional>

namespace {

const QString kError = QStringLiteral("Error");

// The error table of a document held in a string. The markers are tested in this order because
// a profile-set document also holds single-profile elements.
std::optional<QZWebTable> errorTableOfText(const QString &text)
{
    if (text.contains(QLatin1String("<WebProfiles>"))) {
        const QZWebProfiles set = QZWebProfiles::fromXml(text);
        if (const QZWebTable *t = set.errorTable())
            return *t;
        return std::nullopt;
    }
    if (text.contains(QLatin1String("<WebProfile>"))) {
        const QZWebProfile profile = QZWebProfile::fromXml(text);
        if (const QZWebTable *t = profile.errorTable())
            return *t;
        return std::nullopt;
    }
    if (text.contains(QLatin1String("<WebData>"))) {
        QZWebData data = QZWebData::fromXml(text);
        if (!data.hasTable(kError))
            return std::nullopt;
        return std::move(data.table(kError));
    }
    QZWebTable table = QZWebTable::fromXml(text);
    if (table.name() != kError)
        return std::nullopt;
    return table;
}

const QZWebTable *errorTableOfObject(const QVariant &result, const QString &type)
{
    if (type == QLatin1String("QZWebTable")) {
        const auto table = WebVariant::unwrap<QZWebTable>(result);
        return table && table->name() == kError ? table.get() : nullptr;
    }
    if (type == QLatin1String("QZWebData")) {
        const auto data = WebVariant::unwrap<QZWebData>(result);
        return data && data->hasTable(kError) ? &data->table(kError) : nullptr;
    }
    if (type == QLatin1String("QZWebProfiles")) {
        const auto set = WebVariant::unwrap<QZWebProfiles>(result);
        return set ? set->errorTable() : nullptr;
    }
    if (type == QLatin1String("QZWebProfile")) {
        const auto profile = WebVariant::unwrap<QZWebProfile>(result);
        return profile ? profile->errorTable() : nullptr;
    }
    return nullptr;
}

qint32 saturatedLong(double value)
{
    try {
        return Conv::toLong(value);
    } catch (const DLVError &) {
        // A host error number beyond 32 bits still has to reach the user as an error.
        return value < 0 ? std::numeric_limits<qint32>::min() : std::numeric_limits<qint32>::max();
    }
}

} // namespace

void ResultEnvelope::ClearLastError()
{
    m_lastErrorNumber = 0;
    m_lastErrorDescription.clear();
}

void ResultEnvelope::ParseResult(const QVariant &result, const QString &location, bool &recognised)
{
    ClearLastError();
    try {
        const QString type = WebVariant::typeName(result);
        if (type == QLatin1String("String")) {
            // An empty answer holds nothing to decode; it is not worth an error dialog.
            const QString text = result.toString();
            if (text.trimmed().isEmpty()) {
                QCoreApplication::processEvents();
                return;
            }
            if (const std::optional<QZWebTable> table = errorTableOfText(text)) {
                recognised = true;
                readErrorTable(*table, location);
            }
        } else if (const QZWebTable *table = errorTableOfObject(result, type)) {
            recognised = true;
            readErrorTable(*table, location);
        }
    } catch (const DLVError &e) {
        if (m_reporter)
            m_reporter->report(e, location);
    }
    QCoreApplication::processEvents();
}

void ResultEnvelope::readErrorTable(const QZWebTable &table, const QString &location)
{
    // An error table without rows carries no verdict: nothing failed.
    if (table.rowCount() < 1)
        return;
    const QString number = table.field(1, u"ErrorNumber");
    const double value = Conv::leadingNumber(number);
    if (value == 0)
        return;
    m_lastErrorNumber = saturatedLong(value);
    m_lastErrorDescription = table.columnIndex(u"ErrorDescription") >= 0
                                 ? table.field(1, u"ErrorDescription")
                                 : QString();
    if (m_reporter)
        m_reporter->reportError(m_lastErrorNumber, m_lastErrorDescription, location);
}

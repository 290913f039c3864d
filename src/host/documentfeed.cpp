#include "host/documentfeed.h"

#include "common/conversions.h"
#include "common/dlverror.h"
#include "host/hostlog.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <cmath>

namespace {

const QString kDataMessage = QStringLiteral("DLVData");
const QString kServerStopped = QStringLiteral("DLVServerStopped");
const QString kDetails = QStringLiteral("Details");

struct RequiredTable
{
    const char *name;
    QStringList columns;
    const char *uniqueKey; // a code column whose values must be distinct, or nullptr
};

const std::vector<RequiredTable> &requiredTables()
{
    static const std::vector<RequiredTable> tables = {
        {"BusinessUnits", {"BUID", "BUDesc", "ParentBUID"}, "BUID"},
        {"JobTypes", {"JobType", "JobTypeDesc"}, "JobType"},
        {"JobClasses", {"JobClass", "JobClassDesc"}, "JobClass"},
        {"RegionalFormats", {"languageCode", "timeformat"}, "languageCode"},
        {"BUGeneralInfo",
         {"BUID", "BUDesc", "TechCount", "HoursWorked", "HoursRemaining"},
         nullptr},
        {"BUDetailsInfo",
         {"BUID", "JobType", "JobClass", "WOOpen", "WOWarning", "WOJeopardy", "WOLate",
          "WOCompleted", "WOCanceled", "WONotDone", "PtsOpen", "PtsWarning", "PtsJeopardy",
          "PtsLate", "PtsCompleted", "PtsCanceled", "PtsNotDone"},
         nullptr},
    };
    return tables;
}

// Figures the control turns into 32-bit integers: a value it cannot hold would stop its load.
QString checkNumbers(const QZWebTable &table, const QStringList &columns)
{
    for (const QString &column : columns) {
        const int c = table.columnIndex(column);
        for (int row = 1; row <= table.rowCount(); ++row) {
            const double v = Conv::leadingNumber(table.value(row, c));
            if (!std::isfinite(v) || std::abs(v) > 2147483647.0)
                return QStringLiteral("table \"%1\", row %2: %3 \"%4\" is out of range")
                    .arg(table.name())
                    .arg(row)
                    .arg(column, table.value(row, c).toString());
        }
    }
    return {};
}

// File-name order as people number their recordings: runs of digits compare as numbers, so
// "2.xml" comes before "10.xml"; the rest compares without regard to case, then exactly.
// (QCollator's numeric mode depends on the platform's collation support, which is not
// everywhere.)
bool fileNameLess(const QString &a, const QString &b)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            qsizetype ei = i;
            qsizetype ej = j;
            while (ei < a.size() && a[ei].isDigit())
                ++ei;
            while (ej < b.size() && b[ej].isDigit())
                ++ej;
            // Compare the numbers without leading zeros: first by length, then digit by digit.
            qsizetype si = i;
            qsizetype sj = j;
            while (si + 1 < ei && a[si] == u'0')
                ++si;
            while (sj + 1 < ej && b[sj] == u'0')
                ++sj;
            if (ei - si != ej - sj)
                return ei - si < ej - sj;
            const int c = QStringView(a).mid(si, ei - si).compare(QStringView(b).mid(sj, ej - sj));
            if (c != 0)
                return c < 0;
            i = ei;
            j = ej;
            continue;
        }
        const QChar ca = a[i].toCaseFolded();
        const QChar cb = b[j].toCaseFolded();
        if (ca != cb)
            return ca < cb;
        ++i;
        ++j;
    }
    if ((a.size() - i) != (b.size() - j))
        return (a.size() - i) < (b.size() - j);
    return a < b;
}

// The control joins unit ids with "," and "|" and finds units without regard to letter case:
// an id holding either mark, or two ids that differ only in case, would give wrong figures
// without any error, so such a document is refused naming them.
QString checkUnitIds(const QZWebData &data)
{
    const std::pair<const char16_t *, const char16_t *> columns[] = {
        {u"BusinessUnits", u"BUID"},
        {u"BusinessUnits", u"ParentBUID"},
        {u"BUGeneralInfo", u"BUID"},
        {u"BUDetailsInfo", u"BUID"},
    };
    QStringList marked;
    QStringList caseVariants;
    QHash<QString, QString> byFolded;
    QSet<QString> seen;
    for (const auto &[tableName, columnName] : columns) {
        const QZWebTable &table = data.table(tableName);
        const int c = table.columnIndex(columnName);
        for (int row = 1; row <= table.rowCount(); ++row) {
            const QString id = table.value(row, c).toString();
            if (seen.contains(id))
                continue;
            seen.insert(id);
            if (id.contains(u',') || id.contains(u'|'))
                marked.append(u'"' + id + u'"');
            const QString folded = id.toCaseFolded();
            const auto other = byFolded.constFind(folded);
            if (other == byFolded.cend())
                byFolded.insert(folded, id);
            else
                caseVariants.append(QStringLiteral("\"%1\" and \"%2\"").arg(*other, id));
        }
    }
    if (marked.isEmpty() && caseVariants.isEmpty())
        return {};
    const auto some = [](const QStringList &list) {
        constexpr qsizetype shown = 5;
        QString text = list.mid(0, shown).join(QStringLiteral(", "));
        if (list.size() > shown)
            text += QStringLiteral(" and %1 more").arg(list.size() - shown);
        return text;
    };
    QStringList parts;
    if (!marked.isEmpty())
        parts.append(QStringLiteral("unit ids must not hold \",\" or \"|\": %1").arg(some(marked)));
    if (!caseVariants.isEmpty())
        parts.append(QStringLiteral("unit ids must differ in more than letter case: %1")
                         .arg(some(caseVariants)));
    return parts.join(QStringLiteral("; "));
}

} // namespace

QString DocumentFeed::validate(const QZWebMessage &message)
{
    if (message.name() == kServerStopped)
        return {};
    if (message.name() != kDataMessage)
        return QStringLiteral(
                   "the message is named \"%1\", not \"DLVData\" or \"DLVServerStopped\"")
            .arg(message.name());
    if (message.dataCount() < 1)
        return QStringLiteral("the \"DLVData\" message holds no data");
    const auto data = message.data(1);
    for (const RequiredTable &required : requiredTables()) {
        const QString name = QString::fromLatin1(required.name);
        if (!data->hasTable(name))
            return QStringLiteral("the data hold no table \"%1\"").arg(name);
        const QZWebTable &table = data->table(name);
        for (const QString &column : required.columns)
            if (table.columnIndex(column) < 0)
                return QStringLiteral("table \"%1\" has no column \"%2\"").arg(name, column);
        if (required.uniqueKey) {
            const int c = table.columnIndex(QString::fromLatin1(required.uniqueKey));
            QSet<QString> seen;
            for (int row = 1; row <= table.rowCount(); ++row) {
                const QString code = table.value(row, c).toString();
                if (seen.contains(code))
                    return QStringLiteral("table \"%1\", row %2: %3 \"%4\" appears twice")
                        .arg(name)
                        .arg(row)
                        .arg(QString::fromLatin1(required.uniqueKey), code);
                seen.insert(code);
            }
        }
    }
    if (QString problem = checkUnitIds(*data); !problem.isEmpty())
        return problem;
    QString problem = checkNumbers(data->table(u"BUGeneralInfo"),
                                   {QStringLiteral("TechCount"), QStringLiteral("HoursWorked"),
                                    QStringLiteral("HoursRemaining")});
    if (problem.isEmpty())
        problem =
            checkNumbers(data->table(u"BUDetailsInfo"), requiredTables().back().columns.mid(3));
    if (!problem.isEmpty())
        return problem;
    if (data->hasTable(kDetails)) {
        try {
            (void)DetailRecords::fromTable(data->table(kDetails));
        } catch (const DLVError &e) {
            return e.description();
        }
    }
    return {};
}

std::unique_ptr<DocumentFeed> DocumentFeed::open(const QString &path, QString *error,
                                                 qint64 maxBytes)
{
    auto fail = [error](const QString &text) {
        if (error)
            *error = text;
        return std::unique_ptr<DocumentFeed>();
    };
    const QFileInfo info(path);
    if (!info.exists())
        return fail(QStringLiteral("%1: no such file or folder").arg(path));

    std::unique_ptr<DocumentFeed> feed(new DocumentFeed);
    feed->m_path = path;
    if (info.isDir()) {
        QDir dir(path);
        QStringList names = dir.entryList({QStringLiteral("*.xml")}, QDir::Files | QDir::Readable);
        std::sort(names.begin(), names.end(),
                  [](const QString &a, const QString &b) { return fileNameLess(a, b); });
        if (names.isEmpty())
            return fail(QStringLiteral("%1: the folder holds no data documents (*.xml)").arg(path));
        for (const QString &name : names)
            feed->m_files.append(dir.filePath(name));
    } else {
        feed->m_files.append(path);
    }

    QSet<QString> seenUnits;
    for (const QString &file : std::as_const(feed->m_files)) {
        QFile f(file);
        if (!f.open(QIODevice::ReadOnly))
            return fail(QStringLiteral("%1: cannot be read: %2").arg(file, f.errorString()));
        const QByteArray bytes = f.read(maxBytes + 1);
        if (bytes.size() > maxBytes)
            return fail(QStringLiteral("%1: larger than the limit of %2 MiB for a data document "
                                       "(--max-document-mib raises it)")
                            .arg(file)
                            .arg(maxBytes >> 20));
        auto message = std::make_shared<QZWebMessage>();
        try {
            message->loadXmlUtf8(bytes);
        } catch (const DLVError &e) {
            return fail(
                QStringLiteral("%1: not a data message document: %2").arg(file, e.description()));
        }
        const QString problem = validate(*message);
        if (!problem.isEmpty())
            return fail(QStringLiteral("%1: invalid data message: %2").arg(file, problem));

        auto details = std::make_shared<DetailRecords>();
        if (message->name() == kDataMessage) {
            const auto data = message->data(1);
            if (data->hasTable(kDetails)) {
                *details = DetailRecords::fromTable(data->table(kDetails));
                // The control has no use for the records; keep its refresh lean.
                data->removeTable(kDetails);
            }
            const QZWebTable &units = data->table(u"BusinessUnits");
            const int c = units.columnIndex(u"BUID");
            for (int row = 1; row <= units.rowCount(); ++row) {
                const QString id = units.value(row, c).toString();
                if (id != u"#" && !seenUnits.contains(id)) {
                    seenUnits.insert(id);
                    feed->m_unitIds.append(id);
                }
            }
        }
        feed->m_frames.push_back({std::move(message), std::move(details)});
        qCDebug(lcHost) << "data document" << file << "read";
    }
    return feed;
}

DataFeed::Frame DocumentFeed::next()
{
    m_last = m_next;
    if (m_next + 1 < int(m_frames.size()))
        ++m_next;
    return m_frames[std::size_t(m_last)];
}

QStringList DocumentFeed::unitIds() const
{
    return m_unitIds;
}

QString DocumentFeed::description() const
{
    if (m_files.size() == 1)
        return QFileInfo(m_files.front()).fileName();
    return QCoreApplication::translate("DocumentFeed", "%1 documents in %2")
        .arg(QString::number(m_files.size()), m_path);
}

QString DocumentFeed::position() const
{
    if (m_last < 0)
        return QCoreApplication::translate("DocumentFeed", "nothing sent yet");
    if (m_files.size() == 1)
        return {}; // the description names the one document
    return QCoreApplication::translate("DocumentFeed", "document %1 of %2 (%3)")
        .arg(QString::number(m_last + 1), QString::number(m_files.size()),
             QFileInfo(m_files[m_last]).fileName());
}

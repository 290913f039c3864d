#include "ui/captioncatalogue.h"

#include "ui/uilog.h"
#include "webdata/qzwebtransport.h"

#include <QFile>
#include <QHash>

namespace {

using Table = QHash<QString, QString>;

// One "key = text" entry per line, UTF-8; blank lines and lines starting with '#' are skipped.
// Only the first '=' separates, so texts may contain '='.
Table loadTable(const QString &language)
{
    Table table;
    const QString path = QStringLiteral(":/dlv/captions/%1.txt").arg(language.toLower());
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcUi) << "caption table missing from the resources:" << path;
        return table;
    }
    const QString text = QString::fromUtf8(file.readAll());
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq <= 0) {
            qCWarning(lcUi) << "malformed caption line" << path << i + 1;
            continue;
        }
        const QString key = line.left(eq).trimmed();
        if (table.contains(key))
            qCWarning(lcUi) << "caption key repeated" << path << key;
        table.insert(key, line.mid(eq + 1).trimmed());
    }
    return table;
}

struct Tables
{
    Table en = loadTable(QStringLiteral("EN"));
    Table po = loadTable(QStringLiteral("PO"));
    Table sp = loadTable(QStringLiteral("SP"));

    [[nodiscard]] const Table *find(const QString &language) const
    {
        if (language == QLatin1String("EN"))
            return &en;
        if (language == QLatin1String("PO"))
            return &po;
        if (language == QLatin1String("SP"))
            return &sp;
        return nullptr;
    }
};

// Loaded once, on first use, from the compiled-in resources.
const Tables &tables()
{
    static const Tables instance;
    return instance;
}

} // namespace

void CaptionCatalogue::attach(std::shared_ptr<QZWebTransport> transport)
{
    m_transport = std::move(transport);
}

QString CaptionCatalogue::caption(const QString &key, QString &extra) const
{
    Q_UNUSED(extra)
    if (m_transport) {
        const auto &overrides = m_transport->captionOverrides();
        const auto it = overrides.constFind(key);
        if (it != overrides.constEnd())
            return it.value();
    }
    const Tables &all = tables();
    if (const Table *table = all.find(languageCode())) {
        const auto it = table->constFind(key);
        if (it != table->constEnd())
            return it.value();
    }
    const auto it = all.en.constFind(key);
    if (it != all.en.constEnd())
        return it.value();
    qCDebug(lcUi) << "no caption for key" << key;
    return key;
}

QString CaptionCatalogue::caption(const QString &key) const
{
    QString extra;
    return caption(key, extra);
}

QString CaptionCatalogue::languageCode() const
{
    return normalizedLanguage(m_transport ? m_transport->languageCode() : QString());
}

QString CaptionCatalogue::normalizedLanguage(const QString &code)
{
    const QString upper = code.trimmed().toUpper();
    return languages().contains(upper) ? upper : QStringLiteral("EN");
}

const QStringList &CaptionCatalogue::languages()
{
    static const QStringList codes{QStringLiteral("EN"), QStringLiteral("PO"),
                                   QStringLiteral("SP")};
    return codes;
}

std::optional<QString> CaptionCatalogue::builtInText(const QString &language, const QString &key)
{
    const Table *table = tables().find(language);
    if (!table)
        return std::nullopt;
    const auto it = table->constFind(key);
    if (it == table->constEnd())
        return std::nullopt;
    return it.value();
}

QStringList CaptionCatalogue::builtInKeys(const QString &language)
{
    const Table *table = tables().find(language);
    return table ? table->keys() : QStringList();
}

const QStringList &CaptionCatalogue::knownKeys()
{
    // Grouped by where the control shows them; every built-in table must hold all of them.
    static const QStringList keys{
        // toolbar, profile menu, tabs
        QStringLiteral("SaveGrid"), QStringLiteral("PrintGrid"), QStringLiteral("Profiles"),
        QStringLiteral("AboutDLV"), QStringLiteral("SaveCurrentProfile"),
        QStringLiteral("SaveCurrentProfileAs"), QStringLiteral("ManageProfiles"),
        QStringLiteral("UseProfile"), QStringLiteral("BUSummary"), QStringLiteral("BUHierarchy"),
        // headings, selection and panel
        QStringLiteral("BusinessUnits"), QStringLiteral("LastRefreshTime"),
        QStringLiteral("NextRefreshTime"), QStringLiteral("CurrentProfile"),
        QStringLiteral("SelectionCriteria"), QStringLiteral("View"), QStringLiteral("ShowSummary"),
        QStringLiteral("ShowAggregateSummary"), QStringLiteral("TechCount"),
        QStringLiteral("ViewTechCount"), QStringLiteral("HoursWorked"),
        QStringLiteral("HoursRemaining"), QStringLiteral("WODone"), QStringLiteral("WOOpen"),
        QStringLiteral("PointsDone"), QStringLiteral("PointsOpen"),
        QStringLiteral("ProductivityPerTech"), QStringLiteral("CurrentProductivity"),
        QStringLiteral("RequiredProductivity"), QStringLiteral("WOsPerHour"),
        QStringLiteral("PtsPerHour"), QStringLiteral("DisplayBy"), QStringLiteral("WorkOrders"),
        QStringLiteral("Points"),
        // data freshness line
        QStringLiteral("FreshnessAge"), QStringLiteral("FreshnessNext"),
        QStringLiteral("FreshnessDue"), QStringLiteral("FreshnessOverdue"),
        QStringLiteral("FreshnessStopped"),
        // unit list as a tree
        QStringLiteral("UnitFilter"), QStringLiteral("SelectAllUnits"),
        QStringLiteral("SelectNoUnits"),
        // grid headers
        QStringLiteral("JobTypesAndJobClasses"), QStringLiteral("Open"), QStringLiteral("Warning"),
        QStringLiteral("Jeopardy"), QStringLiteral("Late"), QStringLiteral("Completed"),
        QStringLiteral("Canceled"), QStringLiteral("NotDone"), QStringLiteral("Total"),
        QStringLiteral("HoursCompleted"), QStringLiteral("Productivity"),
        // status line
        QStringLiteral("msg-WaitingforDLVData"), QStringLiteral("msg-DLVServerDown"),
        // profile dialogs and messages
        QStringLiteral("EnterProfileNameSaveAs"), QStringLiteral("ProfileOverwrite"),
        QStringLiteral("Profile"), QStringLiteral("EnterValidProfile"), QStringLiteral("OK"),
        QStringLiteral("Cancel"), QStringLiteral("Yes"), QStringLiteral("No"),
        QStringLiteral("Choose"), QStringLiteral("New"), QStringLiteral("Remove"),
        QStringLiteral("Close"), QStringLiteral("CreateOneProfile"),
        QStringLiteral("ProfileExists"), QStringLiteral("CannotRemoveProfile"),
        QStringLiteral("CheckRemoveProfile"), QStringLiteral("EnterProfileName"),
        QStringLiteral("NewProfile"),
        // error dialog
        QStringLiteral("frmError-Caption"), QStringLiteral("fraError-Label1"),
        QStringLiteral("fraError-Label2"), QStringLiteral("fraError-Label3"),
        QStringLiteral("fraError-Label4"), QStringLiteral("fraError-Label5"),
        QStringLiteral("fraError-cmdCont"),
        // about box
        QStringLiteral("Version")};
    return keys;
}

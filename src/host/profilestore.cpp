#include "host/profilestore.h"

#include "common/dlverror.h"
#include "host/hostlog.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebprofiles.h"
#include "webdata/qzwebtable.h"

#include <QAtomicInt>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QVariant>

namespace {

constexpr int kSchemaVersion = 1;

QAtomicInt connectionCounter;

// SQLite's primary result codes that deserve their own answer.
constexpr int kSqliteBusy = 5;
constexpr int kSqliteLocked = 6;
constexpr int kSqliteFull = 13;

DLVError sqlError(const QSqlError &error, const QString &doing)
{
    const int code = error.nativeErrorCode().toInt() & 0xff;
    const QString text = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    int number = ProfileStore::DatabaseError;
    QString description = QStringLiteral("%1 failed: %2").arg(doing, text);
    if (code == kSqliteBusy || code == kSqliteLocked) {
        number = ProfileStore::DatabaseBusy;
        description = QStringLiteral("%1 failed: the profile database is locked by another "
                                     "program; try again in a moment (%2)")
                          .arg(doing, text);
    } else if (code == kSqliteFull) {
        number = ProfileStore::DiskFull;
        description = QStringLiteral("%1 failed: the disk holding the profile database is full "
                                     "(%2)")
                          .arg(doing, text);
    }
    return DLVError(number, description);
}

QSqlQuery run(const QSqlDatabase &db, const QString &sql, const QVariantList &values,
              const QString &doing)
{
    QSqlQuery query(db);
    if (!query.prepare(sql))
        throw sqlError(query.lastError(), doing);
    for (const QVariant &v : values)
        query.addBindValue(v);
    if (!query.exec())
        throw sqlError(query.lastError(), doing);
    return query;
}

QString nameKey(const QString &name)
{
    return name.toCaseFolded();
}

QZWebTable errorTable(int number, const QString &description)
{
    QZWebTable table(QStringLiteral("Error"),
                     {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
    table.appendRow({QString::number(number), description});
    return table;
}

// A profile as it is kept: its name and sections, without the error table of the document it
// came in.
QZWebProfile cleanCopy(const QZWebProfile &source)
{
    QZWebProfile copy(source.name());
    for (int i = 0; i < source.sectionCount(); ++i) {
        const QZWebTable &section = source.sectionAt(i);
        copy.addSection(section.name(), section.fieldList()) = section;
    }
    return copy;
}

} // namespace

// One write transaction. BEGIN IMMEDIATE takes the write lock at the start, so that two writers
// wait for each other (up to the busy timeout) instead of failing half-way; the destructor rolls
// back whatever was not committed.
class ProfileStore::Transaction
{
public:
    explicit Transaction(const QSqlDatabase &db) : m_db(db)
    {
        run(m_db, QStringLiteral("BEGIN IMMEDIATE"), {}, QStringLiteral("Starting a change"));
    }
    ~Transaction()
    {
        if (!m_done) {
            QSqlQuery rollback(m_db);
            if (!rollback.exec(QStringLiteral("ROLLBACK")))
                qCWarning(lcHost) << "profile store: rollback failed:"
                                  << rollback.lastError().text();
        }
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    void commit()
    {
        run(m_db, QStringLiteral("COMMIT"), {}, QStringLiteral("Saving the change"));
        m_done = true;
    }

private:
    QSqlDatabase m_db;
    bool m_done = false;
};

ProfileStore::ProfileStore(QString databasePath, QString userId, QString applicationId)
    : m_path(std::move(databasePath)), m_user(std::move(userId)),
      m_application(std::move(applicationId)),
      m_connection(QStringLiteral("dlv-profiles-%1").arg(connectionCounter.fetchAndAddRelaxed(1)))
{}

ProfileStore::~ProfileStore()
{
    if (QSqlDatabase::contains(m_connection)) {
        {
            QSqlDatabase db = QSqlDatabase::database(m_connection, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_connection);
    }
}

QString ProfileStore::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
           QStringLiteral("/profiles.sqlite");
}

bool ProfileStore::open()
{
    if (m_open)
        return true;
    const QFileInfo info(m_path);
    if (!QDir().mkpath(info.absolutePath())) {
        m_lastError = QStringLiteral("the folder %1 cannot be created").arg(info.absolutePath());
        return false;
    }
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE"))) {
        m_lastError = QStringLiteral("Qt's SQLite driver (QSQLITE) is not installed");
        return false;
    }
    QSqlDatabase db = QSqlDatabase::contains(m_connection)
                          ? QSqlDatabase::database(m_connection, false)
                          : QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(m_path);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(m_busyTimeoutMs));
    m_openError = StoreUnavailable;
    if (!db.open()) {
        m_lastError = QStringLiteral("%1 cannot be opened: %2").arg(m_path, db.lastError().text());
        return false;
    }
    try {
        // Full synchronisation: a committed change is on the disk before the answer goes out.
        run(db, QStringLiteral("PRAGMA synchronous = FULL"), {}, QStringLiteral("Setting up"));
        QSqlQuery version = run(db, QStringLiteral("PRAGMA user_version"), {},
                                QStringLiteral("Reading the database version"));
        const int found = version.next() ? version.value(0).toInt() : 0;
        version.finish();
        if (found > kSchemaVersion)
            throw DLVError(StoreUnavailable,
                           QStringLiteral("%1 was written by a newer version of this program "
                                          "(format %2)")
                               .arg(m_path)
                               .arg(found));
        if (found < kSchemaVersion) {
            Transaction transaction(db);
            run(db,
                QStringLiteral("CREATE TABLE IF NOT EXISTS profiles ("
                               " user_id TEXT NOT NULL,"
                               " application_id TEXT NOT NULL,"
                               " name_key TEXT NOT NULL,"
                               " name TEXT NOT NULL,"
                               " position INTEGER NOT NULL,"
                               " document TEXT NOT NULL,"
                               " modified TEXT NOT NULL,"
                               " PRIMARY KEY (user_id, application_id, name_key))"),
                {}, QStringLiteral("Creating the profile table"));
            run(db, QStringLiteral("PRAGMA user_version = %1").arg(kSchemaVersion), {},
                QStringLiteral("Setting the database version"));
            transaction.commit();
        }
    } catch (const DLVError &e) {
        m_lastError = QStringLiteral("%1: %2").arg(m_path, e.description());
        m_openError = e.number() == DatabaseBusy ? DatabaseBusy : StoreUnavailable;
        db.close();
        return false;
    }
    m_open = true;
    m_lastError.clear();
    return true;
}

void ProfileStore::requireOpen()
{
    if (!m_open && !open())
        throw DLVError(m_openError,
                       QStringLiteral("Profiles cannot be stored: %1")
                           .arg(m_lastError.isEmpty() ? QStringLiteral("the store is not open")
                                                      : m_lastError));
}

QString ProfileStore::checkName(const QString &name)
{
    if (name.trimmed().isEmpty())
        return QStringLiteral("A profile needs a name.");
    if (name != name.trimmed())
        return QStringLiteral("The profile name \"%1\" begins or ends with blanks.").arg(name);
    for (QChar c : name)
        if (c == u'<' || c == u'>' || c == u'&' || c.category() == QChar::Other_Control)
            return QStringLiteral("The profile name \"%1\" holds a character that profile names "
                                  "cannot hold (<, >, & or a control character).")
                .arg(name);
    return {};
}

QStringList ProfileStore::profileNames()
{
    requireOpen();
    const QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query = run(db,
                          QStringLiteral("SELECT name FROM profiles WHERE user_id = ? AND "
                                         "application_id = ? ORDER BY position, name_key"),
                          {m_user, m_application}, QStringLiteral("Reading the profile names"));
    QStringList names;
    while (query.next())
        names.append(query.value(0).toString());
    return names;
}

std::optional<QZWebProfile> ProfileStore::profile(const QString &name)
{
    requireOpen();
    const QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query =
        run(db,
            QStringLiteral("SELECT document FROM profiles WHERE user_id = ? AND "
                           "application_id = ? AND name_key = ?"),
            {m_user, m_application, nameKey(name)}, QStringLiteral("Reading a profile"));
    if (!query.next())
        return std::nullopt;
    return QZWebProfile::fromXml(query.value(0).toString());
}

void ProfileStore::storeProfile(const QZWebProfile &profile)
{
    const QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    const QString problem = checkName(profile.name());
    if (!problem.isEmpty())
        throw DLVError(DLVError::InvalidCall, problem);
    const QString document = cleanCopy(profile).toXml();
    const QString now = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    // A new profile goes to the end of the user's list; a stored one keeps its place.
    run(db,
        QStringLiteral("INSERT INTO profiles (user_id, application_id, name_key, name, position, "
                       "document, modified) VALUES (?, ?, ?, ?, (SELECT COALESCE(MAX(position), 0) "
                       "+ 1 FROM profiles WHERE user_id = ? AND application_id = ?), ?, ?) "
                       "ON CONFLICT (user_id, application_id, name_key) DO UPDATE SET "
                       "name = excluded.name, document = excluded.document, "
                       "modified = excluded.modified"),
        {m_user, m_application, nameKey(profile.name()), profile.name(), m_user, m_application,
         document, now},
        QStringLiteral("Storing profile \"%1\"").arg(profile.name()));
}

bool ProfileStore::removeProfile(const QString &name)
{
    const QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query = run(db,
                          QStringLiteral("DELETE FROM profiles WHERE user_id = ? AND "
                                         "application_id = ? AND name_key = ?"),
                          {m_user, m_application, nameKey(name)},
                          QStringLiteral("Removing profile \"%1\"").arg(name));
    return query.numRowsAffected() > 0;
}

QString ProfileStore::successData(const QStringList *names)
{
    QZWebData data;
    data.addTable(errorTable(0, QString()));
    QString xml = data.toXml();
    if (names) {
        // The control finds the list by a plain text search; names are checked when stored, so
        // they need no escaping.
        QString list = QStringLiteral("<ProfileIDs>\n");
        for (const QString &name : *names)
            list += QStringLiteral("<ProfileID>") + name + QStringLiteral("</ProfileID>\n");
        list += QStringLiteral("</ProfileIDs>\n");
        const qsizetype end = xml.lastIndexOf(QStringLiteral("</WebData>"));
        xml.insert(end < 0 ? xml.size() : end, list);
    }
    return xml;
}

QString ProfileStore::errorData(int number, const QString &description)
{
    qCWarning(lcHost) << "profile request failed:" << number << description;
    QZWebData data;
    data.addTable(errorTable(number, description));
    return data.toXml();
}

QString ProfileStore::answer(const QString &functionName, const QString &profileName,
                             const QString &profilesXml)
{
    if (functionName == u"GetProfileList")
        return answerGetProfileList();
    if (functionName == u"GetProfiles")
        return answerGetProfiles(profileName);
    if (functionName == u"PutProfiles")
        return answerPutProfiles(profilesXml);
    if (functionName == u"AddProfiles")
        return answerAddProfiles(profileName);
    if (functionName == u"RemoveProfiles")
        return answerRemoveProfiles(profileName);
    if (functionName == u"SaveProfileAs")
        return answerSaveProfileAs(profilesXml);
    return errorData(DLVError::InvalidCall,
                     QStringLiteral("Unknown profile request \"%1\".").arg(functionName));
}

QString ProfileStore::answerGetProfileList()
{
    try {
        const QStringList names = profileNames();
        return successData(&names);
    } catch (const DLVError &e) {
        return errorData(e.number(), e.description());
    }
}

QString ProfileStore::answerGetProfiles(const QString &profileName)
{
    try {
        requireOpen();
        const QSqlDatabase db = QSqlDatabase::database(m_connection, false);
        QSqlQuery query = run(db,
                              QStringLiteral("SELECT name, document, name_key = ? FROM profiles "
                                             "WHERE user_id = ? AND application_id = ? "
                                             "ORDER BY position, name_key"),
                              {nameKey(profileName), m_user, m_application},
                              QStringLiteral("Reading the profiles"));
        std::vector<QZWebProfile> stored;
        int requested = -1;
        while (query.next()) {
            try {
                stored.push_back(QZWebProfile::fromXml(query.value(1).toString()));
            } catch (const DLVError &e) {
                // One damaged record must not cost the user the others.
                qCWarning(lcHost) << "stored profile" << query.value(0).toString()
                                  << "cannot be read and is left out:" << e.description();
                continue;
            }
            if (query.value(2).toBool())
                requested = int(stored.size()) - 1;
        }
        QZWebProfiles set;
        set.setErrorTable(errorTable(0, QString()));
        if (requested >= 0)
            set.add(stored[std::size_t(requested)].name()) = stored[std::size_t(requested)];
        for (int i = 0; i < int(stored.size()); ++i)
            if (i != requested)
                set.add(stored[std::size_t(i)].name()) = stored[std::size_t(i)];
        return set.toXml();
    } catch (const DLVError &e) {
        // The control recognises a profile-set answer by its marker; keep the error in one.
        qCWarning(lcHost) << "profile request failed:" << e.number() << e.description();
        QZWebProfiles set;
        set.setErrorTable(errorTable(e.number(), e.description()));
        return set.toXml();
    }
}

QString ProfileStore::answerPutProfiles(const QString &profilesXml)
{
    try {
        requireOpen();
        const QZWebProfiles set = QZWebProfiles::fromXml(profilesXml);
        Transaction transaction(QSqlDatabase::database(m_connection, false));
        for (int i = 1; i <= set.count(); ++i)
            storeProfile(set.item(i));
        transaction.commit();
        return successData(nullptr);
    } catch (const DLVError &e) {
        return errorData(e.number(), e.description());
    }
}

QString ProfileStore::answerAddProfiles(const QString &profileName)
{
    try {
        requireOpen();
        const QString problem = checkName(profileName);
        if (!problem.isEmpty())
            throw DLVError(DLVError::InvalidCall, problem);
        Transaction transaction(QSqlDatabase::database(m_connection, false));
        if (profile(profileName))
            throw DLVError(
                DLVError::DuplicateKey,
                QStringLiteral("A profile named \"%1\" exists already.").arg(profileName));
        storeProfile(QZWebProfile(profileName));
        transaction.commit();
        const QStringList names = {profileName};
        return successData(&names);
    } catch (const DLVError &e) {
        return errorData(e.number(), e.description());
    }
}

QString ProfileStore::answerRemoveProfiles(const QString &profileName)
{
    try {
        requireOpen();
        if (profileName.trimmed().isEmpty())
            throw DLVError(DLVError::InvalidCall, QStringLiteral("No profile name was given."));
        Transaction transaction(QSqlDatabase::database(m_connection, false));
        if (!removeProfile(profileName))
            qCInfo(lcHost) << "profile" << profileName << "was not stored; nothing to remove";
        transaction.commit();
        const QStringList names = {profileName};
        return successData(&names);
    } catch (const DLVError &e) {
        return errorData(e.number(), e.description());
    }
}

QString ProfileStore::answerSaveProfileAs(const QString &profilesXml)
{
    try {
        requireOpen();
        const QZWebProfiles set = QZWebProfiles::fromXml(profilesXml);
        if (set.count() != 1)
            throw DLVError(DLVError::InvalidCall,
                           QStringLiteral("Save as expects one profile; the request holds %1.")
                               .arg(set.count()));
        {
            Transaction transaction(QSqlDatabase::database(m_connection, false));
            storeProfile(set.item(1));
            transaction.commit();
        }
        const QStringList names = profileNames();
        return successData(&names);
    } catch (const DLVError &e) {
        return errorData(e.number(), e.description());
    }
}

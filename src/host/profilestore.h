#pragma once

#include "webdata/qzwebprofile.h"

#include <QString>
#include <QStringList>
#include <optional>

/// The host's profile storage: one SQLite database file (Qt's QSQLITE driver) holding the profiles
/// of any number of users and applications, keyed by user, application and profile name (names
/// compare without regard to letter case, as the control compares them).
///
/// The answer functions take what a profile request carries and return the result document that
/// goes back through ReceiveProfileResponse (formats: docs/host-protocol.md): a "<WebData>" with
/// the "Error" table (plus "<ProfileIDs>" where the control expects names), or for GetProfiles a
/// "<WebProfiles>" set. They never throw: a failure (database locked, disk full, a malformed
/// profile document) is answered with its number and description in the "Error" table.
///
/// Every change is one transaction, so a crash or a full disk leaves the stored profiles as they
/// were before it. Several store objects, in one process or several, may use one file.
class ProfileStore final
{
public:
    /// Error numbers of the "Error" table besides the library's (5 malformed document).
    enum ErrorNumber : int
    {
        StoreUnavailable = 3000, ///< the database file cannot be opened or set up
        DatabaseError = 3001,    ///< SQLite failed for another reason
        DatabaseBusy = 3005,     ///< locked by another user of the file (SQLite's BUSY/LOCKED)
        DiskFull = 3013,         ///< no room to write (SQLite's FULL)
    };

    ProfileStore(QString databasePath, QString userId, QString applicationId);
    ~ProfileStore();
    ProfileStore(const ProfileStore &) = delete;
    ProfileStore &operator=(const ProfileStore &) = delete;

    /// Where profiles are kept when the host is not told otherwise.
    [[nodiscard]] static QString defaultPath();
    /// How long an operation waits for another user of the file before it answers "busy".
    void setBusyTimeout(int milliseconds) { m_busyTimeoutMs = milliseconds; }

    /// Opens (creating when needed) the database. Returns false with lastError() set. A store
    /// that is not open tries again at every request, so a lock held by another program when the
    /// host starts costs only the requests made while it lasts: they are answered with
    /// DatabaseBusy, other failures to open with StoreUnavailable.
    [[nodiscard]] bool open();
    [[nodiscard]] bool isOpen() const { return m_open; }
    [[nodiscard]] QString lastError() const { return m_lastError; }
    [[nodiscard]] const QString &path() const { return m_path; }
    [[nodiscard]] const QString &userId() const { return m_user; }
    [[nodiscard]] const QString &applicationId() const { return m_application; }

    // --- Answers to the control's requests.
    /// Routes a request by the control's function name ("GetProfileList", "GetProfiles",
    /// "PutProfiles", "AddProfiles", "RemoveProfiles", "SaveProfileAs") with the fields it
    /// carries; an unknown name is answered with an error.
    [[nodiscard]] QString answer(const QString &functionName, const QString &profileName,
                                 const QString &profilesXml);
    [[nodiscard]] QString answerGetProfileList();
    /// The user's whole set with the requested profile first; an empty set for a user without
    /// profiles.
    [[nodiscard]] QString answerGetProfiles(const QString &profileName);
    /// Stores every profile of the set (new ones are added, others replaced); profiles that the
    /// set does not hold are kept.
    [[nodiscard]] QString answerPutProfiles(const QString &profilesXml);
    /// Creates an empty profile of that name; answers with the name.
    [[nodiscard]] QString answerAddProfiles(const QString &profileName);
    /// Removes the profile; answers with the removed name (also when it was already gone, so that
    /// the control's list follows the store).
    [[nodiscard]] QString answerRemoveProfiles(const QString &profileName);
    /// Stores the one-profile set (replacing a profile of the same name); answers with the names
    /// of all the user's profiles, the new one included.
    [[nodiscard]] QString answerSaveProfileAs(const QString &profilesXml);

    // --- Direct access (throw DLVError on failure).
    [[nodiscard]] QStringList profileNames();
    [[nodiscard]] std::optional<QZWebProfile> profile(const QString &name);

    /// A valid profile name: not empty, no leading or trailing blanks, none of the characters
    /// that the control's text search of profile lists cannot carry ("<", ">", "&"). Returns the
    /// problem, or an empty text.
    [[nodiscard]] static QString checkName(const QString &name);

private:
    class Transaction;

    void requireOpen();
    void storeProfile(const QZWebProfile &profile);
    [[nodiscard]] bool removeProfile(const QString &name);
    [[nodiscard]] static QString successData(const QStringList *names);
    [[nodiscard]] static QString errorData(int number, const QString &description);

    QString m_path;
    QString m_user;
    QString m_application;
    QString m_connection;
    QString m_lastError;
    int m_busyTimeoutMs = 5000;
    int m_openError = StoreUnavailable; ///< why the last open() failed
    bool m_open = false;
};

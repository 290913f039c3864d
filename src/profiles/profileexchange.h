#pragma once

#include "common/errorreporter.h"
#include "common/ordereddict.h"
#include "profiles/profiledocument.h"
#include "profiles/profilehost.h"
#include "webdata/resultenvelope.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <vector>

/// The control's profile subsystem: it asks the host for profiles (request signals through
/// ProfileHost), handles the host's answers (ReceiveProfileResponse), keeps the profile set, the
/// current profile and the list of profile names, and serves the profile menu and the manage
/// dialog.
///
/// Start-up: the control calls GetProfileList() once the session units are set; the answer leads
/// to GetProfiles for "Default", whose first answer makes a profile current and posts
/// "ClientReady". The host may answer any request inside the raising call or later.
///
/// Procedures that trap failures report them with "DLViewer.<procedure>" and return normally.
class ProfileExchange final
{
public:
    /// One element of the menu-item array mnuProfile (element 0 always exists).
    struct MenuItem
    {
        QString caption;
        bool visible = false;
        bool checked = false;
        friend bool operator==(const MenuItem &, const MenuItem &) = default;
    };

    /// host must outlive this object.
    explicit ProfileExchange(ProfileHost &host);
    ~ProfileExchange();
    Q_DISABLE_COPY_MOVE(ProfileExchange)

    // --- requests
    /// Asks the host for the names of the user's profiles (raises GetProfileList).
    void GetProfileList();
    /// Asks the host for the "Default" profile (raises GetProfiles).
    void GetProfile();
    /// With a name: asks the host for that profile, which becomes current when it arrives. With
    /// the empty name: opens the manage-profiles dialog.
    void ChooseNewProfile(const QString &name);
    /// Sends the current view as a new profile of that name (raises SaveProfileAs).
    void SaveProfileAs(const QString &name);

    /// The host's answer to the request named FunctionName.
    void ReceiveProfileResponse(const QString &ResultXML, const QString &FunctionName);

    // --- profile menu
    /// The profile names, case-insensitively ascending; names equal but for case come out in
    /// the reverse of their list order.
    [[nodiscard]] QStringList SortProfiles();
    /// The sort of SortProfiles over any list: an insertion sort that puts each name before the
    /// first one not less than it, letter case ignored.
    [[nodiscard]] static QStringList sortNames(const QStringList &names);
    /// Rebuilds the mnuProfile model from the sorted names with a check mark on the current
    /// profile; with no names it is left as it was.
    void ConfigureProfileMenu();
    [[nodiscard]] const std::vector<MenuItem> &menuItems() const { return m_menu; }
    void mnuProfile_Click(int Index);
    void mnuSaveProfile_Click();
    void mnuSaveProfileAs_Click();
    void mnuManage_Click();

    // --- events of the manage-profiles dialog
    void frmProf_ChooseProfile(const QString &name);
    void frmProf_AddProfile(const QString &name);
    void frmProf_RemoveProfile(const QString &name);

    // --- the control's lifecycle
    /// The session units were set again: the next "GetProfiles" answer counts as the first.
    void clearProfilesLoaded() { m_profilesLoaded = false; }
    /// Drops the profile set, the current profile and the names; later calls do nothing.
    void StopControl();

    // --- state
    [[nodiscard]] ProfileDocument &document() { return m_document; }
    [[nodiscard]] const ProfileDocument &document() const { return m_document; }
    /// The profile names received from the host (case-insensitive keys).
    [[nodiscard]] const StringSet &profileNames() const { return m_names; }
    [[nodiscard]] bool profilesLoaded() const { return m_profilesLoaded; }
    [[nodiscard]] const QString &requestedProfileName() const { return m_requestedName; }
    [[nodiscard]] const QString &pendingSaveAsName() const { return m_pendingSaveAsName; }
    /// The last-error fields of the last answer's envelope.
    [[nodiscard]] const ResultEnvelope &envelope() const { return m_envelope; }

private:
    /// Forwards to the control's report and counts, so an answer the envelope could not read is
    /// known to have been reported.
    class CountingReporter final : public ErrorReporter
    {
    public:
        explicit CountingReporter(ProfileHost &host) : m_host(host) {}
        void reportError(qint32 number, const QString &description,
                         const QString &location) override;
        int count = 0;

    private:
        ProfileHost &m_host;
    };

    /// Sets the hourglass and raises the request.
    void request(ProfileHost::Request request, DLVParams &params);
    void receiveFirstProfiles(const QString &result, bool failed);
    void receiveLaterProfiles(const QString &result, bool failed);
    void makeFirstProfileCurrent();
    [[nodiscard]] QString caption(const QString &key) const;

    ProfileHost &m_host;
    CountingReporter m_reporter;
    ResultEnvelope m_envelope;
    ProfileDocument m_document;
    StringSet m_names{KeyCompare::CaseInsensitive};
    bool m_profilesLoaded = false;
    bool m_takingFirstProfiles = false; // inside receiveFirstProfiles
    bool m_stopped = false;
    QString m_requestedName;
    QString m_pendingSaveAsName;
    std::vector<MenuItem> m_menu{MenuItem{}};
};

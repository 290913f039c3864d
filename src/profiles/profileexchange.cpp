#include "profiles/profileexchange.h"

#include "common/dlvparams.h"
#include "model/errortrap.h"
#include "profiles/profileidlist.h"
#include "profiles/profileslog.h"
#include "ui/captioncatalogue.h"
#include "ui/dialoghost.h"
#include "webdata/qzwebprofile.h"
#include "webdata/qzwebtable.h"

#include <QScopeGuard>
#include <QVariant>
#include <algorithm>
#include <optional>

namespace {

const QString kDefault = QStringLiteral("Default");

} // namespace

void ProfileExchange::CountingReporter::reportError(qint32 number, const QString &description,
                                                    const QString &location)
{
    ++count;
    m_host.errorReporter().reportError(number, description, location);
}

ProfileExchange::ProfileExchange(ProfileHost &host)
    : m_host(host), m_reporter(host), m_envelope(&m_reporter), m_document(host)
{}

ProfileExchange::~ProfileExchange() = default;

QString ProfileExchange::caption(const QString &key) const
{
    if (const CaptionCatalogue *captions = m_host.captions())
        return captions->caption(key);
    // Before the control is initialised: the English texts.
    return CaptionCatalogue().caption(key);
}

void ProfileExchange::request(ProfileHost::Request request, DLVParams &params)
{
    m_host.setHourglass(true);
    m_host.raiseProfileRequest(request, params);
}

void ProfileExchange::StopControl()
{
    m_stopped = true;
    m_document.clear();
    m_names.clear();
    m_menu.assign(1, MenuItem{});
    m_requestedName.clear();
    m_pendingSaveAsName.clear();
}

void ProfileExchange::GetProfileList()
{
    if (m_stopped)
        return;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("GetProfileList"), [&] {
        DLVParams params;
        request(ProfileHost::Request::GetProfileList, params);
    });
}

void ProfileExchange::GetProfile()
{
    if (m_stopped)
        return;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("GetProfile"), [&] {
        DLVParams params;
        params.ProfileName = kDefault;
        request(ProfileHost::Request::GetProfiles, params);
    });
}

void ProfileExchange::ChooseNewProfile(const QString &name)
{
    if (m_stopped)
        return;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("ChooseNewProfile"), [&] {
        if (!name.isEmpty()) {
            DLVParams params;
            params.ProfileName = name;
            m_requestedName = name;
            request(ProfileHost::Request::GetProfiles, params);
            return;
        }
        // The dialog gets a copy: answers arriving while it is open change only our list.
        const QString current = m_document.currentName();
        QStringList names;
        names.reserve(m_names.count());
        for (const auto &entry : m_names)
            names.append(entry.key);
        ProfileDialogEvents events;
        events.addProfile = [this](const QString &n) { frmProf_AddProfile(n); };
        events.removeProfile = [this](const QString &n) { frmProf_RemoveProfile(n); };
        events.chooseProfile = [this](const QString &n) { frmProf_ChooseProfile(n); };
        m_host.dialogs().manageProfiles(names, current, m_host.captions(), m_host.ownerFrame(),
                                        events);
    });
}

void ProfileExchange::SaveProfileAs(const QString &name)
{
    if (m_stopped)
        return;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("SaveProfileAs"), [&] {
        QZWebProfiles set;
        QZWebProfile &profile = set.add(name);
        QZWebTable &select = profile.addSection(QString::fromUtf16(ProfileDocument::selectSection),
                                                ProfileDocument::selectFieldList());
        select.addRow();
        m_document.writeSelection(select);
        QZWebTable &nodes = profile.addSection(QString::fromUtf16(ProfileDocument::nodesSection),
                                               ProfileDocument::nodesFieldList());
        for (int i = 0; i < 3; ++i)
            nodes.addRow();
        m_document.writeCollapsedNodes(nodes);

        DLVParams params;
        params.ProfilesXML = set.toXml();
        m_pendingSaveAsName = name;
        request(ProfileHost::Request::SaveProfileAs, params);
    });
}

void ProfileExchange::ReceiveProfileResponse(const QString &ResultXML, const QString &FunctionName)
{
    if (m_stopped)
        return;
    m_host.setHourglass(false);
    ErrorTrap::run(
        &m_host.errorReporter(), ErrorTrap::viewerLocation("ReceiveProfileResponse"), [&] {
            using Request = ProfileHost::Request;
            const auto is = [&FunctionName](Request r) {
                return FunctionName == ProfileHost::requestName(r);
            };
            if (!is(Request::GetProfileList) && !is(Request::GetProfiles) &&
                !is(Request::PutProfiles) && !is(Request::SaveProfileAs) &&
                !is(Request::AddProfiles) && !is(Request::RemoveProfiles)) {
                qCDebug(lcProfiles) << "ignored profile answer" << FunctionName;
                return;
            }

            // A host error, or an answer the envelope could not even read, has been reported by
            // now.
            const int reportsBefore = m_reporter.count;
            bool recognised = false;
            m_envelope.ParseResult(QVariant(ResultXML),
                                   ErrorTrap::viewerLocation("ReceiveProfileResponse"), recognised);
            const bool failed =
                m_envelope.LastErrorNumber() != 0 || m_reporter.count != reportsBefore;

            if (is(Request::GetProfileList)) {
                if (!failed) {
                    if (const std::optional<QStringList> ids = ProfileIdList::parse(ResultXML)) {
                        m_names = StringSet(KeyCompare::CaseInsensitive);
                        for (const QString &id : *ids)
                            m_names.addIfAbsent(id, id);
                    }
                }
                // Without a profile the control cannot start: ask for the default one whatever
                // the list said.
                if (!m_profilesLoaded)
                    GetProfile();
            } else if (is(Request::GetProfiles)) {
                if (m_takingFirstProfiles) {
                    // A host answering inside the first answer's store request: the first profile
                    // is half made current and ClientReady not yet posted; a second first answer
                    // would post it twice, a later one would replace the profiles being worked on.
                    qCWarning(lcProfiles) << "ignored a profile set answered inside the first one";
                    return;
                }
                if (!m_profilesLoaded)
                    receiveFirstProfiles(ResultXML, failed);
                else
                    receiveLaterProfiles(ResultXML, failed);
            } else if (is(Request::PutProfiles)) {
                if (!failed && m_profilesLoaded)
                    m_host.rerunView();
            } else if (is(Request::SaveProfileAs)) {
                if (failed)
                    return;
                const std::optional<QStringList> ids = ProfileIdList::parse(ResultXML);
                if (!ids)
                    return;
                for (const QString &id : *ids) {
                    if (id == m_pendingSaveAsName) {
                        m_names.addIfAbsent(id, id);
                        ChooseNewProfile(m_pendingSaveAsName);
                    }
                }
            } else if (is(Request::AddProfiles)) {
                if (failed)
                    return;
                if (const std::optional<QStringList> ids = ProfileIdList::parse(ResultXML))
                    for (const QString &id : *ids)
                        m_names.addIfAbsent(id, id);
            } else if (is(Request::RemoveProfiles)) {
                if (failed)
                    return;
                if (const std::optional<QStringList> ids = ProfileIdList::parse(ResultXML))
                    for (const QString &id : *ids)
                        m_names.remove(id);
            }
        });
}

void ProfileExchange::receiveFirstProfiles(const QString &result, bool failed)
{
    m_takingFirstProfiles = true;
    const auto done = qScopeGuard([this] { m_takingFirstProfiles = false; });
    // A failed first answer only costs the host's profiles: the control still gets a current
    // profile and tells the host it is ready, or it would wait for data for ever.
    if (!failed && !result.trimmed().isEmpty()) {
        try {
            QZWebProfiles loaded = QZWebProfiles::fromXml(result);
            m_document.replaceProfiles(std::move(loaded));
        } catch (const DLVError &e) {
            m_host.errorReporter().report(e, ErrorTrap::viewerLocation("ReceiveProfileResponse"));
        }
    }
    if (m_document.profiles().count() == 0) {
        m_document.profiles().add(kDefault);
        m_names = StringSet(KeyCompare::CaseInsensitive);
        m_names.add(kDefault, kDefault);
    }
    makeFirstProfileCurrent();
    m_host.ClientReady();
    m_profilesLoaded = true;
}

void ProfileExchange::receiveLaterProfiles(const QString &result, bool failed)
{
    if (failed || result.trimmed().isEmpty())
        return;
    QZWebProfiles loaded = QZWebProfiles::fromXml(result);
    // An answer without the profile asked for keeps the current one.
    if (!loaded.nameExists(m_requestedName))
        return;
    m_document.replaceProfiles(std::move(loaded));
    makeFirstProfileCurrent();
    m_host.profileReplaced();
}

void ProfileExchange::makeFirstProfileCurrent()
{
    m_document.setCurrentProfile(1);
    m_host.showCurrentProfile(m_document.currentName());
    m_document.InitProfileSettings();
}

QStringList ProfileExchange::sortNames(const QStringList &names)
{
    QStringList sorted;
    sorted.reserve(names.size());
    for (const QString &name : names) {
        // Before the first name that is not less: names equal but for case come out in the
        // reverse of their list order, as menus have always shown them.
        const auto at = std::lower_bound(sorted.cbegin(), sorted.cend(), name,
                                         [](const QString &a, const QString &b) {
                                             return a.compare(b, Qt::CaseInsensitive) < 0;
                                         });
        sorted.insert(at - sorted.cbegin(), name);
    }
    return sorted;
}

QStringList ProfileExchange::SortProfiles()
{
    QStringList sorted;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("SortProfiles"), [&] {
        QStringList names;
        names.reserve(m_names.count());
        for (const auto &entry : m_names)
            names.append(entry.key);
        sorted = sortNames(names);
    });
    return sorted;
}

void ProfileExchange::ConfigureProfileMenu()
{
    if (m_stopped)
        return;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("ConfigureProfileMenu"), [&] {
        m_menu.resize(1);
        const QStringList names = SortProfiles();
        if (names.isEmpty())
            return;
        const QString current = m_document.currentName();
        m_menu.resize(std::size_t(names.size()));
        for (qsizetype i = 0; i < names.size(); ++i) {
            MenuItem &item = m_menu[std::size_t(i)];
            item.caption = names.at(i);
            item.visible = true;
            item.checked = names.at(i) == current;
        }
    });
}

void ProfileExchange::mnuProfile_Click(int Index)
{
    if (Index < 0 || std::size_t(Index) >= m_menu.size())
        return;
    const QString caption = m_menu[std::size_t(Index)].caption;
    if (caption != m_document.currentName()) {
        for (MenuItem &item : m_menu)
            item.checked = false;
        m_menu[std::size_t(Index)].checked = true;
    }
    // Choosing the current profile again reloads it from the host.
    ChooseNewProfile(caption);
}

void ProfileExchange::mnuSaveProfile_Click()
{
    m_document.InitProfileSettings();
    m_document.UpdateCurrentProfile(false);
}

void ProfileExchange::mnuSaveProfileAs_Click()
{
    if (m_stopped)
        return;
    DialogHost &dialogs = m_host.dialogs();
    const std::optional<QString> name =
        dialogs.getNewProfile(m_host.captions(), QStringLiteral("EnterProfileNameSaveAs"),
                              QStringLiteral("SaveCurrentProfileAs"), m_host.ownerFrame());
    if (!name)
        return;
    if (!m_names.contains(*name)) {
        SaveProfileAs(*name);
        return;
    }
    const DialogHost::MessageResult answer = dialogs.messageBox(
        DialogHost::MessageKind::Question, caption(QStringLiteral("ProfileOverwrite")),
        caption(QStringLiteral("Profile")) + QStringLiteral(" : ") + *name, m_host.captions(),
        m_host.ownerFrame());
    if (answer != DialogHost::MessageResult::Yes)
        return;
    if (*name != m_document.currentName())
        SaveProfileAs(*name);
    else
        mnuSaveProfile_Click();
}

void ProfileExchange::mnuManage_Click()
{
    ChooseNewProfile(QString());
}

void ProfileExchange::frmProf_ChooseProfile(const QString &name)
{
    ChooseNewProfile(name);
}

void ProfileExchange::frmProf_AddProfile(const QString &name)
{
    if (m_stopped)
        return;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("frmProf_AddProfile"), [&] {
        DLVParams params;
        params.ProfileName = name;
        request(ProfileHost::Request::AddProfiles, params);
    });
}

void ProfileExchange::frmProf_RemoveProfile(const QString &name)
{
    if (m_stopped)
        return;
    ErrorTrap::run(&m_host.errorReporter(), ErrorTrap::viewerLocation("frmProf_RemoveProfile"),
                   [&] {
                       DLVParams params;
                       params.ProfileName = name;
                       request(ProfileHost::Request::RemoveProfiles, params);
                   });
}

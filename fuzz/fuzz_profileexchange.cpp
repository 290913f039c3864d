// Fuzzes the profile exchange with a host that answers inside its request slots: the input is
// decoded into the host's script of answers (documents and the function names they claim to
// answer, either built from pools and the input or raw input text) and into a sequence of the
// user's and the control's actions (menu clicks, manage-dialog events, save-as, restarts).
//
// Beyond "never crash": the profile menu always keeps its element 0, "ClientReady" is posted at
// most once per session start, and once profiles are loaded there is a current profile.

#include "common/dlverror.h"
#include "fuzzprofilehost.h"
#include "fuzzsupport.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebprofiles.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

using FuzzSupport::require;

const char *const kNames[] = {"Default", "default", "Night shift", " Padded ", "A", "", "b|c"};
const char *const kIds[] = {"1", "2", "10", "#", "", "TOTAL"};
const char *const kFunctions[] = {
    "GetProfileList", "GetProfiles",    "PutProfiles", "SaveProfileAs",
    "AddProfiles",    "RemoveProfiles", "getprofiles", ""};
const char *const kNumbers[] = {"0", "", "1012", "-1", "0.4", "99999999999", "x", "1e300"};
const char *const kFlags[] = {"True", "False", "", "1", "maybe"};
const char *const kLists[] = {"JobTypes", "BUWorkOrders", "BUPoints", "Other", ""};

template <std::size_t N> QString pick(FuzzedDataProvider &in, const char *const (&pool)[N])
{
    const std::size_t at = in.ConsumeIntegralInRange<std::size_t>(0, N);
    if (at < N)
        return QString::fromUtf8(pool[at]);
    return QString::fromStdString(in.ConsumeRandomLengthString(16));
}

QString joined(FuzzedDataProvider &in, const char *sep)
{
    QStringList parts;
    const int count = in.ConsumeIntegralInRange<int>(0, 4);
    for (int i = 0; i < count; ++i)
        parts << pick(in, kIds);
    return parts.join(QString::fromLatin1(sep));
}

QZWebTable errorTable(FuzzedDataProvider &in)
{
    QZWebTable error(QStringLiteral("Error"),
                     {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
    if (in.ConsumeBool())
        error.appendRow({pick(in, kNumbers), pick(in, kNames)});
    return error;
}

QString profileIds(FuzzedDataProvider &in)
{
    QString ids = QStringLiteral("<ProfileIDs>");
    const int count = in.ConsumeIntegralInRange<int>(0, 4);
    for (int i = 0; i < count; ++i)
        ids += QStringLiteral("<ProfileID>") + pick(in, kNames) + QStringLiteral("</ProfileID>");
    return ids + QStringLiteral("</ProfileIDs>");
}

void addProfile(FuzzedDataProvider &in, QZWebProfiles &set)
{
    const QString name = pick(in, kNames);
    if (set.nameExists(name))
        return;
    QZWebProfile &profile = set.add(name);
    const std::uint8_t shape = in.ConsumeIntegral<std::uint8_t>();
    if (!(shape & 1)) {
        QZWebTable &select = profile.addSection(QStringLiteral("DLVSelect"),
                                                shape & 2 ? QStringLiteral("BUList,SummaryOption")
                                                          : QStringLiteral("BUList,SummaryOption,"
                                                                           "DisplayByWorkOrders"));
        const int rows = in.ConsumeIntegralInRange<int>(0, 2);
        for (int r = 0; r < rows; ++r) {
            QStringList values{joined(in, "|"), pick(in, kFlags)};
            if (!(shape & 2))
                values << pick(in, kFlags);
            select.appendRow(values);
        }
    }
    if (!(shape & 4)) {
        QZWebTable &nodes =
            profile.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
        const int rows = in.ConsumeIntegralInRange<int>(0, 4);
        for (int r = 0; r < rows; ++r)
            nodes.appendRow({pick(in, kLists), joined(in, "|")});
    }
}

QString document(FuzzedDataProvider &in)
{
    switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0: // a WebData answer: the error table and perhaps a profile-ID list
        try {
            QZWebData data;
            data.addTable(errorTable(in));
            QString xml = data.toXml();
            if (in.ConsumeBool())
                xml.replace(QStringLiteral("</WebData>"),
                            profileIds(in) + QStringLiteral("</WebData>"));
            return xml;
        } catch (const DLVError &) {
            return {};
        }
    case 1: { // a profile set
        QZWebProfiles set;
        if (in.ConsumeBool())
            set.setErrorTable(errorTable(in));
        const int count = in.ConsumeIntegralInRange<int>(0, 3);
        for (int i = 0; i < count; ++i)
            addProfile(in, set);
        try {
            return set.toXml();
        } catch (const DLVError &) {
            return {};
        }
    }
    case 2:
        return profileIds(in);
    default:
        return QString::fromStdString(in.ConsumeRandomLengthString(256));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    FuzzProfileHost host;
    ProfileExchange exchange(host);
    host.exchange = &exchange;

    const int itemCount = in.ConsumeIntegralInRange<int>(0, 5);
    std::vector<QString> keys;
    std::vector<char> chosen;
    for (int i = 0; i < itemCount; ++i) {
        keys.push_back(QStringLiteral("_") + pick(in, kIds));
        chosen.push_back(in.ConsumeBool());
    }
    host.choice.setUnits(std::move(keys), std::move(chosen));
    host.gridsFilled = in.ConsumeBool();
    const int answerCount = in.ConsumeIntegralInRange<int>(0, 12);
    for (int i = 0; i < answerCount; ++i) {
        const QString function = pick(in, kFunctions);
        host.answers.push_back({document(in), function});
    }

    int sessionStarts = 1;
    bool stopped = false;
    exchange.GetProfileList();
    while (in.remaining_bytes() > 0) {
        switch (in.ConsumeIntegralInRange<int>(0, 15)) {
        case 0:
            exchange.GetProfileList();
            break;
        case 1:
            exchange.GetProfile();
            break;
        case 2:
            exchange.ChooseNewProfile(pick(in, kNames));
            break;
        case 3:
            exchange.SaveProfileAs(pick(in, kNames));
            break;
        case 4:
            exchange.ConfigureProfileMenu();
            exchange.mnuProfile_Click(in.ConsumeIntegralInRange<int>(-1, 8));
            break;
        case 5:
            exchange.mnuSaveProfile_Click();
            break;
        case 6:
            exchange.ConfigureProfileMenu();
            break;
        case 7:
            exchange.frmProf_AddProfile(pick(in, kNames));
            break;
        case 8:
            exchange.frmProf_RemoveProfile(pick(in, kNames));
            break;
        case 9:
            exchange.frmProf_ChooseProfile(pick(in, kNames));
            break;
        case 10: { // an answer nobody asked for
            const QString function = pick(in, kFunctions);
            exchange.ReceiveProfileResponse(document(in), function);
            break;
        }
        case 11:
            exchange.clearProfilesLoaded();
            ++sessionStarts;
            break;
        case 12:
            host.dialogHost.newProfileAnswers.push_back(pick(in, kNames));
            host.dialogHost.messageAnswers.push_back(
                in.ConsumeBool() ? DialogHost::MessageResult::Yes : DialogHost::MessageResult::No);
            exchange.mnuSaveProfileAs_Click();
            break;
        case 13:
            (void)exchange.SortProfiles();
            break;
        case 14: {
            const QString function = pick(in, kFunctions);
            host.answers.push_back({document(in), function});
            break;
        }
        case 15:
            if (in.ConsumeIntegralInRange<int>(0, 7) == 0) {
                exchange.StopControl();
                stopped = true;
            }
            break;
        }
        require(!exchange.menuItems().empty(), "the profile menu lost its element 0");
        require(host.clientReady <= sessionStarts, "ClientReady was posted twice in a session");
        if (exchange.profilesLoaded() && !stopped)
            require(exchange.document().profiles().count() > 0, "loaded, yet no profile");
    }
    return 0;
}

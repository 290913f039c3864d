#pragma once

#include "control/dlvparams.h"
#include "profiles/profileexchange.h"
#include "profiles/profilehost.h"
#include "support/qtprinters.h"
#include "support/recordingdialoghost.h"
#include "support/recordingreporter.h"
#include "ui/captioncatalogue.h"
#include "webdata/qzwebprofiles.h"

#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <tuple>
#include <vector>

/// When a scripted host answers a profile request.
enum class AnswerMode
{
    Inside, ///< inside the raising call, as a host that answers in its slot
    Later,  ///< after the raise returned, when the test calls settle()
};

/// Documents a host sends back, built the way docs/host-protocol.md describes them.
namespace HostDocs {

inline QString errorTable(int number, const QString &description)
{
    return QStringLiteral("<Table name=\"Error\"><Column name=\"ErrorNumber\"/>"
                          "<Column name=\"ErrorDescription\"/><Row><V>%1</V><V>%2</V></Row>"
                          "</Table>")
        .arg(number)
        .arg(description.toHtmlEscaped());
}

inline QString profileIds(const QStringList &names)
{
    QString ids = QStringLiteral("<ProfileIDs>");
    for (const QString &name : names)
        ids += QStringLiteral("<ProfileID>") + name + QStringLiteral("</ProfileID>");
    return ids + QStringLiteral("</ProfileIDs>");
}

/// A WebData answer: the error table, then the profile-ID list when names are given.
inline QString webData(int number, const QString &description,
                       const std::optional<QStringList> &names = std::nullopt)
{
    return QStringLiteral("<WebData>") + errorTable(number, description) +
           (names ? profileIds(*names) : QString()) + QStringLiteral("</WebData>");
}

/// A GetProfiles answer: the set with an error table.
inline QString profileSet(QZWebProfiles set, int number = 0, const QString &description = {})
{
    QZWebTable error(QStringLiteral("Error"),
                     {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
    error.appendRow({QString::number(number), description});
    set.setErrorTable(error);
    return set.toXml();
}

/// A profile with both sections as the control writes them.
inline QZWebProfile &addComplete(QZWebProfiles &set, const QString &name,
                                 const QString &buList = {}, const QString &summary = {},
                                 const QString &display = {})
{
    QZWebProfile &p = set.add(name);
    QZWebTable &select = p.addSection(QStringLiteral("DLVSelect"),
                                      QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"));
    select.appendRow({buList, summary, display});
    QZWebTable &nodes = p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
    nodes.appendRow({QStringLiteral("JobTypes"), {}});
    nodes.appendRow({QStringLiteral("BUWorkOrders"), {}});
    nodes.appendRow({QStringLiteral("BUPoints"), {}});
    return p;
}

} // namespace HostDocs

/// A scripted control and host in one: it records what the profile subsystem asks of the control
/// and answers the profile requests the way a real host with a profile store does, either inside
/// the raise or later. Tests may replace an answer (answerWith) or make the host fail (failWith).
class FakeProfileHost final : public ProfileHost
{
public:
    using Request = ProfileHost::Request;

    struct Raised
    {
        Request request;
        DLVParams params;
        bool hourglass; ///< the pointer when the request was raised
    };

    explicit FakeProfileHost(AnswerMode mode = AnswerMode::Inside) : mode(mode) {}

    // --- script
    AnswerMode mode;
    ProfileExchange *exchange = nullptr;
    QZWebProfiles store; ///< the host's stored profiles
    /// Replaces the next answer to a request with this text.
    std::map<Request, std::deque<QString>> answerWith;
    /// Makes the next answer to a request carry this host error.
    std::map<Request, std::deque<std::pair<int, QString>>> failWith;
    /// Answers a request under another request's name (a confused host).
    std::map<Request, Request> answerAs;
    /// Requests the host does not answer at all.
    std::vector<Request> silent;

    // --- records
    std::vector<Raised> raised;
    bool hourglass = false;
    int clientReady = 0;
    QString currentAtClientReady;
    QStringList shownNames;
    int rerunViews = 0;
    int profileReplacements = 0;
    QStringList gridLog; ///< "expand 1", "collapse 2 10|11"
    RecordingReporter reporter;
    RecordingDialogHost dialogHost;
    CaptionCatalogue captionCatalogue;

    // --- the view
    QStringList selectedIds;
    bool summary = true;
    bool display = true;
    struct Item
    {
        QString key;
        bool selected = false;
    };
    std::vector<Item> items;
    bool gridsFilled = false;
    std::array<QStringList, 3> collapsed;

    /// Delivers the answers held back (Later mode), including those they lead to.
    void settle()
    {
        while (!pending.empty()) {
            auto [xml, name] = pending.front();
            pending.pop_front();
            exchange->ReceiveProfileResponse(xml, name);
        }
    }
    [[nodiscard]] bool hasPending() const { return !pending.empty(); }

    [[nodiscard]] std::vector<Request> requests() const
    {
        std::vector<Request> out;
        for (const Raised &r : raised)
            out.push_back(r.request);
        return out;
    }
    [[nodiscard]] std::vector<Raised> raisedOf(Request request) const
    {
        std::vector<Raised> out;
        for (const Raised &r : raised)
            if (r.request == request)
                out.push_back(r);
        return out;
    }
    [[nodiscard]] QStringList selectedKeys() const
    {
        QStringList out;
        for (const Item &item : items)
            if (item.selected)
                out.append(item.key);
        return out;
    }

    // --- ProfileHost
    void raiseProfileRequest(Request request, DLVParams &params) override
    {
        raised.push_back({request, params, hourglass});
        if (std::find(silent.begin(), silent.end(), request) != silent.end())
            return;
        const QString xml = answer(request, params);
        const auto renamed = answerAs.find(request);
        const QString name =
            ProfileHost::requestName(renamed == answerAs.end() ? request : renamed->second);
        if (mode == AnswerMode::Inside)
            exchange->ReceiveProfileResponse(xml, name);
        else
            pending.emplace_back(xml, name);
    }
    void setHourglass(bool busy) override { hourglass = busy; }
    void ClientReady() override
    {
        ++clientReady;
        currentAtClientReady = exchange->document().currentName();
    }
    QStringList selectedBUIds() const override { return selectedIds; }
    bool summaryOption() const override { return summary; }
    void setSummaryOption(bool first) override { summary = first; }
    bool displayByWorkOrders() const override { return display; }
    void setDisplayByWorkOrders(bool first) override { display = first; }
    int buItemCount() const override { return int(items.size()); }
    QString buItemKey(int index) const override { return items.at(std::size_t(index)).key; }
    void setBUItemSelected(int index, bool selected) override
    {
        items.at(std::size_t(index)).selected = selected;
    }
    bool hierarchyGridsFilled() const override { return gridsFilled; }
    StringSet collapsedList(int gridIndex) override
    {
        StringSet set;
        for (const QString &key : collapsed.at(std::size_t(gridIndex)))
            set.addIfAbsent(key, key);
        return set;
    }
    void expandAll(int gridIndex) override
    {
        gridLog.append(QStringLiteral("expand %1").arg(gridIndex));
    }
    void collapse(int gridIndex, const StringSet &keys) override
    {
        QStringList list;
        for (const auto &e : keys)
            list.append(e.key);
        gridLog.append(QStringLiteral("collapse %1 %2").arg(gridIndex).arg(list.join(u'|')));
    }
    void showCurrentProfile(const QString &name) override { shownNames.append(name); }
    void rerunView() override { ++rerunViews; }
    void profileReplaced() override { ++profileReplacements; }
    const CaptionCatalogue *captions() const override { return &captionCatalogue; }
    DialogHost &dialogs() override { return dialogHost; }
    QWidget *ownerFrame() const override { return nullptr; }
    ErrorReporter &errorReporter() override { return reporter; }

private:
    template <typename T>
    static std::optional<T> take(std::map<Request, std::deque<T>> &m, Request r)
    {
        auto it = m.find(r);
        if (it == m.end() || it->second.empty())
            return std::nullopt;
        T value = it->second.front();
        it->second.pop_front();
        return value;
    }

    QString answer(Request request, const DLVParams &params)
    {
        if (std::optional<QString> text = take(answerWith, request))
            return *text;
        int number = 0;
        QString description;
        const std::optional<std::pair<int, QString>> failure = take(failWith, request);
        if (failure)
            std::tie(number, description) = *failure;

        switch (request) {
        case Request::GetProfileList: {
            QStringList names;
            for (int i = 1; i <= store.count(); ++i)
                names.append(store.item(i).name());
            return HostDocs::webData(number, description,
                                     failure ? std::nullopt : std::optional(names));
        }
        case Request::GetProfiles: {
            QZWebProfiles set;
            if (!failure) {
                if (const QZWebProfile *wanted = store.find(params.ProfileName))
                    set.add(wanted->name()) = *wanted;
                for (int i = 1; i <= store.count(); ++i)
                    if (!set.nameExists(store.item(i).name()))
                        set.add(store.item(i).name()) = store.item(i);
            }
            return HostDocs::profileSet(set, number, description);
        }
        case Request::PutProfiles:
            if (!failure)
                store.loadXml(params.ProfilesXML);
            return HostDocs::webData(number, description);
        case Request::SaveProfileAs: {
            if (failure)
                return HostDocs::webData(number, description);
            const QZWebProfiles one = QZWebProfiles::fromXml(params.ProfilesXML);
            const QZWebProfile &p = one.item(1);
            store.remove(p.name());
            store.add(p.name()) = p;
            return HostDocs::webData(0, {}, QStringList{p.name()});
        }
        case Request::AddProfiles:
            if (failure)
                return HostDocs::webData(number, description);
            HostDocs::addComplete(store, params.ProfileName);
            return HostDocs::webData(0, {}, QStringList{params.ProfileName});
        case Request::RemoveProfiles:
            if (failure)
                return HostDocs::webData(number, description);
            store.remove(params.ProfileName);
            return HostDocs::webData(0, {}, QStringList{params.ProfileName});
        }
        return {};
    }

    std::deque<std::pair<QString, QString>> pending;
};

#pragma once

#include "common/dlvparams.h"
#include "model/viewchoice.h"
#include "profiles/profileexchange.h"
#include "profiles/profilehost.h"
#include "support/qtprinters.h"
#include "support/recordingdialoghost.h"
#include "support/recordingreporter.h"
#include "ui/captioncatalogue.h"
#include "webdata/qzwebprofiles.h"

#include <QString>
#include <QStringList>
#include <array>
#include <deque>
#include <map>
#include <optional>
#include <vector>

/// When a scripted host answers a profile request.
enum class AnswerMode
{
    Inside, ///< inside the raising call
    Later,  ///< when the test calls settle()
};

/// Documents a host sends back.
namespace HostDocs {

inline QString webData(int number, const QString &description,
                       const std::optional<QStringList> &names = std::nullopt)
{
    QString xml = QStringLiteral("<WebData><Table name=\"Error\"><Column name=\"ErrorNumber\"/>"
                                 "<Column name=\"ErrorDescription\"/><Row><V>%1</V><V>%2</V>"
                                 "</Row></Table>")
                      .arg(number)
                      .arg(description.toHtmlEscaped());
    if (names) {
        xml += QStringLiteral("<ProfileIDs>");
        for (const QString &name : *names)
            xml += QStringLiteral("<ProfileID>") + name + QStringLiteral("</ProfileID>");
        xml += QStringLiteral("</ProfileIDs>");
    }
    return xml + QStringLiteral("</WebData>");
}

inline QString profileSet(QZWebProfiles set, int number = 0, const QString &description = {})
{
    QZWebTable error(QStringLiteral("Error"),
                     {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
    error.appendRow({QString::number(number), description});
    set.setErrorTable(error);
    return set.toXml();
}

/// A profile with both sections as the control writes them.
inline void addComplete(QZWebProfiles &set, const QString &name)
{
    QZWebProfile &p = set.add(name);
    p.addSection(QStringLiteral("DLVSelect"),
                 QStringLiteral("BUList,SummaryOption,DisplayByWorkOrders"))
        .appendRow({{}, {}, {}});
    QZWebTable &nodes = p.addSection(QStringLiteral("CollapsedNodes"), QStringLiteral("ID,List"));
    for (const char *id : {"JobTypes", "BUWorkOrders", "BUPoints"})
        nodes.appendRow({QString::fromLatin1(id), {}});
}

} // namespace HostDocs

/// A scripted control and host with a profile store, answering inside the raise or later.
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

    AnswerMode mode;
    ProfileExchange *exchange = nullptr;
    QZWebProfiles store;
    std::map<Request, std::deque<QString>> answerWith;   ///< replaces the next answer
    std::map<Request, std::pair<int, QString>> failWith; ///< a host error in every answer
    std::map<Request, Request> answerAs;                 ///< answers under another name

    std::vector<Raised> raised;
    bool hourglass = false;
    int clientReady = 0;
    RecordingReporter reporter;
    RecordingDialogHost dialogHost;
    CaptionCatalogue captionCatalogue;

    ViewChoice choice; ///< the units (key "_" + id) and the two options
    std::array<QStringList, 3> collapsed;
    QStringList gridLog; ///< "expand 1", "collapse 2 10|11"

    void settle()
    {
        while (!pending.empty()) {
            const auto [xml, name] = pending.front();
            pending.pop_front();
            exchange->ReceiveProfileResponse(xml, name);
        }
    }
    [[nodiscard]] std::vector<Request> requests() const
    {
        std::vector<Request> out;
        for (const Raised &r : raised)
            out.push_back(r.request);
        return out;
    }
    [[nodiscard]] QStringList selectedKeys() const
    {
        QStringList out;
        for (int i = 0; i < choice.unitCount(); ++i)
            if (choice.isChosen(i))
                out.append(choice.unitKey(i));
        return out;
    }

    void raiseProfileRequest(Request request, DLVParams &params) override
    {
        raised.push_back({request, params, hourglass});
        const QString xml = answer(request, params);
        const auto as = answerAs.find(request);
        const QString name = requestName(as == answerAs.end() ? request : as->second);
        if (mode == AnswerMode::Inside)
            exchange->ReceiveProfileResponse(xml, name);
        else
            pending.emplace_back(xml, name);
    }
    void setHourglass(bool busy) override { hourglass = busy; }
    void ClientReady() override { ++clientReady; }
    ViewChoice &viewChoice() override { return choice; }
    bool hierarchyGridsFilled() const override { return true; }
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
    void showCurrentProfile(const QString &) override {}
    void rerunView() override {}
    void profileReplaced() override {}
    const CaptionCatalogue *captions() const override { return &captionCatalogue; }
    DialogHost &dialogs() override { return dialogHost; }
    QWidget *ownerFrame() const override { return nullptr; }
    ErrorReporter &errorReporter() override { return reporter; }

private:
    QString answer(Request request, const DLVParams &params)
    {
        if (auto it = answerWith.find(request); it != answerWith.end() && !it->second.empty()) {
            const QString text = it->second.front();
            it->second.pop_front();
            return text;
        }
        const auto failure = failWith.find(request);
        const bool fails = failure != failWith.end();
        const int number = fails ? failure->second.first : 0;
        const QString description = fails ? failure->second.second : QString();
        switch (request) {
        case Request::GetProfileList: {
            QStringList names;
            for (int i = 1; i <= store.count(); ++i)
                names.append(store.item(i).name());
            return HostDocs::webData(number, description,
                                     fails ? std::nullopt : std::optional(names));
        }
        case Request::GetProfiles: {
            QZWebProfiles set;
            if (const QZWebProfile *wanted = fails ? nullptr : store.find(params.ProfileName)) {
                set.add(wanted->name()) = *wanted;
                for (int i = 1; i <= store.count(); ++i)
                    if (!set.nameExists(store.item(i).name()))
                        set.add(store.item(i).name()) = store.item(i);
            }
            return HostDocs::profileSet(set, number, description);
        }
        case Request::PutProfiles:
            if (!fails)
                store.loadXml(params.ProfilesXML);
            return HostDocs::webData(number, description);
        case Request::SaveProfileAs: {
            if (fails)
                return HostDocs::webData(number, description);
            const QZWebProfile p = QZWebProfiles::fromXml(params.ProfilesXML).item(1);
            store.remove(p.name());
            store.add(p.name()) = p;
            return HostDocs::webData(0, {}, QStringList{p.name()});
        }
        default:
            return HostDocs::webData(number, description);
        }
    }

    std::deque<std::pair<QString, QString>> pending;
};

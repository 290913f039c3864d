#pragma once

#include "control/dlviewer.h"
#include "webdata/qzwebdata.h"
#include "webdata/qzwebprofiles.h"

#include <QObject>
#include <QStringList>
#include <functional>
#include <vector>

/// A host for control-level tests: keeps profiles in memory, answers every profile request
/// (inside the signal, or later when `deferred` is set, by calling flush()), and records what the
/// control posted and asked for.
class ScriptedHost
{
public:
    explicit ScriptedHost(DLViewer &viewer) : m_viewer(viewer)
    {
        QObject::connect(&viewer, &DLViewer::PostRequest, &viewer,
                         [this](QString &p) { posts.append(p); });
        QObject::connect(&viewer, &DLViewer::GetDetails, &viewer,
                         [this](DLVParams &p) { details.push_back(p); });
        QObject::connect(&viewer, &DLViewer::GetProfileList, &viewer, [this](DLVParams &) {
            requests.append(QStringLiteral("GetProfileList"));
            answer(QStringLiteral("GetProfileList"), profileIdList(names()));
        });
        QObject::connect(&viewer, &DLViewer::GetProfiles, &viewer, [this](DLVParams &p) {
            requests.append(QStringLiteral("GetProfiles:") + p.ProfileName);
            QZWebProfiles answerSet;
            if (const QZWebProfile *wanted = store.find(p.ProfileName))
                answerSet.add(wanted->name()) = *wanted;
            for (int i = 1; i <= store.count(); ++i)
                if (!answerSet.nameExists(store.item(i).name()))
                    answerSet.add(store.item(i).name()) = store.item(i);
            answerSet.setErrorTable(errorTable(QStringLiteral("0"), {}));
            answer(QStringLiteral("GetProfiles"), answerSet.toXml());
        });
        QObject::connect(&viewer, &DLViewer::PutProfiles, &viewer, [this](DLVParams &p) {
            requests.append(QStringLiteral("PutProfiles"));
            const QZWebProfiles sent = QZWebProfiles::fromXml(p.ProfilesXML);
            for (int i = 1; i <= sent.count(); ++i) {
                store.remove(sent.item(i).name());
                store.add(sent.item(i).name()) = sent.item(i);
            }
            answer(QStringLiteral("PutProfiles"), plainAnswer());
        });
    }

    static QZWebTable errorTable(const QString &number, const QString &description)
    {
        QZWebTable t(QStringLiteral("Error"),
                     {QStringLiteral("ErrorNumber"), QStringLiteral("ErrorDescription")});
        t.appendRow({number, description});
        return t;
    }

    static QString plainAnswer()
    {
        QZWebData d;
        d.addTable(errorTable(QStringLiteral("0"), {}));
        return d.toXml();
    }

    static QString profileIdList(const QStringList &names)
    {
        QString ids = QStringLiteral("<ProfileIDs>");
        for (const QString &n : names)
            ids += QStringLiteral("<ProfileID>") + n + QStringLiteral("</ProfileID>");
        ids += QStringLiteral("</ProfileIDs>");
        QString doc = plainAnswer();
        doc.insert(doc.lastIndexOf(QStringLiteral("</WebData>")), ids);
        return doc;
    }

    [[nodiscard]] QStringList names() const
    {
        QStringList out;
        for (int i = 1; i <= store.count(); ++i)
            out.append(store.item(i).name());
        return out;
    }

    /// Delivers the answers held back while `deferred` was set.
    void flush()
    {
        while (!m_pending.empty()) {
            auto next = m_pending.front();
            m_pending.erase(m_pending.begin());
            next();
        }
    }

    bool deferred = false;
    QZWebProfiles store;
    QStringList posts;
    QStringList requests;
    std::vector<DLVParams> details;

private:
    void answer(const QString &function, const QString &result)
    {
        auto deliver = [this, function, result] {
            QString r = result;
            QString f = function;
            m_viewer.ReceiveProfileResponse(r, f);
        };
        if (deferred)
            m_pending.push_back(deliver);
        else
            deliver();
    }

    DLViewer &m_viewer;
    std::vector<std::function<void()>> m_pending;
};

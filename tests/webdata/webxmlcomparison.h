#pragma once

// Runs the tree reader (the document tree of the XML parser read by the classes' tree bindings)
// and the streaming reader on the same text and gives each outcome as one comparable string:
// the loaded object in full, or the error number and description. Shared by the randomized
// comparison test and the fuzz target.

#include "common/dlverror.h"
#include "webdata/qzwebdata_p.h"
#include "webdata/qzwebmessage_p.h"
#include "webdata/qzwebtable_p.h"
#include "webdata/webxmldocument_p.h"
#include "webdata/webxmlstreamreader_p.h"

#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace WebXmlComparison {

enum class DocumentForm
{
    Table,
    Data,
    Message
};

// Every string with its length, so that no two different objects print alike.
inline void put(QString &out, QStringView s)
{
    out += QString::number(s.size());
    out += u':';
    out += s;
    out += u';';
}

inline QString describe(const QZWebTable &table)
{
    QString out = QStringLiteral("table ");
    put(out, table.name());
    out += QStringLiteral(" columns ");
    for (const QString &column : table.columns())
        put(out, column);
    out += QStringLiteral(" rows %1 ").arg(table.rowCount());
    for (int r = 1; r <= table.rowCount(); ++r) {
        for (int c = 0; c < table.columnCount(); ++c)
            put(out, table.value(r, c));
        out += u'|';
    }
    return out;
}

inline QString describe(const QZWebData &data)
{
    QString out = QStringLiteral("data %1 [").arg(data.tableCount());
    for (int i = 0; i < data.tableCount(); ++i)
        out += describe(data.tableAt(i)) + u'\n';
    return out + u']';
}

inline QString describe(const QZWebMessage &message)
{
    QString out = QStringLiteral("message ");
    put(out, message.name());
    for (const auto &entry : message.properties()) {
        put(out, entry.key);
        put(out, entry.value);
    }
    for (int i = 1; i <= message.dataCount(); ++i)
        out += describe(*message.data(i));
    return out;
}

template <typename F> QString outcome(F &&load)
{
    try {
        return QStringLiteral("ok ") + describe(load());
    } catch (const DLVError &e) {
        return QStringLiteral("error %1: %2").arg(e.number()).arg(e.description());
    }
}

template <typename Text> QString treeOutcome(DocumentForm form, Text text)
{
    switch (form) {
    case DocumentForm::Table:
        return outcome([&] {
            const WebXmlDocument doc(text, WebXmlKinds::Table);
            return doc.build(
                [](pugi::xml_node root) { return QZWebTablePrivate::read(root, "table"); });
        });
    case DocumentForm::Data:
        return outcome([&] {
            const WebXmlDocument doc(text, WebXmlKinds::Data);
            return doc.build([](pugi::xml_node root) { return QZWebDataPrivate::read(root); });
        });
    case DocumentForm::Message:
        return outcome([&] {
            const WebXmlDocument doc(text, WebXmlKinds::Message);
            return doc.build([](pugi::xml_node root) { return QZWebMessagePrivate::read(root); });
        });
    }
    return {};
}

template <typename Text> QString streamOutcome(DocumentForm form, Text text)
{
    switch (form) {
    case DocumentForm::Table:
        return outcome([&] { return WebXmlStreamReader::readTable(text); });
    case DocumentForm::Data:
        return outcome([&] { return WebXmlStreamReader::readData(text); });
    case DocumentForm::Message:
        return outcome([&] { return WebXmlStreamReader::readMessage(text); });
    }
    return {};
}

} // namespace WebXmlComparison

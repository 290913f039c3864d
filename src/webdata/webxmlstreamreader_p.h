#pragma once

#include "webdata/qzwebdata.h"
#include "webdata/qzwebmessage.h"
#include "webdata/qzwebtable.h"

#include <QByteArrayView>
#include <QStringView>

/// Reads the table, data and message text forms in one pass over the bytes, appending every
/// value straight into its table's text buffer: no document tree is built, so a large data
/// message costs little more than the tables it holds.
///
/// It accepts and refuses exactly what the tree reader (WebXmlDocument with the XML bindings of
/// the classes) accepts and refuses, with the same error numbers and descriptions, including the
/// parser's description and position of a text that is not well-formed: the tokeniser follows
/// the tree parser's rules step by step (the same lenient handling of entities, root-level text,
/// document type declarations and end of text). A randomized comparison of both readers in the
/// tests and a fuzz target guard that equality. UTF-16 text is read as it is, without a copy.
class WebXmlStreamReader
{
public:
    [[nodiscard]] static QZWebTable readTable(QByteArrayView utf8);
    [[nodiscard]] static QZWebTable readTable(QStringView xml);
    [[nodiscard]] static QZWebData readData(QByteArrayView utf8);
    [[nodiscard]] static QZWebData readData(QStringView xml);
    [[nodiscard]] static QZWebMessage readMessage(QByteArrayView utf8);
    [[nodiscard]] static QZWebMessage readMessage(QStringView xml);

private:
    class Builder; // fills the objects as the elements go by (needs their storage)
};

#pragma once

#include "webdata/qzwebdata.h"

#include <pugixml.hpp>

class WebXmlWriter;

/// The XML binding of QZWebData, shared with the message document that embeds data items.
class QZWebDataPrivate
{
public:
    /// Reads a <WebData> element: its <Table> children; other elements are ignored.
    [[nodiscard]] static QZWebData read(pugi::xml_node element);
    static void write(WebXmlWriter &writer, const QZWebData &data);
    [[nodiscard]] static qsizetype estimatedXmlSize(const QZWebData &data);
};

#pragma once

#include "webdata/qzwebtable.h"

#include <QLatin1StringView>
#include <pugixml.hpp>

class WebXmlWriter;

/// The XML binding of QZWebTable, shared by every document that holds tables or sections.
class QZWebTablePrivate
{
public:
    /// Reads a <Table> or <Section> element: <Column name=".."/> elements, then <Row> elements
    /// of positional <V> values. what names the element in errors ("table", "section").
    [[nodiscard]] static QZWebTable read(pugi::xml_node element, const char *what);
    /// Writes the table as <tag name="..">...</tag>.
    static void write(WebXmlWriter &writer, const QZWebTable &table, QLatin1StringView tag);
    /// A rough size of the written table, to reserve the output once.
    [[nodiscard]] static qsizetype estimatedXmlSize(const QZWebTable &table);
};

#pragma once

#include "webdata/qzwebprofile.h"

#include <pugixml.hpp>

class WebXmlWriter;

/// The XML binding of QZWebProfile, shared with the profile set document.
class QZWebProfilePrivate
{
public:
    /// Reads a <WebProfile> element: <Name>, <Section> elements and an optional <Table> (the
    /// result's error table).
    [[nodiscard]] static QZWebProfile read(pugi::xml_node element);
    static void write(WebXmlWriter &writer, const QZWebProfile &profile);
};

#pragma once

#include "webdata/qzwebmessage.h"

#include <pugixml.hpp>

/// The tree binding of QZWebMessage: reads a parsed <WebMessage> element. Loading text goes
/// through WebXmlStreamReader; this reading of a document tree is the reference it is compared
/// with.
class QZWebMessagePrivate
{
public:
    [[nodiscard]] static QZWebMessage read(pugi::xml_node element);
};

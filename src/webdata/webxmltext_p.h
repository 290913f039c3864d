#pragma once

#include <QString>
#include <cstring>
#include <pugixml.hpp>
#include <vector>

/// Reading text out of parsed documents: the parser hands out UTF-8, the classes keep UTF-16.
/// Conversion goes straight into the destination buffer, without a QString per value.
namespace WebXmlText {

/// Appends the UTF-8 text to out as UTF-16. Throws DLVError(5) on bytes that are not UTF-8
/// (including encoded surrogates and code points above U+10FFFF).
void appendUtf8(std::vector<char16_t> &out, const char *utf8);
/// The same for the bytes [begin, end), which need no terminating NUL.
void appendUtf8(std::vector<char16_t> &out, const char *begin, const char *end);

/// The UTF-8 text as a QString (names, property values).
[[nodiscard]] QString toQString(const char *utf8);

/// Appends the content of a value element: its text and CDATA, and each <C u="hex"/> element as
/// the UTF-16 code unit it stands for (code points that XML 1.0 cannot carry). Throws
/// DLVError(5) for any other child element or a bad code.
void appendElementText(std::vector<char16_t> &out, pugi::xml_node element);

/// The same into a QString.
[[nodiscard]] QString elementText(pugi::xml_node element);

[[nodiscard]] inline bool isNamed(pugi::xml_node node, const char *name)
{
    return node.type() == pugi::node_element && std::strcmp(node.name(), name) == 0;
}

/// The attribute's value as a QString; the empty string when absent.
[[nodiscard]] inline QString attribute(pugi::xml_node node, const char *name)
{
    return toQString(node.attribute(name).value());
}

} // namespace WebXmlText

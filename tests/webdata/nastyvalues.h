#pragma once

#include <QString>
#include <ostream>
#include <vector>

/// Values that a text form must carry unchanged: markup characters, blanks at the ends, every
/// kind of line end, controls, characters outside the BMP and code units that XML 1.0 cannot
/// carry at all.
struct NastyValue
{
    const char *name;
    QString value;
};

inline void PrintTo(const NastyValue &v, std::ostream *os)
{
    *os << v.name;
}

inline QString units(std::initializer_list<char16_t> list)
{
    QString s;
    for (char16_t u : list)
        s.append(QChar(u));
    return s;
}

inline std::vector<NastyValue> nastyValues()
{
    return {
        {"Empty", QString()},
        {"Markup", QStringLiteral("<tag attr=\"x\">a & b 'q'</tag>]]>")},
        {"LiteralEscapes", QStringLiteral("&#13;&lt;<C u=\"41\"/>")},
        {"OnlyBlanks", QStringLiteral("   ")},
        {"BlanksAndTabsAtEnds", QStringLiteral(" \t x \t ")},
        {"MixedLineEnds", QStringLiteral("a\r\nb\rc\nd\n\r")},
        {"OutsideBmp", QStringLiteral("Säo 北京 😀 𝄞")},
        {"ControlBetweenBlanks", units({u' ', 0x01, u' ', u'\t', 0x1B, u'\r', u'\n'})},
        {"NulInside", units({u'a', 0x00, u'b', 0x00})},
        {"LoneLowSurrogate", units({u'x', 0xDC00, u'y'})},
        {"ReversedPair", units({0xDC00, 0xD800})},
        {"HighSurrogateAtEnd", units({u'a', 0xDBFF})},
        {"NonCharacters", units({0xFFFE, u' ', 0xFFFF})},
        {"PairNextToLone", units({0xD83D, 0xDE00, 0xD83D})},
        {"Long", QString(70000, QChar(u'x')) + QStringLiteral("&<\r")},
    };
}

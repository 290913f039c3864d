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
        {"Plain", QStringLiteral("North Region")},
        {"Markup", QStringLiteral("<tag attr=\"x\">a & b 'q'</tag>")},
        {"CdataEnd", QStringLiteral("]]>")},
        {"LiteralReference", QStringLiteral("&#13;&lt;&amp;")},
        {"LiteralCodeElement", QStringLiteral("<C u=\"41\"/>")},
        {"LeadingTrailingBlanks", QStringLiteral("  padded  ")},
        {"OnlyBlank", QStringLiteral(" ")},
        {"OnlyBlanks", QStringLiteral("   ")},
        {"Tab", QStringLiteral("\t")},
        {"LineFeed", QStringLiteral("\n")},
        {"CarriageReturn", QStringLiteral("\r")},
        {"CrLf", QStringLiteral("\r\n")},
        {"MixedLineEnds", QStringLiteral("a\r\nb\rc\nd\n\r")},
        {"TabsAndBlanks", QStringLiteral(" \t x \t ")},
        {"Latin1", QStringLiteral("Säo Paulo, Ärger, ß, ñ, ø")},
        {"Cjk", QStringLiteral("北京市 東京")},
        {"OutsideBmp", QStringLiteral("😀 𝄞 𐍈")},
        {"Controls", units({u'a', 0x01, 0x02, 0x08, 0x0B, 0x0C, 0x0E, 0x1F, u'z'})},
        {"ControlOnly", units({0x07})},
        {"ControlBetweenBlanks", units({u' ', 0x01, u' ', u'\t', 0x1B, u'\r', u'\n'})},
        {"Nul", units({0x00})},
        {"NulInside", units({u'a', 0x00, u'b', 0x00})},
        {"LoneHighSurrogate", units({0xD800})},
        {"LoneLowSurrogate", units({u'x', 0xDC00, u'y'})},
        {"ReversedPair", units({0xDC00, 0xD800})},
        {"HighSurrogateAtEnd", units({u'a', 0xDBFF})},
        {"NonCharacters", units({0xFFFE, u' ', 0xFFFF})},
        {"PairNextToLone", units({0xD83D, 0xDE00, 0xD83D})},
        {"Long", QString(70000, QChar(u'x')) + QStringLiteral("&<\r")},
    };
}

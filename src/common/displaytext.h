#pragma once

#include <QString>

/// How much of a host's text the control lays out. Descriptions and names come from the host and
/// may be of any length; shaping a text costs time in proportion to its length at every layout
/// and paint, so one of megabytes would freeze the control. Shown texts are cut to a length no
/// column or label can show anyway, with an ellipsis; the whole text stays in the data (export,
/// row data, drill-down) and a longer part of it is offered as a tool tip.
class DisplayText
{
public:
    /// Characters shown in a cell, list item or label.
    static constexpr qsizetype MaxShown = 256;
    /// Characters shown in the tool tip of a cut text.
    static constexpr qsizetype MaxToolTip = 2048;

    /// The text as shown: whole up to MaxShown characters, else cut with "…".
    [[nodiscard]] static QString shown(const QString &text) { return cut(text, MaxShown); }
    /// True when shown() cuts the text.
    [[nodiscard]] static bool isCut(const QString &text) { return text.size() > MaxShown; }
    /// The tool tip of a cut text (empty when the text is shown whole).
    [[nodiscard]] static QString toolTip(const QString &text)
    {
        return isCut(text) ? cut(text, MaxToolTip) : QString();
    }
    /// The text cut to at most max characters (the last one an ellipsis), never inside a
    /// surrogate pair.
    [[nodiscard]] static QString cut(const QString &text, qsizetype max);
};

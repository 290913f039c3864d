#pragma once

#include <QColor>
#include <QList>
#include <QString>

/// The text and back colours of every cue the control can draw over its figures: trouble
/// (jeopardy, late, below the required rate), figures that rose or fell at the last refresh, a
/// refresh that is overdue, and figures kept on screen while the server is stopped. Each pair keeps
/// a contrast of at least 4.5:1 (WCAG AA for normal text), checked by contrastRatio().
class CuePalette
{
public:
    struct Pair
    {
        QString name;
        QColor text;
        QColor back;
    };

    static Pair jeopardy();
    static Pair late();
    static Pair belowRate();
    static Pair risen();
    static Pair fallen();
    static Pair overdue();
    /// Figures of a stopped server: grey text on the window's usual light grey (and on white).
    static Pair stopped();
    static Pair stoppedOnWhite();
    /// Every pair above, for checks that must hold for all of them.
    static QList<Pair> all();

    /// Relative luminance of an sRGB colour (0 black .. 1 white).
    [[nodiscard]] static double luminance(const QColor &c);
    /// Contrast ratio of two colours, 1 .. 21.
    [[nodiscard]] static double contrastRatio(const QColor &a, const QColor &b);
    /// a mixed with b: weight 1 gives a, 0 gives b. Used to fade a cue out into its base colour.
    [[nodiscard]] static QColor mix(const QColor &a, const QColor &b, double weight);
};

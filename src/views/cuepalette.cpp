#include "views/cuepalette.h"

#include <algorithm>
#include <cmath>

CuePalette::Pair CuePalette::jeopardy()
{
    return {QStringLiteral("jeopardy"), QColor(0x5a, 0x3d, 0x00), QColor(0xff, 0xe7, 0xa8)};
}

CuePalette::Pair CuePalette::late()
{
    return {QStringLiteral("late"), QColor(0x7a, 0x00, 0x00), QColor(0xf9, 0xcf, 0xcf)};
}

CuePalette::Pair CuePalette::belowRate()
{
    return {QStringLiteral("below rate"), QColor(0x6b, 0x24, 0x00), QColor(0xff, 0xd2, 0xb3)};
}

CuePalette::Pair CuePalette::risen()
{
    return {QStringLiteral("risen"), QColor(0x00, 0x32, 0x5c), QColor(0xcf, 0xe8, 0xff)};
}

CuePalette::Pair CuePalette::fallen()
{
    return {QStringLiteral("fallen"), QColor(0x3d, 0x0f, 0x5c), QColor(0xec, 0xda, 0xf7)};
}

CuePalette::Pair CuePalette::overdue()
{
    return {QStringLiteral("overdue"), QColor(0x6b, 0x45, 0x00), QColor(0xff, 0xc9, 0x4d)};
}

CuePalette::Pair CuePalette::stopped()
{
    return {QStringLiteral("stopped"), QColor(0x55, 0x55, 0x55), QColor(0xef, 0xef, 0xef)};
}

CuePalette::Pair CuePalette::stoppedOnWhite()
{
    return {QStringLiteral("stopped on white"), stopped().text, QColor(Qt::white)};
}

QList<CuePalette::Pair> CuePalette::all()
{
    return {jeopardy(), late(),    belowRate(), risen(),
            fallen(),   overdue(), stopped(),   stoppedOnWhite()};
}

double CuePalette::luminance(const QColor &c)
{
    const auto channel = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
}

double CuePalette::contrastRatio(const QColor &a, const QColor &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor CuePalette::mix(const QColor &a, const QColor &b, double weight)
{
    const double w = std::clamp(weight, 0.0, 1.0);
    const auto blend = [w](int x, int y) { return int(std::lround(x * w + y * (1.0 - w))); };
    return QColor(blend(a.red(), b.red()), blend(a.green(), b.green()), blend(a.blue(), b.blue()));
}

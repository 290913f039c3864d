#include "views/toolbariconengine.h"

#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

// Every glyph is designed on a 24 x 24 grid and scaled to the target rectangle.
constexpr double Grid = 24.0;

class Palette
{
public:
    explicit Palette(QIcon::Mode mode) : m_disabled(mode == QIcon::Disabled) {}

    // Disabled pictures keep their shapes in light greys of the same relative lightness.
    [[nodiscard]] QColor operator()(const QColor &c) const
    {
        if (!m_disabled)
            return c;
        const int grey = qGray(c.rgb());
        const int light = 150 + grey * 90 / 255;
        return QColor(light, light, light, c.alpha());
    }

private:
    bool m_disabled;
};

void drawSave(QPainter &p, const Palette &pal)
{
    const QColor body(0x2F, 0x6D, 0xB5);
    const QColor edge(0x1D, 0x4B, 0x82);
    QPainterPath disk;
    disk.moveTo(3.5, 4.5);
    disk.quadTo(3.5, 3.5, 4.5, 3.5);
    disk.lineTo(17.5, 3.5);
    disk.lineTo(20.5, 6.5);
    disk.lineTo(20.5, 19.5);
    disk.quadTo(20.5, 20.5, 19.5, 20.5);
    disk.lineTo(4.5, 20.5);
    disk.quadTo(3.5, 20.5, 3.5, 19.5);
    disk.closeSubpath();
    p.setPen(QPen(pal(edge), 1.0));
    p.setBrush(pal(body));
    p.drawPath(disk);
    // Shutter with its slot.
    p.setPen(Qt::NoPen);
    p.setBrush(pal(QColor(0xD8, 0xDE, 0xE6)));
    p.drawRect(QRectF(7, 3.5, 9, 6));
    p.setBrush(pal(edge));
    p.drawRect(QRectF(12.5, 4.5, 2, 4));
    // Label.
    p.setBrush(pal(QColor(0xFF, 0xFF, 0xFF)));
    p.drawRoundedRect(QRectF(6, 12.5, 12, 8), 0.8, 0.8);
    p.setPen(QPen(pal(QColor(0x9A, 0xB4, 0xD4)), 0.9));
    p.drawLine(QPointF(8, 15), QPointF(16, 15));
    p.drawLine(QPointF(8, 17.5), QPointF(16, 17.5));
}

void drawPrint(QPainter &p, const Palette &pal)
{
    const QColor paperEdge(0x6B, 0x75, 0x80);
    // Paper going in.
    p.setPen(QPen(pal(paperEdge), 1.0));
    p.setBrush(pal(QColor(0xFF, 0xFF, 0xFF)));
    p.drawRect(QRectF(6.5, 2.5, 11, 7));
    // Printer body.
    p.setPen(QPen(pal(QColor(0x33, 0x3B, 0x45)), 1.0));
    p.setBrush(pal(QColor(0x4A, 0x55, 0x62)));
    p.drawRoundedRect(QRectF(2.5, 8.5, 19, 9), 1.8, 1.8);
    // Status light.
    p.setPen(Qt::NoPen);
    p.setBrush(pal(QColor(0x4C, 0xC2, 0x5A)));
    p.drawEllipse(QPointF(18, 11.5), 1.1, 1.1);
    // Paper coming out, with printed lines.
    p.setPen(QPen(pal(paperEdge), 1.0));
    p.setBrush(pal(QColor(0xFF, 0xFF, 0xFF)));
    p.drawRect(QRectF(6.5, 14.5, 11, 7));
    p.setPen(QPen(pal(QColor(0x2F, 0x6D, 0xB5)), 1.0));
    p.drawLine(QPointF(8.5, 17), QPointF(15.5, 17));
    p.drawLine(QPointF(8.5, 19.2), QPointF(13.5, 19.2));
}

void drawPerson(QPainter &p, const QPointF &head, double scale, const QColor &fill,
                const QColor &edge)
{
    p.setPen(QPen(edge, 0.9));
    p.setBrush(fill);
    p.drawEllipse(head, 3.2 * scale, 3.2 * scale);
    QPainterPath shoulders;
    const double w = 6.2 * scale;
    const double top = head.y() + 4.4 * scale;
    const double bottom = top + 7.0 * scale;
    shoulders.moveTo(head.x() - w, bottom);
    shoulders.cubicTo(head.x() - w, top, head.x() + w, top, head.x() + w, bottom);
    shoulders.closeSubpath();
    p.drawPath(shoulders);
}

void drawProfiles(QPainter &p, const Palette &pal)
{
    drawPerson(p, QPointF(15.5, 7.0), 0.85, pal(QColor(0x8F, 0xA9, 0xC8)),
               pal(QColor(0x5E, 0x78, 0x96)));
    drawPerson(p, QPointF(9.5, 9.0), 1.0, pal(QColor(0x2F, 0x6D, 0xB5)),
               pal(QColor(0x1D, 0x4B, 0x82)));
}

void drawHelp(QPainter &p, const Palette &pal)
{
    p.setPen(QPen(pal(QColor(0x15, 0x5A, 0x9E)), 1.0));
    p.setBrush(pal(QColor(0x1E, 0x78, 0xC8)));
    p.drawEllipse(QPointF(12, 12), 9.5, 9.5);
    p.setPen(Qt::NoPen);
    p.setBrush(pal(QColor(0xFF, 0xFF, 0xFF)));
    p.drawEllipse(QPointF(12, 7.3), 1.6, 1.6);
    p.drawRoundedRect(QRectF(10.6, 10.2, 2.8, 8.3), 1.0, 1.0);
}

} // namespace

ToolbarIconEngine::ToolbarIconEngine(Glyph glyph) : m_glyph(glyph) {}

ToolbarIconEngine::~ToolbarIconEngine() = default;

QIcon ToolbarIconEngine::icon(Glyph glyph)
{
    return QIcon(new ToolbarIconEngine(glyph));
}

void ToolbarIconEngine::paint(QPainter *painter, const QRect &rect, QIcon::Mode mode,
                              QIcon::State /*state*/)
{
    const double side = std::min(rect.width(), rect.height());
    if (side <= 0)
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->translate(rect.x() + (rect.width() - side) / 2.0,
                       rect.y() + (rect.height() - side) / 2.0);
    painter->scale(side / Grid, side / Grid);
    const Palette pal(mode);
    switch (m_glyph) {
    case Glyph::Save:
        drawSave(*painter, pal);
        break;
    case Glyph::Print:
        drawPrint(*painter, pal);
        break;
    case Glyph::Profiles:
        drawProfiles(*painter, pal);
        break;
    case Glyph::Help:
        drawHelp(*painter, pal);
        break;
    }
    painter->restore();
}

QPixmap ToolbarIconEngine::pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state)
{
    // size is in device pixels: QIcon asks a 2x screen for twice the pixels (and sets the ratio
    // itself), so the picture is drawn with twice the detail rather than blown up. Painting
    // through paint() draws the vectors straight onto the target.
    QPixmap pm(size);
    pm.fill(Qt::transparent);
    if (size.isEmpty())
        return pm;
    QPainter painter(&pm);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pm;
}

QSize ToolbarIconEngine::actualSize(const QSize &size, QIcon::Mode, QIcon::State)
{
    return size;
}

QIconEngine *ToolbarIconEngine::clone() const
{
    return new ToolbarIconEngine(*this);
}

QString ToolbarIconEngine::key() const
{
    return QStringLiteral("ToolbarIconEngine");
}

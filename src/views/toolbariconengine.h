#pragma once

#include <QIconEngine>

/// Draws the toolbar's pictures (a disk, a printer, two people, an "i") with QPainter at
/// whatever size and device pixel ratio they are asked for, so they stay crisp on any screen
/// without bitmaps to keep in several resolutions. Disabled icons are drawn in greys.
class ToolbarIconEngine final : public QIconEngine
{
public:
    enum class Glyph
    {
        Save,
        Print,
        Profiles,
        Help
    };

    explicit ToolbarIconEngine(Glyph glyph);
    ~ToolbarIconEngine() override;

    /// An icon drawn by a new engine (the icon owns it).
    [[nodiscard]] static QIcon icon(Glyph glyph);

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    QSize actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state) override;
    [[nodiscard]] QIconEngine *clone() const override;
    [[nodiscard]] QString key() const override;

private:
    ToolbarIconEngine(const ToolbarIconEngine &) = default;

    Glyph m_glyph;
};

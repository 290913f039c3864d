#pragma once

#include <QString>
#include <functional>

class QFrame;
class QLabel;
class QRect;
class QWidget;

/// The status line above the tab strip: one centred bold message, blue for progress and red for
/// a failure, hidden while the figures are current. Messages are caption keys.
class StatusLine final
{
public:
    using CaptionLookup = std::function<QString(const QString &key)>;

    /// The frame and its label become children of parent.
    StatusLine(QWidget *parent, CaptionLookup caption);
    Q_DISABLE_COPY_MOVE(StatusLine)

    /// Shows the caption of messageKey, red when error.
    void show(const QString &messageKey, bool error);
    /// Empties and hides the line, back in the progress colour.
    void hide();
    /// Drops the text without hiding the line (the first layout clears the creation state).
    void clearText();

    /// Places the frame; its height is the label's height plus a small margin.
    void setFrameGeometry(const QRect &area);
    [[nodiscard]] int heightHint() const;
    /// The label's current width (the panel's layout starts from it).
    [[nodiscard]] int labelWidth() const;
    /// Fits the label to the whole frame.
    void fitLabel();

    [[nodiscard]] QLabel *label() const { return m_label; }

private:
    QFrame *m_frame;
    QLabel *m_label;
    CaptionLookup m_caption;
};

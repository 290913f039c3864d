#pragma once

#include <QObject>

class QLabel;

/// Makes a label act as a link-like button: a left click, or Enter, Return or Space while it has
/// the focus, emits activated(). The label joins the tab chain, shows a pointing-hand cursor and
/// a focus frame. The activator is a child of the label and lives as long as it.
class LabelActivator final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LabelActivator)

public:
    /// Installs itself on label (not null); owned by label.
    explicit LabelActivator(QLabel *label);
    ~LabelActivator() override;

Q_SIGNALS:
    void activated();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLabel *m_label;
    bool m_pressed = false;
};

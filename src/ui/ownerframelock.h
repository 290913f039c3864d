#pragma once

#include <QPointer>
#include <QWidget>

/// Disables a modal dialog's owner frame for the lifetime of the lock and restores the frame's
/// own enabled flag afterwards, however the dialog was closed (button, Escape, window close).
/// Restoring rather than forcing "enabled" keeps a frame disabled while an outer modal dialog
/// that disabled it first is still open. A frame destroyed meanwhile is left alone.
class OwnerFrameLock final
{
public:
    explicit OwnerFrameLock(QWidget *owner);
    ~OwnerFrameLock();
    Q_DISABLE_COPY_MOVE(OwnerFrameLock)

    /// The window a dialog over owner belongs to: the frame's parent, since the frame itself is
    /// disabled while the dialog is shown (a child window of a disabled widget would be disabled
    /// too). Nothing when there is no owner or it has no parent.
    [[nodiscard]] static QWidget *dialogParent(QWidget *owner);

private:
    QPointer<QWidget> m_owner;
    bool m_wasEnabled = true;
};

#pragma once

#include <QObject>
#include <array>
#include <functional>
#include <vector>

class ProfileExchange;
class ProfileMenu;
class QAction;
class QMenu;
class QToolBar;
class QWidget;

/// The toolbar tbMain: its four buttons, actions named by their keys ("SaveGrid", "PrintGrid",
/// "Profiles", "Help"; the separators between them are the original's buttons 3 and 5), their
/// shortcuts, and the profile menu that drops down from "Profiles". A triggered button is told by
/// its key through buttonClicked(); what it does is the control's business.
class ToolbarActions final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ToolbarActions)

public:
    using CaptionLookup = std::function<QString(const QString &key)>;

    /// The toolbar becomes a child of frame; the profile menu a child of owner, which also takes
    /// the shortcuts (active while the focus is anywhere inside it).
    ToolbarActions(QWidget *frame, QWidget *owner);
    ~ToolbarActions() override;

    /// Creates the profile subsystem's menu over the menu widgets (owned by owner) and rebuilds it
    /// each time it drops down, whether by the button itself or by its arrow.
    void attachProfileMenu(ProfileExchange &exchange);

    void setCaptions(const CaptionLookup &caption);
    /// Shows or hides the data buttons (save, print, profiles) with their separators.
    void setDataButtonsShown(bool shown);
    void setHelpShown(bool shown);
    /// Drops the profile menu down: at the mouse when the mouse pressed the button, else (the
    /// keyboard) under the button.
    void showProfileMenu();

    [[nodiscard]] QToolBar *toolBar() const { return m_bar; }
    [[nodiscard]] QAction *saveButton() const { return m_save; }
    [[nodiscard]] QAction *printButton() const { return m_print; }
    [[nodiscard]] QAction *profilesButton() const { return m_profiles; }
    [[nodiscard]] QAction *helpButton() const { return m_help; }
    [[nodiscard]] QAction *saveProfileItem() const { return m_saveProfile; }

Q_SIGNALS:
    /// A button was triggered; key is its object name.
    void buttonClicked(const QString &key);

private:
    QWidget *m_owner;
    QToolBar *m_bar;
    QAction *m_save = nullptr;
    QAction *m_print = nullptr;
    QAction *m_profiles = nullptr;
    QAction *m_help = nullptr;
    std::array<QAction *, 2> m_separators{}; ///< shown and hidden with the data buttons
    QMenu *m_profileSection = nullptr;
    QMenu *m_use = nullptr;
    std::vector<QAction *> m_profileItems;
    QAction *m_saveProfile = nullptr;
    QAction *m_saveProfileAs = nullptr;
    QAction *m_manage = nullptr;
    ProfileMenu *m_profileMenu = nullptr; ///< owned by owner
};

#pragma once

#include <QObject>
#include <QPointer>
#include <vector>

class ProfileExchange;
class QAction;
class QMenu;

/// The control's profile menu: the submenu of profiles to use (the menu-item array mnuProfile,
/// element 0 being the control's own "mnuProfile0") and the save, save-as and manage commands.
///
/// It rebuilds the profile entries from ProfileExchange::ConfigureProfileMenu() each time the
/// profile menu is about to drop down, and routes every command to the exchange. It owns only
/// the entries it adds (children of the submenu); the menus and the control's actions stay the
/// control's. Entries are named "mnuProfile1", "mnuProfile2", ...
class ProfileMenu final : public QObject
{
    Q_OBJECT

public:
    /// The menus and actions are the control's and must outlive this object (it is meant to be
    /// their sibling under the control). Any pointer but exchange may be null.
    ProfileMenu(ProfileExchange &exchange, QMenu *mnuProfileSection, QMenu *mnuUse,
                QAction *mnuProfile0, QAction *mnuSaveProfile, QAction *mnuSaveProfileAs,
                QAction *mnuManage, QObject *parent = nullptr);
    ~ProfileMenu() override;
    Q_DISABLE_COPY_MOVE(ProfileMenu)

    /// ConfigureProfileMenu, then shows the result (what the Profiles button does before the
    /// menu drops down).
    void configure();
    /// Brings the actions in line with the exchange's menu model.
    void render();

    /// Element index of mnuProfile (nothing when it is not loaded).
    [[nodiscard]] QAction *action(int index) const;
    [[nodiscard]] int count() const { return int(m_actions.size()); }

private:
    void clicked(QAction *action);

    ProfileExchange &m_exchange;
    QPointer<QMenu> m_mnuUse;
    std::vector<QPointer<QAction>> m_actions;
};

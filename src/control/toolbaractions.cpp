#include "control/toolbaractions.h"

#include "profiles/profilemenu.h"
#include "views/toolbariconengine.h"

#include <QAction>
#include <QCursor>
#include <QKeySequence>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>

ToolbarActions::ToolbarActions(QWidget *frame, QWidget *owner)
    : QObject(owner), m_owner(owner), m_bar(new QToolBar(frame))
{
    m_bar->setObjectName(QStringLiteral("tbMain"));
    m_bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_bar->setIconSize(QSize(20, 20));
    using Glyph = ToolbarIconEngine::Glyph;
    const auto addButton = [this](const char *key, Glyph glyph) {
        QAction *a = m_bar->addAction(ToolbarIconEngine::icon(glyph), QString());
        a->setObjectName(QString::fromLatin1(key));
        return a;
    };
    m_save = addButton("SaveGrid", Glyph::Save);
    m_print = addButton("PrintGrid", Glyph::Print);
    m_separators[0] = m_bar->addSeparator();
    m_profiles = addButton("Profiles", Glyph::Profiles);
    m_separators[1] = m_bar->addSeparator();
    m_help = addButton("Help", Glyph::Help);

    m_profileSection = new QMenu(owner);
    m_profileSection->setObjectName(QStringLiteral("mnuProfileSection"));
    m_use = m_profileSection->addMenu(QString());
    m_use->setObjectName(QStringLiteral("mnuUse"));
    QAction *first = m_use->addAction(QString());
    first->setObjectName(QStringLiteral("mnuProfile0"));
    first->setCheckable(true);
    first->setVisible(false);
    m_profileItems.push_back(first);
    m_profileSection->addSeparator();
    m_saveProfile = m_profileSection->addAction(QString());
    m_saveProfile->setObjectName(QStringLiteral("mnuSaveProfile"));
    m_saveProfileAs = m_profileSection->addAction(QString());
    m_saveProfileAs->setObjectName(QStringLiteral("mnuSaveProfileAs"));
    m_manage = m_profileSection->addAction(QString());
    m_manage->setObjectName(QStringLiteral("mnuManage"));
    m_profiles->setMenu(m_profileSection);
    if (auto *button = qobject_cast<QToolButton *>(m_bar->widgetForAction(m_profiles)))
        button->setPopupMode(QToolButton::MenuButtonPopup);

    // Keyboard access while the focus is anywhere inside the control, without taking the keys
    // from the host's own window.
    const std::pair<QAction *, QKeySequence> shortcuts[] = {
        {m_save, QKeySequence::Save},
        {m_print, QKeySequence::Print},
        {m_help, QKeySequence::HelpContents},
    };
    for (const auto &[action, keys] : shortcuts) {
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        owner->addAction(action);
    }
    for (QAction *button : {m_save, m_print, m_profiles, m_help})
        connect(button, &QAction::triggered, this,
                [this, button] { Q_EMIT buttonClicked(button->objectName()); });
}

ToolbarActions::~ToolbarActions() = default;

void ToolbarActions::attachProfileMenu(ProfileExchange &exchange)
{
    m_profileMenu = new ProfileMenu(exchange, m_profileSection, m_use, m_profileItems.front(),
                                    m_saveProfile, m_saveProfileAs, m_manage, m_owner);
    connect(m_profileSection, &QMenu::aboutToShow, m_profileMenu, &ProfileMenu::configure);
}

void ToolbarActions::setCaptions(const CaptionLookup &caption)
{
    const std::pair<QAction *, const char *> buttons[] = {
        {m_save, "SaveGrid"},
        {m_print, "PrintGrid"},
        {m_profiles, "Profiles"},
        {m_help, "AboutDLV"},
    };
    for (const auto &[button, key] : buttons) {
        button->setToolTip(caption(QString::fromLatin1(key)));
        button->setText(button->toolTip());
    }
    m_saveProfile->setText(caption(QStringLiteral("SaveCurrentProfile")));
    m_saveProfileAs->setText(caption(QStringLiteral("SaveCurrentProfileAs")));
    m_manage->setText(caption(QStringLiteral("ManageProfiles")));
    m_use->setTitle(caption(QStringLiteral("UseProfile")));
}

void ToolbarActions::setDataButtonsShown(bool shown)
{
    m_save->setVisible(shown);
    m_print->setVisible(shown);
    m_profiles->setVisible(shown);
    for (QAction *separator : m_separators)
        separator->setVisible(shown); // no lone separator before Help while they are hidden
}

void ToolbarActions::setHelpShown(bool shown)
{
    m_help->setVisible(shown);
}

void ToolbarActions::showProfileMenu()
{
    QPoint at = QCursor::pos();
    if (QWidget *button = m_bar->widgetForAction(m_profiles)) {
        const QRect area(button->mapToGlobal(QPoint(0, 0)), button->size());
        if (!area.contains(at))
            at = area.bottomLeft() + QPoint(0, 1);
    }
    m_profileSection->popup(at);
}

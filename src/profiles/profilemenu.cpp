#include "profiles/profilemenu.h"

#include "profiles/profileexchange.h"

#include <QAction>
#include <QMenu>

namespace {

// A menu text treats "&" as a mnemonic marker; a profile name is shown as it is.
QString menuText(const QString &caption)
{
    QString text = caption;
    return text.replace(u'&', QStringLiteral("&&"));
}

} // namespace

ProfileMenu::ProfileMenu(ProfileExchange &exchange, QMenu *mnuProfileSection, QMenu *mnuUse,
                         QAction *mnuProfile0, QAction *mnuSaveProfile, QAction *mnuSaveProfileAs,
                         QAction *mnuManage, QObject *parent)
    : QObject(parent), m_exchange(exchange), m_mnuUse(mnuUse)
{
    if (mnuProfile0) {
        mnuProfile0->setCheckable(true);
        connect(mnuProfile0, &QAction::triggered, this,
                [this, mnuProfile0] { clicked(mnuProfile0); });
        m_actions.emplace_back(mnuProfile0);
    }
    if (mnuProfileSection)
        connect(mnuProfileSection, &QMenu::aboutToShow, this, &ProfileMenu::configure);
    if (mnuSaveProfile)
        connect(mnuSaveProfile, &QAction::triggered, this,
                [this] { m_exchange.mnuSaveProfile_Click(); });
    if (mnuSaveProfileAs)
        connect(mnuSaveProfileAs, &QAction::triggered, this,
                [this] { m_exchange.mnuSaveProfileAs_Click(); });
    if (mnuManage)
        connect(mnuManage, &QAction::triggered, this, [this] { m_exchange.mnuManage_Click(); });
}

ProfileMenu::~ProfileMenu()
{
    for (std::size_t i = 1; i < m_actions.size(); ++i)
        delete m_actions[i].data();
}

QAction *ProfileMenu::action(int index) const
{
    if (index < 0 || index >= count())
        return nullptr;
    return m_actions[std::size_t(index)].data();
}

void ProfileMenu::configure()
{
    m_exchange.ConfigureProfileMenu();
    render();
}

void ProfileMenu::render()
{
    const std::vector<ProfileExchange::MenuItem> &items = m_exchange.menuItems();
    if (m_actions.empty() || !m_mnuUse)
        return;
    // Element 0 is the control's; the others are loaded and unloaded here.
    while (m_actions.size() > items.size() && m_actions.size() > 1) {
        delete m_actions.back().data();
        m_actions.pop_back();
    }
    while (m_actions.size() < items.size()) {
        auto *added = new QAction(m_mnuUse);
        added->setObjectName(QStringLiteral("mnuProfile%1").arg(m_actions.size()));
        added->setCheckable(true);
        m_mnuUse->addAction(added);
        connect(added, &QAction::triggered, this, [this, added] { clicked(added); });
        m_actions.emplace_back(added);
    }
    for (std::size_t i = 0; i < m_actions.size() && i < items.size(); ++i) {
        QAction *a = m_actions[i];
        if (!a)
            continue;
        a->setText(menuText(items[i].caption));
        a->setVisible(items[i].visible);
        a->setChecked(items[i].checked);
    }
}

void ProfileMenu::clicked(QAction *action)
{
    int index = -1;
    for (std::size_t i = 0; i < m_actions.size(); ++i)
        if (m_actions[i] == action)
            index = int(i);
    if (index < 0)
        return;
    m_exchange.mnuProfile_Click(index);
    // A checkable action toggles itself on a click; the model decides what is checked.
    render();
}

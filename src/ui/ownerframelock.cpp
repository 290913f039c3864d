#include "ui/ownerframelock.h"

OwnerFrameLock::OwnerFrameLock(QWidget *owner) : m_owner(owner)
{
    if (!m_owner)
        return;
    // The frame's own flag, not isEnabled(): a frame inside a disabled window must get back
    // exactly the flag it had.
    m_wasEnabled = !m_owner->testAttribute(Qt::WA_ForceDisabled);
    m_owner->setEnabled(false);
}

OwnerFrameLock::~OwnerFrameLock()
{
    if (m_owner)
        m_owner->setEnabled(m_wasEnabled);
}

QWidget *OwnerFrameLock::dialogParent(QWidget *owner)
{
    return owner ? owner->parentWidget() : nullptr;
}

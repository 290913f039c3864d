#include "model/viewchoice.h"

#include "common/dlverror.h"

#include <QStringList>

ViewChoice::ViewChoice(QObject *parent) : QObject(parent) {}

ViewChoice::~ViewChoice() = default;

const QString &ViewChoice::unitKey(int index) const
{
    if (index < 0 || index >= unitCount())
        throw DLVError::subscriptOutOfRange();
    return m_keys[std::size_t(index)];
}

bool ViewChoice::isChosen(int index) const
{
    if (index < 0 || index >= unitCount())
        throw DLVError::subscriptOutOfRange();
    return m_chosen[std::size_t(index)] != 0;
}

QString ViewChoice::buListId(int index) const
{
    (void)unitKey(index); // range check
    return m_ids[std::size_t(index)];
}

const QSet<QString> &ViewChoice::idSet() const
{
    if (!m_idSetValid) {
        m_idSet.clear();
        m_idSet.reserve(qsizetype(m_ids.size()));
        for (const QString &id : m_ids)
            m_idSet.insert(id);
        m_idSetValid = true;
    }
    return m_idSet;
}

void ViewChoice::setUnits(std::vector<QString> keys, std::vector<char> chosen)
{
    m_idSetValid = false;
    m_keys = std::move(keys);
    m_ids.clear();
    m_ids.reserve(m_keys.size());
    for (const QString &key : m_keys)
        m_ids.push_back(key.mid(1));
    m_chosen = std::move(chosen);
    m_chosen.resize(m_keys.size(), 0);
    ++m_revision;
    ++m_itemsRevision;
    Q_EMIT unitsReset();
}

void ViewChoice::setChosen(int index, bool chosen)
{
    if (isChosen(index) == chosen)
        return;
    m_chosen[std::size_t(index)] = chosen;
    ++m_revision;
    Q_EMIT chosenChanged(index);
}

void ViewChoice::setAllChosen(std::vector<char> chosen)
{
    chosen.resize(m_keys.size(), 0);
    if (chosen == m_chosen)
        return;
    m_chosen = std::move(chosen);
    ++m_revision;
    Q_EMIT chosenChanged(-1);
}

QStringList ViewChoice::chosenIds() const
{
    QStringList ids;
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        if (m_chosen[i])
            ids.append(m_ids[i]);
    }
    return ids;
}

void ViewChoice::setSingleUnits(bool single)
{
    m_singleUnits = single;
    Q_EMIT singleUnitsSet(single);
}

void ViewChoice::setByWorkOrders(bool workOrders)
{
    m_byWorkOrders = workOrders;
    Q_EMIT byWorkOrdersSet(workOrders);
}

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

void ViewChoice::setUnits(std::vector<QString> keys, std::vector<char> chosen)
{
    m_keys = std::move(keys);
    m_chosen = std::move(chosen);
    m_chosen.resize(m_keys.size(), 0);
    Q_EMIT unitsReset();
}

void ViewChoice::setChosen(int index, bool chosen)
{
    if (isChosen(index) == chosen)
        return;
    m_chosen[std::size_t(index)] = chosen;
    Q_EMIT chosenChanged(index);
}

void ViewChoice::setAllChosen(std::vector<char> chosen)
{
    chosen.resize(m_keys.size(), 0);
    if (chosen == m_chosen)
        return;
    m_chosen = std::move(chosen);
    Q_EMIT chosenChanged(-1);
}

QStringList ViewChoice::chosenIds() const
{
    QStringList ids;
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        if (m_chosen[i])
            ids.append(m_keys[i].mid(1));
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

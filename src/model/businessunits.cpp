#include "model/businessunits.h"

BusinessUnit &BusinessUnits::Add(const QZWebRow &row, GeneralColumns &columns)
{
    auto unit = std::make_unique<BusinessUnit>();
    unit->Initialize(row, columns);
    unit->m_owner = this;
    const QString key = unit->BUID();
    BusinessUnit &added = *m_items.add(key, std::move(unit));
    m_byIndexValid = false;
    return added;
}

BusinessUnit *BusinessUnits::Item(QStringView buid)
{
    const auto *found = m_items.find(buid);
    return found ? found->get() : nullptr;
}

const BusinessUnit *BusinessUnits::Item(QStringView buid) const
{
    const auto *found = m_items.find(buid);
    return found ? found->get() : nullptr;
}

const BusinessUnit *BusinessUnits::BUItem(qint32 index) const
{
    if (!m_byIndexValid) {
        m_byIndex.clear();
        m_byIndex.reserve(m_items.count());
        for (const auto &entry : m_items)
            if (!m_byIndex.contains(entry.value->BUIndex())) // the first one wins
                m_byIndex.insert(entry.value->BUIndex(), entry.value.get());
        m_byIndexValid = true;
    }
    return m_byIndex.value(index, nullptr);
}

bool BusinessUnits::Remove(QStringView buid)
{
    m_byIndexValid = false;
    return m_items.remove(buid);
}

void BusinessUnits::Terminate()
{
    for (auto &entry : m_items)
        entry.value->Terminate();
}

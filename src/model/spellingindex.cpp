#include "model/spellingindex.h"

#include "common/dlverror.h"

#include <QHash>
#include <algorithm>
#include <limits>

SpellingIndex::SpellingIndex() : m_slots(64, -1) {}

std::size_t SpellingIndex::slotOf(QStringView text, std::size_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const int number = m_slots[i];
        if (number < 0)
            return i;
        const Entry &entry = m_entries[std::size_t(number)];
        if (entry.hash == hash && entry.size == std::size_t(text.size()) &&
            std::equal(text.begin(), text.end(), m_text.begin() + entry.begin))
            return i;
    }
}

int SpellingIndex::find(QStringView text) const
{
    return m_slots[slotOf(text, qHash(text))];
}

int SpellingIndex::add(QStringView text)
{
    const std::size_t hash = qHash(text);
    std::size_t slot = slotOf(text, hash);
    if (m_slots[slot] >= 0) {
        m_lastAdded = false;
        return m_slots[slot];
    }
    if (m_text.size() + std::size_t(text.size()) > std::numeric_limits<std::uint32_t>::max())
        throw DLVError::overflow();
    const int number = int(m_entries.size());
    m_entries.push_back(Entry{hash, std::uint32_t(m_text.size()), std::uint32_t(text.size())});
    m_text.insert(m_text.end(), text.utf16(), text.utf16() + text.size());
    m_slots[slot] = number;
    m_lastAdded = true;
    if (2 * m_entries.size() > m_slots.size())
        grow();
    return number;
}

QStringView SpellingIndex::text(int number) const
{
    const Entry &entry = m_entries[std::size_t(number)];
    return QStringView(m_text.data() + entry.begin, qsizetype(entry.size));
}

void SpellingIndex::grow()
{
    m_slots.assign(m_slots.size() * 2, -1);
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t number = 0; number < m_entries.size(); ++number) {
        std::size_t i = m_entries[number].hash & mask;
        while (m_slots[i] >= 0)
            i = (i + 1) & mask;
        m_slots[i] = int(number);
    }
}

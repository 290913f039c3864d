#pragma once

#include <QtGlobal>
#include <cstdint>
#include <vector>

/// Maps a pair of small non-negative numbers (unit and job type, job type and class, ...) to a
/// number. One flat open-addressing table: the loader and the summary look up one pair per detail
/// row, and a probe of a flat table costs a fraction of a general hash map's. Never shrinks.
class PairIndex
{
public:
    PairIndex() : m_slots(64) {}

    [[nodiscard]] static std::uint64_t key(int first, int second)
    {
        return (std::uint64_t(std::uint32_t(first)) << 32) | std::uint32_t(second);
    }

    /// The value stored for the pair, or -1.
    [[nodiscard]] int find(std::uint64_t pair) const
    {
        const Slot &slot = m_slots[slotOf(pair)];
        return slot.value;
    }
    /// The value stored for the pair; when there is none, stores value and returns -1.
    int findOrInsert(std::uint64_t pair, int value)
    {
        std::size_t i = slotOf(pair);
        if (m_slots[i].value >= 0)
            return m_slots[i].value;
        m_slots[i] = Slot{pair, value};
        if (2 * ++m_used > m_slots.size())
            grow();
        return -1;
    }

private:
    struct Slot
    {
        std::uint64_t pair = 0;
        int value = -1;
    };
    [[nodiscard]] static std::size_t hashOf(std::uint64_t pair)
    {
        const std::uint64_t h = pair * 0x9E3779B97F4A7C15ULL;
        return std::size_t(h ^ (h >> 32));
    }
    [[nodiscard]] std::size_t slotOf(std::uint64_t pair) const
    {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = hashOf(pair) & mask;
        while (m_slots[i].value >= 0 && m_slots[i].pair != pair)
            i = (i + 1) & mask;
        return i;
    }
    void grow()
    {
        std::vector<Slot> old(m_slots.size() * 2);
        old.swap(m_slots);
        for (const Slot &slot : old) {
            if (slot.value >= 0)
                m_slots[slotOf(slot.pair)] = slot;
        }
    }

    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
};

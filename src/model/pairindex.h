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

    /// Empties the index and sizes it for about n pairs. Costs time in proportion to n, not to
    /// what the index held before, so one index can serve many small groups one after another:
    /// a slot counts as taken only when it was filled since the last clear.
    void clear(std::size_t n)
    {
        std::size_t capacity = 16;
        while (capacity < 2 * n)
            capacity *= 2;
        if (m_slots.size() < capacity)
            m_slots.resize(capacity);
        if (++m_generation == 0) { // after four billion clears: every slot free again
            for (Slot &slot : m_slots)
                slot.generation = 0;
            m_generation = 1;
        }
        m_mask = capacity - 1;
        m_used = 0;
    }

    [[nodiscard]] static std::uint64_t key(int first, int second)
    {
        return (std::uint64_t(std::uint32_t(first)) << 32) | std::uint32_t(second);
    }

    /// The value stored for the pair, or -1.
    [[nodiscard]] int find(std::uint64_t pair) const
    {
        const Slot &slot = m_slots[slotOf(pair)];
        return taken(slot) ? slot.value : -1;
    }
    /// The value stored for the pair; when there is none, stores value and returns -1.
    int findOrInsert(std::uint64_t pair, int value)
    {
        std::size_t i = slotOf(pair);
        if (taken(m_slots[i]))
            return m_slots[i].value;
        m_slots[i] = Slot{pair, value, m_generation};
        if (2 * ++m_used > m_mask + 1)
            grow();
        return -1;
    }

private:
    struct Slot
    {
        std::uint64_t pair = 0;
        int value = -1;
        std::uint32_t generation = 0;
    };
    [[nodiscard]] bool taken(const Slot &slot) const { return slot.generation == m_generation; }
    [[nodiscard]] static std::size_t hashOf(std::uint64_t pair)
    {
        const std::uint64_t h = pair * 0x9E3779B97F4A7C15ULL;
        return std::size_t(h ^ (h >> 32));
    }
    [[nodiscard]] std::size_t slotOf(std::uint64_t pair) const
    {
        std::size_t i = hashOf(pair) & m_mask;
        while (taken(m_slots[i]) && m_slots[i].pair != pair)
            i = (i + 1) & m_mask;
        return i;
    }
    void grow()
    {
        std::vector<Slot> old(2 * (m_mask + 1));
        old.swap(m_slots);
        const std::size_t used = m_mask + 1;
        m_mask = m_slots.size() - 1;
        for (std::size_t i = 0; i < used; ++i) {
            if (taken(old[i]))
                m_slots[slotOf(old[i].pair)] = old[i];
        }
    }

    std::vector<Slot> m_slots;
    std::size_t m_mask = 63; // the slots in use are the first m_mask + 1
    std::size_t m_used = 0;
    std::uint32_t m_generation = 1;
};

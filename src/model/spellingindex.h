#pragma once

#include <QString>
#include <QStringView>
#include <cstdint>
#include <vector>

/// Numbers distinct texts by their exact spelling, 0, 1, 2 ... in order of first sight. The texts
/// are copied into one buffer of their own: a loader that looks up every cell of a column by its
/// text then compares against a few kilobytes that stay in cache, not against the cells of a
/// table of many megabytes where each text was first seen. Open addressing, never shrinks.
class SpellingIndex
{
public:
    SpellingIndex();

    /// The number of the text, or -1 when it was never added.
    [[nodiscard]] int find(QStringView text) const;
    /// The number of the text, adding it first when it is new.
    int add(QStringView text);
    /// Whether the last add() met a new text.
    [[nodiscard]] bool lastAdded() const { return m_lastAdded; }

    [[nodiscard]] int count() const { return int(m_entries.size()); }
    [[nodiscard]] QStringView text(int number) const;

private:
    struct Entry
    {
        std::size_t hash;
        std::uint32_t begin;
        std::uint32_t size;
    };
    [[nodiscard]] std::size_t slotOf(QStringView text, std::size_t hash) const;
    void grow();

    std::vector<char16_t> m_text;
    std::vector<Entry> m_entries;
    std::vector<int> m_slots; // entry numbers, -1 for free
    bool m_lastAdded = false;
};

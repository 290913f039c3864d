#pragma once

#include <iterator>
#include <memory>
#include <type_traits>

/// Iterates the members of a model collection (the values of its ordered dictionary) in insertion
/// order, so that views write `for (const JobClass &jc : classes)`. Members held by unique_ptr are
/// dereferenced.
template <typename EntryIt, typename Member> class CollectionIterator
{
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::remove_const_t<Member>;
    using difference_type = std::ptrdiff_t;
    using pointer = Member *;
    using reference = Member &;

    CollectionIterator() = default;
    explicit CollectionIterator(EntryIt it) : m_it(it) {}

    reference operator*() const
    {
        if constexpr (std::is_same_v<std::remove_cvref_t<decltype(m_it->value)>,
                                     std::unique_ptr<value_type>>)
            return *m_it->value;
        else
            return m_it->value;
    }
    pointer operator->() const { return &**this; }
    CollectionIterator &operator++()
    {
        ++m_it;
        return *this;
    }
    CollectionIterator operator++(int)
    {
        CollectionIterator old = *this;
        ++m_it;
        return old;
    }
    friend bool operator==(const CollectionIterator &a, const CollectionIterator &b)
    {
        return a.m_it == b.m_it;
    }

private:
    EntryIt m_it{};
};

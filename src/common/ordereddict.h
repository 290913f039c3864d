#pragma once

#include "common/dlverror.h"

#include <QChar>
#include <QHashFunctions>
#include <QString>
#include <QStringView>
#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

/// How an OrderedDict compares its keys.
enum class KeyCompare
{
    Exact,
    CaseInsensitive
};

/// A string-keyed dictionary that keeps insertion order, as the host platform's dictionaries and
/// collections do. Adding a key that is present throws the duplicate-key error (457); lookups
/// never throw (find() gives nullptr). Lookups take a QStringView and do not allocate, also in the
/// case-insensitive mode, so hot loops can look up by a view into a host table.
/// Removal is linear (it re-indexes the entries after the removed one); the project removes rarely.
/// Copies share their contents until one of them changes (as Qt's containers do), so that lists
/// of ten thousand ids pass between the controller and the views without being copied.
template <typename V> class OrderedDict
{
    static constexpr bool Shareable = std::is_copy_constructible_v<V>;

public:
    struct Entry
    {
        QString key;
        V value;
    };

    explicit OrderedDict(KeyCompare compare = KeyCompare::Exact)
        : d(std::make_shared<Data>(compare)), m_compare(compare)
    {}
    // A move shares like a copy (it costs the same), so that a moved-from dictionary stays usable.
    // Values that cannot be copied cannot be shared: such a dictionary moves for real.
    OrderedDict(const OrderedDict &) requires Shareable = default;
    OrderedDict &operator=(const OrderedDict &) requires Shareable = default;
    OrderedDict(OrderedDict &&other) noexcept requires Shareable : d(other.d),
                                                                   m_compare(other.m_compare)
    {}
    OrderedDict &operator=(OrderedDict &&other) noexcept requires Shareable
    {
        d = other.d;
        m_compare = other.m_compare;
        return *this;
    }
    OrderedDict(OrderedDict &&other) requires(!Shareable)
        : d(std::exchange(other.d, std::make_shared<Data>(other.m_compare))),
          m_compare(other.m_compare)
    {}
    OrderedDict &operator=(OrderedDict &&other) requires(!Shareable)
    {
        d = std::exchange(other.d, std::make_shared<Data>(other.m_compare));
        m_compare = other.m_compare;
        return *this;
    }
    ~OrderedDict() = default;

    [[nodiscard]] KeyCompare keyCompare() const { return m_compare; }
    /// Whether the two share their contents (a copy of the other that neither changed since):
    /// then they are equal without a look at a key.
    [[nodiscard]] bool sharesWith(const OrderedDict &other) const
    {
        return d == other.d && m_compare == other.m_compare;
    }
    [[nodiscard]] qsizetype count() const { return qsizetype(d->entries.size()); }
    [[nodiscard]] bool isEmpty() const { return d->entries.empty(); }

    /// Adds key with value; throws DLVError(457) when the key is already present.
    V &add(const QString &key, V value)
    {
        const std::size_t hash = hashOf(key);
        if (d->find(key, hash, m_compare) >= 0)
            throw DLVError::duplicateKey(key);
        return detach().append(key, hash, std::move(value));
    }

    /// Adds the key unless present; returns true when it was added.
    bool addIfAbsent(const QString &key, V value)
    {
        const std::size_t hash = hashOf(key);
        if (d->find(key, hash, m_compare) >= 0)
            return false;
        detach().append(key, hash, std::move(value));
        return true;
    }

    /// Appends a key that the caller knows to be absent (adding a present key this way breaks
    /// lookups). Its hash is taken at the first lookup: a list of thousands of ids that is built
    /// and then only read in order never hashes them.
    void appendUnique(const QString &key, V value)
    {
        detach().entries.push_back(Entry{key, std::move(value)});
    }

    [[nodiscard]] bool contains(QStringView key) const { return indexOf(key) >= 0; }

    [[nodiscard]] const V *find(QStringView key) const
    {
        const qsizetype i = indexOf(key);
        return i < 0 ? nullptr : &d->entries[std::size_t(i)].value;
    }
    [[nodiscard]] V *find(QStringView key)
    {
        const qsizetype i = indexOf(key);
        return i < 0 ? nullptr : &detach().entries[std::size_t(i)].value;
    }

    /// Position of the key in insertion order, or -1.
    [[nodiscard]] qsizetype indexOf(QStringView key) const
    {
        return d->find(key, hashOf(key), m_compare);
    }

    /// The value of a key that must exist; throws DLVError(5) otherwise.
    [[nodiscard]] const V &item(QStringView key) const
    {
        if (const V *v = find(key))
            return *v;
        throw DLVError::invalidCall(QStringLiteral("no entry with key \"%1\"").arg(key));
    }

    /// Sets the value of a key, adding the key at the end when absent.
    V &set(const QString &key, V value)
    {
        if (V *v = find(key)) {
            *v = std::move(value);
            return *v;
        }
        return add(key, std::move(value));
    }

    bool remove(QStringView key)
    {
        const qsizetype pos = indexOf(key);
        if (pos < 0)
            return false;
        Data &data = detach();
        data.entries.erase(data.entries.begin() + pos);
        data.hashes.erase(data.hashes.begin() + pos);
        data.rehash(data.table.size());
        return true;
    }

    void clear()
    {
        if (d.use_count() > 1) {
            d = std::make_shared<Data>(m_compare);
            return;
        }
        d->entries.clear();
        d->hashes.clear();
        d->table.assign(Data::MinSlots, -1);
    }

    void reserve(qsizetype n)
    {
        Data &data = detach();
        data.entries.reserve(std::size_t(n));
        data.hashes.reserve(std::size_t(n));
        if (std::size_t(n) * 2 > data.table.size())
            data.rehash(std::bit_ceil(std::size_t(n) * 2));
    }

    /// Entry by 0-based position; throws DLVError(9) outside 0 to count() - 1.
    [[nodiscard]] const Entry &at(qsizetype i) const { return d->entries[checkedIndex(i)]; }
    [[nodiscard]] Entry &at(qsizetype i)
    {
        const std::size_t at = checkedIndex(i);
        return detach().entries[at];
    }
    [[nodiscard]] const QString &keyAt(qsizetype i) const
    {
        return d->entries[checkedIndex(i)].key;
    }

    [[nodiscard]] auto begin() const { return d->entries.cbegin(); }
    [[nodiscard]] auto end() const { return d->entries.cend(); }
    [[nodiscard]] auto begin() { return detach().entries.begin(); }
    [[nodiscard]] auto end() { return detach().entries.end(); }

    [[nodiscard]] std::vector<QString> keys() const
    {
        std::vector<QString> out;
        out.reserve(d->entries.size());
        for (const Entry &e : d->entries)
            out.push_back(e.key);
        return out;
    }

private:
    [[nodiscard]] std::size_t checkedIndex(qsizetype i) const
    {
        if (i < 0 || i >= count())
            throw DLVError::subscriptOutOfRange(
                QStringLiteral("index %1 of %2").arg(i).arg(count()));
        return std::size_t(i);
    }

    struct Hash
    {
        KeyCompare compare = KeyCompare::Exact;
        std::size_t operator()(QStringView key) const noexcept
        {
            if (compare == KeyCompare::Exact)
                return qHash(key);
            // FNV-1a over case-folded code points: no temporary folded string. Folding whole code
            // points (not UTF-16 units) keeps the hash in step with the case-insensitive compare,
            // which folds letters outside the BMP too.
            std::size_t h = 1469598103934665603ull;
            const qsizetype n = key.size();
            for (qsizetype i = 0; i < n; ++i) {
                char32_t cp = key[i].unicode();
                if (cp < 0x80) { // ASCII folds to lower case: skip the Unicode tables
                    h ^= cp >= u'A' && cp <= u'Z' ? cp + (u'a' - u'A') : cp;
                    h *= 1099511628211ull;
                    continue;
                }
                if (QChar::isHighSurrogate(cp) && i + 1 < n && key[i + 1].isLowSurrogate()) {
                    cp = QChar::surrogateToUcs4(key[i], key[i + 1]);
                    ++i;
                }
                h ^= QChar::toCaseFolded(cp);
                h *= 1099511628211ull;
            }
            return h;
        }
    };
    struct Equal
    {
        KeyCompare compare = KeyCompare::Exact;
        bool operator()(QStringView a, QStringView b) const noexcept
        {
            if (a == b) // hosts send one spelling: the exact compare settles most lookups
                return true;
            return a.compare(b, compare == KeyCompare::Exact ? Qt::CaseSensitive
                                                             : Qt::CaseInsensitive) == 0;
        }
    };

    [[nodiscard]] std::size_t hashOf(QStringView key) const { return Hash{m_compare}(key); }

    /// The entries in insertion order, their keys' hashes, and an open-addressing index over
    /// them (entry positions, -1 for free; at most half full), compact enough that building a
    /// set of ten thousand ids allocates a handful of times instead of once per id.
    struct Data
    {
        static constexpr std::size_t MinSlots = 16;

        explicit Data(KeyCompare) : table(MinSlots, -1) {}

        [[nodiscard]] qsizetype find(QStringView key, std::size_t hash, KeyCompare compare)
        {
            indexAll(compare);
            const std::size_t mask = table.size() - 1;
            for (std::size_t i = home(hash);; i = (i + 1) & mask) {
                const qsizetype at = table[i];
                if (at < 0)
                    return -1;
                if (hashes[std::size_t(at)] == hash &&
                    Equal{compare}(key, entries[std::size_t(at)].key))
                    return at;
            }
        }
        /// Hashes and places the entries that appendUnique() left out of the index.
        void indexAll(KeyCompare compare)
        {
            if (hashes.size() == entries.size())
                return;
            const std::size_t from = hashes.size();
            for (std::size_t at = from; at < entries.size(); ++at)
                hashes.push_back(Hash{compare}(entries[at].key));
            if (entries.size() * 2 > table.size()) {
                rehash(std::bit_ceil(entries.size() * 2));
                return;
            }
            for (std::size_t at = from; at < entries.size(); ++at)
                place(at);
        }
        V &append(const QString &key, std::size_t hash, V value)
        {
            entries.push_back(Entry{key, std::move(value)});
            hashes.push_back(hash);
            if (entries.size() * 2 > table.size())
                rehash(table.size() * 2);
            else
                place(entries.size() - 1);
            return entries.back().value;
        }
        void place(std::size_t at)
        {
            const std::size_t mask = table.size() - 1;
            std::size_t i = home(hashes[at]);
            while (table[i] >= 0)
                i = (i + 1) & mask;
            table[i] = qsizetype(at);
        }
        /// The first slot of a hash: its bits mixed and the top ones taken, so that a hash whose
        /// low bits vary little (as the case-blind one's do for short ids) still spreads.
        [[nodiscard]] std::size_t home(std::size_t hash) const
        {
            const auto mixed = std::uint64_t(hash) * 0x9E3779B97F4A7C15ull;
            return std::size_t(mixed >> (64 - std::countr_zero(table.size())));
        }
        void rehash(std::size_t size)
        {
            table.assign(std::max(size, MinSlots), -1);
            for (std::size_t at = 0; at < hashes.size(); ++at)
                place(at);
        }

        std::vector<Entry> entries;
        std::vector<std::size_t> hashes; ///< of the first entries, those in the index
        std::vector<qsizetype> table;
    };
    /// The contents for a change: a copy of its own first when they are shared.
    Data &detach()
    {
        if constexpr (Shareable) {
            if (d.use_count() > 1)
                d = std::make_shared<Data>(*d);
        }
        return *d;
    }

    std::shared_ptr<Data> d; // never null
    KeyCompare m_compare;
};

/// The id sets and name lists of the control: key = item.
using StringSet = OrderedDict<QString>;

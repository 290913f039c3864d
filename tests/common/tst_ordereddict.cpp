#include "common/ordereddict.h"
#include "support/expecterror.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

TEST(OrderedDict, LooksUpByModeWithoutThrowing)
{
    const struct
    {
        const char *name;
        QString stored, lookup;
        bool foundExact, foundCaseInsensitive;
    } rows[] = {
        {"SameKey", QStringLiteral("BU12"), QStringLiteral("BU12"), true, true},
        {"OtherCase", QStringLiteral("WoInst"), QStringLiteral("wOiNST"), false, true},
        {"Accented", QStringLiteral("Ñandú"), QStringLiteral("ñANDÚ"), false, true},
        // A letter outside ASCII whose fold is an ASCII letter (Kelvin sign, U+212A -> k).
        {"FoldsToAscii", QStringLiteral("\u212A1"), QStringLiteral("k1"), false, true},
        {"Prefix", QStringLiteral("abc"), QStringLiteral("ab"), false, false},
        {"EmptyVsBlank", QString(), QStringLiteral(" "), false, false},
        // Letters outside the BMP fold as whole code points (U+10400 / U+10428).
        {"Supplementary", QString::fromUcs4(U"\U00010400x"), QString::fromUcs4(U"\U00010428X"),
         false, true},
    };
    for (const auto &r : rows) {
        for (KeyCompare mode : {KeyCompare::Exact, KeyCompare::CaseInsensitive}) {
            SCOPED_TRACE(std::string(r.name) + (mode == KeyCompare::Exact ? " exact" : " nocase"));
            OrderedDict<int> d(mode);
            d.add(QStringLiteral("first"), 1);
            d.add(r.stored, 42);
            const bool expected = mode == KeyCompare::Exact ? r.foundExact : r.foundCaseInsensitive;
            const int *v = d.find(r.lookup);
            ASSERT_EQ(v != nullptr, expected);
            EXPECT_EQ(d.indexOf(r.lookup), expected ? 1 : -1);
            if (v)
                EXPECT_EQ(d.item(r.lookup), 42);
            else
                expectError([&] { (void)d.item(r.lookup); }, DLVError::InvalidCall);
        }
    }
    // Lookups by a view into a larger text.
    OrderedDict<int> d(KeyCompare::CaseInsensitive);
    d.add(QStringLiteral("WO"), 1);
    const QString rowKey = QStringLiteral("wo|inst");
    ASSERT_NE(d.find(QStringView(rowKey).first(2)), nullptr);
    EXPECT_EQ(d.find(rowKey), nullptr);
}

TEST(OrderedDict, RejectsDuplicateKeysByMode)
{
    const struct
    {
        KeyCompare mode;
        const char *second;
        bool rejected;
    } rows[] = {{KeyCompare::Exact, "ABC", true},
                {KeyCompare::Exact, "abc", false},
                {KeyCompare::CaseInsensitive, "abc", true}};
    for (const auto &r : rows) {
        const QString second = QString::fromUtf8(r.second);
        SCOPED_TRACE(r.second);
        OrderedDict<int> d(r.mode);
        d.add(QStringLiteral("ABC"), 1);
        d.add(QStringLiteral("next"), 2);
        if (!r.rejected) {
            d.add(second, 3);
            EXPECT_EQ(d.indexOf(second), 2);
            continue;
        }
        EXPECT_TRUE(
            expectError([&] { d.add(second, 3); }, DLVError::DuplicateKey).contains(second));
        EXPECT_FALSE(d.addIfAbsent(second, 4));
        EXPECT_EQ(d.keys(), (std::vector<QString>{QStringLiteral("ABC"), QStringLiteral("next")}));
        EXPECT_EQ(*d.find(u"ABC"), 1);
    }
}

TEST(OrderedDict, SetReplacesKeepingTheFirstSpelling)
{
    OrderedDict<QString> d(KeyCompare::CaseInsensitive);
    d.set(QStringLiteral("EN"), QStringLiteral("hh:mm"));
    d.set(QStringLiteral("PO"), QStringLiteral("HH:mm"));
    d.set(QStringLiteral("en"), QStringLiteral("h:mm AM/PM"));
    EXPECT_EQ(d.count(), 2);
    EXPECT_EQ(d.keyAt(0), QStringLiteral("EN"));
    EXPECT_EQ(d.at(0).value, QStringLiteral("h:mm AM/PM"));
}

TEST(OrderedDict, PositionOutsideTheEntriesIsSubscriptError)
{
    OrderedDict<int> d;
    d.add(QStringLiteral("a"), 1);
    for (qsizetype i : {qsizetype(-1), qsizetype(1)}) {
        expectError([&] { (void)d.at(i); }, DLVError::SubscriptOutOfRange);
        expectError([&] { (void)d.keyAt(i); }, DLVError::SubscriptOutOfRange);
    }
}

// Removal re-indexes the entries after the removed one; a copy keeps its own index.
TEST(OrderedDict, RemovalKeepsOrderAndIndexesConsistent)
{
    OrderedDict<int> d(KeyCompare::CaseInsensitive);
    for (int i = 0; i < 2000; ++i)
        d.add(QStringLiteral("Key%1").arg(i), i);
    const OrderedDict<int> copy = d;
    for (int i = 0; i < 2000; i += 3)
        ASSERT_TRUE(d.remove(QStringLiteral("KEY%1").arg(i)));
    EXPECT_FALSE(d.remove(u"key0"));
    qsizetype pos = 0;
    for (int i = 0; i < 2000; ++i) {
        const QString key = QStringLiteral("key%1").arg(i);
        if (i % 3 == 0) {
            EXPECT_EQ(d.find(key), nullptr);
            continue;
        }
        ASSERT_EQ(d.indexOf(key), pos) << i;
        EXPECT_EQ(d.at(pos).value, i);
        ++pos;
    }
    EXPECT_EQ(d.count(), pos);
    EXPECT_EQ(copy.count(), 2000);
    EXPECT_EQ(copy.indexOf(u"KEY3"), 3);
    // A removed key comes back at the end.
    d.add(QStringLiteral("key0"), 0);
    EXPECT_EQ(d.indexOf(u"Key0"), d.count() - 1);
    d.clear();
    EXPECT_TRUE(d.isEmpty());
    EXPECT_FALSE(d.contains(u"key1"));
}

// Keys appended unchecked join the index at the next lookup, whatever comes first: a lookup, an
// add, a removal, a reservation or a copy. A key left out of the index would be missed or added
// twice.
TEST(OrderedDict, UncheckedAppendsJoinTheIndexAtTheNextLookup)
{
    const struct
    {
        const char *name;
        std::function<void(OrderedDict<int> &)> first;
    } firsts[] = {
        {"lookup", [](OrderedDict<int> &) {}},
        {"reserve", [](OrderedDict<int> &d) { d.reserve(d.count() * 3); }},
        {"copy and add to it",
         [](OrderedDict<int> &d) {
             OrderedDict<int> copy = d;
             EXPECT_TRUE(copy.sharesWith(d));
             copy.add(QStringLiteral("extra"), -1);
             EXPECT_FALSE(copy.sharesWith(d));
             EXPECT_EQ(copy.indexOf(u"k1"), 1);
         }},
        {"add present",
         [](OrderedDict<int> &d) { EXPECT_THROW(d.add(QStringLiteral("K0"), 0), DLVError); }},
        {"addIfAbsent present",
         [](OrderedDict<int> &d) { EXPECT_FALSE(d.addIfAbsent(QStringLiteral("k2"), 0)); }},
        {"remove",
         [](OrderedDict<int> &d) {
             const qsizetype n = d.count();
             ASSERT_TRUE(d.remove(u"k0"));
             d.add(QStringLiteral("k0"), 0); // back at the end
             ASSERT_EQ(d.count(), n);
         }},
    };
    for (const int n : {3, 9, 40, 3000}) {
        for (const auto &f : firsts) {
            SCOPED_TRACE(std::string(f.name) + " " + std::to_string(n));
            OrderedDict<int> d(KeyCompare::CaseInsensitive);
            for (int i = 0; i < n; ++i) {
                // Checked and unchecked adds in turn: the index holds some keys already.
                if (i % 7 == 3)
                    d.add(QStringLiteral("k%1").arg(i), i);
                else
                    d.appendUnique(QStringLiteral("k%1").arg(i), i);
            }
            f.first(d);
            for (int i = 0; i < n; ++i) {
                const qsizetype at = d.indexOf(QStringLiteral("K%1").arg(i));
                ASSERT_GE(at, 0) << i;
                EXPECT_EQ(d.at(at).value, i);
            }
            EXPECT_FALSE(d.contains(u"k-1"));
            EXPECT_FALSE(d.addIfAbsent(QStringLiteral("K1"), 0));
            EXPECT_TRUE(d.addIfAbsent(QStringLiteral("new"), 0));
        }
    }
}

} // namespace

// Copies share their contents until one changes: a change through any path (add, set, remove,
// clear, a mutable lookup or iteration) must leave the other copies as they were.
TEST(OrderedDict, CopiesChangeIndependently)
{
    const struct
    {
        const char *name;
        std::function<void(StringSet &)> change;
    } changes[] = {
        {"add", [](StringSet &s) { s.add(QStringLiteral("c"), QStringLiteral("3")); }},
        {"set", [](StringSet &s) { s.set(QStringLiteral("a"), QStringLiteral("9")); }},
        {"remove", [](StringSet &s) { s.remove(u"a"); }},
        {"clear", [](StringSet &s) { s.clear(); }},
        {"find", [](StringSet &s) { *s.find(u"b") = QStringLiteral("9"); }},
        {"at", [](StringSet &s) { s.at(0).value = QStringLiteral("9"); }},
        {"iterate",
         [](StringSet &s) {
             for (auto &entry : s)
                 entry.value = QStringLiteral("9");
         }},
    };
    for (const auto &c : changes) {
        SCOPED_TRACE(c.name);
        StringSet original(KeyCompare::CaseInsensitive);
        original.add(QStringLiteral("a"), QStringLiteral("1"));
        original.add(QStringLiteral("B"), QStringLiteral("2"));
        StringSet copy = original;
        StringSet moved = std::move(StringSet(original));
        c.change(copy);
        for (const StringSet *kept : {&original, &moved}) {
            ASSERT_EQ(kept->count(), 2);
            EXPECT_EQ(kept->keys(), (std::vector<QString>{"a", "B"}));
            EXPECT_EQ(*kept->find(u"A"), QStringLiteral("1"));
            EXPECT_EQ(*kept->find(u"b"), QStringLiteral("2"));
        }
        EXPECT_NE(copy.keys() == original.keys() && *copy.find(u"b") == u"2" && copy.find(u"a") &&
                      *copy.find(u"a") == u"1",
                  true);
    }
    // A moved-from dictionary stays usable.
    StringSet from;
    from.add(QStringLiteral("x"), QStringLiteral("1"));
    StringSet to = std::move(from);
    from.add(QStringLiteral("y"), QStringLiteral("2"));
    EXPECT_EQ(to.keys(), (std::vector<QString>{"x"}));
}

#include "common/dlverror.h"
#include "common/ordereddict.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

std::vector<QString> keysOf(const OrderedDict<int> &d)
{
    std::vector<QString> out;
    for (const auto &e : d)
        out.push_back(e.key);
    return out;
}

std::vector<QString> list(std::initializer_list<const char16_t *> keys)
{
    std::vector<QString> out;
    for (const char16_t *k : keys)
        out.push_back(QString::fromUtf16(k));
    return out;
}

template <typename F> void expectError(F &&body, qint32 number)
{
    try {
        body();
        ADD_FAILURE() << "no error, expected " << number;
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), number) << e.what();
    }
}

// ---- Lookups in both key modes ------------------------------------------------------------

struct LookupCase
{
    const char *name;
    QString stored;
    QString lookup;
    bool foundExact;
    bool foundCaseInsensitive;
};

class OrderedDictLookup : public ::testing::TestWithParam<LookupCase>
{};

TEST_P(OrderedDictLookup, FindsByModeWithoutThrowing)
{
    const LookupCase &c = GetParam();
    for (KeyCompare mode : {KeyCompare::Exact, KeyCompare::CaseInsensitive}) {
        OrderedDict<int> d(mode);
        d.add(QStringLiteral("first"), 1);
        d.add(c.stored, 42);
        d.add(QStringLiteral("last"), 3);
        const bool expected = mode == KeyCompare::Exact ? c.foundExact : c.foundCaseInsensitive;
        SCOPED_TRACE(mode == KeyCompare::Exact ? "exact" : "case-insensitive");
        EXPECT_EQ(d.contains(c.lookup), expected);
        const int *v = d.find(c.lookup);
        ASSERT_EQ(v != nullptr, expected);
        if (v) {
            EXPECT_EQ(*v, 42);
            EXPECT_EQ(d.indexOf(c.lookup), 1);
            EXPECT_EQ(d.item(c.lookup), 42);
        } else {
            EXPECT_EQ(d.indexOf(c.lookup), -1);
            expectError([&] { (void)d.item(c.lookup); }, DLVError::InvalidCall);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, OrderedDictLookup,
    ::testing::Values(
        LookupCase{"SameKey", QStringLiteral("BU12"), QStringLiteral("BU12"), true, true},
        LookupCase{"OtherCase", QStringLiteral("ABC"), QStringLiteral("abc"), false, true},
        LookupCase{"MixedCase", QStringLiteral("WoInst"), QStringLiteral("wOiNST"), false, true},
        LookupCase{"Accented", QStringLiteral("Ñandú"), QStringLiteral("ñANDÚ"), false, true},
        LookupCase{"Prefix", QStringLiteral("abc"), QStringLiteral("ab"), false, false},
        LookupCase{"Longer", QStringLiteral("abc"), QStringLiteral("abcd"), false, false},
        LookupCase{"Empty", QString(), QString(), true, true},
        LookupCase{"EmptyVsBlank", QString(), QStringLiteral(" "), false, false},
        // Letters outside the BMP fold as whole code points (U+10400 / U+10428).
        LookupCase{"Supplementary", QString::fromUcs4(U"\U00010400x"),
                   QString::fromUcs4(U"\U00010428X"), false, true}),
    [](const ::testing::TestParamInfo<LookupCase> &info) { return std::string(info.param.name); });

TEST(OrderedDict, LooksUpByAViewIntoLargerText)
{
    OrderedDict<int> d(KeyCompare::CaseInsensitive);
    d.add(QStringLiteral("WO"), 1);
    d.add(QStringLiteral("INST"), 2);
    const QString rowKey = QStringLiteral("wo|inst");
    const QStringView view(rowKey);
    ASSERT_NE(d.find(view.first(2)), nullptr);
    EXPECT_EQ(*d.find(view.first(2)), 1);
    EXPECT_EQ(*d.find(view.sliced(3)), 2);
    EXPECT_EQ(d.find(view), nullptr);
}

// ---- Order, duplicates, removal -----------------------------------------------------------

TEST(OrderedDict, KeepsInsertionOrder)
{
    OrderedDict<int> d;
    const auto keys = list({u"z", u"a", u"m", u"B", u"b"});
    int n = 0;
    for (const QString &k : keys)
        d.add(k, n++);
    EXPECT_EQ(keysOf(d), keys);
    EXPECT_EQ(d.keys(), keys);
    for (qsizetype i = 0; i < d.count(); ++i) {
        EXPECT_EQ(d.keyAt(i), keys[std::size_t(i)]);
        EXPECT_EQ(d.at(i).value, i);
        EXPECT_EQ(d.indexOf(keys[std::size_t(i)]), i);
    }
}

struct DuplicateCase
{
    const char *name;
    KeyCompare mode;
    QString second;
    bool rejected;
};

class OrderedDictDuplicate : public ::testing::TestWithParam<DuplicateCase>
{};

TEST_P(OrderedDictDuplicate, RejectsPresentKeyAndStaysUnchanged)
{
    const DuplicateCase &c = GetParam();
    OrderedDict<int> d(c.mode);
    d.add(QStringLiteral("ABC"), 1);
    d.add(QStringLiteral("next"), 2);
    if (!c.rejected) {
        d.add(c.second, 3);
        EXPECT_EQ(d.count(), 3);
        EXPECT_EQ(d.indexOf(c.second), 2);
        return;
    }
    try {
        d.add(c.second, 3);
        ADD_FAILURE() << "duplicate accepted";
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), DLVError::DuplicateKey);
        EXPECT_TRUE(e.description().contains(c.second));
    }
    EXPECT_EQ(d.count(), 2);
    EXPECT_EQ(d.keys(), list({u"ABC", u"next"}));
    EXPECT_EQ(*d.find(u"ABC"), 1);
    EXPECT_FALSE(d.addIfAbsent(c.second, 4));
    EXPECT_EQ(*d.find(u"ABC"), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, OrderedDictDuplicate,
    ::testing::Values(DuplicateCase{"ExactSameKey", KeyCompare::Exact, QStringLiteral("ABC"), true},
                      DuplicateCase{"ExactOtherCaseIsNewKey", KeyCompare::Exact,
                                    QStringLiteral("abc"), false},
                      DuplicateCase{"CaseInsensitiveSameKey", KeyCompare::CaseInsensitive,
                                    QStringLiteral("ABC"), true},
                      DuplicateCase{"CaseInsensitiveOtherCase", KeyCompare::CaseInsensitive,
                                    QStringLiteral("abc"), true}),
    [](const ::testing::TestParamInfo<DuplicateCase> &info) {
        return std::string(info.param.name);
    });

TEST(OrderedDict, RemoveKeepsOrderAndIndexes)
{
    const struct
    {
        const char16_t *remove;
        bool removed;
        std::vector<QString> after;
    } rows[] = {
        {u"a", true, list({u"b", u"c", u"d"})},
        {u"C", true, list({u"a", u"b", u"d"})}, // case-insensitive dictionary
        {u"d", true, list({u"a", u"b", u"c"})},
        {u"x", false, list({u"a", u"b", u"c", u"d"})},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(QString::fromUtf16(r.remove).toStdString());
        OrderedDict<int> d(KeyCompare::CaseInsensitive);
        for (const char16_t *k : {u"a", u"b", u"c", u"d"})
            d.add(QString::fromUtf16(k), int(k[0]));
        EXPECT_EQ(d.remove(QString::fromUtf16(r.remove)), r.removed);
        EXPECT_EQ(d.keys(), r.after);
        for (qsizetype i = 0; i < d.count(); ++i) {
            EXPECT_EQ(d.indexOf(r.after[std::size_t(i)]), i);
            EXPECT_EQ(*d.find(r.after[std::size_t(i)]),
                      int(r.after[std::size_t(i)].at(0).unicode()));
        }
        EXPECT_FALSE(d.contains(QString::fromUtf16(r.remove)));
        // A removed key may come back, at the end.
        d.addIfAbsent(QString::fromUtf16(r.remove), 0);
        EXPECT_EQ(d.indexOf(QString::fromUtf16(r.remove)), d.count() - 1);
    }
}

TEST(OrderedDict, SetReplacesOrAppends)
{
    OrderedDict<QString> d(KeyCompare::CaseInsensitive);
    d.set(QStringLiteral("EN"), QStringLiteral("hh:mm"));
    d.set(QStringLiteral("PO"), QStringLiteral("HH:mm"));
    d.set(QStringLiteral("en"), QStringLiteral("h:mm AM/PM"));
    EXPECT_EQ(d.count(), 2);
    EXPECT_EQ(d.keyAt(0), QStringLiteral("EN")); // the first spelling of the key stays
    EXPECT_EQ(d.at(0).value, QStringLiteral("h:mm AM/PM"));
    EXPECT_TRUE(d.addIfAbsent(QStringLiteral("SP"), QStringLiteral("H:mm")));
    EXPECT_EQ(d.indexOf(u"sp"), 2);
}

TEST(OrderedDict, ClearEmptiesAndAllowsReuse)
{
    OrderedDict<int> d;
    d.add(QStringLiteral("a"), 1);
    d.add(QStringLiteral("b"), 2);
    d.clear();
    EXPECT_TRUE(d.isEmpty());
    EXPECT_FALSE(d.contains(u"a"));
    d.add(QStringLiteral("b"), 3);
    EXPECT_EQ(d.indexOf(u"b"), 0);
}

TEST(OrderedDict, CopyIsIndependent)
{
    OrderedDict<int> original(KeyCompare::CaseInsensitive);
    original.add(QStringLiteral("a"), 1);
    original.add(QStringLiteral("b"), 2);
    OrderedDict<int> copy = original;
    copy.remove(u"a");
    copy.add(QStringLiteral("c"), 3);
    EXPECT_EQ(original.keys(), list({u"a", u"b"}));
    EXPECT_EQ(copy.keys(), list({u"b", u"c"}));
    EXPECT_EQ(copy.keyCompare(), KeyCompare::CaseInsensitive);
    EXPECT_EQ(*copy.find(u"B"), 2);
    EXPECT_EQ(copy.indexOf(u"C"), 1);
}

TEST(OrderedDict, PositionOutsideTheEntriesIsSubscriptError)
{
    OrderedDict<int> d;
    d.add(QStringLiteral("a"), 1);
    for (qsizetype i : {qsizetype(-1), qsizetype(1), qsizetype(100)}) {
        expectError([&] { (void)d.at(i); }, DLVError::SubscriptOutOfRange);
        expectError([&] { (void)d.keyAt(i); }, DLVError::SubscriptOutOfRange);
    }
}

TEST(OrderedDict, ManyKeysStayConsistentThroughRemovals)
{
    OrderedDict<int> d(KeyCompare::CaseInsensitive);
    for (int i = 0; i < 2000; ++i)
        d.add(QStringLiteral("Key%1").arg(i), i);
    for (int i = 0; i < 2000; i += 3)
        ASSERT_TRUE(d.remove(QStringLiteral("KEY%1").arg(i)));
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
}

} // namespace

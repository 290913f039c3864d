// The indexes the loader and the summary find codes, units and pairs through: a code's number is
// its exact spelling, its fold joins exactly the spellings that compare equal without regard to
// case, and nothing is lost or confused when the tables grow.
#include "model/codetable.h"
#include "model/pairindex.h"
#include "model/spellingindex.h"

#include <QString>
#include <gtest/gtest.h>

namespace {

TEST(CodeTable, FoldsJoinExactlyTheSpellingsThatCompareEqualWithoutRegardToCase)
{
    const QString deseretCapital = QString::fromUcs4(U"\U00010400x");
    const QString deseretSmall = QString::fromUcs4(U"\U00010428X");
    const struct
    {
        QString a, b;
    } pairs[] = {
        {"INS", "ins"},
        {"Ins", "iNS"},
        {"ß", "ss"}, // equal only under full folding, which a case-blind compare does not do
        {"A", "A "}, // lengths differ
        {"", ""},    // the empty code is a code too
        {"É", "é"},
        {deseretCapital, deseretSmall}, // letters outside the 16-bit range
        {"K", QString(QChar(0x212A))},  // the Kelvin sign folds to k
    };
    for (const auto &p : pairs) {
        SCOPED_TRACE(p.a.toStdString() + " / " + p.b.toStdString());
        CodeTable codes;
        const int a = codes.number(p.a);
        const int b = codes.number(p.b);
        EXPECT_EQ(a, 0);
        EXPECT_EQ(b, p.a == p.b ? 0 : 1); // numbered by exact spelling, first sight first
        EXPECT_EQ(codes.code(b), p.b);
        const bool equal =
            p.a.size() == p.b.size() && QString::compare(p.a, p.b, Qt::CaseInsensitive) == 0;
        EXPECT_EQ(codes.fold(a) == codes.fold(b), equal);
    }
}

TEST(CodeTable, GrowingKeepsEveryNumberAndString)
{
    CodeTable codes;
    SpellingIndex spellings;
    const QString &first = codes.code(codes.number(u"C0"));
    for (int i = 0; i < 5000; ++i) {
        const QString code = QStringLiteral("C%1").arg(i);
        ASSERT_EQ(codes.number(code), i);
        ASSERT_EQ(spellings.add(code), i);
        ASSERT_TRUE(spellings.lastAdded());
    }
    EXPECT_EQ(first, u"C0"); // handed-out strings stay where they were
    for (int i = 0; i < 5000; ++i) {
        const QString code = QStringLiteral("C%1").arg(i);
        ASSERT_EQ(codes.find(code), i);
        ASSERT_EQ(codes.code(i), code);
        ASSERT_EQ(codes.fold(codes.number(code.toLower())), codes.fold(i));
        ASSERT_EQ(spellings.add(code), i);
        ASSERT_FALSE(spellings.lastAdded());
        ASSERT_EQ(spellings.text(i), code);
    }
    EXPECT_EQ(codes.find(u"C5000"), -1);
    EXPECT_EQ(spellings.find(u""), -1);
    EXPECT_EQ(spellings.add(u""), 5000);
    EXPECT_EQ(spellings.find(u""), 5000);
}

TEST(PairIndex, FindsWhatWasStoredAndNothingElse)
{
    PairIndex index;
    // Pairs that differ in either half, including halves that look alike once combined.
    for (int a = 0; a < 300; ++a)
        for (int b = 0; b < 30; ++b)
            ASSERT_EQ(index.findOrInsert(PairIndex::key(a, b), a * 30 + b), -1);
    for (int a = 0; a < 300; ++a)
        for (int b = 0; b < 30; ++b) {
            ASSERT_EQ(index.find(PairIndex::key(a, b)), a * 30 + b);
            ASSERT_EQ(index.findOrInsert(PairIndex::key(a, b), -7), a * 30 + b); // kept
        }
    EXPECT_EQ(index.find(PairIndex::key(30, 300)), -1);
    EXPECT_EQ(index.find(PairIndex::key(-1, 0)), -1); // "no job type" never matches a pair
    EXPECT_EQ(index.find(PairIndex::key(0, -1)), -1);
}

TEST(PairIndex, ClearingForgetsEveryPairWhateverTheGroupSizes)
{
    // One index serves groups one after another: a large group leaves slots behind that a small
    // group's table does not reach, and a group that outgrows its size must still find all.
    PairIndex index;
    const int sizes[] = {500, 3, 0, 40, 1, 2000, 7};
    int group = 0;
    for (const int size : sizes) {
        index.clear(std::size_t(size / 4)); // too small on purpose: it must grow
        for (int i = 0; i < size; ++i)
            ASSERT_EQ(index.findOrInsert(PairIndex::key(i, i % 7), group * 10000 + i), -1);
        for (int i = 0; i < size; ++i)
            ASSERT_EQ(index.find(PairIndex::key(i, i % 7)), group * 10000 + i);
        EXPECT_EQ(index.find(PairIndex::key(size, size % 7)), -1);
        ++group;
    }
    index.clear(10);
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(index.find(PairIndex::key(i, i % 7)), -1);
}

} // namespace

#include "common/conversions.h"
#include "support/expecterror.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(LeadingNumber, ReadsLikeTheHostVal)
{
    const struct
    {
        const char *name;
        QString text;
        double expected;
    } rows[] = {
        {"Empty", QString(), 0},
        {"Letters", QStringLiteral("abc"), 0},
        {"Fraction", QStringLiteral("12.5"), 12.5},
        {"BlankBetweenDigits", QStringLiteral("1 2"), 12},
        {"BlanksTabsAfterSign", QStringLiteral(" - \t1\n2\r3"), -123},
        {"DoubleSign", QStringLiteral("--5"), 0},
        {"CommaEnds", QStringLiteral("1,5"), 1},
        {"SecondPeriodEnds", QStringLiteral("1.2.3"), 1.2},
        {"NegativeZeroIsZero", QStringLiteral("-0"), 0},
        {"ExponentE", QStringLiteral("1.5E3"), 1500},
        {"ExponentLowerDNegative", QStringLiteral("2d-2"), 0.02},
        {"ExponentWithoutDigits", QStringLiteral("1e+"), 1},
        {"ExponentAfterBlank", QStringLiteral("1 E 2"), 100},
        {"ExponentWithoutMantissa", QStringLiteral("E5"), 0},
        {"Hex", QStringLiteral("&H1F"), 31},
        {"HexNoFraction", QStringLiteral("&h1f.5"), 31},
        {"OctalStopsAtEight", QStringLiteral("&o19"), 1},
        {"AmpersandOther", QStringLiteral("&X1"), 0},
        {"SignBeforeAmpersand", QStringLiteral("-&H1F"), 0},
        {"Hex16BitSigned", QStringLiteral("&H8000"), -32768},
        {"HexForced32Bit", QStringLiteral("&HFFFF&"), 65535},
        {"Hex32Bit", QStringLiteral("&H10000"), 65536},
        {"Hex32BitSigned", QStringLiteral("&HFFFFFFFF"), -1},
        {"HexWiderKeepsLow32Bits", QStringLiteral("&H100000005"), 5},
        {"Octal16BitSigned", QStringLiteral("&O177777"), -1},
        {"DecimalRoundsCorrectly", QStringLiteral("0.1"), 0.1},
        {"HugeExponent", QStringLiteral("-1E400"), -kInf},
        {"TinyExponent", QStringLiteral("-1E-400"), 0},
        {"ExponentBeyondAnyInteger", QStringLiteral("1E99999999999999999999999999"), kInf},
        {"SmallestSubnormal", QStringLiteral("4.9406564584124654E-324"), 4.9406564584124654e-324},
        // 2^53 + 1 is a tie between two doubles; a far digit decides it upwards.
        {"TieBrokenByFarDigit", QStringLiteral("9007199254740993.") + QString(900, u'0') + u'1',
         9007199254740994.0},
        {"TieWithoutFarDigitGoesEven", QStringLiteral("9007199254740993.") + QString(900, u'0'),
         9007199254740992.0},
        {"MillionDigitsOverflow", QString(1000000, u'7'), kInf},
        {"MillionZerosBeforeDigit", QStringLiteral("0.") + QString(1000000, u'0') + u'5', 0},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        const double got = Conv::leadingNumber(r.text);
        EXPECT_EQ(got, r.expected);
        EXPECT_FALSE(std::signbit(got) && got == 0) << "negative zero";
    }
    const QString row = QStringLiteral("x12.5|7");
    EXPECT_EQ(Conv::leadingNumber(QStringView(row).mid(1, 4)), 12.5);
}

TEST(ToLong, RoundsHalfToEvenWithRangeCheck)
{
    const struct
    {
        double value;
        std::optional<qint32> expected; // nullopt: overflow
    } rows[] = {{12.5, 12},
                {13.5, 14},
                {-2.5, -2},
                {-0.5, 0},
                {0.5000000001, 1},
                {2147483647.4, 2147483647},
                {2147483647.5, std::nullopt},
                {-2147483648.5, -2147483647 - 1},
                {-2147483648.6, std::nullopt},
                {kNaN, std::nullopt},
                {-kInf, std::nullopt}};
    for (const auto &r : rows) {
        SCOPED_TRACE(r.value);
        if (r.expected)
            EXPECT_EQ(Conv::toLong(r.value), *r.expected);
        else
            expectError([&] { (void)Conv::toLong(r.value); }, DLVError::Overflow);
    }
    // Texts around the short-integer shortcut read the same as through the general parse.
    const std::pair<const char16_t *, qint32> texts[] = {{u"7 5", 75},
                                                         {u"123456789", 123456789},
                                                         {u"-123456789", -123456789},
                                                         {u"+42", 42},
                                                         {u"2147483647", 2147483647},
                                                         {u"-2147483648", -2147483647 - 1},
                                                         {u"-", 0},
                                                         {u"+", 0},
                                                         {u"", 0},
                                                         {u"12a", 12},
                                                         {u"0012", 12},
                                                         {u" 12", 12},
                                                         {u"-0", 0}};
    for (const auto &[text, expected] : texts) {
        SCOPED_TRACE(QString::fromUtf16(text).toStdString());
        EXPECT_EQ(Conv::textToLong(text), expected);
        EXPECT_EQ(Conv::leadingNumber(text), double(expected));
    }
    EXPECT_EQ(Conv::textToLong(u"13.5"), 14);
    expectError([] { (void)Conv::textToLong(u"2147483648"); }, DLVError::Overflow);
}

TEST(AddChecked, AddsOrRaisesOverflow)
{
    constexpr qint32 max = std::numeric_limits<qint32>::max();
    constexpr qint32 min = std::numeric_limits<qint32>::min();
    EXPECT_EQ(Conv::addChecked(max, min), -1);
    EXPECT_EQ(Conv::addChecked(max - 1, 1), max);
    EXPECT_EQ(Conv::addChecked(min + 1, -1), min);
    expectError([&] { (void)Conv::addChecked(max, 1); }, DLVError::Overflow);
    expectError([&] { (void)Conv::addChecked(min, -1); }, DLVError::Overflow);
}

TEST(Round2AndRate, HalveToEvenOnTheBinaryProduct)
{
    const struct
    {
        double value;
        double expected;
    } rounds[] = {{0.125, 0.12},
                  {0.375, 0.38},
                  {-0.125, -0.12},
                  // 0.135 is stored slightly above; 2.675 below, but its product rounds to 267.5.
                  {0.135, 0.14},
                  {2.675, 2.68},
                  // 1.005 * 100 stays below the half: 100.49999999999999.
                  {1.005, 1.0}};
    for (const auto &r : rounds)
        EXPECT_EQ(Conv::round2(r.value), r.expected) << r.value;

    const struct
    {
        double count, hours;
        std::optional<float> expected; // nullopt: overflow
    } rates[] = {{7, 3, 2.33f},
                 {1, 8, 0.12f},
                 {3, 8, 0.38f},
                 {5, 0, 0.0f},
                 {0, 0, 0.0f},
                 {1, -8, -0.12f},
                 {1e300, 1e-300, std::nullopt},
                 {1e300, 1, std::nullopt},
                 {kNaN, 1, std::nullopt}};
    for (const auto &r : rates) {
        SCOPED_TRACE(testing::Message() << r.count << " / " << r.hours);
        if (r.expected)
            EXPECT_EQ(Conv::rate(r.count, r.hours), *r.expected);
        else
            expectError([&] { (void)Conv::rate(r.count, r.hours); }, DLVError::Overflow);
    }
}

TEST(FormatHash, WritesWholeNumberOrNothing)
{
    const struct
    {
        double value;
        const char *expected;
    } rows[] = {{0, ""},
                {-0.0, ""},
                {-0.4, ""},
                {0.5, "1"},
                {-3, "-3"},
                {12.5, "13"},
                {-12.5, "-13"},
                {1234567, "1234567"},
                {1e20, "100000000000000000000"},
                {123456789012345678.0, "123456789012346000"}};
    for (const auto &r : rows)
        EXPECT_EQ(Conv::formatHash(r.value), QString::fromUtf8(r.expected)) << r.value;
    for (double v : {kNaN, -kInf})
        expectError([&] { (void)Conv::formatHash(v); }, DLVError::Overflow);
}

TEST(SingleText, WritesSevenSignificantDigits)
{
    const struct
    {
        float value;
        const char *expected;
    } rows[] = {{-0.0f, "0"},
                {Conv::rate(7, 3), "2.33"},
                {Conv::rate(1, 8), "0.12"},
                {1200.0f, "1200"},
                {1.0f / 3.0f, "0.3333333"},
                {9999999.0f, "9999999"},
                {1e7f, "1E+07"},
                {12345678.0f, "1.234568E+07"},
                {0.000099999997f, "0.0001"},
                {99999995.0f, "9.999999E+07"},
                {0.000123f, "0.000123"},
                {-0.000015f, "-1.5E-05"},
                {std::numeric_limits<float>::max(), "3.402823E+38"},
                {std::numeric_limits<float>::denorm_min(), "1.401298E-45"},
                {-std::numeric_limits<float>::infinity(), "-1.#INF"}};
    for (const auto &r : rows)
        EXPECT_EQ(Conv::singleText(r.value), QString::fromUtf8(r.expected)) << r.expected;
}

TEST(Booleans, WriteHostWordsAndReadWordsOrWholeNumbers)
{
    EXPECT_EQ(Conv::boolText(true), QStringLiteral("True"));
    EXPECT_EQ(Conv::boolText(false), QStringLiteral("False"));
    const struct
    {
        const char *text;
        std::optional<bool> expected; // nullopt: type mismatch
    } rows[] = {{"FALSE", false},      {"  tRuE\t", true},      {"0", false},
                {"-1", true},          {"0.0", false},          {"1E-3", true},
                {"&H0", false},        {"&H10", true},          {"", std::nullopt},
                {"   ", std::nullopt}, {"yes", std::nullopt},   {"12abc", std::nullopt},
                {"1 2", std::nullopt}, {"tru e", std::nullopt}, {"1E", std::nullopt},
                {"&H", std::nullopt},  {"-", std::nullopt}};
    for (const auto &r : rows) {
        SCOPED_TRACE(r.text);
        const QString text = QString::fromUtf8(r.text);
        if (r.expected)
            EXPECT_EQ(Conv::textToBool(text), *r.expected);
        else
            expectError([&] { (void)Conv::textToBool(text); }, DLVError::TypeMismatch);
    }
}

} // namespace

#include "common/conversions.h"
#include "common/dlverror.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::string rowName(const char *name)
{
    return name;
}

// Expects body to throw DLVError with the given number.
template <typename F> void expectError(F &&body, qint32 number)
{
    try {
        body();
        ADD_FAILURE() << "no error, expected " << number;
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), number) << e.what();
    }
}

// ---- leadingNumber --------------------------------------------------------------------------

struct NumberCase
{
    const char *name;
    QString text;
    double expected;
};

class LeadingNumberTest : public ::testing::TestWithParam<NumberCase>
{};

TEST_P(LeadingNumberTest, ReadsLikeTheHostVal)
{
    const NumberCase &c = GetParam();
    const double got = Conv::leadingNumber(c.text);
    EXPECT_EQ(got, c.expected) << c.text.toStdString();
    EXPECT_FALSE(std::signbit(got) && got == 0) << "negative zero";
}

INSTANTIATE_TEST_SUITE_P(
    Texts, LeadingNumberTest,
    ::testing::Values(NumberCase{"Empty", QString(), 0},
                      NumberCase{"OnlyBlanks", QStringLiteral(" \t\r\n"), 0},
                      NumberCase{"Letters", QStringLiteral("abc"), 0},
                      NumberCase{"Integer", QStringLiteral("42"), 42},
                      NumberCase{"Fraction", QStringLiteral("12.5"), 12.5},
                      NumberCase{"BlankBetweenDigits", QStringLiteral("1 2"), 12},
                      NumberCase{"BlankAfterSign", QStringLiteral(" - 3"), -3},
                      NumberCase{"TabsLineFeedsCarriageReturns", QStringLiteral("\t1\n2\r3"), 123},
                      NumberCase{"PlusSign", QStringLiteral("+7"), 7},
                      NumberCase{"DoubleSign", QStringLiteral("--5"), 0},
                      NumberCase{"CommaEnds", QStringLiteral("1,5"), 1},
                      NumberCase{"TrailingLetters", QStringLiteral("12abc"), 12},
                      NumberCase{"SecondPeriodEnds", QStringLiteral("1.2.3"), 1.2},
                      NumberCase{"LeadingPeriod", QStringLiteral(".5"), 0.5},
                      NumberCase{"TrailingPeriod", QStringLiteral("5."), 5},
                      NumberCase{"LonePeriod", QStringLiteral("."), 0},
                      NumberCase{"NegativeZero", QStringLiteral("-0"), 0},
                      NumberCase{"LeadingZeros", QStringLiteral("000.050"), 0.05},
                      NumberCase{"ExponentE", QStringLiteral("1.5E3"), 1500},
                      NumberCase{"ExponentD", QStringLiteral("2D2"), 200},
                      NumberCase{"ExponentLowerNegative", QStringLiteral("2d-2"), 0.02},
                      NumberCase{"ExponentWithoutDigits", QStringLiteral("1E"), 1},
                      NumberCase{"ExponentSignWithoutDigits", QStringLiteral("1e+"), 1},
                      NumberCase{"ExponentAfterBlank", QStringLiteral("1 E 2"), 100},
                      NumberCase{"ExponentWithoutMantissa", QStringLiteral("E5"), 0},
                      NumberCase{"Hex", QStringLiteral("&H1F"), 31},
                      NumberCase{"HexLowerCase", QStringLiteral("&h1f"), 31},
                      NumberCase{"Octal", QStringLiteral("&O17"), 15},
                      NumberCase{"OctalStopsAtEight", QStringLiteral("&o19"), 1},
                      NumberCase{"HexNoFraction", QStringLiteral("&H1F.5"), 31},
                      NumberCase{"HexWithoutDigits", QStringLiteral("&H"), 0},
                      NumberCase{"AmpersandOther", QStringLiteral("&X1"), 0},
                      NumberCase{"SignBeforeAmpersand", QStringLiteral("-&H1F"), 0},
                      NumberCase{"Hex16BitSigned", QStringLiteral("&HFFFF"), -1},
                      NumberCase{"Hex16BitLowest", QStringLiteral("&H8000"), -32768},
                      NumberCase{"HexForced32Bit", QStringLiteral("&HFFFF&"), 65535},
                      NumberCase{"Hex32Bit", QStringLiteral("&H10000"), 65536},
                      NumberCase{"Hex32BitSigned", QStringLiteral("&HFFFFFFFF"), -1},
                      NumberCase{"HexWiderKeepsLow32Bits", QStringLiteral("&H100000005"), 5},
                      NumberCase{"Octal16BitSigned", QStringLiteral("&O177777"), -1},
                      NumberCase{"DecimalRoundsCorrectly", QStringLiteral("0.1"), 0.1},
                      NumberCase{"ManyDigits", QStringLiteral("123456789012345678901234567890"),
                                 123456789012345678901234567890.0},
                      NumberCase{"HugeExponent", QStringLiteral("1E400"), kInf},
                      NumberCase{"HugeNegative", QStringLiteral("-1E400"), -kInf},
                      NumberCase{"TinyExponent", QStringLiteral("1E-400"), 0},
                      NumberCase{"NegativeTiny", QStringLiteral("-1E-400"), 0},
                      NumberCase{"ExponentDigitsBeyondAnyInteger",
                                 QStringLiteral("1E99999999999999999999999999"), kInf},
                      NumberCase{"LargestDouble", QStringLiteral("1.7976931348623157E308"),
                                 1.7976931348623157e308},
                      NumberCase{"SmallestSubnormal", QStringLiteral("4.9406564584124654E-324"),
                                 4.9406564584124654e-324},
                      // 2^53 + 1 is a tie between two doubles; a far digit decides it upwards.
                      NumberCase{"TieBrokenByDigitPastTheBuffer",
                                 QStringLiteral("9007199254740993.") + QString(900, u'0') + u'1',
                                 9007199254740994.0},
                      NumberCase{"TieWithoutFarDigitGoesEven",
                                 QStringLiteral("9007199254740993.") + QString(900, u'0'),
                                 9007199254740992.0},
                      NumberCase{"MillionDigitsOverflow", QString(1000000, u'7'), kInf},
                      NumberCase{"MillionZerosBeforeDigit",
                                 QStringLiteral("0.") + QString(1000000, u'0') + u'5', 0},
                      NumberCase{"MillionBlanksBeforeDigit", QString(1000000, u' ') + u'9', 9}),
    [](const ::testing::TestParamInfo<NumberCase> &info) { return rowName(info.param.name); });

TEST(LeadingNumber, ReadsAViewIntoLargerText)
{
    const QString row = QStringLiteral("x12.5|7");
    EXPECT_EQ(Conv::leadingNumber(QStringView(row).mid(1, 4)), 12.5);
    EXPECT_EQ(Conv::leadingNumber(QStringView(row).sliced(6)), 7);
}

// ---- toLong / textToLong / addChecked ----------------------------------------------------

struct LongCase
{
    const char *name;
    double value;
    std::optional<qint32> expected; // nullopt: overflow
};

class ToLongTest : public ::testing::TestWithParam<LongCase>
{};

TEST_P(ToLongTest, RoundsHalfToEvenWithRangeCheck)
{
    const LongCase &c = GetParam();
    if (c.expected)
        EXPECT_EQ(Conv::toLong(c.value), *c.expected);
    else
        expectError([&] { (void)Conv::toLong(c.value); }, DLVError::Overflow);
}

INSTANTIATE_TEST_SUITE_P(
    Values, ToLongTest,
    ::testing::Values(LongCase{"TwelveAndHalf", 12.5, 12}, LongCase{"ThirteenAndHalf", 13.5, 14},
                      LongCase{"MinusOneAndHalf", -1.5, -2}, LongCase{"MinusTwoAndHalf", -2.5, -2},
                      LongCase{"Half", 0.5, 0}, LongCase{"MinusHalf", -0.5, 0},
                      LongCase{"AboveHalf", 0.5000000001, 1}, LongCase{"BelowHalf", 2.4999999, 2},
                      LongCase{"Max", 2147483647.0, 2147483647},
                      LongCase{"MaxPlusBelowHalf", 2147483647.4, 2147483647},
                      LongCase{"MaxPlusHalf", 2147483647.5, std::nullopt},
                      LongCase{"MinMinusHalf", -2147483648.5, -2147483647 - 1},
                      LongCase{"MinMinusMoreThanHalf", -2147483648.6, std::nullopt},
                      LongCase{"Huge", 1e300, std::nullopt}, LongCase{"NaN", kNaN, std::nullopt},
                      LongCase{"Infinity", kInf, std::nullopt},
                      LongCase{"MinusInfinity", -kInf, std::nullopt}),
    [](const ::testing::TestParamInfo<LongCase> &info) { return rowName(info.param.name); });

TEST(TextToLong, ParsesThenRounds)
{
    const struct
    {
        const char *text;
        qint32 expected;
    } rows[] = {{"12.5", 12}, {"13.5", 14}, {"-1.5", -2}, {"abc", 0},
                {"", 0},      {"7 5", 75},  {"&H1F", 31}, {"2147483647", 2147483647}};
    for (const auto &r : rows)
        EXPECT_EQ(Conv::textToLong(QString::fromUtf8(r.text)), r.expected) << r.text;

    for (const char *text : {"2147483648", "-2147483649", "1E10", "1E400"})
        expectError([&] { (void)Conv::textToLong(QString::fromUtf8(text)); }, DLVError::Overflow);
}

TEST(AddChecked, AddsOrRaisesOverflow)
{
    constexpr qint32 max = std::numeric_limits<qint32>::max();
    constexpr qint32 min = std::numeric_limits<qint32>::min();
    EXPECT_EQ(Conv::addChecked(2, 3), 5);
    EXPECT_EQ(Conv::addChecked(max, min), -1);
    EXPECT_EQ(Conv::addChecked(max - 1, 1), max);
    EXPECT_EQ(Conv::addChecked(min + 1, -1), min);
    expectError([&] { (void)Conv::addChecked(max, 1); }, DLVError::Overflow);
    expectError([&] { (void)Conv::addChecked(min, -1); }, DLVError::Overflow);
}

// ---- round2 / rate -----------------------------------------------------------------------

struct RoundCase
{
    const char *name;
    double value;
    double expected;
};

class Round2Test : public ::testing::TestWithParam<RoundCase>
{};

TEST_P(Round2Test, HalvesToEvenOnTheBinaryValue)
{
    EXPECT_EQ(Conv::round2(GetParam().value), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, Round2Test,
    ::testing::Values(
        RoundCase{"EighthToEven", 0.125, 0.12}, RoundCase{"ThreeEighthsToEven", 0.375, 0.38},
        RoundCase{"NegativeEighth", -0.125, -0.12}, RoundCase{"SevenThirds", 7.0 / 3.0, 2.33},
        RoundCase{"TwoThirds", 2.0 / 3.0, 0.67},
        // 0.135 is stored slightly above, and its product with 100 is exactly 13.5.
        RoundCase{"PointOneThreeFive", 0.135, 0.14},
        // 2.675 is stored just below, but its product with 100 rounds to exactly 267.5.
        RoundCase{"ProductIsATie", 2.675, 2.68},
        // 1.005 * 100 stays below the half: 100.49999999999999.
        RoundCase{"ProductBelowHalf", 1.005, 1.0}, RoundCase{"Whole", 42.0, 42.0},
        RoundCase{"Zero", 0.0, 0.0}),
    [](const ::testing::TestParamInfo<RoundCase> &info) { return rowName(info.param.name); });

struct RateCase
{
    const char *name;
    double count;
    double hours;
    std::optional<float> expected; // nullopt: overflow
};

class RateTest : public ::testing::TestWithParam<RateCase>
{};

TEST_P(RateTest, FollowsTheRateRule)
{
    const RateCase &c = GetParam();
    if (c.expected)
        EXPECT_EQ(Conv::rate(c.count, c.hours), *c.expected);
    else
        expectError([&] { (void)Conv::rate(c.count, c.hours); }, DLVError::Overflow);
}

INSTANTIATE_TEST_SUITE_P(
    Values, RateTest,
    ::testing::Values(RateCase{"SevenOverThree", 7, 3, 2.33f},
                      RateCase{"OneOverEightToEven", 1, 8, 0.12f},
                      RateCase{"ThreeOverEightToEven", 3, 8, 0.38f},
                      RateCase{"ZeroHours", 5, 0, 0.0f}, RateCase{"ZeroOverZero", 0, 0, 0.0f},
                      RateCase{"NegativeCount", -7, 3, -2.33f},
                      RateCase{"NegativeHours", 1, -8, -0.12f}, RateCase{"Exact", 10, 4, 2.5f},
                      RateCase{"QuotientInfinite", 1e300, 1e-300, std::nullopt},
                      RateCase{"BeyondSingle", 1e300, 1, std::nullopt},
                      RateCase{"NaNCount", kNaN, 1, std::nullopt}),
    [](const ::testing::TestParamInfo<RateCase> &info) { return rowName(info.param.name); });

// ---- formatHash ---------------------------------------------------------------------------

struct TextCase
{
    const char *name;
    double value;
    const char *expected;
};

class FormatHashTest : public ::testing::TestWithParam<TextCase>
{};

TEST_P(FormatHashTest, WritesWholeNumberOrNothing)
{
    EXPECT_EQ(Conv::formatHash(GetParam().value), QString::fromUtf8(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Values, FormatHashTest,
    ::testing::Values(TextCase{"Zero", 0, ""}, TextCase{"NegativeZero", -0.0, ""},
                      TextCase{"Twelve", 12, "12"}, TextCase{"MinusThree", -3, "-3"},
                      TextCase{"HalfAwayFromZero", 12.5, "13"},
                      TextCase{"NegativeHalfAwayFromZero", -12.5, "-13"},
                      TextCase{"RoundsToZero", 0.4, ""}, TextCase{"NegativeRoundsToZero", -0.4, ""},
                      TextCase{"Half", 0.5, "1"}, TextCase{"NoSeparators", 1234567, "1234567"},
                      TextCase{"Int32Max", 2147483647, "2147483647"},
                      TextCase{"FifteenDigits", 999999999999999, "999999999999999"},
                      TextCase{"LargeWritesZeros", 1e20, "100000000000000000000"},
                      TextCase{"LargeKeepsFifteenDigits", 123456789012345678.0,
                               "123456789012346000"},
                      TextCase{"LargeNegative", -1e16, "-10000000000000000"}),
    [](const ::testing::TestParamInfo<TextCase> &info) { return rowName(info.param.name); });

TEST(FormatHash, NonFiniteIsOverflow)
{
    for (double v : {kNaN, kInf, -kInf})
        expectError([&] { (void)Conv::formatHash(v); }, DLVError::Overflow);
}

// ---- singleText ---------------------------------------------------------------------------

struct SingleCase
{
    const char *name;
    float value;
    const char *expected;
};

class SingleTextTest : public ::testing::TestWithParam<SingleCase>
{};

TEST_P(SingleTextTest, WritesSevenSignificantDigits)
{
    EXPECT_EQ(Conv::singleText(GetParam().value), QString::fromUtf8(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Values, SingleTextTest,
    ::testing::Values(
        SingleCase{"Zero", 0.0f, "0"}, SingleCase{"NegativeZero", -0.0f, "0"},
        SingleCase{"Rate", 2.33f, "2.33"}, SingleCase{"LeadingZero", 0.12f, "0.12"},
        SingleCase{"Negative", -1.5f, "-1.5"}, SingleCase{"Whole", 12.0f, "12"},
        SingleCase{"TrailingZerosOfWhole", 1200.0f, "1200"},
        SingleCase{"Third", 1.0f / 3.0f, "0.3333333"},
        SingleCase{"SevenDigits", 1234567.0f, "1234567"},
        SingleCase{"LargestPlain", 9999999.0f, "9999999"}, SingleCase{"TenMillion", 1e7f, "1E+07"},
        SingleCase{"EightDigitsRounded", 12345678.0f, "1.234568E+07"},
        SingleCase{"RoundsUpIntoPlain", 0.000099999997f, "0.0001"},
        SingleCase{"EightDigitsBelowFloatSpacing", 99999995.0f, "9.999999E+07"},
        SingleCase{"SmallestPlain", 0.0001f, "0.0001"},
        SingleCase{"SmallPlain", 0.000123f, "0.000123"},
        SingleCase{"SmallScientific", 0.00001f, "1E-05"},
        SingleCase{"SmallScientificFraction", -0.000015f, "-1.5E-05"},
        SingleCase{"Largest", std::numeric_limits<float>::max(), "3.402823E+38"},
        SingleCase{"Subnormal", std::numeric_limits<float>::denorm_min(), "1.401298E-45"},
        SingleCase{"Infinity", std::numeric_limits<float>::infinity(), "1.#INF"},
        SingleCase{"MinusInfinity", -std::numeric_limits<float>::infinity(), "-1.#INF"}),
    [](const ::testing::TestParamInfo<SingleCase> &info) { return rowName(info.param.name); });

TEST(SingleText, ShowsTheRatesThatRateProduces)
{
    EXPECT_EQ(Conv::singleText(Conv::rate(7, 3)), QStringLiteral("2.33"));
    EXPECT_EQ(Conv::singleText(Conv::rate(1, 8)), QStringLiteral("0.12"));
    EXPECT_EQ(Conv::singleText(Conv::rate(1, 0)), QStringLiteral("0"));
}

// ---- Booleans ----------------------------------------------------------------------------

TEST(BoolText, WritesTheHostWords)
{
    EXPECT_EQ(Conv::boolText(true), QStringLiteral("True"));
    EXPECT_EQ(Conv::boolText(false), QStringLiteral("False"));
    for (bool b : {true, false})
        EXPECT_EQ(Conv::textToBool(Conv::boolText(b)), b);
}

struct BoolCase
{
    const char *name;
    QString text;
    std::optional<bool> expected; // nullopt: type mismatch
};

class TextToBoolTest : public ::testing::TestWithParam<BoolCase>
{};

TEST_P(TextToBoolTest, ReadsWordsAndNumbers)
{
    const BoolCase &c = GetParam();
    if (c.expected)
        EXPECT_EQ(Conv::textToBool(c.text), *c.expected);
    else
        expectError([&] { (void)Conv::textToBool(c.text); }, DLVError::TypeMismatch);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TextToBoolTest,
    ::testing::Values(BoolCase{"True", QStringLiteral("True"), true},
                      BoolCase{"FalseLower", QStringLiteral("false"), false},
                      BoolCase{"FalseUpper", QStringLiteral("FALSE"), false},
                      BoolCase{"MixedCaseWithBlanks", QStringLiteral("  tRuE\t"), true},
                      BoolCase{"One", QStringLiteral("1"), true},
                      BoolCase{"Zero", QStringLiteral("0"), false},
                      BoolCase{"MinusOne", QStringLiteral("-1"), true},
                      BoolCase{"ZeroFraction", QStringLiteral("0.0"), false},
                      BoolCase{"Fraction", QStringLiteral(".5"), true},
                      BoolCase{"Exponent", QStringLiteral("1E-3"), true},
                      BoolCase{"HexZero", QStringLiteral("&H0"), false},
                      BoolCase{"Hex", QStringLiteral("&H10"), true},
                      BoolCase{"Empty", QString(), std::nullopt},
                      BoolCase{"Blanks", QStringLiteral("   "), std::nullopt},
                      BoolCase{"Word", QStringLiteral("yes"), std::nullopt},
                      BoolCase{"NumberThenText", QStringLiteral("12abc"), std::nullopt},
                      BoolCase{"BlankInsideNumber", QStringLiteral("1 2"), std::nullopt},
                      BoolCase{"BlankInsideWord", QStringLiteral("tru e"), std::nullopt},
                      BoolCase{"ExponentWithoutDigits", QStringLiteral("1E"), std::nullopt},
                      BoolCase{"HexWithoutDigits", QStringLiteral("&H"), std::nullopt},
                      BoolCase{"LoneSign", QStringLiteral("-"), std::nullopt}),
    [](const ::testing::TestParamInfo<BoolCase> &info) { return rowName(info.param.name); });

} // namespace

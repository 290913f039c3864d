#include "common/conversions.h"
#include "common/dlverror.h"

#include <QLocale>
#include <QTime>
#include <gtest/gtest.h>

namespace {

/// Runs a test under a fixed default locale and puts the previous one back.
class LocaleScope
{
public:
    explicit LocaleScope(const QLocale &locale) { QLocale::setDefault(locale); }
    ~LocaleScope() { QLocale::setDefault(m_previous); }
    LocaleScope(const LocaleScope &) = delete;
    LocaleScope &operator=(const LocaleScope &) = delete;

private:
    QLocale m_previous;
};

struct TimeCase
{
    const char *name;
    QTime time;
    QString format;
    QString expected;
};

class FormatTimeTest : public ::testing::TestWithParam<TimeCase>
{
protected:
    LocaleScope m_locale{QLocale(QLocale::English, QLocale::UnitedStates)};
};

TEST_P(FormatTimeTest, WritesTheHostFormat)
{
    const TimeCase &c = GetParam();
    EXPECT_EQ(Conv::formatTime(c.time, c.format), c.expected) << c.format.toStdString();
}

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, FormatTimeTest,
    ::testing::Values(
        TimeCase{"HourMinute", QTime(10, 50), s("hh:mm"), s("10:50")},
        TimeCase{"FifteenMinutesLater", QTime(10, 50).addSecs(15 * 60), s("hh:mm"), s("11:05")},
        TimeCase{"TwentyFourHourByDefault", QTime(17, 45), s("hh:nn"), s("17:45")},
        TimeCase{"SingleDigitTokens", QTime(9, 5, 3), s("h:n:s"), s("9:5:3")},
        TimeCase{"PaddedTokens", QTime(9, 5, 3), s("hh:nn:ss"), s("09:05:03")},
        TimeCase{"UpperCaseTokens", QTime(17, 45, 1), s("HH:MM:SS"), s("17:45:01")},
        TimeCase{"MidnightHalfPast", QTime(0, 30), s("h:mm AM/PM"), s("12:30 AM")},
        TimeCase{"NoonHalfPast", QTime(12, 30), s("h:mm AM/PM"), s("12:30 PM")},
        TimeCase{"BeforeNoon", QTime(11, 59), s("h:mm AM/PM"), s("11:59 AM")},
        TimeCase{"LastMinute", QTime(23, 59), s("hh:mm AM/PM"), s("11:59 PM")},
        TimeCase{"LowerAmPm", QTime(13, 0), s("h:mm am/pm"), s("1:00 pm")},
        TimeCase{"MixedCaseAmPmAsWritten", QTime(13, 0), s("h Am/pM"), s("1 pM")},
        TimeCase{"UpperAP", QTime(13, 0), s("h:mm A/P"), s("1:00 P")},
        TimeCase{"LowerAP", QTime(1, 0), s("h:mm a/p"), s("1:00 a")},
        TimeCase{"LocaleDesignator", QTime(0, 5), s("hh:mm AMPM"), s("12:05 AM")},
        TimeCase{"AmPmBeforeHour", QTime(15, 0), s("AM/PM h"), s("PM 3")},
        TimeCase{"MinuteBeforeSecond", QTime(0, 7, 9), s("mm:ss"), s("07:09")},
        TimeCase{"MonthWhenNotNearHourOrSecond", QTime(10, 50), s("m"), s("12")},
        TimeCase{"DatePartIsDayZero", QTime(10, 50), s("d/m/yyyy"), s("30/12/1899")},
        TimeCase{"WeekdayName", QTime(10, 50), s("dddd w"), s("Saturday 7")},
        TimeCase{"PeriodSeparator", QTime(10, 50), s("hh.nn"), s("10.50")},
        TimeCase{"QuotedLiteral", QTime(10, 50), s("hh\"h\"nn"), s("10h50")},
        TimeCase{"QuotedTokensStayLiteral", QTime(10, 50), s("\"hh:nn\" hh"), s("hh:nn 10")},
        TimeCase{"UnterminatedQuote", QTime(10, 50), s("hh\"min"), s("10min")},
        TimeCase{"BackslashLiteral", QTime(10, 50), s("hh\\hnn"), s("10h50")},
        TimeCase{"OtherCharactersCopied", QTime(10, 50), s("[hh-nn]!"), s("[10-50]!")},
        TimeCase{"ShortTime", QTime(17, 45), s("Short Time"), s("17:45")},
        TimeCase{"ShortTimeAnyCase", QTime(9, 5), s("short TIME"), s("09:05")},
        TimeCase{"MediumTime", QTime(17, 45), s("Medium Time"), s("05:45 PM")},
        TimeCase{"LongTime", QTime(10, 50), s("Long Time"), s("10:50:00 AM")},
        TimeCase{"LongTimeAfternoon", QTime(22, 5, 7), s("long time"), s("10:05:07 PM")},
        TimeCase{"EmptyIsLongTime", QTime(10, 50), QString(), s("10:50:00 AM")},
        TimeCase{"LongTimeToken", QTime(10, 50), s("ttttt"), s("10:50:00 AM")}),
    [](const ::testing::TestParamInfo<TimeCase> &info) { return std::string(info.param.name); });

TEST(FormatTime, FollowsTheDefaultLocale)
{
    LocaleScope scope(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(Conv::formatTime(QTime(22, 5, 7), u"Long Time"), QStringLiteral("22:05:07"));
    EXPECT_EQ(Conv::formatTime(QTime(22, 5, 7), u""), QStringLiteral("22:05:07"));
    EXPECT_EQ(Conv::formatTime(QTime(22, 5), u"hh:nn"), QStringLiteral("22:05"));
}

TEST(FormatTime, InvalidTimeIsAnError)
{
    try {
        (void)Conv::formatTime(QTime(), u"hh:mm");
        ADD_FAILURE() << "no error";
    } catch (const DLVError &e) {
        EXPECT_EQ(e.number(), DLVError::InvalidCall);
    }
}

} // namespace

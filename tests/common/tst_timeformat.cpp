#include "common/conversions.h"
#include "support/expecterror.h"

#include <QLocale>
#include <QTime>
#include <gtest/gtest.h>

namespace {

/// Sets the default locale for one test and puts the previous one back.
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

TEST(FormatTime, WritesTheHostFormat)
{
    LocaleScope scope(QLocale(QLocale::English, QLocale::UnitedStates));
    const struct
    {
        QTime time;
        const char *format;
        const char *expected;
    } rows[] = {
        {QTime(10, 50).addSecs(15 * 60), "hh:mm", "11:05"},
        {QTime(17, 45), "hh:nn", "17:45"},
        {QTime(9, 5, 3), "h:n:s", "9:5:3"},
        {QTime(17, 45, 1), "HH:MM:SS", "17:45:01"},
        {QTime(0, 30), "h:mm AM/PM", "12:30 AM"},
        {QTime(12, 30), "h:mm AM/PM", "12:30 PM"},
        {QTime(11, 59), "h:mm AM/PM", "11:59 AM"},
        {QTime(23, 59), "hh:mm AM/PM", "11:59 PM"},
        {QTime(13, 0), "h Am/pM", "1 pM"},
        {QTime(1, 0), "h:mm a/p", "1:00 a"},
        {QTime(0, 5), "hh:mm AMPM", "12:05 AM"},
        {QTime(15, 0), "AM/PM h", "PM 3"},
        {QTime(0, 7, 9), "mm:ss", "07:09"},
        {QTime(10, 50), "m", "12"},
        {QTime(10, 50), "d/m/yyyy", "30/12/1899"},
        {QTime(10, 50), "dddd w", "Saturday 7"},
        {QTime(10, 50), "\"hh:nn\" hh.nn", "hh:nn 10.50"},
        {QTime(10, 50), "hh\"min", "10min"},
        {QTime(10, 50), "[hh\\hnn]!", "[10h50]!"},
        {QTime(9, 5), "short TIME", "09:05"},
        {QTime(17, 45), "Medium Time", "05:45 PM"},
        {QTime(22, 5, 7), "long time", "10:05:07 PM"},
        {QTime(10, 50), "", "10:50:00 AM"},
        {QTime(10, 50), "ttttt", "10:50:00 AM"},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.format);
        EXPECT_EQ(Conv::formatTime(r.time, QString::fromUtf8(r.format)),
                  QString::fromUtf8(r.expected));
    }
    expectError([] { (void)Conv::formatTime(QTime(), u"hh:mm"); }, DLVError::InvalidCall);
}

TEST(FormatTime, FollowsTheDefaultLocale)
{
    LocaleScope scope(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(Conv::formatTime(QTime(22, 5, 7), u""), QStringLiteral("22:05:07"));
    EXPECT_EQ(Conv::formatTime(QTime(22, 5), u"hh:nn"), QStringLiteral("22:05"));
}

} // namespace

// The command line: good arguments and their values; every bad one is refused with a reason.
#include "host/hostoptions.h"
#include "support/qtprinters.h"

#include <gtest/gtest.h>
#include <ostream>

namespace {

HostOptions parse(const QStringList &args)
{
    return HostOptions::parse(QStringList{QStringLiteral("dlv-host")} + args);
}

TEST(HostOptions, DefaultsRunTheDemoInteractively)
{
    const HostOptions o = parse({});
    EXPECT_EQ(o.action, HostOptions::Action::Run);
    EXPECT_TRUE(o.dataPath.isEmpty());
    EXPECT_EQ(o.language, "EN");
    EXPECT_EQ(o.refreshSeconds, 30);
    EXPECT_FALSE(o.sessionUnitsGiven);
    EXPECT_FALSE(o.isBatch());
}

TEST(HostOptions, ReadsEveryOption)
{
    const HostOptions o = parse({"--data",          "d.xml",       "--lang",      "po",
                                 "--user",          "ana",         "--profiles",  "p.sqlite",
                                 "--session-units", "C1, C2",      "--refresh",   "5",
                                 "--seed",          "9",           "--select",    "C2",
                                 "--aggregate",     "--display",   "points",      "--tab",
                                 "hierarchy",       "--profile",   "Night shift", "--export-csv",
                                 "g.csv",           "--print-pdf", "g.pdf",       "--screenshot",
                                 "s.PNG",           "--panel"});
    ASSERT_EQ(o.action, HostOptions::Action::Run) << o.errorMessage.toStdString();
    EXPECT_EQ(o.dataPath, "d.xml");
    EXPECT_EQ(o.language, "PO");
    EXPECT_EQ(o.user, "ana");
    EXPECT_EQ(o.profilesPath, "p.sqlite");
    EXPECT_EQ(o.sessionUnits, (QStringList{"C1", "C2"}));
    EXPECT_EQ(o.refreshSeconds, 5);
    EXPECT_EQ(o.seed, 9u);
    EXPECT_EQ(o.select, QStringList{"C2"});
    EXPECT_TRUE(o.aggregate);
    EXPECT_EQ(o.display, HostOptions::Display::Points);
    EXPECT_EQ(o.tab, HostOptions::Tab::Hierarchy);
    EXPECT_EQ(o.profile, "Night shift");
    EXPECT_EQ(o.exportCsv, "g.csv");
    EXPECT_EQ(o.printPdf, "g.pdf");
    EXPECT_EQ(o.screenshot, "s.PNG");
    EXPECT_TRUE(o.panel);
    EXPECT_TRUE(o.isBatch());
}

struct BatchCase
{
    const char *name;
    QStringList args;
    friend void PrintTo(const BatchCase &c, std::ostream *os) { *os << c.name; }
};

class BatchOptionTest : public ::testing::TestWithParam<BatchCase>
{};

TEST_P(BatchOptionTest, MakesTheRunABatchRun)
{
    const HostOptions o = parse(GetParam().args);
    ASSERT_EQ(o.action, HostOptions::Action::Run) << o.errorMessage.toStdString();
    EXPECT_TRUE(o.isBatch());
}

INSTANTIATE_TEST_SUITE_P(Options, BatchOptionTest,
                         ::testing::Values(BatchCase{"Select", {"--select", "A"}},
                                           BatchCase{"Aggregate", {"--aggregate"}},
                                           BatchCase{"Display", {"--display", "work-orders"}},
                                           BatchCase{"Tab", {"--tab", "summary"}},
                                           BatchCase{"Profile", {"--profile", "P"}},
                                           BatchCase{"Export", {"--export-csv", "x.csv"}},
                                           BatchCase{"Print", {"--print-pdf", "x.pdf"}},
                                           BatchCase{"Screenshot", {"--screenshot", "x.png"}},
                                           BatchCase{"Panel", {"--panel"}}),
                         [](const ::testing::TestParamInfo<BatchCase> &info) {
                             return std::string(info.param.name);
                         });

struct BadCase
{
    const char *name;
    QStringList args;
    const char *mentions;
    friend void PrintTo(const BadCase &c, std::ostream *os) { *os << c.name; }
};

class BadArgumentTest : public ::testing::TestWithParam<BadCase>
{};

TEST_P(BadArgumentTest, IsRefusedWithAOneLineReason)
{
    const HostOptions o = parse(GetParam().args);
    EXPECT_EQ(o.action, HostOptions::Action::Error);
    EXPECT_TRUE(o.errorMessage.contains(QString::fromUtf8(GetParam().mentions)))
        << o.errorMessage.toStdString();
    EXPECT_FALSE(o.errorMessage.contains(u'\n'));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, BadArgumentTest,
    ::testing::Values(BadCase{"UnknownOption", {"--colour", "red"}, "colour"},
                      BadCase{"Positional", {"data.xml"}, "data.xml"},
                      BadCase{"MissingValue", {"--data"}, "data"},
                      BadCase{"EmptyData", {"--data", " "}, "--data"},
                      BadCase{"Language", {"--lang", "FR"}, "FR"},
                      BadCase{"RefreshZero", {"--refresh", "0"}, "--refresh"},
                      BadCase{"RefreshFraction", {"--refresh", "1.5"}, "1.5"},
                      BadCase{"RefreshTooLong", {"--refresh", "86401"}, "86401"},
                      BadCase{"Seed", {"--seed", "-1"}, "--seed"},
                      BadCase{"Display", {"--display", "hours"}, "hours"},
                      BadCase{"Tab", {"--tab", "panel"}, "panel"},
                      BadCase{"EmptyUnitInSelect", {"--select", "A,,B"}, "empty unit id"},
                      BadCase{"RepeatedUnitInSelect", {"--select", "A,B,A"}, "\"A\""},
                      BadCase{"RepeatedSessionUnit", {"--session-units", "A,A"}, "twice"},
                      BadCase{"ScreenshotNotPng", {"--screenshot", "shot.jpg"}, "shot.jpg"},
                      BadCase{"EmptyUser", {"--user", ""}, "--user"},
                      BadCase{"GivenTwice", {"--lang", "EN", "--lang", "PO"}, "more than once"},
                      BadCase{
                          "SameFileTwice", {"--export-csv", "x", "--print-pdf", "x"}, "same file"}),
    [](const ::testing::TestParamInfo<BadCase> &info) { return std::string(info.param.name); });

TEST(HostOptions, HelpAndVersion)
{
    EXPECT_EQ(parse({"--help"}).action, HostOptions::Action::Help);
    EXPECT_EQ(parse({"-h"}).action, HostOptions::Action::Help);
    EXPECT_EQ(parse({"--version"}).action, HostOptions::Action::Version);
}

} // namespace

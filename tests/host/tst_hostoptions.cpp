// The command line: good arguments and their values; every bad one is refused with a reason.
#include "host/hostoptions.h"
#include "support/qtprinters.h"

#include <gtest/gtest.h>

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
                                 "s.PNG",           "--panel",     "--freshness", "--change-cues",
                                 "--exceptions",    "--trend"});
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
    EXPECT_TRUE(o.freshness && o.changeCues && o.exceptions && o.trend);
    EXPECT_TRUE(o.isBatch());
}

TEST(HostOptions, EachOutputOrChoiceMakesTheRunABatchRun)
{
    const QStringList cases[] = {
        {"--select", "A"},        {"--aggregate"},           {"--display", "work-orders"},
        {"--tab", "summary"},     {"--profile", "P"},        {"--export-csv", "x.csv"},
        {"--print-pdf", "x.pdf"}, {"--screenshot", "x.png"}, {"--panel"}};
    for (const QStringList &args : cases) {
        const HostOptions o = parse(args);
        EXPECT_EQ(o.action, HostOptions::Action::Run) << o.errorMessage.toStdString();
        EXPECT_TRUE(o.isBatch()) << args.join(u' ').toStdString();
    }
}

TEST(HostOptions, EveryBadArgumentIsRefusedWithAOneLineReason)
{
    const std::pair<QStringList, const char *> cases[] = {
        {{"--colour", "red"}, "colour"},
        {{"data.xml"}, "data.xml"},
        {{"--data"}, "data"},
        {{"--data", " "}, "--data"},
        {{"--lang", "FR"}, "FR"},
        {{"--refresh", "0"}, "--refresh"},
        {{"--refresh", "1.5"}, "1.5"},
        {{"--refresh", "86401"}, "86401"},
        {{"--seed", "-1"}, "--seed"},
        {{"--display", "hours"}, "hours"},
        {{"--tab", "panel"}, "panel"},
        {{"--select", "A,,B"}, "empty unit id"},
        {{"--select", "A,B,A"}, "\"A\""},
        {{"--session-units", "A,A"}, "twice"},
        {{"--screenshot", "shot.jpg"}, "shot.jpg"},
        {{"--user", ""}, "--user"},
        {{"--lang", "EN", "--lang", "PO"}, "more than once"},
        {{"--export-csv", "x", "--print-pdf", "x"}, "same file"},
    };
    for (const auto &[args, mentions] : cases) {
        const HostOptions o = parse(args);
        EXPECT_EQ(o.action, HostOptions::Action::Error) << mentions;
        EXPECT_TRUE(o.errorMessage.contains(QString::fromUtf8(mentions)) &&
                    !o.errorMessage.contains(u'\n'))
            << o.errorMessage.toStdString();
    }
}

TEST(HostOptions, HelpAndVersion)
{
    EXPECT_EQ(parse({"--help"}).action, HostOptions::Action::Help);
    EXPECT_EQ(parse({"-h"}).action, HostOptions::Action::Help);
    EXPECT_EQ(parse({"--version"}).action, HostOptions::Action::Version);
}

} // namespace

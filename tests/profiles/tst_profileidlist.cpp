// The profile-ID list is found by text search, not parsed as XML; these are the answers hosts
// send and the odd ones the control has always read the same way.
#include "profiles/profileidlist.h"
#include "qtprinters.h"

#include <gtest/gtest.h>

namespace {

struct IdCase
{
    const char *name;
    const char *text;
    std::optional<QStringList> expected;
};

class ProfileIds : public ::testing::TestWithParam<IdCase>
{};

TEST_P(ProfileIds, Parse)
{
    const IdCase &c = GetParam();
    EXPECT_EQ(ProfileIdList::parse(QString::fromUtf8(c.text)), c.expected);
}

const QStringList two{QStringLiteral("Default"), QStringLiteral("Night shift")};

INSTANTIATE_TEST_SUITE_P(
    Table, ProfileIds,
    ::testing::Values(
        IdCase{"plainList",
               "<ProfileIDs><ProfileID>Default</ProfileID><ProfileID>Night shift</ProfileID>"
               "</ProfileIDs>",
               two},
        IdCase{"insideAWebDataAnswer",
               "<WebData><Table name=\"Error\"><Column name=\"ErrorNumber\"/></Table>\n"
               "<ProfileIDs>\n  <ProfileID>Default</ProfileID>\n  <ProfileID>Night shift"
               "</ProfileID>\n</ProfileIDs></WebData>",
               two},
        IdCase{"attributesOnTheListTag",
               "<ProfileIDs user=\"u1\"><ProfileID>Default</ProfileID></ProfileIDs>",
               QStringList{"Default"}},
        IdCase{"namesAreTrimmed",
               "<ProfileIDs><ProfileID>  Night shift \t</ProfileID></ProfileIDs>",
               QStringList{"Night shift"}},
        IdCase{"blankName", "<ProfileIDs><ProfileID>   </ProfileID></ProfileIDs>", QStringList{""}},
        IdCase{"repeatedNamesKept",
               "<ProfileIDs><ProfileID>A</ProfileID><ProfileID>A</ProfileID></ProfileIDs>",
               QStringList{"A", "A"}},
        // A piece without its opening tag is read from its 11th character on.
        IdCase{"pieceWithoutOpeningTag",
               "<ProfileIDs><ProfileID>A</ProfileID>0123456789Tail</ProfileID></ProfileIDs>",
               QStringList{"A", "Tail"}},
        IdCase{"openingListTagCountsAsText",
               "<ProfileIDs>x</ProfileID><ProfileID>B</ProfileID></ProfileIDs>",
               QStringList{"s>x", "B"}},
        IdCase{"shortPieceWithoutTag",
               "<ProfileIDs><ProfileID>A</ProfileID>abc</ProfileID></ProfileIDs>",
               QStringList{"A", ""}},
        IdCase{"entitiesAreNotDecoded", "<ProfileIDs><ProfileID>R&amp;D</ProfileID></ProfileIDs>",
               QStringList{"R&amp;D"}},
        IdCase{"emptyList", "<ProfileIDs></ProfileIDs>", std::nullopt},
        IdCase{"empty", "", std::nullopt}, IdCase{"blanks", "  \r\n\t ", std::nullopt},
        IdCase{"noListClose", "<ProfileIDs><ProfileID>A</ProfileID>", std::nullopt},
        IdCase{"noListOpen", "<ProfileID>A</ProfileID></ProfileIDs>", std::nullopt},
        IdCase{"noNameClose", "<ProfileIDs><ProfileID>A</ProfileIDs>", std::nullopt},
        IdCase{"noNameOpen", "<ProfileIDs>A</ProfileID></ProfileIDs>", std::nullopt},
        IdCase{"tagsAreCaseSensitive", "<profileids><profileid>A</profileid></profileids>",
               std::nullopt},
        IdCase{"selfClosingList", "<ProfileIDs/>", std::nullopt}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(ProfileIdsLarge, ManyNamesInOrder)
{
    QString text = QStringLiteral("<ProfileIDs>");
    for (int i = 0; i < 20000; ++i)
        text += QStringLiteral("<ProfileID>P%1</ProfileID>").arg(i);
    text += QStringLiteral("</ProfileIDs>");
    const auto names = ProfileIdList::parse(text);
    ASSERT_TRUE(names);
    ASSERT_EQ(names->size(), 20000);
    EXPECT_EQ(names->at(19999), QStringLiteral("P19999"));
}

} // namespace

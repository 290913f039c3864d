// The profile-ID list is found by text search, not parsed as XML; these are the answers hosts
// send and the odd ones the control has always read the same way.
#include "profiles/profileidlist.h"
#include "support/qtprinters.h"

#include <gtest/gtest.h>

namespace {

TEST(ProfileIds, ParseByTextSearch)
{
    const struct
    {
        const char *text;
        std::optional<QStringList> expected;
    } rows[] = {
        {"<WebData><Table name=\"Error\"><Column name=\"ErrorNumber\"/></Table>\n<ProfileIDs "
         "user=\"u1\">\n  <ProfileID>Default</ProfileID>\n  <ProfileID>  Night shift \t"
         "</ProfileID>\n</ProfileIDs></WebData>",
         QStringList{"Default", "Night shift"}},
        {"<ProfileIDs><ProfileID>   </ProfileID><ProfileID>A</ProfileID><ProfileID>A</ProfileID>"
         "</ProfileIDs>",
         QStringList{"", "A", "A"}},
        // A piece without its opening tag is read from its 11th character on.
        {"<ProfileIDs><ProfileID>A</ProfileID>0123456789Tail</ProfileID></ProfileIDs>",
         QStringList{"A", "Tail"}},
        {"<ProfileIDs>x</ProfileID><ProfileID>B</ProfileID></ProfileIDs>", QStringList{"s>x", "B"}},
        {"<ProfileIDs><ProfileID>A</ProfileID>abc</ProfileID></ProfileIDs>", QStringList{"A", ""}},
        {"<ProfileIDs><ProfileID>R&amp;D</ProfileID></ProfileIDs>", QStringList{"R&amp;D"}},
        {"<ProfileIDs></ProfileIDs>", std::nullopt},
        {"  \r\n\t ", std::nullopt},
        {"<ProfileIDs><ProfileID>A</ProfileID>", std::nullopt},
        {"<ProfileIDs><ProfileID>A</ProfileIDs>", std::nullopt},
        {"<ProfileIDs>A</ProfileID></ProfileIDs>", std::nullopt},
        {"<profileids><profileid>A</profileid></profileids>", std::nullopt},
        {"<ProfileIDs/>", std::nullopt},
    };
    for (const auto &r : rows)
        EXPECT_EQ(ProfileIdList::parse(QString::fromUtf8(r.text)), r.expected) << r.text;

    QString text = QStringLiteral("<ProfileIDs>");
    for (int i = 0; i < 20000; ++i)
        text += QStringLiteral("<ProfileID>P%1</ProfileID>").arg(i);
    const auto names = ProfileIdList::parse(text + QStringLiteral("</ProfileIDs>"));
    ASSERT_TRUE(names);
    ASSERT_EQ(names->size(), 20000);
    EXPECT_EQ(names->at(19999), QStringLiteral("P19999"));
}

} // namespace

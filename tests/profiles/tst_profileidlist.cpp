#include "profiles/profileidlist.h"
#include "support/qtprinters.h"

#include <gtest/gtest.h>

namespace {

TEST(ProfileIds, ParseByTextSearch)
{
    const std::pair<const char *, std::optional<QStringList>> rows[] = {
        {"<WebData><ProfileIDs user=\"u1\">\n <ProfileID>Default</ProfileID>\n <ProfileID> "
         "Night shift \t</ProfileID>\n</ProfileIDs></WebData>",
         QStringList{"Default", "Night shift"}},
        {"<ProfileIDs><ProfileID>   </ProfileID><ProfileID>A</ProfileID></ProfileIDs>",
         QStringList{"", "A"}},
        // A piece without its opening tag is read from its 11th character on.
        {"<ProfileIDs><ProfileID>A</ProfileID>0123456789Tail</ProfileID></ProfileIDs>",
         QStringList{"A", "Tail"}},
        {"<ProfileIDs></ProfileIDs>", std::nullopt},
        {"  \r\n\t ", std::nullopt},
        {"<ProfileIDs><ProfileID>A</ProfileID>", std::nullopt},
        {"<ProfileIDs>A</ProfileID></ProfileIDs>", std::nullopt},
    };
    for (const auto &[text, expected] : rows)
        EXPECT_EQ(ProfileIdList::parse(QString::fromUtf8(text)), expected) << text;
}

} // namespace

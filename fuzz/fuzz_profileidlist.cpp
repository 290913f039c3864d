// Fuzzes the reading of the profile-ID list out of a host's answer text.
// Beyond "never crash": names come out trimmed, and a list is only found in a text that holds all
// four of its tag texts.

#include "fuzzsupport.h"
#include "profiles/profileidlist.h"

using FuzzSupport::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = FuzzSupport::text(data, size);
    const std::optional<QStringList> names = ProfileIdList::parse(text);
    if (!names)
        return 0;
    for (const char *tag : {"<ProfileIDs", "</ProfileIDs>", "<ProfileID>", "</ProfileID>"})
        require(text.contains(QLatin1String(tag)), "a list was found without one of its tags");
    for (const QString &name : *names)
        require(name == name.trimmed(), "a name came out untrimmed");
    return 0;
}

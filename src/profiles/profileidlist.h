#pragma once

#include <QString>
#include <QStringList>
#include <optional>

/// The list of profile names that the host puts in its answers to GetProfileList, SaveProfileAs,
/// AddProfiles and RemoveProfiles:
///
///     <ProfileIDs><ProfileID>Default</ProfileID><ProfileID>Night shift</ProfileID></ProfileIDs>
///
/// Hosts have always been read by a plain text search for the four tag texts, not by an XML
/// parser, and hosts rely on that (attributes on the opening ProfileIDs tag, the list embedded in
/// any document). So it is kept: a piece before a "</ProfileID>" that lacks "<ProfileID>" still
/// yields a name, taken from its 11th character on, exactly as hosts have always seen it.
class ProfileIdList final
{
public:
    ProfileIdList() = delete;

    /// The names in document order, each trimmed; nothing when the text is blank or lacks one of
    /// "<ProfileIDs", "</ProfileIDs>", "<ProfileID>", "</ProfileID>" (case-sensitive).
    [[nodiscard]] static std::optional<QStringList> parse(const QString &text);
};

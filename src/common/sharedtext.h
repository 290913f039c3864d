#pragma once

#include <QString>

/// Equality of texts that are mostly copies of one another. A refresh writes the same strings
/// again and again (row data, descriptions, keys shared from the last fill): two copies of one
/// string are equal without their characters being read, which for thousands of rows is the
/// difference between a pass over a vector and a cache miss per row.
class SharedText
{
public:
    [[nodiscard]] static bool equal(const QString &a, const QString &b)
    {
        return a.size() == b.size() && (a.constData() == b.constData() || a == b);
    }
};

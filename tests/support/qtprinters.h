#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <ostream>

// Readable GoogleTest failure messages for Qt strings (found by argument-dependent lookup).
inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList &list, std::ostream *os)
{
    *os << '{';
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (i)
            *os << ", ";
        PrintTo(list.at(i), os);
    }
    *os << '}';
}

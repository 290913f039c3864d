#pragma once

#include "model/spellingindex.h"

#include <QString>
#include <deque>
#include <vector>

/// The job-type or job-class codes of one data message, numbered by exact spelling in order of
/// first sight. Codes are keyed without regard to letter case inside a unit's lists, so each
/// spelling also carries the number of its case-folded form: two spellings share a fold exactly
/// when they compare equal without regard to case. A code's string lives as long as the table
/// and keeps its address, so the model's lists point at it instead of holding copies.
class CodeTable
{
public:
    /// The number of the spelling, adding it on first sight.
    int number(QStringView spelling);
    /// The number of the spelling, or -1.
    [[nodiscard]] int find(QStringView spelling) const { return m_spellings.find(spelling); }
    [[nodiscard]] int count() const { return m_spellings.count(); }
    [[nodiscard]] const QString &code(int number) const { return m_codes[std::size_t(number)]; }
    [[nodiscard]] int fold(int number) const { return m_folds[std::size_t(number)]; }
    [[nodiscard]] int foldCount() const { return m_folded.count(); }

private:
    SpellingIndex m_spellings;
    SpellingIndex m_folded;
    std::deque<QString> m_codes; // a deque: adding never moves the strings handed out
    std::vector<int> m_folds;
};

#pragma once

#include "model/jobclasses.h"

#include <QString>

class DetailColumns;
class QZWebRow;

/// One job type inside one business unit: its code and its job classes. The synthetic job type
/// that holds a unit's summed classes carries the code "TOTAL". Descriptions are not kept here;
/// the data controller holds the code-to-description lookups.
class JobType
{
public:
    JobType() = default;

    /// Reads the code from the row's "JobType".
    void Initialize(const QZWebRow &row, DetailColumns &columns);
    /// Adds the row's class unless the type already has a class of that code: the first row of a
    /// class wins and the counters of later duplicate rows are ignored.
    void AddJobClass(const QZWebRow &row, DetailColumns &columns);
    /// Adds an all-zero class of that name unless one is present (compared without regard to case).
    void AddTotalClass(const QString &name);

    [[nodiscard]] const QString &Code() const { return m_code; }
    void SetCode(const QString &code) { m_code = code; }

    [[nodiscard]] JobClasses &Classes() { return m_classes; }
    [[nodiscard]] const JobClasses &Classes() const { return m_classes; }

private:
    QString m_code;
    JobClasses m_classes;
};

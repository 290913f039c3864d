#pragma once

#include "model/jobclasses.h"

#include <QString>

/// One job type inside one business unit: its code and its job classes. The synthetic job type
/// that holds a unit's summed classes carries the code "TOTAL". Descriptions are not kept here;
/// the data controller holds the code-to-description lookups.
class JobType
{
public:
    JobType() = default;
    /// code must outlive the job type (the message's code table keeps it).
    JobType(const QString &code, JobClasses classes) : m_code(&code), m_classes(classes) {}

    [[nodiscard]] const QString &Code() const { return *m_code; }
    [[nodiscard]] const JobClasses &Classes() const { return m_classes; }

    /// The code of the job type that sums a unit's classes.
    static const QString TotalCode;

private:
    static const QString s_noCode;
    const QString *m_code = &s_noCode;
    JobClasses m_classes;
};

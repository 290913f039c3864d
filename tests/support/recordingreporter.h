#pragma once

#include "common/errorreporter.h"

#include <QString>

#include <vector>

/// An ErrorReporter for tests: keeps every report instead of showing a dialog.
class RecordingReporter final : public ErrorReporter
{
public:
    struct Report
    {
        qint32 number;
        QString description;
        QString location;
    };

    void reportError(qint32 number, const QString &description, const QString &location) override
    {
        reports.push_back({number, description, location});
    }

    std::vector<Report> reports;
};

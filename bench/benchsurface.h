#pragma once

#include "common/errorreporter.h"
#include "model/dlvsurface.h"

#include <QString>
#include <cstdio>

/// A surface without widgets: the benchmark measures the model, not the control.
class BenchSurface final : public DLVSurface
{
public:
    [[nodiscard]] int buListCount() const override { return 0; }
    [[nodiscard]] QString buListKey(int) const override { return {}; }
    [[nodiscard]] bool buListSelected(int) const override { return false; }
};

/// Counts errors and prints them to stderr, so a broken run does not pass for a fast one.
class BenchReporter final : public ErrorReporter
{
public:
    void reportError(qint32 number, const QString &description, const QString &location) override
    {
        ++errors;
        std::fprintf(stderr, "error %d at %s: %s\n", number, location.toUtf8().constData(),
                     description.toUtf8().constData());
    }
    int errors = 0;
};

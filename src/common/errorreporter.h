#pragma once

#include <QString>

class DLVError;

/// The one error-report routine, as seen by code that traps errors. The control implements it with
/// the error dialog (captions, owner frame disabled while shown); tests record the reports.
/// Every procedure that traps errors calls it with its own location ("Class.Procedure") and then
/// returns normally.
class ErrorReporter
{
public:
    virtual ~ErrorReporter() = default;
    virtual void reportError(qint32 number, const QString &description, const QString &location) = 0;

    void report(const DLVError &error, const QString &location);
};

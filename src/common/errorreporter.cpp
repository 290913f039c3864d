#include "common/errorreporter.h"

#include "common/dlverror.h"

void ErrorReporter::report(const DLVError &error, const QString &location)
{
    reportError(error.number(), error.description(), location);
}

#pragma once

#include "common/dlverror.h"
#include "common/errorreporter.h"
#include "model/modellog.h"

#include <QString>
#include <exception>
#include <new>

namespace ErrorTrap {

/// The location text of a procedure of the control: "DLViewer." followed by its name.
[[nodiscard]] inline QString viewerLocation(const char *procedure)
{
    return QStringLiteral("DLViewer.") + QLatin1String(procedure);
}

/// Reports one trapped error: through the reporter when there is one, else to the log (a
/// controller without a reporter must still not swallow failures silently).
inline void report(ErrorReporter *reporter, qint32 number, const QString &description,
                   const QString &location)
{
    if (reporter)
        reporter->reportError(number, description, location);
    else
        qCWarning(lcModel) << location << number << description;
}

/// Runs body the way an error-trapping procedure of the control does: any failure is reported
/// with the procedure's location and the call returns normally. Returns true when body completed.
/// Failures that are not DLVError get the host platform's nearest numbers: 7 for out of memory,
/// 5 (invalid call) for anything else.
template <typename Body> bool run(ErrorReporter *reporter, const QString &location, Body &&body)
{
    try {
        body();
        return true;
    } catch (const DLVError &e) {
        report(reporter, e.number(), e.description(), location);
    } catch (const std::bad_alloc &) {
        report(reporter, 7, QStringLiteral("Out of memory"), location);
    } catch (const std::exception &e) {
        report(reporter, DLVError::InvalidCall, QString::fromLocal8Bit(e.what()), location);
    }
    return false;
}

} // namespace ErrorTrap

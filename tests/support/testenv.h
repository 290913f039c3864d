#pragma once

#include <QByteArray>
#include <QDir>
#include <QStandardPaths>

#include <QFile>

#include <cstdlib>
#include <unistd.h>

// Headless, quiet test environment: offscreen platform unless told otherwise, a private runtime
// folder (Qt warns about a missing one), and standard paths redirected to a test location so
// that no test touches the user's real data.
inline void prepareTestEnvironment()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const QByteArray dir = QDir::tempPath().toUtf8() + "/dlv-test-runtime-" + QByteArray::number(getuid());
        QDir().mkpath(QString::fromUtf8(dir));
        QFile::setPermissions(QString::fromUtf8(dir), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", dir);
    }
    QStandardPaths::setTestModeEnabled(true);
}

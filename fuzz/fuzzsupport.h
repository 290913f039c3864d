#pragma once

// Helpers shared by the fuzz targets: the Qt application some classes expect, turning fuzz bytes
// into text, and stopping the run on a broken invariant (libFuzzer keeps the input that did it).

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace FuzzSupport {

/// One application for the whole run: ResultEnvelope pumps events and the caption catalogue reads
/// its resources. Qt's own warnings would only slow the run down.
inline void ensureApplication()
{
    static int argc = 1;
    static char name[] = "dlv-fuzz";
    static char *argv[] = {name, nullptr};
    if (!QCoreApplication::instance()) {
        qputenv("QT_LOGGING_RULES", "*=false");
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        new QCoreApplication(argc, argv); // lives until the process ends
    }
}

inline QByteArray bytes(const std::uint8_t *data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
}

/// The bytes as UTF-8 text (invalid sequences become U+FFFD).
inline QString text(const std::uint8_t *data, std::size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
}

/// Stops the run: an invariant that every input must keep was broken.
[[noreturn]] inline void fail(const char *what, const char *detail = "")
{
    std::fprintf(stderr, "invariant broken: %s %s\n", what, detail);
    std::abort();
}

inline void require(bool condition, const char *what)
{
    if (!condition)
        fail(what);
}

} // namespace FuzzSupport

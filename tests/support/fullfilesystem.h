#pragma once

#include <QString>
#include <QTemporaryDir>
#include <cerrno>
#include <cstring>
#include <string>
#include <sys/mount.h>

/// A tiny tmpfs mounted on a temporary folder, for writing onto a full disk. Mounting needs root;
/// ok() is false (and reason() says why) where it cannot be mounted, and the test skips.
class FullFileSystem
{
public:
    explicit FullFileSystem(const char *size = "size=64k")
    {
        if (!m_dir.isValid()) {
            m_reason = "no temporary folder";
            return;
        }
        if (::mount("tmpfs", m_dir.path().toLocal8Bit().constData(), "tmpfs", 0, size) != 0) {
            m_reason =
                std::string("cannot mount a small tmpfs (needs root): ") + std::strerror(errno);
            return;
        }
        m_mounted = true;
    }
    ~FullFileSystem()
    {
        if (m_mounted)
            ::umount2(m_dir.path().toLocal8Bit().constData(), MNT_DETACH);
    }
    FullFileSystem(const FullFileSystem &) = delete;
    FullFileSystem &operator=(const FullFileSystem &) = delete;

    [[nodiscard]] bool ok() const { return m_mounted; }
    [[nodiscard]] const std::string &reason() const { return m_reason; }
    [[nodiscard]] QString filePath(const QString &name) const { return m_dir.filePath(name); }
    [[nodiscard]] QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
    bool m_mounted = false;
    std::string m_reason;
};

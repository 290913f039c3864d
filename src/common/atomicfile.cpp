#include "common/atomicfile.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

bool failWith(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
    return false;
}

} // namespace

bool AtomicFile::write(const QString &path, QByteArrayView bytes, QString *error)
{
    QSaveFile file(path);
    // Never fall back to writing the target in place (QSaveFile would, for an unwritable folder).
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly))
        return failWith(error, file.errorString());
    // flush() pushes the last buffered bytes now, so that a full disk is seen before commit().
    if (file.write(bytes.data(), bytes.size()) != bytes.size() || !file.flush() ||
        file.error() != QFileDevice::NoError) {
        const QString reason = file.error() != QFileDevice::NoError
                                   ? file.errorString()
                                   : QStringLiteral("the content could not be written");
        file.cancelWriting();
        return failWith(error, reason);
    }
    if (!file.commit())
        return failWith(error, file.errorString());
    return true;
}

bool AtomicFile::write(const QString &path, const std::function<bool(QIODevice &)> &produce,
                       QString *error)
{
    // Encoders (libpng among them) handle a failing device badly: some leak their buffers on the
    // error path. They write to memory, which cannot fail half-way, and only the finished bytes
    // meet the disk.
    QByteArray content;
    QBuffer buffer(&content);
    buffer.open(QIODevice::WriteOnly);
    if (!produce(buffer))
        return failWith(error, QStringLiteral("the content could not be written"));
    buffer.close();
    return write(path, QByteArrayView(content), error);
}

bool AtomicFile::writeByName(const QString &path,
                             const std::function<bool(const QString &)> &produce,
                             const std::function<bool(const QString &)> &complete, QString *error)
{
    const QFileInfo target(path);
    // A hidden, uniquely named neighbour: the rename stays within one file system.
    QTemporaryFile reserved(target.absolutePath() + QStringLiteral("/.") + target.fileName() +
                            QStringLiteral(".XXXXXX"));
    reserved.setAutoRemove(false);
    if (!reserved.open())
        return failWith(error, reserved.errorString());
    const QString temporary = reserved.fileName();
    reserved.close();
    const auto discard = [&](const QString &reason) {
        QFile::remove(temporary);
        return failWith(error, reason);
    };
    if (!produce(temporary))
        return discard(QStringLiteral("the content could not be written"));
    if (!complete(temporary))
        return discard(QStringLiteral("the written file is incomplete (is the disk full?)"));
    // The reserved name was private to us; the file gets the target's permissions, or the usual
    // ones of a new document.
    QFile::setPermissions(temporary, target.exists() ? target.permissions()
                                                     : QFile::ReadOwner | QFile::WriteOwner |
                                                           QFile::ReadGroup | QFile::ReadOther);
    // rename() replaces the target in one step; QFile::rename would refuse an existing target.
    if (std::rename(QFile::encodeName(temporary).constData(),
                    QFile::encodeName(path).constData()) != 0)
        return discard(QString::fromLocal8Bit(std::strerror(errno)));
    return true;
}

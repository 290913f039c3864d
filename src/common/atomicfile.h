#pragma once

#include <QByteArrayView>
#include <QString>
#include <functional>

class QIODevice;

/// Replaces a file only when its new content is complete on disk. The content goes to a
/// temporary file in the target's folder that is renamed over the target at the end, so a full
/// disk, a vanished folder or a writer that fails half-way leave an existing file byte for byte
/// and no half-written file behind. Buffered data are flushed and checked before the rename: a
/// write error that shows only when the buffer reaches the disk is not lost.
class AtomicFile
{
public:
    /// Writes bytes as the file's whole content. False, with a readable reason in *error, when
    /// any of it could not be written.
    [[nodiscard]] static bool write(const QString &path, QByteArrayView bytes,
                                    QString *error = nullptr);
    /// The same for a writer that streams into a device (an image encoder): produce writes into
    /// memory and returns false when it failed; the finished bytes are then written as above.
    [[nodiscard]] static bool write(const QString &path,
                                    const std::function<bool(QIODevice &)> &produce,
                                    QString *error = nullptr);
    /// For writers that open a file by name themselves (a PDF printer): produce writes the
    /// temporary file whose path it is given; complete then says whether that file is whole
    /// (such writers may not report a full disk), and only then does it replace the target.
    [[nodiscard]] static bool writeByName(const QString &path,
                                          const std::function<bool(const QString &)> &produce,
                                          const std::function<bool(const QString &)> &complete,
                                          QString *error = nullptr);
};

#pragma once

#include "host/datafeed.h"

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

/// Recorded data: one data-message document (a "<WebMessage>" file), or a folder of them sent in
/// file-name order, one per refresh; after the last one the last is sent again, as a server
/// without news would. Every document is read and checked when the feed is opened, so a bad file
/// is reported before anything is shown. A "DLVData" document may carry a "Details" table with the
/// records behind its figures (DetailRecords); the table goes to the host, not to the control.
class DocumentFeed final : public DataFeed
{
public:
    /// Opens a file or a folder (its "*.xml" files). Returns nothing, with a one-line reason in
    /// *error, when the path cannot be read, holds no document, a document is larger than
    /// maxBytes (read no further than that, whatever the file claims: it may be a device or a
    /// pipe), or a document is not a valid data message.
    [[nodiscard]] static std::unique_ptr<DocumentFeed> open(const QString &path, QString *error,
                                                            qint64 maxBytes = 256 << 20);

    /// Checks a message as the control will read it: a "DLVData" message needs its six tables
    /// with their columns, unique codes, whole-number counters within range, and a readable
    /// "Details" table if it has one, and unit ids that the control can represent (no "," or
    /// "|", no two that differ only in letter case); a "DLVServerStopped" message needs
    /// nothing. Returns the first problem found, or an empty text.
    [[nodiscard]] static QString validate(const QZWebMessage &message);

    [[nodiscard]] Frame next() override;
    [[nodiscard]] QStringList unitIds() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QString position() const override;

    [[nodiscard]] int documentCount() const { return int(m_frames.size()); }
    [[nodiscard]] const QStringList &fileNames() const { return m_files; }

private:
    DocumentFeed() = default;

    QString m_path;
    QStringList m_files;
    std::vector<Frame> m_frames;
    QStringList m_unitIds;
    int m_next = 0;
    int m_last = -1;
};

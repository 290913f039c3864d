#pragma once

#include "host/detailrecords.h"

#include <QString>
#include <QStringList>
#include <memory>

class QZWebMessage;

/// Where the host's data come from: one message per refresh, with the records behind its figures.
/// The built-in demo organisation and recorded data documents are the two kinds.
class DataFeed
{
public:
    /// One refresh: the message to hand to the control and the records behind it (never null;
    /// empty when the source has none).
    struct Frame
    {
        std::shared_ptr<QZWebMessage> message;
        std::shared_ptr<const DetailRecords> details;
    };

    DataFeed() = default;
    virtual ~DataFeed() = default;
    DataFeed(const DataFeed &) = delete;
    DataFeed &operator=(const DataFeed &) = delete;

    /// The next refresh (the first call gives the first one).
    [[nodiscard]] virtual Frame next() = 0;
    /// Every business-unit id that the feed's data hold, root "#" excluded, in data order.
    [[nodiscard]] virtual QStringList unitIds() const = 0;
    /// A short description for the status bar, in the host's language ("Demo organisation",
    /// "3 documents in ...").
    [[nodiscard]] virtual QString description() const = 0;
    /// Where the feed stands after the last frame, for the status bar, in the host's language
    /// ("document 2 of 3").
    [[nodiscard]] virtual QString position() const = 0;
};

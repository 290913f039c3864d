#pragma once

#include <QtGlobal>
#include <memory>

class QZWebMessage;

/// Builds synthetic "DLVData" messages of given sizes: units in a tree of a given depth under the
/// root "#", job types, job classes, regional formats, one general row per unit and random detail
/// rows. The same options give the same message.
class DataGenerator
{
public:
    struct Options
    {
        int units = 10000;
        int depth = 5;
        int jobTypes = 40;
        int jobClasses = 12;
        int detailRows = 300000;
        quint32 seed = 20240301;
    };

    explicit DataGenerator(const Options &options) : m_options(options) {}

    [[nodiscard]] std::shared_ptr<QZWebMessage> generate() const;

private:
    Options m_options;
};

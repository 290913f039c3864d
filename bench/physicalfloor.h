#pragma once

#include <QByteArray>

/// What reading a message's bytes costs at the least: a plain sum over them (the memory floor)
/// and pugixml's own parse of them into a DOM (the floor of any XML reading).
class PhysicalFloor
{
public:
    struct Times
    {
        double memoryRead = 0; ///< sum of the bytes, best of runs
        double pugiParse = 0;  ///< pugi::xml_document::load_buffer, best of runs
        bool parsed = false;   ///< pugixml accepted the bytes
    };

    /// bytes is the UTF-8 text; its pages are touched before anything is timed.
    [[nodiscard]] static Times measure(const QByteArray &bytes, int runs);

    /// Reads a buffer several times the size of the largest cache, so that what runs next finds
    /// nothing of its own data in the caches: as a fill inside a refresh does, after the
    /// message's parse and load have streamed a hundred megabytes through them.
    static void evictCaches();
};

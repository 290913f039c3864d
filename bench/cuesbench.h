#pragma once

#include <memory>

class QZWebMessage;

/// What the live options (change cues, trouble colours, freshness) add to a data refresh: a real
/// control with every unit chosen takes refreshes that alternate between two messages (so nearly
/// every figure changes, the dearest case for the cues), timed with the options off and on in
/// turn. The best of `runs` counts for each.
class CuesBench
{
public:
    struct Times
    {
        double refreshOff = 0;
        double refreshOn = 0;
        /// The cues' own work in one refresh, timed alone (steadier than the difference of two
        /// refreshes on a busy machine): comparing the three grids with the previous refresh,
        /// and naming the chosen units.
        double cueWork = 0;
        int cuedCells = 0; ///< cells cued by the last refresh with the options on
        int units = 0;
        int errors = 0;
    };

    [[nodiscard]] static Times run(const std::shared_ptr<QZWebMessage> &first,
                                   const std::shared_ptr<QZWebMessage> &second, int runs);
};

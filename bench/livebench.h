#pragma once

#include <QByteArray>
#include <memory>

class QZWebMessage;

/// A shown control (offscreen) driven as a user and a host would: data messages until the control
/// has painted, then every interaction until painted again, and the memory a message costs.
/// Every unit is in the session and selected, summed as aggregates, as in ViewerBench.
class LiveBench
{
public:
    struct Times
    {
        double refresh = 0;       ///< ReceiveMessage of a parsed message until painted
        double hostParse = 0;     ///< the host's parse of the UTF-8 text into the message
        double tabSwitch = 0;     ///< slower of summary -> hierarchy and back
        double displaySwitch = 0; ///< slower of work orders -> points and back
        double collapse = 0;      ///< the top node of the work-order hierarchy
        double expand = 0;        ///< the same node again
        double viewButton = 0;    ///< View with every unit chosen
        double drillDown = 0;     ///< double-click on the top node's open work orders
        double resize = 0;        ///< slower of wider and narrower by 120 pixels
        long baseKb = 0;          ///< resident size before the message arrived as text
        long peakKb = 0;          ///< peak resident size from the text until painted
        long refreshPeakKb = 0;   ///< peak above the resident size, parsed message to painted
        int units = 0;
        int detailRequests = 0; ///< GetDetails raised by the drill-down (must be runs)
        int errors = 0;

        /// The slowest interaction.
        [[nodiscard]] double slowestInteraction() const;
    };

    /// utf8 is the message's text form as a host reads it (for the memory figures); message the
    /// same message parsed.
    /// Each figure is the best of `runs`; memory is measured once, after the timed refreshes.
    [[nodiscard]] static Times run(const std::shared_ptr<QZWebMessage> &message,
                                   const QByteArray &utf8, int runs);
};

#pragma once

#include <array>

/// Horizontal layout of the productivity panel and the grid column widths for an available width.
/// Everything is in twips (1440 per logical inch); p is the screen's twips per horizontal pixel.
/// The panel keeps fixed proportions of the width so that its three figure columns (per hour,
/// today, required) stand under their headings at any size; below 856 pixels it is laid out as
/// if it were 856 pixels wide and scrolls rather than overlaps.
class PanelLayout
{
public:
    static constexpr double kMinimumWidthPixels = 856;
    static constexpr int kSummaryColumns = 17;
    static constexpr int kHierarchyColumns = 12;

    struct Result
    {
        double width = 0; ///< the width actually laid out (at least the minimum)
        double statusLeft = 0;
        double optBULeft = 0; ///< both summary option buttons
        double lblProdPerTechLeft = 0;
        double cmdViewLeft = 0;
        double lblWOsPerHrTodayLeft = 0;
        double lblTodayLeft = 0;
        double lblWOsPerHrReqLeft = 0;
        double lblReqProdLeft = 0;
        double lblWOsPerHrLeft = 0; ///< second-row headings and figures aligned under the first row
        double lblPtsPerHrLeft = 0;
        double lblPtsPerHrTodayLeft = 0;
        double lblPtsPerHrReqLeft = 0;
        /// Summary grid: column 1 keeps width 0 (the hidden job-type column).
        std::array<double, kSummaryColumns> summaryColumnWidths{};
        /// Both hierarchy grids.
        std::array<double, kHierarchyColumns> hierarchyColumnWidths{};
    };

    /// Lays out for width w (twips), the status label's current width and p.
    [[nodiscard]] static Result compute(double w, double statusWidth, double twipsPerPixel);
};

#include "views/panellayout.h"

PanelLayout::Result PanelLayout::compute(double w, double statusWidth, double twipsPerPixel)
{
    Result r;
    const double minimum = kMinimumWidthPixels * twipsPerPixel;
    if (w < minimum)
        w = minimum;
    r.width = w;
    r.statusLeft = (w - statusWidth) / 2;

    r.optBULeft = w * 0.45;
    r.lblProdPerTechLeft = w * 0.625;
    r.cmdViewLeft = w * 0.67;
    r.lblWOsPerHrTodayLeft = w * 0.76;
    r.lblTodayLeft = w * 0.8;
    r.lblWOsPerHrReqLeft = w * 0.87;
    r.lblReqProdLeft = w * 0.9;

    r.lblWOsPerHrLeft = r.lblProdPerTechLeft;
    r.lblPtsPerHrLeft = r.lblProdPerTechLeft;
    r.lblPtsPerHrTodayLeft = r.lblWOsPerHrTodayLeft;
    r.lblPtsPerHrReqLeft = r.lblWOsPerHrReqLeft;

    // The divisors leave the columns just under the whole width (about 0.998 of it for the
    // summary grid, 0.985 for a hierarchy grid), so no horizontal scroll bar appears at rest.
    r.summaryColumnWidths[0] = w / 57;
    r.summaryColumnWidths[1] = 0;
    r.summaryColumnWidths[2] = w / 7.71;
    for (int c = 3; c < kSummaryColumns; ++c)
        r.summaryColumnWidths[c] = w / 16.46;

    for (int c = 1; c < kHierarchyColumns; ++c)
        r.hierarchyColumnWidths[c] = w / 13.59;
    r.hierarchyColumnWidths[0] = w / 5.71;
    return r;
}

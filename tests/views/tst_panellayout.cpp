#include "views/panellayout.h"

#include <gtest/gtest.h>

TEST(PanelLayout, ProportionsMinimumWidthAndColumnDivisors)
{
    const struct
    {
        double widthPixels;
        double twipsPerPixel;
        double laidOutPixels;
    } cases[] = {
        {1920, 15, 1920},
        {1000, 12, 1000},
        {500, 15, 856}, // narrower than the minimum: laid out as 856 pixels wide
        {855.9, 12, 856},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.widthPixels);
        const double w = c.laidOutPixels * c.twipsPerPixel;
        const PanelLayout::Result r =
            PanelLayout::compute(c.widthPixels * c.twipsPerPixel, 3000, c.twipsPerPixel);
        EXPECT_DOUBLE_EQ(r.width, w);
        EXPECT_DOUBLE_EQ(r.statusLeft, (w - 3000) / 2);
        EXPECT_DOUBLE_EQ(r.optBULeft, w * 0.45);
        EXPECT_DOUBLE_EQ(r.lblProdPerTechLeft, w * 0.625);
        EXPECT_DOUBLE_EQ(r.cmdViewLeft, w * 0.67);
        EXPECT_DOUBLE_EQ(r.lblWOsPerHrTodayLeft, w * 0.76);
        EXPECT_DOUBLE_EQ(r.lblTodayLeft, w * 0.8);
        EXPECT_DOUBLE_EQ(r.lblWOsPerHrReqLeft, w * 0.87);
        EXPECT_DOUBLE_EQ(r.lblReqProdLeft, w * 0.9);
        // Second rows stand under their headings.
        EXPECT_DOUBLE_EQ(r.lblWOsPerHrLeft, r.lblProdPerTechLeft);
        EXPECT_DOUBLE_EQ(r.lblPtsPerHrLeft, r.lblProdPerTechLeft);
        EXPECT_DOUBLE_EQ(r.lblPtsPerHrTodayLeft, r.lblWOsPerHrTodayLeft);
        EXPECT_DOUBLE_EQ(r.lblPtsPerHrReqLeft, r.lblWOsPerHrReqLeft);

        EXPECT_DOUBLE_EQ(r.summaryColumnWidths[0], w / 57);
        EXPECT_EQ(r.summaryColumnWidths[1], 0); // the hidden job-type column stays hidden
        EXPECT_DOUBLE_EQ(r.summaryColumnWidths[2], w / 7.71);
        double summary = 0;
        for (int col = 0; col < PanelLayout::kSummaryColumns; ++col) {
            if (col >= 3) {
                EXPECT_DOUBLE_EQ(r.summaryColumnWidths[std::size_t(col)], w / 16.46) << col;
            }
            summary += r.summaryColumnWidths[std::size_t(col)];
        }
        EXPECT_NEAR(summary / w, 0.998, 0.0005);

        EXPECT_DOUBLE_EQ(r.hierarchyColumnWidths[0], w / 5.71);
        double hierarchy = 0;
        for (int col = 0; col < PanelLayout::kHierarchyColumns; ++col) {
            if (col >= 1) {
                EXPECT_DOUBLE_EQ(r.hierarchyColumnWidths[std::size_t(col)], w / 13.59) << col;
            }
            hierarchy += r.hierarchyColumnWidths[std::size_t(col)];
        }
        EXPECT_NEAR(hierarchy / w, 0.985, 0.0005);
    }
}

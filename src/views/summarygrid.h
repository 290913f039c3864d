#pragma once

#include "common/ordereddict.h"

#include <QString>
#include <functional>
#include <span>

class BusinessUnits;
class ErrorReporter;
class OutlineGrid;
class PanelValues;

/// The business-unit summary (grid element 0) over its grid data, without widgets: one row per
/// job type and job class with its fourteen counters summed over the chosen units, a bold grey
/// group row per job type, the grand total on top with one row per job class summed over all job
/// types below it, and the productivity panel's figures computed on the way.
///
/// Layout: 17 columns; rows 0 and 1 are the fixed header rows. Column 0 is a margin, column 1
/// (hidden) the job-type description, column 2 the tree column with the class description, and
/// counter index s lives in column s + 3. Row data: "type|class" for a class row, "|class" for a
/// per-class total, the job-type code for a group row, nothing for the grand total in row 2.
///
/// The fill reproduces the long-standing presentation exactly, including its odd corners: the
/// grand total is labelled in column 1 when there are data but in column 2 when there are none;
/// per-class rows appear newest first and only the first GetMaxClassCnt() of them are sorted; the
/// clean-up drops every row (group rows included) whose first work-order cell is empty. It works
/// on numbers first and writes each cell once, so its cost is linear in the model's detail rows
/// plus n log n in the grid's rows.
class SummaryGrid
{
public:
    static constexpr int ColumnCount = 17;
    static constexpr int FirstCounterCol = 3;
    static constexpr quint32 HeaderBgr = 0xD9FCFD;
    static constexpr quint32 WorkOrdersBgr = 0xFAFDC6;
    static constexpr quint32 PointsBgr = 0xEAE6FC;
    static constexpr quint32 GroupBgr = 0xE0E0E0;

    using CaptionLookup = std::function<QString(const QString &key)>;

    /// Works on grid, which the caller owns and which must outlive this object.
    explicit SummaryGrid(OutlineGrid &grid) : m_grid(grid) {}

    /// Lays out the empty grid: columns and widths (pixels converted with the horizontal twips per
    /// pixel, halves to even), 12 rows of which 2 are fixed, header colours and captions.
    void InitSingleBUGrid(const CaptionLookup &caption, double twipsPerPixelX);

    /// Panel back to zero; removes the group rows, clears and cuts the grid to its header rows.
    void ResetSummary(PanelValues &panel);

    /// Refills the grid and the panel from the units of buSet that the model holds (unknown ids
    /// are skipped), in the set's order. totalCaption is the caption of "Total". Ends with column
    /// 1 bold in every row. Throws DLVError (6 for a counter sum outside the 32-bit range); the
    /// panel then holds the figures reached and the grid stays cleared. setUnits, when it lists
    /// one entry per id of buSet, gives the model's unit of each (null for an unknown id) so that
    /// they need not be looked up.
    void ShowBUs(const BusinessUnits &bus, const StringSet &buSet,
                 const StringSet &jobTypeDescriptions, const StringSet &jobClassDescriptions,
                 const QString &totalCaption, PanelValues &panel, ErrorReporter *reporter,
                 std::span<const BusinessUnit *const> setUnits = {});

    /// The largest number of job classes of a "TOTAL" job type among the units of buSet that the
    /// model holds; 0 for none. Failures are reported as "DLViewer.GetMaxClassCnt".
    [[nodiscard]] static int GetMaxClassCnt(const StringSet &buSet, const BusinessUnits &bus,
                                            ErrorReporter *reporter);

    /// The height (twips) that fits a grid to its rows inside a frame: (rows + 2.25) row-0
    /// heights, or, when that would pass the frame's bottom less 3 pixels, whatever room is left
    /// below the grid's top. A grid of header rows only always gets its natural height.
    [[nodiscard]] static double FitGridHeight(const OutlineGrid &grid, double topTwips,
                                              double frameHeightTwips, double twipsPerPixelY);

    /// Pixels to twips, rounded to a whole number with halves to even.
    [[nodiscard]] static int pixelsToTwips(double pixels, double twipsPerPixel);

private:
    OutlineGrid &m_grid;
};

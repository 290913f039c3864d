#pragma once

#include "common/ordereddict.h"
#include "model/cdlvcontroller.h"
#include "model/dlvdatabuilder.h"
#include "model/fakesurface.h"
#include "support/recordingreporter.h"
#include "views/hierarchygrid.h"
#include "views/outlinegrid.h"
#include "views/panelvalues.h"
#include "views/summarygrid.h"

#include <QStringList>

/// A controller that has loaded one data message, with no views attached: what the grid fills
/// read, without a control around them.
struct LoadedModel
{
    explicit LoadedModel(const DLVDataBuilder &data)
    {
        controller.Initialize(&surface);
        controller.ReceiveMessage(data.variant(), 0, QString());
        controller.Busy().clear();
    }
    RecordingReporter reporter;
    FakeSurface surface;
    cDLVController controller{&reporter};
};

/// An id set in the given order.
inline StringSet ids(const QStringList &list)
{
    StringSet set;
    for (const QString &id : list)
        set.add(id, id);
    return set;
}

/// A caption lookup that shows the keys themselves.
inline QString identity(const QString &key)
{
    return key;
}

/// The summary grid laid out at 15 twips per pixel, and its panel.
struct SummaryFill
{
    explicit SummaryFill(const SummaryGrid::CaptionLookup &caption = identity)
    {
        SummaryGrid(grid).InitSingleBUGrid(caption, 15);
    }
    void show(LoadedModel &model, const QStringList &set)
    {
        SummaryGrid(grid).ShowBUs(model.controller.BUs(), ids(set),
                                  model.controller.JobTypeDescriptions(),
                                  model.controller.JobClassDescriptions(), QStringLiteral("Total"),
                                  panel, &model.reporter);
    }
    OutlineGrid grid;
    PanelValues panel;
};

/// Both hierarchy grids laid out at 15 twips per pixel.
struct HierarchyFill
{
    explicit HierarchyFill(const HierarchyGrid::CaptionLookup &caption = identity)
    {
        HierarchyGrid::InitBUHierarchyGrid(workOrders, 1, caption, 15);
        HierarchyGrid::InitBUHierarchyGrid(points, 2, caption, 15);
    }
    /// written: the memory of what the last fill wrote, as the control keeps it.
    void fill(LoadedModel &model, const QStringList &selection, WrittenRows *written = nullptr)
    {
        HierarchyGrid::Fill(workOrders, points, model.controller.Lookups(), model.controller.BUs(),
                            ids(selection), {}, nullptr, written);
    }
    OutlineGrid workOrders;
    OutlineGrid points;
};

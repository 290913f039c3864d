#pragma once

#include "common/ordereddict.h"
#include "model/cdlvcontroller.h"
#include "model/dlvdatabuilder.h"
#include "model/fakesurface.h"
#include "support/recordingreporter.h"

#include <QStringList>

/// A controller that has loaded one data message, with no views attached: what the grid fills
/// read, without a control around them.
struct LoadedModel
{
    explicit LoadedModel(const DLVDataBuilder &data)
    {
        controller.Initialize(&surface);
        controller.ReceiveMessage(data.variant(), 0, QString());
        controller.SingleBUGridBusy = false;
        controller.HierarchyGridBusy = false;
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

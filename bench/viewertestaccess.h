#pragma once

#include "control/dlviewer.h"
#include "control/dlviewer_p.h"
#include "control/drilldownrequests.h"
#include "control/gridviews.h"
#include "control/selectionoptions.h"
#include "control/viewscontroller.h"

/// The control keeps its fills and its controller private; the benchmark reaches them the way the
/// tests do (the control befriends this class).
class DLViewerTestAccess
{
public:
    static DLViewerPrivate &d(DLViewer &viewer) { return *viewer.d; }
};

#pragma once

// A model header reaching up to the control: the layering check must refuse it.
#include "common/ordereddict.h"
#include "control/dlviewer.h"

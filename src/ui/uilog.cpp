#include "ui/uilog.h"

Q_LOGGING_CATEGORY(lcUi, "dlv.ui")

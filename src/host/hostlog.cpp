#include "host/hostlog.h"

Q_LOGGING_CATEGORY(lcHost, "dlv.host", QtWarningMsg)

#include "profiles/profileslog.h"

Q_LOGGING_CATEGORY(lcProfiles, "dlv.profiles")

#include "model/jobtype.h"

const QString JobType::TotalCode = QStringLiteral("TOTAL");
const QString JobType::s_noCode;

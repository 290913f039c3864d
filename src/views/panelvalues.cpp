#include "views/panelvalues.h"

#include "common/conversions.h"

QString PanelValues::text(int figure) const
{
    switch (figure) {
    case 0:
        return QString::number(techCount);
    case 1:
        return QString::number(hoursWorked);
    case 2:
        return QString::number(hoursRemaining);
    case 3:
        return QString::number(woDone);
    case 4:
        return QString::number(woOpen);
    case 5:
        return QString::number(ptsDone);
    case 6:
        return QString::number(ptsOpen);
    case 7:
        return Conv::singleText(wosPerHrToday);
    case 8:
        return Conv::singleText(wosPerHrReq);
    case 9:
        return Conv::singleText(ptsPerHrToday);
    case 10:
        return Conv::singleText(ptsPerHrReq);
    default:
        return QString();
    }
}

#include "common/displaytext.h"

QString DisplayText::cut(const QString &text, qsizetype max)
{
    if (text.size() <= max || max < 1)
        return text;
    qsizetype keep = max - 1;
    if (keep > 0 && text.at(keep - 1).isHighSurrogate())
        --keep;
    return text.left(keep) + QChar(0x2026);
}

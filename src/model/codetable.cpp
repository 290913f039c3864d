#include "model/codetable.h"

namespace {

// Simple case folding, code point by code point: the folding that comparing without regard to
// case uses, so that two spellings fold alike exactly when they compare equal. (The full folding
// of QString::toCaseFolded() would also join texts of different length, such as "ß" and "ss".)
QString simpleFold(QStringView text)
{
    QString folded;
    folded.reserve(text.size());
    for (qsizetype i = 0; i < text.size();) {
        char32_t c = text[i].unicode();
        qsizetype length = 1;
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(text[i], text[i + 1]);
            length = 2;
        }
        const char32_t f = QChar::toCaseFolded(c);
        if (QChar::requiresSurrogates(f)) {
            folded += QChar(QChar::highSurrogate(f));
            folded += QChar(QChar::lowSurrogate(f));
        } else {
            folded += QChar(char16_t(f));
        }
        i += length;
    }
    return folded;
}

} // namespace

int CodeTable::number(QStringView spelling)
{
    const int n = m_spellings.add(spelling);
    if (m_spellings.lastAdded()) {
        m_codes.push_back(spelling.toString());
        // Lists compare lengths before folding, so the fold key carries the length too.
        m_folds.push_back(
            m_folded.add(simpleFold(spelling) + QChar(0xFFFF) + QString::number(spelling.size())));
    }
    return n;
}

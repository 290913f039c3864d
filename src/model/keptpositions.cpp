#include "model/keptpositions.h"

#include "model/buhierarchy.h"

void KeptPositions::update(const StringSet &ids, const BUHierarchy &hierarchy, quint64 epoch)
{
    if (epoch != 0 && epoch == m_epoch && m_ids.sharesWith(ids))
        return;
    m_ids = ids;
    m_epoch = epoch;
    m_positions.resize(std::size_t(ids.count()));
    m_members.assign(std::size_t(hierarchy.count()), 0);
    const bool exact = ids.keyCompare() == KeyCompare::Exact;
    for (qsizetype k = 0; k < ids.count(); ++k) {
        const int at = hierarchy.indexOf(ids.keyAt(k));
        m_positions[std::size_t(k)] = at;
        if (at >= 0 && exact)
            m_members[std::size_t(at)] = 1;
    }
}

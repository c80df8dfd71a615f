#include "diagnosis/Mapping.h"

namespace diagnosis {

ClMapping::ClMapping(const StRecord& Record)
    : m_System(Record.m_aTarget), m_aFound(Record.m_aFound) {}

StPoint ClMapping::operator()(const StPoint& Corrected) const {
    const Values aCounts = m_System.KnowledgeAt(Corrected).m_aCounts;
    StPoint Raw;
    for (std::size_t i = 0; i < aCounts.size(); ++i)
        Raw = Raw + StPoint{aCounts[i] * m_aFound[i].m_dX, aCounts[i] * m_aFound[i].m_dY};
    return Raw;
}

} // namespace diagnosis

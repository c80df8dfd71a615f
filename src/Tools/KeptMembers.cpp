#include "Tools/KeptMembers.h"

Vek::ClKeptMember::~ClKeptMember() = default;

void Vek::ClKeptMembers::Take(std::unique_ptr<ClKeptMember> pKept) {
    m_aKept.Append(pKept.get());
    static_cast<void>(pKept.release());
}

void Vek::ClKeptMembers::Restore() const {
    for (unsigned long i = 0; i < m_aKept.Entries(); ++i)
        m_aKept[i]->Restore();
}

void Vek::ClKeptMembers::Forget() noexcept {
    for (unsigned long i = 0; i < m_aKept.Entries(); ++i)
        delete m_aKept[i];
    m_aKept.Clear();
}

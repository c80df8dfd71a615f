#pragma once

/// Members of an object that are saved for a while and given back: those that a container does not
/// publish, while the defaults are captured.

#include "Tools/Array.h"

#include <algorithm>
#include <cstddef>

namespace Vek {

/// The saved content of a member.
class ClKeptMember {
public:
    ClKeptMember() = default;
    ClKeptMember(const ClKeptMember&) = delete;
    ClKeptMember& operator=(const ClKeptMember&) = delete;
    virtual ~ClKeptMember();
    virtual void Restore() const = 0;
};

template <class T>
class TpKeptMember final : public ClKeptMember {
public:
    explicit TpKeptMember(T* pMember) : m_pMember(pMember), m_Saved(*pMember) {}
    void Restore() const override { *m_pMember = m_Saved; }

private:
    T* m_pMember;
    T m_Saved;
};

template <class T, std::size_t N>
class TpKeptMember<T[N]> final : public ClKeptMember {
public:
    explicit TpKeptMember(T (*pMember)[N]) : m_pMember(*pMember) {
        std::copy(m_pMember, m_pMember + N, m_aSaved);
    }
    void Restore() const override { std::copy(m_aSaved, m_aSaved + N, m_pMember); }

private:
    T* m_pMember;
    T m_aSaved[N];
};

class ClKeptMembers {
public:
    ClKeptMembers() = default;
    ClKeptMembers(const ClKeptMembers&) = delete;
    ClKeptMembers& operator=(const ClKeptMembers&) = delete;
    ~ClKeptMembers() { Forget(); }

    /// Saves a member, which outlives the object or its Forget(). Throws `ClExBadAlloc` (-102).
    template <class T>
    void Keep(T* pMember) {
        Take(std::unique_ptr<ClKeptMember>(NewObject<TpKeptMember<T>>(pMember)));
    }
    void Restore() const;
    void Forget() noexcept;

private:
    void Take(std::unique_ptr<ClKeptMember> pKept);

    TpArrayDynamic<ClKeptMember*, 10> m_aKept;
};

} // namespace Vek

#include "support/AllocationFailures.h"

#include "support/AllocationCount.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

thread_local long g_nCountdown = -1;
thread_local bool g_bHappened = false;
thread_local TestSupport::StAllocations* g_pCounted = nullptr;
thread_local TestSupport::EFailure g_eFailure = TestSupport::EFailure::eThrow;
thread_local long g_nLive = 0;

bool FailsNow() {
    if (g_nCountdown < 0)
        return false;
    if (g_nCountdown-- > 0)
        return false;
    g_bHappened = true;
    return true;
}

void Count(std::size_t nSize) {
    if (g_pCounted == nullptr)
        return;
    ++g_pCounted->m_nCount;
    g_pCounted->m_nLargest = std::max(g_pCounted->m_nLargest, nSize);
}

void* AllocateOrNull(std::size_t nSize) noexcept {
    Count(nSize);
    void* p = FailsNow() ? nullptr : std::malloc(nSize > 0 ? nSize : 1);
    g_nLive += p != nullptr ? 1 : 0;
    return p;
}

void Release(void* p) noexcept {
    g_nLive -= p != nullptr ? 1 : 0;
    std::free(p);
}

void* AllocateOrThrow(std::size_t nSize) {
    void* p = AllocateOrNull(nSize);
    if (p == nullptr && g_eFailure == TestSupport::EFailure::eThrow)
        throw std::bad_alloc();
    return p;
}

} // namespace

namespace TestSupport {

ClFailAllocation::ClFailAllocation(long nAfter, EFailure eFailure) {
    g_bHappened = false;
    g_eFailure = eFailure;
    g_nCountdown = nAfter;
}

ClFailAllocation::~ClFailAllocation() {
    g_nCountdown = -1;
    g_eFailure = EFailure::eThrow;
}

bool ClFailAllocation::Happened() {
    return g_bHappened;
}

ClCountAllocations::ClCountAllocations() {
    g_pCounted = &m_Counted;
}

ClCountAllocations::~ClCountAllocations() {
    g_pCounted = nullptr;
}

long LiveAllocations() {
    return g_nLive;
}

long PauseFailures() {
    return std::exchange(g_nCountdown, -1);
}

void ResumeFailures(long nPaused) {
    g_nCountdown = nPaused;
}

} // namespace TestSupport

// The replaceable allocation functions of the whole test program.

void* operator new(std::size_t nSize) {
    return AllocateOrThrow(nSize);
}
void* operator new[](std::size_t nSize) {
    return AllocateOrThrow(nSize);
}
void* operator new(std::size_t nSize, const std::nothrow_t&) noexcept {
    return AllocateOrNull(nSize);
}
void* operator new[](std::size_t nSize, const std::nothrow_t&) noexcept {
    return AllocateOrNull(nSize);
}
void operator delete(void* p) noexcept {
    Release(p);
}
void operator delete[](void* p) noexcept {
    Release(p);
}
void operator delete(void* p, std::size_t) noexcept {
    Release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    Release(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
    Release(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
    Release(p);
}

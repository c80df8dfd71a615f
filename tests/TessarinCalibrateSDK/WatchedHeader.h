#pragma once

/// A bitmap block whose header lies on a page that cannot be read: each read of it faults, is
/// noted, takes place as a single step, and the page is closed again. So each read is seen,
/// whichever instruction makes it, and the block can change between two of them, as memory does
/// that another process writes to. One block at a time, on one thread, on x86-64.

#include <csignal>
#include <cstring>
#include <stdexcept>
#include <vector>

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

namespace TestSupport {

class ClWatchedHeader {
public:
    static constexpr std::size_t cnHeader = 40;

    /// `aLater`, if it is not empty, takes the place of the header once its last byte was read.
    explicit ClWatchedHeader(const std::vector<unsigned char>& aBlock,
                             const std::vector<unsigned char>& aLater = {})
        : m_nPage(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))), m_nSize(aBlock.size()),
          m_aLater(aLater) {
        m_nMapped = m_nPage + (m_nSize + m_nPage - 1) / m_nPage * m_nPage;
        void* pMapped =
            mmap(nullptr, m_nMapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pMapped == MAP_FAILED)
            throw std::runtime_error("no memory to watch");
        m_pMapped = static_cast<unsigned char*>(pMapped);
        m_pData = m_pMapped + m_nPage - cnHeader;
        std::memcpy(m_pData, aBlock.data(), m_nSize);
        m_anReads.reserve(1000);
        Watched() = this;
        Handle(SIGSEGV, OnFault, m_OldFault);
        Handle(SIGTRAP, OnStep, m_OldStep);
        mprotect(m_pMapped, m_nPage, PROT_NONE);
    }
    ClWatchedHeader(const ClWatchedHeader&) = delete;
    ClWatchedHeader& operator=(const ClWatchedHeader&) = delete;
    ~ClWatchedHeader() {
        sigaction(SIGSEGV, &m_OldFault, nullptr);
        sigaction(SIGTRAP, &m_OldStep, nullptr);
        Watched() = nullptr;
        munmap(m_pMapped, m_nMapped);
    }

    unsigned char* Data() const { return m_pData; }
    unsigned long Size() const { return m_nSize; }

    /// Where each read began, from the header's first byte on, in the order of the reads.
    const std::vector<std::size_t>& Reads() const { return m_anReads; }

private:
    static constexpr greg_t cnTrapFlag = 0x100;

    static ClWatchedHeader*& Watched() {
        static ClWatchedHeader* pWatched = nullptr;
        return pWatched;
    }

    static void Handle(int nSignal, void (*handler)(int, siginfo_t*, void*),
                       struct sigaction& rOld) {
        struct sigaction Action {};
        Action.sa_sigaction = handler;
        Action.sa_flags = SA_SIGINFO;
        sigaction(nSignal, &Action, &rOld);
    }

    static greg_t& Flags(void* pContext) {
        return static_cast<ucontext_t*>(pContext)->uc_mcontext.gregs[REG_EFL];
    }

    static void OnFault(int, siginfo_t* pInfo, void* pContext) {
        Watched()->Note(static_cast<unsigned char*>(pInfo->si_addr));
        Flags(pContext) |= cnTrapFlag;
    }

    static void OnStep(int, siginfo_t*, void* pContext) {
        Watched()->Close();
        Flags(pContext) &= ~cnTrapFlag;
    }

    void Note(const unsigned char* pRead) {
        if (pRead < m_pData || pRead >= m_pData + cnHeader ||
            m_anReads.size() == m_anReads.capacity()) { // no business of this class: let it crash
            sigaction(SIGSEGV, &m_OldFault, nullptr);
            return;
        }
        m_anReads.push_back(static_cast<std::size_t>(pRead - m_pData));
        mprotect(m_pMapped, m_nPage, PROT_READ | PROT_WRITE);
    }

    void Close() {
        if (!m_aLater.empty() && m_anReads.back() == cnHeader - 1)
            std::memcpy(m_pData, m_aLater.data(), cnHeader);
        mprotect(m_pMapped, m_nPage, PROT_NONE);
    }

    std::size_t m_nPage;
    std::size_t m_nSize;
    std::size_t m_nMapped = 0;
    unsigned char* m_pMapped = nullptr;
    unsigned char* m_pData = nullptr;
    std::vector<unsigned char> m_aLater;
    std::vector<std::size_t> m_anReads;
    struct sigaction m_OldFault {};
    struct sigaction m_OldStep {};
};

} // namespace TestSupport

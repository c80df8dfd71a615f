#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <atomic>

namespace {

EInstructionLevel LevelOfProcessor() noexcept {
    if (!Levels::cbCompiledForAll)
        return EInstructionLevel::Baseline;
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("x86-64-v4"))
        return EInstructionLevel::V4;
    if (__builtin_cpu_supports("x86-64-v3"))
        return EInstructionLevel::V3;
#endif
    return EInstructionLevel::Baseline;
}

/// The level in use; 0 until it is asked for the first time. Whoever asks finds the same.
std::atomic<int> g_nLevel{0};

} // namespace

EInstructionLevel HighestInstructionLevel() noexcept {
    static const EInstructionLevel ceHighest = LevelOfProcessor();
    return ceHighest;
}

EInstructionLevel InstructionLevel() noexcept {
    int nLevel = g_nLevel.load(std::memory_order_relaxed);
    if (nLevel == 0) {
        nLevel = static_cast<int>(HighestInstructionLevel());
        g_nLevel.store(nLevel, std::memory_order_relaxed);
    }
    return static_cast<EInstructionLevel>(nLevel);
}

void LimitInstructionLevel(EInstructionLevel eLevel) noexcept {
    g_nLevel.store(std::min(static_cast<int>(eLevel), static_cast<int>(HighestInstructionLevel())),
                   std::memory_order_relaxed);
}

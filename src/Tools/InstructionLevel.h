#pragma once

/// The instruction levels that kernels are compiled for. A kernel is a type with one static
/// function of plain loops:
///
///     struct StHalve {
///         static void Run(const unsigned char* pIn, long nSamples, unsigned char* pOut);
///     };
///     RunAtLevel<StHalve>(pIn, nSamples, pOut);
///
/// It is written once, and compiled as many times as there are levels: everything that `Run()`
/// calls is inlined into a function of each level, where the compiler finds the vectors that the
/// level has. All levels give the same bytes: nothing is contracted or reordered, so that a loop
/// means the same wherever it runs. Kernels throw nothing and allocate nothing.

/// Levels of x86-64 as the system's ABI numbers them: 128, 256 and 512 bits.
enum class EInstructionLevel : int { Baseline = 1, V3 = 3, V4 = 4 };

/// The level in use: the highest that the processor has, unless it was limited.
EInstructionLevel InstructionLevel() noexcept;

/// The highest level of this processor.
EInstructionLevel HighestInstructionLevel() noexcept;

/// Lets kernels of the whole process use no higher level from now on; HighestInstructionLevel() is
/// always a limit. A seam for tests and benchmarks: results do not depend on it.
void LimitInstructionLevel(EInstructionLevel eLevel) noexcept;

namespace Levels {

// Other compilers have neither the names of the levels nor a way to inline all; they serve
// sanitizers and fuzzers, where speed does not count.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define TESSARIN_LEVEL_V3 [[gnu::target("arch=x86-64-v3"), gnu::flatten]]
#define TESSARIN_LEVEL_V4 [[gnu::target("arch=x86-64-v4,prefer-vector-width=512"), gnu::flatten]]
inline constexpr bool cbCompiledForAll = true;
#else
#define TESSARIN_LEVEL_V3
#define TESSARIN_LEVEL_V4
inline constexpr bool cbCompiledForAll = false;
#endif

template <class Kernel, class... Arguments>
TESSARIN_LEVEL_V3 auto RunV3(Arguments... arguments) {
    return Kernel::Run(arguments...);
}

template <class Kernel, class... Arguments>
TESSARIN_LEVEL_V4 auto RunV4(Arguments... arguments) {
    return Kernel::Run(arguments...);
}

} // namespace Levels

/// Runs a kernel at the level in use. Arguments are passed by value; what is large by pointer.
template <class Kernel, class... Arguments>
auto RunAtLevel(Arguments... arguments) {
    switch (InstructionLevel()) {
    case EInstructionLevel::V4:
        return Levels::RunV4<Kernel>(arguments...);
    case EInstructionLevel::V3:
        return Levels::RunV3<Kernel>(arguments...);
    default:
        return Kernel::Run(arguments...);
    }
}

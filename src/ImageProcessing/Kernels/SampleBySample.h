#pragma once

/// Before a loop whose steps read what they write and nothing that another step writes: the output
/// is a line of its own or the input itself. The compiler, which sees that the two may overlap,
/// would otherwise take vectors only where they do not.

#if defined(__GNUC__) && !defined(__clang__)
#define TESSARIN_SAMPLE_BY_SAMPLE _Pragma("GCC ivdep")
#else
#define TESSARIN_SAMPLE_BY_SAMPLE
#endif

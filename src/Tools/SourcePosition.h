#pragma once

#include <cstddef>

/// Source positions that exceptions carry: the path below the source root, without extension,
/// such as "Tools/Bitmap". What stands in front of it in `__FILE__` is cut off here, so that
/// neither the position nor the binary depends on where or how the library was compiled.

namespace Vek {

/// The text of a `__FILE__` literal behind its last directory `src`, if it has one, and up to its
/// extension, computed by the compiler.
template <std::size_t N>
struct SourcePath {
    char m_szPath[N] = {};

    constexpr explicit SourcePath(const char (&szFile)[N]) {
        const std::size_t nBegin = Begin(szFile);
        const std::size_t nEnd = End(szFile);
        for (std::size_t i = nBegin; i < nEnd; ++i)
            m_szPath[i - nBegin] = szFile[i];
    }

private:
    static constexpr std::size_t Begin(const char (&szFile)[N]) {
        std::size_t nBegin = 0;
        for (std::size_t i = 0; i + 4 < N; ++i)
            if ((i == 0 || szFile[i - 1] == '/') && szFile[i] == 's' && szFile[i + 1] == 'r' &&
                szFile[i + 2] == 'c' && szFile[i + 3] == '/')
                nBegin = i + 4;
        return nBegin;
    }

    static constexpr std::size_t End(const char (&szFile)[N]) {
        std::size_t nEnd = N - 1;
        for (std::size_t i = 0; i + 1 < N; ++i) {
            if (szFile[i] == '.')
                nEnd = i;
            else if (szFile[i] == '/')
                nEnd = N - 1;
        }
        return nEnd;
    }
};

} // namespace Vek

/// Path of the current source file, a text with static lifetime.
#define VEK_FILE                                                                                   \
    ([]() -> const char* {                                                                         \
        static constexpr Vek::SourcePath cPath(__FILE__);                                          \
        return static_cast<const char*>(cPath.m_szPath);                                           \
    }())

/// No position, for throws that are not worth telling apart.
#define VEK_NOWHERE "Unknown", -1

/// File and line, the last two arguments of every exception constructor.
#define VEK_HERE VEK_FILE, __LINE__

#include "Tools/XChar.h"

#include "Tools/Exception.h"

#include <cerrno>
#include <cstddef>
#include <iconv.h>

namespace {

/// An open conversion of the C library.
class ClConversion {
public:
    ClConversion(const char* szTo, const char* szFrom) : m_hConversion(iconv_open(szTo, szFrom)) {}
    ClConversion(const ClConversion&) = delete;
    ClConversion& operator=(const ClConversion&) = delete;
    ~ClConversion() { Close(); }

    bool IsOpen() const { return m_hConversion != None(); }

    /// Takes from the source and adds to the target as far as both reach; false with `errno`.
    bool Run(char*& pSource, std::size_t& nSource, char* pTarget, std::size_t& nTarget) {
        return iconv(m_hConversion, &pSource, &nSource, &pTarget, &nTarget) != cnFailed;
    }

    bool Close() {
        const iconv_t hConversion = m_hConversion;
        m_hConversion = None();
        return hConversion == None() || iconv_close(hConversion) == 0;
    }

private:
    static constexpr std::size_t cnFailed = static_cast<std::size_t>(-1);

    static iconv_t None() { return reinterpret_cast<iconv_t>(-1); }

    iconv_t m_hConversion;
};

/// Bytes that the converted text takes.
std::size_t Measure(ClConversion& rConversion, char* pSource, std::size_t nSource) {
    std::size_t nBytes = 0;
    while (nSource > 0) {
        char acRound[128];
        std::size_t nLeft = sizeof acRound;
        if (!rConversion.Run(pSource, nSource, acRound, nLeft) && errno != E2BIG)
            throw ClExSystem("Conversions Error", VEK_HERE);
        nBytes += sizeof acRound - nLeft;
    }
    return nBytes;
}

/// Bytes written or, without a target, needed; -1 where the text does not convert or fit.
long Convert(const char* szTo, const char* szFrom, const void* pSource, std::size_t nSource,
             void* pTarget, std::size_t nTarget) {
    if (pSource == nullptr || nSource == 0)
        return 0;
    ClConversion Conversion(szTo, szFrom);
    if (!Conversion.IsOpen())
        return -1;
    char* pText = static_cast<char*>(const_cast<void*>(pSource)); // iconv only reads it
    std::size_t nBytes = 0;
    if (pTarget != nullptr && nTarget != 0) {
        std::size_t nLeft = nTarget;
        if (!Conversion.Run(pText, nSource, static_cast<char*>(pTarget), nLeft))
            return -1;
        nBytes = nTarget - nLeft;
    } else {
        nBytes = Measure(Conversion, pText, nSource);
    }
    return Conversion.Close() ? static_cast<long>(nBytes) : -1;
}

} // namespace

extern "C" long ConvertWideCharToSBCS(const wchar_t* source, unsigned long sourceBytes,
                                      char* target, unsigned long targetBytes) {
    return Convert("UTF-8", "WCHAR_T", source, sourceBytes, target, targetBytes);
}

extern "C" long ConvertSBCSToWidechar(const char* source, unsigned long sourceBytes,
                                      wchar_t* target, unsigned long targetBytes) {
    constexpr long nSize = sizeof(wchar_t);
    const long nBytes = Convert("WCHAR_T", "UTF-8", source, sourceBytes, target, targetBytes);
    return nBytes < 0 ? nBytes : nBytes / nSize;
}

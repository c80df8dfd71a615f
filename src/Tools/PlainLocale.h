#pragma once

#include <locale.h> // NOLINT(modernize-deprecated-headers): uselocale() is of POSIX

namespace Vek {

/// While it lives, numbers of this thread are read and printed as in the C language, with a point
/// and without groups, whatever locale the application has chosen.
class ClPlainLocale {
public:
    ClPlainLocale() noexcept : m_hFormer(uselocale(Plain())) {}
    ClPlainLocale(const ClPlainLocale&) = delete;
    ClPlainLocale& operator=(const ClPlainLocale&) = delete;
    ~ClPlainLocale() { uselocale(m_hFormer); }

private:
    /// The C library keeps this locale ready: asking for it needs no memory and does not fail.
    static locale_t Plain() noexcept {
        static const locale_t chPlain = newlocale(LC_ALL_MASK, "C", nullptr);
        return chPlain;
    }

    locale_t m_hFormer;
};

} // namespace Vek

#pragma once

#include <cfenv>

namespace Vek {

/// While it lives, floating point numbers of this thread are rounded to the nearest, small ones are
/// kept, and nothing traps, whatever the application has chosen. It finds its choice and its flags
/// as they were.
class ClPlainArithmetic {
public:
    ClPlainArithmetic() noexcept {
        std::fegetenv(&m_Former);
        std::fesetenv(FE_DFL_ENV);
    }
    ClPlainArithmetic(const ClPlainArithmetic&) = delete;
    ClPlainArithmetic& operator=(const ClPlainArithmetic&) = delete;
    ~ClPlainArithmetic() { std::fesetenv(&m_Former); }

private:
    std::fenv_t m_Former{};
};

} // namespace Vek

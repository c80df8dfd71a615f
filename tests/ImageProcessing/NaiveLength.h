#pragma once

namespace TestSupport {

/// The largest n with n <= sqrt(dx^2 + dy^2) * scale, in integers: the scale is one of thousandths.
inline int NaiveLength(int dx, int dy, int nThousandths) {
    const long nSquare = (1L * dx * dx + 1L * dy * dy) * nThousandths * nThousandths;
    long n = 0;
    while ((n + 1) * (n + 1) * 1000000 <= nSquare)
        ++n;
    return static_cast<int>(n);
}

} // namespace TestSupport

#pragma once

// Taps of a filter of bytes that pair up, t(-k) = t(k) as a Gaussian's or t(-k) = -t(k) as those of
// its derivative, made ready for numbers of 16 bits. The two samples of a pair are added, or
// subtracted, first.
//
// A tap t of 1/4096 is taken apart into t = 16 w + v, and with a the sum of the products of the
// whole parts w and b of the parts v, the filter is
//
//     floor((16 a + b) / 4096) = floor((a + floor(b / 16)) / 256),
//
// which holds in 16 bits. Even taps are not negative and add up to 4096 at most, so that a and
// a + b / 16, a sixteenth of the whole sum, are within 256 * 255; absolute odd ones add up to half
// of that on either side, and both are within 128 * 255. b needs the parts to add up to 256, or
// 128. Sixteenths leave room in that: small taps, the outer ones, are parts as a whole, and their
// products with w are saved.

#include <array>
#include <cstdint>
#include <cstdlib>

namespace Kernels {

class ClPairedTaps {
public:
    static constexpr int cnLargestHalf = 8;
    enum class EKind { eNone, eEven, eOdd };

    ClPairedTaps() = default;
    /// Taps that are not of this kind, or too many behind those of 0 on either side, make none.
    ClPairedTaps(const long* pTaps, long nTaps) {
        if (nTaps % 2 == 0)
            return;
        const long* pMiddle = pTaps + nTaps / 2;
        const int nHalf = HalfOf(pMiddle, nTaps / 2);
        if (nHalf > cnLargestHalf)
            return;
        if (ArePaired(pMiddle, nHalf, 1))
            m_eKind = EKind::eEven;
        else if (ArePaired(pMiddle, nHalf, -1))
            m_eKind = EKind::eOdd;
        else
            return;
        m_nHalf = nHalf;
        for (int k = 0; k <= nHalf; ++k)
            m_aTaps[Index(k)] = static_cast<std::int16_t>(pMiddle[-k]);
        TakeApart();
    }

    EKind Kind() const { return m_eKind; }
    /// Taps on either side of the middle, and how many from the middle on, counting that, have
    /// whole parts.
    int Half() const { return m_nHalf; }
    int Wholes() const { return m_nWholes; }

    /// From the middle to the left; behind Half() all are 0.
    using Numbers = std::array<std::int16_t, cnLargestHalf + 1>;
    Numbers m_aTaps = {};
    Numbers m_aWhole = {};
    Numbers m_aPart = {};

private:
    static constexpr std::size_t Index(int k) { return static_cast<std::size_t>(k); }

    /// Half of the taps, without those of 0 at both ends; not more than one above the largest.
    static int HalfOf(const long* pMiddle, long nHalf) {
        while (nHalf > 0 && pMiddle[nHalf] == 0 && pMiddle[-nHalf] == 0)
            --nHalf;
        return static_cast<int>(nHalf > cnLargestHalf ? cnLargestHalf + 1 : nHalf);
    }

    static bool ArePaired(const long* pMiddle, int nHalf, long nSign) {
        constexpr long cnOne = 4096;
        if (nSign < 0 ? pMiddle[0] != 0 : pMiddle[0] < 0 || pMiddle[0] > cnOne)
            return false;
        long nSum = pMiddle[0];
        for (int k = 1; k <= nHalf; ++k) {
            const long nTap = pMiddle[-k];
            if (nTap < -cnOne || nTap > cnOne || (nSign > 0 && nTap < 0) ||
                pMiddle[k] != nSign * nTap)
                return false;
            nSum += 2 * std::abs(nTap);
        }
        return nSum <= cnOne;
    }

    void TakeApart() {
        int nParts = 0;
        for (int k = 0; k <= m_nHalf; ++k) {
            m_aWhole[Index(k)] = static_cast<std::int16_t>(m_aTaps[Index(k)] / 16);
            m_aPart[Index(k)] = static_cast<std::int16_t>(m_aTaps[Index(k)] % 16);
            nParts += Weight(k) * std::abs(m_aPart[Index(k)]);
        }
        m_nWholes = m_nHalf + 1;
        while (m_nWholes > 0 && JoinPart(m_nWholes - 1, nParts))
            --m_nWholes;
    }

    /// Makes a tap a part as a whole, if the parts leave room.
    bool JoinPart(int k, int& rParts) {
        constexpr int cnMostParts = 256;
        const int nMore = Weight(k) * std::abs(16 * m_aWhole[Index(k)]);
        if (rParts + nMore > cnMostParts)
            return false;
        rParts += nMore;
        m_aPart[Index(k)] = m_aTaps[Index(k)];
        m_aWhole[Index(k)] = 0;
        return true;
    }

    static int Weight(int k) { return k == 0 ? 1 : 2; }

    EKind m_eKind = EKind::eNone;
    int m_nHalf = 0;
    int m_nWholes = 0;
};

} // namespace Kernels

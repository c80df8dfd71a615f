#include "Calibrate/WarpTableMaking.h"

// An entry is defined by the position that Transform() gives, which takes a logarithm per dot and
// pixel. But it depends on the position in two ways only: by the nearest 32-bit float, and by
// whether it is at least 1 and at most the side less 3. The field of the spline gives a position a
// and a bound e with Transform()'s in [a - e, a + e]. Where both ends of that round to one float
// and lie on the same side of both limits, a gives the same entry; elsewhere, at a few of ten
// thousand pixels, Transform() is asked. e has room for the rounding of a - e and a + e.

#include "Calibrate/WarpEntries.h"
#include "Math/SplineField.h"
#include "Math/SplineLine.h"
#include "Tools/Allocate.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>

namespace Warp {

namespace {

constexpr int cnLines = ClSplineField::cnBlockHeight;
constexpr int cnColumns = ClSplineField::cnBlockWidth;
static_assert(cnColumns <= cnMostEntries);
constexpr int cnManyDoubts = 32; // of a line: asking for all of it is cheaper then

/// One axis: its error and its limit.
struct StAxisDoubt {
    double m_dError;
    double m_dLargest;

    /// 1 where the error may change an entry, else 0. A bound or a position that is no number
    /// leaves doubt.
    int At(double dPosition) const {
        const double dLeast = dPosition - m_dError;
        const double dMost = dPosition + m_dError;
        const int nSame = static_cast<float>(dLeast) == static_cast<float>(dMost);
        const int nSameBelow = (dLeast >= 1.0) == (dMost >= 1.0);
        const int nSameAbove = (dLeast <= m_dLargest) == (dMost <= m_dLargest);
        return 1 - (nSame & nSameBelow & nSameAbove);
    }
};

struct StCountDoubts {
    static int Run(StAxisDoubt X, StAxisDoubt Y, const double* pX, const double* pY, int nColumns) {
        int nDoubts = 0;
        for (int i = 0; i < nColumns; ++i)
            nDoubts += X.At(pX[i]) | Y.At(pY[i]);
        return nDoubts;
    }
};

/// The entries of one plane.
class ClPlane {
public:
    ClPlane(const StWarp& Warp, const TpThinPlateSplines<double>& rSpline, EDecision eDecision,
            unsigned char* pTable)
        : m_Size{Warp.m_nSourceWidth, Warp.m_nSourceHeight},
          m_nWidth(static_cast<int>(Warp.m_nTargetWidth)),
          m_nHeight(static_cast<int>(Warp.m_nTargetHeight)), m_rSpline(rSpline),
          m_Field(rSpline, m_nWidth, m_nHeight), m_DoubtX{m_Field.ErrorOfX(),
                                                          LargestPosition(m_Size.m_nWidth)},
          m_DoubtY{m_Field.ErrorOfY(), LargestPosition(m_Size.m_nHeight)},
          m_pBlock(Vek::NewObject<ClSplineField::StBlock>()), m_nStep(Warp.m_nPlanes * cnEntrySize),
          m_pTable(pTable) {
        if (eDecision == EDecision::SplineAlways)
            m_DoubtX.m_dError = std::numeric_limits<double>::infinity();
    }

    /// Returns how many the spline decided.
    std::uint64_t Fill() {
        std::uint64_t nBySpline = 0;
        for (int y = 0; y < m_nHeight; y += cnLines)
            for (int x = 0; x < m_nWidth; x += cnColumns) {
                m_Field.Evaluate(x, y, *m_pBlock);
                for (int i = 0; i < std::min(cnLines, m_nHeight - y); ++i)
                    nBySpline += FillLine(x, y + i, m_pBlock->m_aadX[i], m_pBlock->m_aadY[i]);
            }
        return nBySpline;
    }

private:
    std::uint64_t FillLine(int nX, int nY, double* pX, double* pY) {
        const int nColumns = std::min(cnColumns, m_nWidth - nX);
        const int nDoubts =
            RunAtLevel<StCountDoubts>(m_DoubtX, m_DoubtY, static_cast<const double*>(pX),
                                      static_cast<const double*>(pY), nColumns);
        if (nDoubts > cnManyDoubts)
            AskForLine(nX, nY, nColumns, pX, pY);
        else if (nDoubts > 0)
            AskWhereInDoubt(nX, nY, nColumns, pX, pY);
        const std::size_t nEntry =
            static_cast<std::size_t>(nY) * static_cast<std::size_t>(m_nWidth) +
            static_cast<std::size_t>(nX);
        FillEntries(m_Size, pX, pY, nColumns, m_nStep, m_pTable + nEntry * m_nStep);
        return static_cast<std::uint64_t>(nDoubts);
    }

    void AskWhereInDoubt(int nX, int nY, int nColumns, double* pX, double* pY) const {
        for (int i = 0; i < nColumns; ++i)
            if ((m_DoubtX.At(pX[i]) | m_DoubtY.At(pY[i])) != 0)
                m_rSpline.Transform(nX + i, nY, &pX[i], &pY[i]);
    }

    void AskForLine(int nX, int nY, int nColumns, double* pX, double* pY) const {
        std::iota(pX, pX + nColumns, static_cast<double>(nX));
        std::fill_n(pY, nColumns, static_cast<double>(nY));
        TransformLine(m_rSpline, pX, pY, nColumns, pX, pY);
    }

    StCaptureSize m_Size;
    int m_nWidth;
    int m_nHeight;
    const TpThinPlateSplines<double>& m_rSpline;
    ClSplineField m_Field;
    StAxisDoubt m_DoubtX;
    StAxisDoubt m_DoubtY;
    std::unique_ptr<ClSplineField::StBlock> m_pBlock;
    std::size_t m_nStep;
    unsigned char* m_pTable; ///< the first entry of this plane
};

} // namespace

std::uint64_t MakeTable(const StWarp& Warp, const TpThinPlateSplines<double>* pSplines,
                        unsigned char* pTable, EDecision eDecision) {
    std::uint64_t nBySpline = 0;
    for (std::uint32_t p = 0; p < Warp.m_nPlanes; ++p)
        nBySpline += ClPlane(Warp, pSplines[p], eDecision, pTable + p * cnEntrySize).Fill();
    return nBySpline;
}

} // namespace Warp

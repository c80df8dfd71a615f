#include "diagnosis/Inverse.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace diagnosis {

namespace {

constexpr double cdLeastPivot = 1e-9;

class ClElimination {
public:
    ClElimination(Values aMatrix, std::size_t n)
        : m_aLeft(std::move(aMatrix)), m_aRight(n * n, 0.0), m_n(n) {
        for (std::size_t i = 0; i < n; ++i)
            m_aRight[i * n + i] = 1.0;
    }

    Values Run() {
        for (std::size_t nColumn = 0; nColumn < m_n; ++nColumn) {
            TakePivot(nColumn);
            for (std::size_t nRow = 0; nRow < m_n; ++nRow)
                if (nRow != nColumn)
                    Eliminate(nRow, nColumn);
        }
        return std::move(m_aRight);
    }

private:
    double* Row(Values& rSide, std::size_t nRow) const { return &rSide[nRow * m_n]; }

    std::size_t PivotOf(std::size_t nColumn) const {
        std::size_t nPivot = nColumn;
        for (std::size_t nRow = nColumn; nRow < m_n; ++nRow)
            if (std::fabs(m_aLeft[nRow * m_n + nColumn]) >
                std::fabs(m_aLeft[nPivot * m_n + nColumn]))
                nPivot = nRow;
        return nPivot;
    }

    void TakePivot(std::size_t nColumn) {
        const std::size_t nPivot = PivotOf(nColumn);
        const double dPivot = m_aLeft[nPivot * m_n + nColumn];
        if (!(std::fabs(dPivot) > cdLeastPivot) || !std::isfinite(dPivot))
            throw std::invalid_argument("the matrix is singular");
        for (Values* pSide : {&m_aLeft, &m_aRight}) {
            double* pRow = Row(*pSide, nColumn);
            if (nPivot != nColumn)
                std::swap_ranges(pRow, pRow + m_n, Row(*pSide, nPivot));
            std::transform(pRow, pRow + m_n, pRow, [&](double d) { return d / dPivot; });
        }
    }

    void Eliminate(std::size_t nRow, std::size_t nColumn) {
        const double dFactor = m_aLeft[nRow * m_n + nColumn];
        for (Values* pSide : {&m_aLeft, &m_aRight}) {
            double* pRow = Row(*pSide, nRow);
            const double* pPivot = Row(*pSide, nColumn);
            for (std::size_t i = 0; i < m_n; ++i)
                pRow[i] -= dFactor * pPivot[i];
        }
    }

    Values m_aLeft;
    Values m_aRight;
    std::size_t m_n;
};

} // namespace

Values Inverse(Values aMatrix, std::size_t n) {
    if (aMatrix.size() != n * n)
        throw std::invalid_argument("the matrix is not square");
    return ClElimination(std::move(aMatrix), n).Run();
}

Values Product(const Values& aMatrix, const Values& aList) {
    const std::size_t n = aList.size();
    Values aProduct(n, 0.0);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j)
            aProduct[i] += aMatrix[i * n + j] * aList[j];
    return aProduct;
}

} // namespace diagnosis

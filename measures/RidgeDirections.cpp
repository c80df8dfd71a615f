#include "measures/RidgeDirections.h"

#include <cmath>

namespace measures {

namespace {

bool HasNeighbours(const ClGreyView& Mask, int x, int y) {
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            if (!IsFinger(Mask, x + dx, y + dy))
                return false;
    return true;
}

std::int64_t Square(int n) {
    return static_cast<std::int64_t>(n) * n;
}

} // namespace

ClGradient GradientAt(const ClGreyView& Image, const ClGreyView& Mask, int x, int y) {
    if (!HasNeighbours(Mask, x, y))
        return {};
    ClGradient Sum;
    for (int n = -1; n <= 1; ++n) {
        const int nWeight = n == 0 ? 2 : 1;
        Sum.x += nWeight * (Image.At(x + 1, y + n) - Image.At(x - 1, y + n));
        Sum.y += nWeight * (Image.At(x + n, y + 1) - Image.At(x + n, y - 1));
    }
    return Sum;
}

ClRidgeDirections::ClRidgeDirections(const ClGreyView& Image, const ClGreyView& Mask, int nReach)
    : m_nReach(nReach), m_Squares(Image.m_nWidth, Image.m_nHeight,
                                  [&](int x, int y) {
                                      const ClGradient g = GradientAt(Image, Mask, x, y);
                                      return Square(g.x) - Square(g.y);
                                  }),
      m_Products(Image.m_nWidth, Image.m_nHeight, [&](int x, int y) {
          const ClGradient g = GradientAt(Image, Mask, x, y);
          return 2 * static_cast<std::int64_t>(g.x) * g.y;
      }) {}

ClStep ClRidgeDirections::Across(int x, int y) const {
    const auto dSquares = static_cast<double>(m_Squares.Around(x, y, m_nReach));
    const auto dProducts = static_cast<double>(m_Products.Around(x, y, m_nReach));
    const double dLength = std::sqrt(dSquares * dSquares + dProducts * dProducts);
    if (!(dLength > 0.0))
        return {1.0, 0.0};
    const double dCosine = dSquares / dLength; // of the doubled angle
    const double dAcross = std::sqrt(0.5 * (1.0 + dCosine));
    const double dDown = std::sqrt(0.5 * (1.0 - dCosine));
    return {dAcross, dProducts < 0.0 ? -dDown : dDown};
}

} // namespace measures

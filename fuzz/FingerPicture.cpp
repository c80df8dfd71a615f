#include "FingerPicture.h"

namespace Fuzz {

namespace {

class ClCanvas {
public:
    explicit ClCanvas(unsigned int nSide, int nGrey)
        : m_nSide(static_cast<int>(nSide)),
          m_aPixels(std::size_t{nSide} * nSide, static_cast<char>(nGrey)) {}

    int Side() const { return m_nSide; }
    std::string Pixels() const { return m_aPixels; }
    void Repeat(const std::string& Bytes) {
        for (std::size_t i = 0; i < m_aPixels.size() && !Bytes.empty(); ++i)
            m_aPixels[i] = Bytes[i % Bytes.size()];
    }
    /// `grey(x, y)` inside an ellipse.
    template <class Grey>
    void Ellipse(int nX, int nY, int nRadiusX, int nRadiusY, Grey grey) {
        for (int y = std::max(0, nY - nRadiusY); y < std::min(m_nSide, nY + nRadiusY); ++y)
            for (int x = std::max(0, nX - nRadiusX); x < std::min(m_nSide, nX + nRadiusX); ++x) {
                const double u = static_cast<double>(x - nX) / nRadiusX;
                const double v = static_cast<double>(y - nY) / nRadiusY;
                if (u * u + v * v <= 1.0)
                    m_aPixels[static_cast<std::size_t>(y * m_nSide + x)] =
                        static_cast<char>(grey(x, y));
            }
    }

private:
    int m_nSide;
    std::string m_aPixels;
};

/// A wave of straight flanks, 0 to 255.
int Wave(int nPhase, int nPeriod) {
    const int nAt = (nPhase % nPeriod + nPeriod) % nPeriod;
    return std::abs(2 * nAt - nPeriod) * 255 / nPeriod;
}

void PaintOne(ClBytes& rBytes, ClCanvas& rCanvas) {
    const int nX = rBytes.Next() * rCanvas.Side() / 256;
    const int nY = rBytes.Next() * rCanvas.Side() / 256;
    const int nRadiusX = 1 + rBytes.Next() * rCanvas.Side() / 256;
    const int nRadiusY = 1 + rBytes.Next() * rCanvas.Side() / 256;
    const int nStepX = rBytes.NextSigned();
    const int nStepY = rBytes.NextSigned();
    const int nPeriod = 1 + 4 * rBytes.Next();
    const int nDark = rBytes.Next();
    const int nSpan = rBytes.Next();
    rCanvas.Ellipse(nX, nY, nRadiusX, nRadiusY, [&](int x, int y) {
        return std::min(255, nDark + Wave(x * nStepX + y * nStepY, nPeriod) * nSpan / 255);
    });
}

} // namespace

std::string FingerPicture(unsigned int nSide, ClBytes& rBytes) {
    constexpr int cnMostShapes = 40;
    const bool bRaw = rBytes.Below(4) == 3;
    ClCanvas Canvas(nSide, rBytes.Next());
    if (bRaw)
        Canvas.Repeat(rBytes.Rest());
    for (int i = 0; i < cnMostShapes && !rBytes.IsEmpty(); ++i)
        PaintOne(rBytes, Canvas);
    return Canvas.Pixels();
}

} // namespace Fuzz

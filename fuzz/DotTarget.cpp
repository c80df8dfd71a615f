#include "DotTarget.h"

namespace Fuzz {

namespace {

constexpr int cnDots = 75;
constexpr unsigned char cnGround = 200;
constexpr unsigned char cnDot = 60;
constexpr double cdMillimetresPerInch = 25.4;

class ClCanvas {
public:
    explicit ClCanvas(const StTargetFrame& Frame)
        : m_Frame(Frame),
          m_aPixels(std::size_t{Frame.m_nWidth} * Frame.m_nHeight, static_cast<char>(cnGround)) {}

    /// An ellipse of these radii in millimetres.
    void Paint(double x, double y, double dRadius, unsigned char nGrey) {
        const double dX = std::max(dRadius * m_Frame.m_dDpiX / cdMillimetresPerInch, 0.5);
        const double dY = std::max(dRadius * m_Frame.m_dDpiY / cdMillimetresPerInch, 0.5);
        for (int nY = First(y - dY); nY < Last(y + dY, Height()); ++nY)
            for (int nX = First(x - dX); nX < Last(x + dX, Width()); ++nX) {
                const double u = (nX - x) / dX;
                const double v = (nY - y) / dY;
                if (u * u + v * v <= 1.0)
                    m_aPixels[static_cast<std::size_t>(nY * Width() + nX)] =
                        static_cast<char>(nGrey);
            }
    }

    const std::string& Pixels() const { return m_aPixels; }

private:
    int Width() const { return static_cast<int>(m_Frame.m_nWidth); }
    int Height() const { return static_cast<int>(m_Frame.m_nHeight); }
    static int First(double d) { return std::max(static_cast<int>(d), 0); }
    static int Last(double d, int nEnd) { return std::min(static_cast<int>(d) + 2, nEnd); }

    const StTargetFrame& m_Frame;
    std::string m_aPixels;
};

void PaintPattern(const StTargetFrame& Frame, ClBytes& rBytes, ClCanvas& rCanvas) {
    static constexpr int canLengths[] = {10, 11, 11, 11, 11, 11, 10};
    const double dPitchX = 2.0 * Frame.m_dDpiX / cdMillimetresPerInch;
    const double dPitchY = 2.0 * Frame.m_dDpiY / cdMillimetresPerInch;
    for (int nColumn = 0; nColumn < 7; ++nColumn)
        for (int nRow = 0; nRow < canLengths[nColumn]; ++nRow) {
            const int dx = rBytes.NextSigned();
            const int dy = rBytes.NextSigned();
            if (dx != -128)
                rCanvas.Paint(Frame.m_nWidth / 2.0 + (nColumn - 3) * dPitchX + dx,
                              Frame.m_nHeight / 2.0 + (nRow - 5) * dPitchY + dy, 0.4, cnDot);
        }
}

void PaintBlots(const StTargetFrame& Frame, ClBytes& rBytes, ClCanvas& rCanvas) {
    while (!rBytes.IsEmpty()) {
        const double x = rBytes.Next() / 256.0 * Frame.m_nWidth;
        const double y = rBytes.Next() / 256.0 * Frame.m_nHeight;
        const double dRadius = rBytes.Next() / 128.0;
        rCanvas.Paint(x, y, dRadius, static_cast<unsigned char>(rBytes.Next()));
    }
}

} // namespace

std::string DotTarget(const StTargetFrame& Frame, const std::uint8_t* pData, std::size_t nSize) {
    // Blots beyond a few hundred show nothing new.
    ClBytes Bytes(pData, std::min<std::size_t>(nSize, 2 * cnDots + 1024));
    ClCanvas Canvas(Frame);
    PaintPattern(Frame, Bytes, Canvas);
    PaintBlots(Frame, Bytes, Canvas);
    return GreyBlock(Frame.m_nWidth, Frame.m_nHeight, Canvas.Pixels());
}

} // namespace Fuzz

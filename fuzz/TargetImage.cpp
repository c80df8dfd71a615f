// CalibrateGenerateData() and CalibrateCheckEfts() with a dot target that the bytes spoil. Any
// bytes as pixels would show no target at all, so they say what to do with a good one instead: two
// for each of its 75 dots, how far it is moved in x and in y, -128 for not painted; behind them
// four for each further blot, its place, size and grey value.

#include "Harness.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int cnDots = 75;
constexpr unsigned char cnGround = 200;
constexpr unsigned char cnDot = 60;
constexpr double cdMillimetresPerInch = 25.4;

/// An image just large enough for the pattern.
struct StFrame {
    int m_nWidth; ///< pixels, a multiple of 4
    int m_nHeight;
    double m_dDpiX;
    double m_dDpiY;
};
constexpr StFrame cRaw{280, 880, 492.706, 1009.287};
constexpr StFrame cCorrected{280, 440, 500.0, 500.0};

/// The bytes, zeros behind them.
class ClBytes {
public:
    ClBytes(const std::uint8_t* pData, std::size_t nSize) : m_pData(pData), m_nSize(nSize) {}
    bool IsEmpty() const { return m_nNext >= m_nSize; }
    int Next() { return IsEmpty() ? 0 : m_pData[m_nNext++]; }
    int NextSigned() { return static_cast<signed char>(Next()); }

private:
    const std::uint8_t* m_pData;
    std::size_t m_nSize;
    std::size_t m_nNext = 0;
};

class ClCanvas {
public:
    explicit ClCanvas(const StFrame& Frame)
        : m_Frame(Frame), m_aPixels(static_cast<std::size_t>(Frame.m_nWidth * Frame.m_nHeight),
                                    static_cast<char>(cnGround)) {}

    /// An ellipse of these radii in millimetres.
    void Paint(double x, double y, double dRadius, unsigned char nGrey) {
        const double dX = std::max(dRadius * m_Frame.m_dDpiX / cdMillimetresPerInch, 0.5);
        const double dY = std::max(dRadius * m_Frame.m_dDpiY / cdMillimetresPerInch, 0.5);
        for (int nY = First(y - dY); nY < Last(y + dY, m_Frame.m_nHeight); ++nY)
            for (int nX = First(x - dX); nX < Last(x + dX, m_Frame.m_nWidth); ++nX) {
                const double u = (nX - x) / dX;
                const double v = (nY - y) / dY;
                if (u * u + v * v <= 1.0)
                    m_aPixels[static_cast<std::size_t>(nY * m_Frame.m_nWidth + nX)] =
                        static_cast<char>(nGrey);
            }
    }

    /// The bitmap block.
    std::string Block() const {
        const std::uint32_t anHeader[] = {40,
                                          static_cast<std::uint32_t>(m_Frame.m_nWidth),
                                          static_cast<std::uint32_t>(m_Frame.m_nHeight),
                                          1 | (8U << 16),
                                          0,
                                          0,
                                          0,
                                          0,
                                          0,
                                          0};
        return std::string(reinterpret_cast<const char*>(anHeader), sizeof anHeader) +
               std::string(1024, '\0') + m_aPixels;
    }

private:
    static int First(double d) { return std::max(static_cast<int>(d), 0); }
    static int Last(double d, int nEnd) { return std::min(static_cast<int>(d) + 2, nEnd); }

    const StFrame& m_Frame;
    std::string m_aPixels;
};

void PaintPattern(const StFrame& Frame, ClBytes& rBytes, ClCanvas& rCanvas) {
    static constexpr int canLengths[] = {10, 11, 11, 11, 11, 11, 10};
    const double dPitchX = 2.0 * Frame.m_dDpiX / cdMillimetresPerInch;
    const double dPitchY = 2.0 * Frame.m_dDpiY / cdMillimetresPerInch;
    for (int nColumn = 0; nColumn < 7; ++nColumn)
        for (int nRow = 0; nRow < canLengths[nColumn]; ++nRow) {
            const int dx = rBytes.NextSigned();
            const int dy = rBytes.NextSigned();
            if (dx != -128)
                rCanvas.Paint(Frame.m_nWidth / 2 + (nColumn - 3) * dPitchX + dx,
                              Frame.m_nHeight / 2 + (nRow - 5) * dPitchY + dy, 0.4, cnDot);
        }
}

void PaintBlots(const StFrame& Frame, ClBytes& rBytes, ClCanvas& rCanvas) {
    while (!rBytes.IsEmpty()) {
        const double x = rBytes.Next() * Frame.m_nWidth / 256.0;
        const double y = rBytes.Next() * Frame.m_nHeight / 256.0;
        const double dRadius = rBytes.Next() / 128.0;
        rCanvas.Paint(x, y, dRadius, static_cast<unsigned char>(rBytes.Next()));
    }
}

std::string Target(const StFrame& Frame, const std::uint8_t* pData, std::size_t nSize) {
    // Blots beyond a few hundred show nothing new.
    ClBytes Bytes(pData, std::min<std::size_t>(nSize, 2 * cnDots + 1024));
    ClCanvas Canvas(Frame);
    PaintPattern(Frame, Bytes, Canvas);
    PaintBlots(Frame, Bytes, Canvas);
    return Canvas.Block();
}

/// The calibration block of a handle; empty where there is none.
std::string Data(const Fuzz::ClHandle& handle) {
    unsigned long nSize = 0;
    if (CalibrateGetData(handle, nullptr, &nSize) == QMT_ERROR_NOT_INITIALIZED)
        return {};
    std::string Block(nSize, '\0');
    Fuzz::Require(
        CalibrateGetData(handle, reinterpret_cast<unsigned char*>(Block.data()), &nSize) == 0,
        "calibration data is given");
    return Block;
}

Fuzz::ClBlock BlockOf(const std::string& Bytes) {
    return {reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size()};
}

void Generate(const std::string& Image) {
    const Fuzz::ClBlock block = BlockOf(Image);
    const Fuzz::ClHandle handle;
    const long nStatus = CalibrateGenerateData(handle, block.Data(), block.Size());
    Fuzz::Require(nStatus == 0 || nStatus == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
                  "a target is evaluated or refused");
    const std::string Generated = Data(handle);
    Fuzz::Require((nStatus == 0) == !Generated.empty(), "there is data where it was generated");
    if (nStatus != 0)
        return;
    const Fuzz::ClHandle second;
    second.Set("PrecalculatedData=true");
    const Fuzz::ClBlock data = BlockOf(Generated);
    const long nLoaded = CalibrateSetData(second, data.Data(), data.Size());
    // Dots that were moved far make steps that no stored record may have.
    Fuzz::Require(nLoaded == QMT_ERROR_CURRUPT_DATA || Data(second) == Generated,
                  "generated data loads and stays the same");
}

void Check(const std::string& Image) {
    static const std::string Scanner = Fuzz::SmallScanner(64);
    const Fuzz::ClBlock scanner = BlockOf(Scanner);
    const Fuzz::ClBlock block = BlockOf(Image);
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true");
    Fuzz::Require(CalibrateSetData(handle, scanner.Data(), scanner.Size()) == 0, "a scanner loads");
    double dPercent = -1.0;
    const long nStatus = CalibrateCheckEfts(handle, block.Data(), block.Size(), &dPercent);
    Fuzz::Require(nStatus == 0 || nStatus == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
                  "a corrected target is measured or refused");
    Fuzz::Require(nStatus == 0 ? dPercent >= 0.0 && dPercent <= 100.0 : dPercent == -1.0,
                  "an accuracy is a percentage, or left alone");
    Fuzz::Require(Data(handle) == Scanner, "a measurement keeps the data");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Generate(Target(cRaw, pData, nSize));
    Check(Target(cCorrected, pData, nSize));
    return 0;
}

#include "ImageProcessing/IpEuclidLength.h"

#include "ImageProcessing/Kernels/Length.h"
#include "Tools/Allocate.h"

#include <cmath>

bool ClIpEuclidLength::m_bIsInitialized = false;
unsigned char ClIpEuclidLength::m_tabSigned[256][256];
unsigned char ClIpEuclidLength::m_tabUnsigned[256][256];

namespace {

/// The signed number that a byte stands for.
int SignedByte(int nByte) {
    return nByte < 128 ? nByte : nByte - 256;
}

unsigned char ScaledLength(int dx, int dy, double dScale) {
    return static_cast<unsigned char>(std::sqrt(static_cast<double>(dx * dx + dy * dy)) * dScale);
}

} // namespace

ClIpEuclidLength::ClIpEuclidLength() {
    InitializeTabsOnce();
    ClIpEuclidLength::SetParametersToDefault();
}

ClProcessorBase* ClIpEuclidLength::Create() {
    return Vek::NewObject<ClIpEuclidLength>();
}

const char* ClIpEuclidLength::Name() const {
    return "ClIpEuclidLength";
}

void ClIpEuclidLength::InitializeTabsOnce() {
    static const bool bBuilt = (InitializeTabs(), true); // one thread builds, the others wait
    static_cast<void>(bBuilt);
}

void ClIpEuclidLength::InitializeTabs() {
    if (m_bIsInitialized)
        return;
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            m_tabUnsigned[a][b] = ScaledLength(a, b, 0.707);
            m_tabSigned[a][b] = ScaledLength(SignedByte(a), SignedByte(b), 1.414);
        }
    m_bIsInitialized = true;
}

void ClIpEuclidLength::ProcessArea(long nWidth, long nHeight, long nPlanes,
                                   const unsigned char* pIn1, long nIn1Stride,
                                   const unsigned char* pIn2, long nIn2Stride, unsigned char* pOut,
                                   long nOutStride) {
    const Kernels::StPairOfPlanes Planes{
        pIn1, nIn1Stride, pIn2, nIn2Stride, nWidth * nPlanes, nHeight, pOut, nOutStride};
    if (ClImage::IsSigned(m_pInImage1->DataType()))
        Kernels::SignedLength(Planes);
    else
        Kernels::UnsignedLength(Planes);
}

bool ClIpEuclidLength::WritesAllOfArea() const {
    return true;
}

void ClIpEuclidLength::SetOutImageSign() {
    const unsigned char nType = m_pOutImage->DataType();
    if (!ClImage::IsSigned(nType) || ClImage::IsFloat(nType))
        return;
    const double dMove = std::ldexp(1.0, 8 * ClImage::BytesPerSample(nType) - 1);
    m_pOutImage->SetBlack(m_pOutImage->Black() + dMove);
    m_pOutImage->SetWhite(m_pOutImage->White() + dMove);
    m_pOutImage->SetDataType(static_cast<unsigned char>(nType & 0x7F));
}

void ClIpEuclidLength::MakeCppFilesFromTabs(const char* pPath) {
    constexpr unsigned long cnEntries = 256 * 256;
    InitializeTabsOnce();
    std::FILE* pFile = DumpHeader("IpEuclidLengthTabs.cpp", pPath, false);
    std::fputs("#include \"ImageProcessing/IpEuclidLength.h\"\n\n", pFile);
    std::fputs("bool ClIpEuclidLength::m_bIsInitialized = true;\n\n", pFile);
    std::fputs("unsigned char ClIpEuclidLength::m_tabSigned[256][256] = {\n", pFile);
    DumpTab(pFile, &m_tabSigned[0][0], cnEntries);
    std::fputs("\nunsigned char ClIpEuclidLength::m_tabUnsigned[256][256] = {\n", pFile);
    DumpTab(pFile, &m_tabUnsigned[0][0], cnEntries);
    DumpClose(pFile);
}

#include "ImageProcessing/IpSubsample.h"

#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PlaneByPlane.h"
#include "ImageProcessing/RequireBytes.h"
#include "ImageProcessing/SettingsText.h"
#include "ImageProcessing/Walks/ByteSamples.h"
#include "Tools/Allocate.h"
#include "Tools/ParameterContainer.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>

namespace {

/// Blocks whose sums are formed at a time.
constexpr int cnChunk = 256;

/// Blocks of `nFactor` on an axis, the last one may be cut.
int CountBlocks(int nSize, long nFactor) {
    return static_cast<int>(nSize / nFactor + (nSize % nFactor != 0 ? 1 : 0));
}

/// Samples of a block on an axis of `nSize`.
long BlockSize(long nBlock, long nFactor, int nSize) {
    return std::min(nFactor, nSize - nBlock * nFactor);
}

/// Adds one line to the sums of the blocks from `nFirst` on.
template <class T>
void AddBlocks(const T* pLine, int nWidth, long nFactor, int nFirst, int nCount, long long* pSums) {
    const T* pIn = pLine + nFirst * nFactor;
    for (int i = 0; i < nCount; ++i) {
        const T* const pEnd = pIn + BlockSize(nFirst + i, nFactor, nWidth);
        for (; pIn < pEnd; ++pIn)
            pSums[i] += *pIn;
    }
}

/// One line of block means: of the `nLines` lines from `nLine` on.
template <class T>
void MeanOfBlocks(const ClImage& In, long nFactor, long nLine, long nLines, int nBlocks, T* pOut) {
    for (int nFirst = 0; nFirst < nBlocks; nFirst += cnChunk) {
        const int nCount = std::min(cnChunk, nBlocks - nFirst);
        long long anSums[cnChunk] = {};
        for (long y = nLine; y < nLine + nLines; ++y)
            AddBlocks(In.Line<const T>(static_cast<int>(y)), In.Width(), nFactor, nFirst, nCount,
                      anSums);
        for (int i = 0; i < nCount; ++i)
            pOut[nFirst + i] =
                static_cast<T>(anSums[i] / (nLines * BlockSize(nFirst + i, nFactor, In.Width())));
    }
}

} // namespace

ClIpSubsample::ClIpSubsample() {
    ClIpSubsample::SetParametersToDefault();
}

ClProcessorBase* ClIpSubsample::Create() {
    return Vek::NewObject<ClIpSubsample>();
}

const char* ClIpSubsample::Name() const {
    return "ClIpSubsample";
}

void ClIpSubsample::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_nFactor = 2;
    m_bMid = false;
}

void ClIpSubsample::PublishParameters(ClParameterContainer& Container) {
    Container.Keep(&m_pInImage, &m_pOutImage, &m_nFactor, &m_bMid);
}

long ClIpSubsample::ParameterString(char* pBuffer, unsigned long nSize) {
    return WriteSettings(pBuffer, nSize, "Sub%ld,Mid=%s", m_nFactor, m_bMid ? "Yes" : "No");
}

long ClIpSubsample::Process() {
    if (m_pInImage == nullptr)
        throw ClException("m_pInImage is not set", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (m_pOutImage == nullptr)
        throw ClException("m_pOutImage is not set", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (m_pInImage->Data() == nullptr || m_nFactor < 1)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    CheckType();
    if (m_pInImage->Planes() > 1)
        return ProcessMultiPlane();
    return ProcessInto(*m_pInImage, *m_pOutImage,
                       [this](const ClImage& In, ClImage& Out) { return ProcessPlane(In, Out); });
}

void ClIpSubsample::CheckType() const {
    const bool bSigned = m_pInImage->DataType() == ClImage::eInt8;
    if (!bSigned || !m_bMid)
        RequireBytes(*m_pInImage, VEK_HERE);
}

long ClIpSubsample::ProcessMultiPlane() {
    return ProcessPlaneByPlane(*m_pInImage, *m_pOutImage, [this](const ClImage& In, ClImage& Out) {
        return ProcessPlane(In, Out);
    });
}

long ClIpSubsample::ProcessPlane(const ClImage& In, ClImage& Out) const {
    Out.NewWithType(
        In.DataType(), CountBlocks(In.Width(), m_nFactor), CountBlocks(In.Height(), m_nFactor), 1,
        static_cast<int>(In.PelsX() / m_nFactor), static_cast<int>(In.PelsY() / m_nFactor));
    if (m_bMid)
        ProcessMid(In, Out);
    else
        ProcessFast(In, Out);
    return 0;
}

void ClIpSubsample::ProcessFast(const ClImage& In, ClImage& Out) const {
    for (int y = 0; y < Out.Height(); ++y) {
        const unsigned char* pIn = In.LineData(y * m_nFactor);
        for (int x = 0; x < Out.Width(); ++x)
            Out.LineData(y)[x] = pIn[x * m_nFactor];
    }
}

void ClIpSubsample::ProcessMid(const ClImage& In, ClImage& Out) const {
    DispatchByteType(In.DataType(), [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        for (int y = 0; y < Out.Height(); ++y)
            MeanOfBlocks(In, m_nFactor, y * m_nFactor, BlockSize(y, m_nFactor, In.Height()),
                         Out.Width(), Out.Line<T>(y));
    });
}

long ClIpSubsample::ApplyParam(ClImage& rIn, long nFactor, ClImage& rOut, bool bMid) {
    m_pInImage = &rIn;
    m_pOutImage = &rOut;
    m_nFactor = nFactor;
    m_bMid = bMid;
    return Apply();
}

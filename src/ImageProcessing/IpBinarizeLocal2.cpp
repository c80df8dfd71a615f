#include "ImageProcessing/IpBinarizeLocal2.h"

#include "ImageProcessing/Kernels/LocalThreshold.h"
#include "Tools/Allocate.h"
#include "Tools/ParameterContainer.h"

ClIpBinarizeLocal2::ClIpBinarizeLocal2() {
    m_bInPlace = false;
    m_bUseLUT = false;
    ClIpBinarizeLocal2::SetParametersToDefault();
}

ClProcessorBase* ClIpBinarizeLocal2::Create() {
    return Vek::NewObject<ClIpBinarizeLocal2>();
}

const char* ClIpBinarizeLocal2::Name() const {
    return "ClIpBinarizeLocal2";
}

void ClIpBinarizeLocal2::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_nSizeX = 11;
    m_nSizeY = 11;
    m_nOffset = 0;
    m_nBelowValue = 0;
    m_nAboveValue = 255;
}

void ClIpBinarizeLocal2::PublishParameters(ClParameterContainer& Container) {
    ClIp1to1Base::PublishParameters(Container);
    Container.Keep(&m_nSizeX, &m_nSizeY, &m_nOffset, &m_nBelowValue, &m_nAboveValue);
}

long ClIpBinarizeLocal2::DoProcess(ClImage& rIn, ClImage& rOut) {
    if (m_nSizeX < 1 || m_nSizeY < 1)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (rIn.Width() < m_nSizeX || rIn.Height() < m_nSizeY) {
        rOut = rIn;
        return 0;
    }
    rOut.New(rIn);
    if (rOut.SizeBytes() == 0) // no planes, or a type without bytes: there is nothing in a line
        return 0;
    rOut = static_cast<unsigned char>(0);
    Kernels::ClScratch Scratch;
    Kernels::LocalThreshold(rIn.LineData(0), rIn.LineStrideBytes(), rIn.Width(), rIn.Height(),
                            {m_nSizeX, m_nSizeY, m_nOffset, m_nBelowValue, m_nAboveValue},
                            rOut.LineData(0), rOut.LineStrideBytes(), Scratch);
    return 0;
}

long ClIpBinarizeLocal2::ApplyParam(ClImage& rIn, ClImage& rOut, long nSizeX, long nSizeY,
                                    long nOffset) {
    m_pInImage = &rIn;
    m_pOutImage = &rOut;
    m_nSizeX = nSizeX;
    m_nSizeY = nSizeY;
    m_nOffset = nOffset;
    return Apply();
}

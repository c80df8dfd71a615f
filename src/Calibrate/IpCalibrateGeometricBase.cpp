#include "Calibrate/IpCalibrateGeometricBase.h"

#include "Tools/CallTrace.h"
#include "Tools/FpImage.h"

void ClIpCalibrateGeometricBase::Reset() {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBase::Reset()");
    Drop();
}

void ClIpCalibrateGeometricBase::Initiate() {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBase::Initiate()");
    if (!HasTable())
        Prepare();
}

void ClIpCalibrateGeometricBase::Prepare() {
    if (m_pData == nullptr)
        throw ClException("The calibrations data is not set", QMT_ERROR_PARAM_IS_MISSING, true,
                          VEK_HERE);
    m_nSourceWidth = m_pData->m_nSourceWidth;
    m_nSourceHeight = m_pData->m_nSourceHeight;
    m_nTargetWidth = m_pData->m_nTargetWidth;
    m_nTargetHeight = m_pData->m_nTargetHeight;
    m_nTargetPelsX = m_pData->m_nTargetPelsX;
    m_nTargetPelsY = m_pData->m_nTargetPelsY;
    m_nPlanes = m_pData->m_nPlanes;
    m_nBackground = m_pData->m_nBackground;
    try {
        InitiateParams(m_pData->m_aTarget, m_pData->m_aActual, m_nPlanes);
    } catch (...) { // numbers without their table would be taken for a warp by the next run
        Drop();
        throw;
    }
}

void ClIpCalibrateGeometricBase::Calibrate() {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBase::Calibrate()");
    if (m_pInImage == nullptr)
        return;
    CheckInput();
    PrepareOutput();
    if (m_pTable == nullptr)
        throw ClException("Calibrate is not initialized", QMT_ERROR_NOT_INITIALIZED, true,
                          VEK_HERE);
    CalibrateGeo(*m_pInImage, *m_pOutImage);
}

void ClIpCalibrateGeometricBase::CheckInput() const {
    if (m_nSourceHeight == 0 || m_nSourceWidth == 0 || m_nTargetWidth == 0 || m_nTargetHeight == 0)
        throw ClException("Calibrate is not initialized", QMT_ERROR_NOT_INITIALIZED, true,
                          VEK_HERE);
    // A wrong size answers with the words of the next test: applications know them.
    if (static_cast<std::int64_t>(m_pInImage->Height()) != m_nSourceHeight ||
        static_cast<std::int64_t>(m_pInImage->Width()) != m_nSourceWidth ||
        static_cast<std::int64_t>(m_pInImage->Planes()) != m_nPlanes)
        throw ClException("InImage can't be the out image", QMT_ERROR_BITMAP_DIMENSION, true,
                          VEK_HERE);
    if (m_pInImage == m_pOutImage)
        throw ClException("InImage can't be the out image", QMT_ERROR_PARAM_OUT_OF_RANGE, true,
                          VEK_HERE);
    if (m_pOutImage == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    if (m_pInImage->DataType() != ClImage::eUInt8)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
}

void ClIpCalibrateGeometricBase::PrepareOutput() {
    const int nWidth = static_cast<int>(m_nTargetWidth);
    const int nHeight = static_cast<int>(m_nTargetHeight);
    const int nPlanes = static_cast<int>(m_nPlanes);
    const int nPelsX = static_cast<int>(m_nTargetPelsX);
    const int nPelsY = static_cast<int>(m_nTargetPelsY);
    ClImage& rOut = *m_pOutImage;
    if (rOut.DataType() == ClImage::eUInt8 && rOut.Width() == nWidth && rOut.Height() == nHeight &&
        rOut.Planes() == nPlanes) {
        rOut.SetPelsX(nPelsX);
        rOut.SetPelsY(nPelsY);
    } else {
        rOut.NewWithType(ClImage::eUInt8, nWidth, nHeight, nPlanes, nPelsX, nPelsY);
    }
}

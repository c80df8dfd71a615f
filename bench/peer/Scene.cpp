#include "Scene.h"

#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "sim/BitmapBlock.h"
#include "sim/Capture.h"
#include "sim/Record.h"

#include <cstring>

namespace peer {

namespace {

void TakeCapture(const sim::ClScanner& Scanner, sim::EKind eKind, StCapture& rCapture) {
    const sim::ClRaster Raw = sim::CaptureKind(Scanner, eKind, 1).m_Raw;
    rCapture.m_Block = sim::BitmapBlock(Raw);
    rCapture.m_Image.NewWithType(ClImage::eUInt8, Raw.m_nWidth, Raw.m_nHeight, 1, Raw.m_nPelsX,
                                 Raw.m_nPelsY);
    for (int y = 0; y < Raw.m_nHeight; ++y)
        std::memcpy(rCapture.m_Image.LineData(y), Raw.Line(y),
                    static_cast<std::size_t>(Raw.m_nWidth));
}

void Warp(StScene& rScene) {
    ClIpCalibrateGeometricBicubic Geometric;
    Geometric.m_pData = &rScene.m_Record;
    Geometric.m_pInImage = &rScene.m_Finger.m_Image;
    Geometric.m_pOutImage = &rScene.m_Warped;
    Geometric.Apply();
}

/// The mask with its soft border made two-valued.
void FindMask(StScene& rScene) {
    ClImage Corrected;
    ClIpQK7DynamicCalibration30 Dynamic;
    Dynamic.m_pInImage = &rScene.m_Warped;
    Dynamic.m_pOutImage = &Corrected;
    Dynamic.m_pOutMaskImage = &rScene.m_Mask;
    Dynamic.Apply();
    ClIpBinarizeGlobal().ApplyParam(rScene.m_Mask, rScene.m_Mask, 128.0);
}

} // namespace

StScene::StScene() {
    const sim::ClScanner Scanner(900);
    sim::FillRecord(Scanner, m_Record);
    m_RecordBlock = sim::RecordBlock(Scanner);
    TakeCapture(Scanner, sim::EKind::eLoop, m_Finger);
    TakeCapture(Scanner, sim::EKind::eEmpty, m_Empty);
    TakeCapture(Scanner, sim::EKind::eTarget, m_Target);
    Warp(*this);
    FindMask(*this);
}

} // namespace peer

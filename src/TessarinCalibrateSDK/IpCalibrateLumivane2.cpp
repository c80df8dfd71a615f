#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"
#include "ImageProcessing/IpFilterBase.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "Tools/Allocate.h"
#include "Tools/LoggingFacility.h"
#include "Tools/ThrowIfFailed.h"

#include <algorithm>
#include <cstring>

namespace {

/// The target frame of the scanner: pixels, and 500 dots per inch in pixels per metre.
constexpr int cnFrameWidth = 320;
constexpr int cnFrameHeight = 480;
constexpr int cnFramePels = 19685;

/// The low pass of the sharpening along the columns.
constexpr double cdSharpenSigma = 0.9;

/// The lines 0, 2, 4 ... of one image as another, whose attribute stays.
void CopyOddLines(const ClImage& Source, ClImage& rDestination) {
    const int nHeight = Source.Height() / 2;
    if (nHeight < 1)
        throw ClException("Image area must be positive", QMT_ERROR_INTERNAL, true, VEK_HERE);
    rDestination.NewWithType(ClImage::eUInt8, Source.Width(), nHeight, 1, Source.PelsX(),
                             Source.PelsY() / 2);
    for (int y = 0; y < nHeight; ++y)
        std::memcpy(rDestination.LineData(y), Source.LineData(2 * y),
                    static_cast<std::size_t>(rDestination.Width()));
}

} // namespace

ClIpCalibrateLumivane2::ClIpCalibrateLumivane2() = default;

ClIpCalibrateLumivane2::~ClIpCalibrateLumivane2() = default;

ClProcessorBase* ClIpCalibrateLumivane2::Create() {
    return Vek::NewObject<ClIpCalibrateLumivane2>();
}

const char* ClIpCalibrateLumivane2::Name() const {
    return "ClIpCalibrateLumivane2";
}

bool ClIpCalibrateLumivane2::IsInitialized() const {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::IsInitialized() Enter");
    const bool bInitialized = HasData();
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::IsInitialized() Leaving");
    return bInitialized;
}

bool ClIpCalibrateLumivane2::HasData() const {
    return m_CalibrationData.m_nSourceHeight != 0 && m_CalibrationData.m_nSourceWidth != 0 &&
           m_CalibrationData.m_aActual[0].Entries() != 0;
}

void ClIpCalibrateLumivane2::Clear() {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Clear() Enter");
    m_CalibrationData.Clear();
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Clear() Leaving");
}

void ClIpCalibrateLumivane2::CheckGrey(const ClImage& image) const {
    if (image.Planes() != 1 || image.Content() != ClImage::eGrayscale)
        throw ClExTessarin(QMT_ERROR_BITMAP_PLANE, VEK_HERE);
}

// One capture

void ClIpCalibrateLumivane2::StKept::ClearLineEnds() {
    for (ClImage* pImage : {&m_Warped, &m_Result})
        pImage->FillAligment(0);
}

long ClIpCalibrateLumivane2::Process() {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Process() Enter");
    if (m_pInImage == nullptr || m_pOutImage == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    CheckGrey(*m_pInImage);
    m_Kept.ClearLineEnds();
    if (m_pOutImage->Data() == nullptr)
        m_pOutImage->Swap(m_Kept.m_Result);

    ClImage& corrected = m_Kept.m_Warped;
    CorrectGeometry(corrected);
    m_DynamicCalibration.m_pInImage = &corrected;
    if (m_bDynamicFingerMask)
        CorrectBrightness();
    else
        *m_pOutImage = corrected;

    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Process() Leaving(%d), %s", 0,
             GetErrorDescriptionIntern(0));
    return 0;
}

void ClIpCalibrateLumivane2::CorrectGeometry(ClImage& corrected) {
    ClImage& sharpened = m_Kept.m_Sharpened;
    switch (m_eGeometricMode) {
    case eGeometricOff:
        corrected = *m_pInImage;
        break;
    case eOddLines:
        Sharpen(sharpened);
        sharpened.SetPelsX(static_cast<int>(m_CalibrationData.m_nSourcePelsX));
        sharpened.SetPelsY(static_cast<int>(m_CalibrationData.m_nSourcePelsY));
        CopyOddLineImage(sharpened, corrected);
        break;
    case eThinPlateSpline:
        Sharpen(sharpened);
        ApplyWarp(&sharpened, &corrected);
        break;
    default:
        throw ClException("Invalid geometric calibration option", QMT_ERROR_INVALID_OPTIONS_SETTING,
                          true, VEK_HERE);
    }
}

void ClIpCalibrateLumivane2::CorrectBrightness() {
    m_DynamicCalibration.m_pOutImage = m_bMaskIsOutput ? &m_Kept.m_NotAskedFor : m_pOutImage;
    m_DynamicCalibration.m_pOutMaskImage = m_bMaskIsOutput ? m_pOutImage : nullptr;
    m_DynamicCalibration.m_bMaskOnly = m_bMaskIsOutput;
    m_DynamicCalibration.m_bSensitiveMode = m_bSensitiveMode;
    ThrowIfFailed(m_DynamicCalibration.Apply(), VEK_HERE);
}

void ClIpCalibrateLumivane2::Sharpen(ClImage& sharpened) {
    ClIpUnsharpMasking unsharp;
    unsharp.m_dGaussSigma = cdSharpenSigma;
    unsharp.m_nMode = ClIpFilterBase::ModeY;
    ThrowIfFailed(unsharp.ApplyParam(*m_pInImage, sharpened, 0), VEK_HERE);
}

void ClIpCalibrateLumivane2::ApplyWarp(ClImage* pIn, ClImage* pOut) {
    m_GeometricBicubic.m_pInImage = pIn;
    m_GeometricBicubic.m_pOutImage = pOut;
    ThrowIfFailed(m_GeometricBicubic.Apply(), VEK_HERE);
}

void ClIpCalibrateLumivane2::CopyOddLineImage(ClImage& source, ClImage& destination) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::CopyOddLineImage() Enter");
    if (&source == &destination) {
        ClImage aside;
        aside.SetAttribute(destination.Attribute());
        CopyOddLines(source, aside);
        destination.Swap(aside);
    } else {
        CopyOddLines(source, destination);
    }
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::CopyOddLineImage() Leaving");
}

long ClIpCalibrateLumivane2::CutRescaleImage(ClImage& image) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::CutRescaleImage() Enter");
    ClImage frame(cnFrameWidth, cnFrameHeight, 1, cnFramePels, cnFramePels);
    frame = static_cast<unsigned char>(255);
    const int dx = (cnFrameWidth - image.Width()) / 2;
    const int dy = (cnFrameHeight - image.Height()) / 2;
    const int nWidth = std::clamp(image.Width(), 0, cnFrameWidth);
    const int nHeight = std::clamp(image.Height(), 0, cnFrameHeight);
    for (int y = 0; y < nHeight; ++y)
        std::memcpy(frame.LineData(y + std::max(dy, 0)) + std::max(dx, 0),
                    image.LineData(y + std::max(-dy, 0)) + std::max(-dx, 0),
                    static_cast<std::size_t>(nWidth));
    image.Swap(frame);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::CutRescaleImage() Leaving");
    return 0;
}

// Calibration data

void ClIpCalibrateLumivane2::Setup() {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Setup() Enter");
    if (m_pInImage == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    CheckGrey(*m_pInImage);
    m_GeometricBicubic.Reset();
    LocateTarget();
    m_CalibrationData.Log();
    m_GeometricBicubic.m_pData = &m_CalibrationData;
    ApplyWarp(nullptr, nullptr); // without images it prepares the table
    RescaleToTarget();
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Setup() Leaving");
}

void ClIpCalibrateLumivane2::LocateTarget() {
    ClIpCalibrateGeometricBuildRefPointsQK7 builder;
    builder.m_bBrightDots = !builder.m_bBrightDots; // the target is printed dark on bright
    builder.m_pInImage = m_pInImage;
    builder.m_pRefData = m_TargetData.m_aTarget.Entries() != 0 ? &m_TargetData : nullptr;
    builder.m_pOutData = &m_CalibrationData;
    ThrowIfFailed(builder.Apply(), VEK_HERE);
}

void ClIpCalibrateLumivane2::RescaleToTarget() {
    m_Rescale.m_nNewPelsX = static_cast<int>(m_CalibrationData.m_nTargetPelsX);
    m_Rescale.m_nNewPelsY = static_cast<int>(m_CalibrationData.m_nTargetPelsY);
    m_Rescale.m_eMode = ClIpRescale::ModeBiCubic;
}

void ClIpCalibrateLumivane2::CheckGeometricDataTarget(const ClCalibrateGeometricData& data) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::CheckGeometricDataTarget() Enter");
    ClIpCalibrateGeometricBuildRefPointsQK7 builder;
    builder.ValidateCalibrationData(data);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::CheckGeometricDataTarget() Leaving");
}

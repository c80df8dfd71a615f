#include "processors/ProcessorRuns.h"

#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "Calibrate/PaintedTarget.h"
#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "ImageProcessing/IpAbs.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpBuildConvexHull.h"
#include "ImageProcessing/IpConnectedComponent2.h"
#include "ImageProcessing/IpCut.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/IpFloodFill.h"
#include "ImageProcessing/IpImageExtension.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpJoinPlanes.h"
#include "ImageProcessing/IpLabeling.h"
#include "ImageProcessing/IpMax.h"
#include "ImageProcessing/IpOffset.h"
#include "ImageProcessing/IpRenderPolygon.h"
#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/IpResize.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/IpSetBorder.h"
#include "ImageProcessing/IpSplitPlanes.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/IpStretchRangeGlobalNoiseRemoving.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/IpSubsample.h"
#include "ImageProcessing/IpSubtract.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"
#include "Tools/MemStream.h"
#include "support/Images.h"

namespace Processors {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::PlausibleRecord;
using TestSupport::RandomImage;
using TestSupport::RecordBlock;

namespace {

/// What the processors read and write; each uses what it has members for.
struct StDesk {
    StDesk() {
        m_aIn[0] = RandomImage(ClImage::eUInt8, 40, 36, 1, 1);
        m_aIn[1] = RandomImage(ClImage::eUInt8, 40, 36, 1, 2);
    }

    ClTestImage m_aIn[2];
    ClTestImage m_aOut[3];
    ClMask2 m_Mask;
    ClIpConnectedComponent2::ComponentsArray_t m_aComponents;
    ClIpRenderPolygon::Polygon_t m_aPolygon;
    ClCalibrateGeometricData m_Data;
    ClCalibrateGeometricData m_OutData;
    std::vector<double> m_adNumbers; ///< further results
};

template <class T>
void Append(Bytes& rTo, const T& Value) {
    const auto* pFirst = reinterpret_cast<const unsigned char*>(&Value);
    rTo.insert(rTo.end(), pFirst, pFirst + sizeof Value);
}

void Append(Bytes& rTo, const ClImage& Image) {
    Append(rTo, Image.Width());
    Append(rTo, Image.Height());
    Append(rTo, Image.Planes());
    Append(rTo, Image.DataType());
    const std::size_t nLine = static_cast<std::size_t>(Image.Width()) *
                              static_cast<std::size_t>(Image.Planes()) *
                              static_cast<std::size_t>(Image.BytesPerSample());
    for (int y = 0; y < Image.Height(); ++y)
        rTo.insert(rTo.end(), Image.LineData(y), Image.LineData(y) + nLine);
}

void Append(Bytes& rTo, const ClIpConnectedComponent2::ComponentsArray_t& aComponents) {
    for (unsigned long i = 0; i < aComponents.Entries(); ++i) {
        Append(rTo, aComponents[i].m_vCentre.x);
        Append(rTo, aComponents[i].m_dArea);
        Append(rTo, aComponents[i].m_dMeanGrey);
    }
}

void Append(Bytes& rTo, const ClMask2& Mask) {
    for (unsigned long i = 0; i < Mask.m_aEntries.Entries(); ++i)
        Append(rTo, Mask.m_aEntries[i]);
}

void Append(Bytes& rTo, const ClCalibrateGeometricData& Data) {
    for (unsigned long i = 0; i < Data.m_aTarget.Entries(); ++i) {
        Append(rTo, Data.m_aTarget[i].x);
        Append(rTo, Data.m_aTarget[i].y);
        Append(rTo, Data.m_aActual[0][i].x);
        Append(rTo, Data.m_aActual[0][i].y);
    }
}

// Images are set where a class has a member for them.

template <class Ip>
auto SetImages(Ip& rIp, StDesk& rDesk, int) -> decltype(rIp.m_pInImage, rIp.m_pOutImage, void()) {
    rIp.m_pInImage = &rDesk.m_aIn[0];
    rIp.m_pOutImage = &rDesk.m_aOut[0];
}

template <class Ip>
auto SetImages(Ip& rIp, StDesk& rDesk, int) -> decltype(rIp.m_pInImage1, void()) {
    rIp.m_pInImage1 = &rDesk.m_aIn[0];
    rIp.m_pInImage2 = &rDesk.m_aIn[1];
    rIp.m_pOutImage = &rDesk.m_aOut[0];
}

template <class Ip>
void SetImages(Ip&, StDesk&, long) {}

template <class Ip>
void SetNothing(Ip&, StDesk&) {}

template <class Ip>
class TpRun : public ClRun {
public:
    using Setup = void (*)(Ip&, StDesk&);
    using Results = void (*)(Ip&, StDesk&);

    TpRun(Setup pSetup, Results pResults) : m_pResults(pResults) {
        SetImages(m_Ip, m_Desk, 0);
        pSetup(m_Ip, m_Desk);
    }

    ClProcessorBase& Processor() override { return m_Ip; }

    Bytes Inputs() const override {
        Bytes aInputs;
        for (const ClImage& Image : m_Desk.m_aIn)
            Append(aInputs, Image);
        return aInputs;
    }

    Bytes Outputs() const override {
        m_Desk.m_adNumbers.clear();
        m_pResults(m_Ip, m_Desk);
        Bytes aOutputs;
        for (const ClImage& Image : m_Desk.m_aOut)
            Append(aOutputs, Image);
        Append(aOutputs, m_Desk.m_aComponents);
        Append(aOutputs, m_Desk.m_Mask);
        Append(aOutputs, m_Desk.m_OutData);
        for (const double dNumber : m_Desk.m_adNumbers)
            Append(aOutputs, dNumber);
        return aOutputs;
    }

private:
    mutable Ip m_Ip; // results are read through members that are not constant
    mutable StDesk m_Desk;
    Results m_pResults;
};

template <class Ip>
StRow Row(const char* szName, typename TpRun<Ip>::Setup pSetup = SetNothing<Ip>,
          typename TpRun<Ip>::Results pResults = SetNothing<Ip>) {
    return {szName, [=] { return std::make_unique<TpRun<Ip>>(pSetup, pResults); }};
}

void ReadRecord(ClCalibrateGeometricData& rData) {
    const Bytes aBlock = RecordBlock(PlausibleRecord(40, 36, 24, 20));
    ClMemStream Stream(aBlock.data(), aBlock.size());
    rData.ReadStream(Stream);
}

/// Half of the samples are objects.
template <class Ip>
void SetObjects(Ip&, StDesk& rDesk) {
    ClImage& rImage = rDesk.m_aIn[0];
    for (int y = 0; y < rImage.Height(); ++y)
        for (int x = 0; x < rImage.Width(); ++x)
            rImage.LineData(y)[x] &= 0x80;
}

/// A plate of bright dots, as the builders expect it by default.
ClTestImage Plate(int nHeight, int nRadiusY, double dPitchY) {
    ClTestImage image = BlankImage(ClImage::eUInt8, 345, nHeight);
    TestSupport::StPaint Paint;
    Paint.m_nRadiusY = nRadiusY;
    TestSupport::PaintPlane(image, 0, TestSupport::PatternPlaces(50, 0.07 * nHeight, 39.0, dPitchY),
                            Paint);
    return image;
}

template <class Builder>
void SetPlate(Builder& rIp, StDesk& rDesk, const ClImage& Plate) {
    rDesk.m_aIn[0] = Plate;
    rIp.m_pInImage = &rDesk.m_aIn[0];
    rIp.m_pOutData = &rDesk.m_OutData;
}

/// Where the detectors look for a finger of their own.
template <class Detector>
void SetDetector(Detector& rIp, StDesk& rDesk) {
    rDesk.m_aIn[0] = RandomImage(ClImage::eUInt8, 141, 117, 1, 3);
    rIp.m_pInImage = &rDesk.m_aIn[0];
    rIp.m_pOptOutProbImage = &rDesk.m_aOut[0];
    rIp.m_dRidgeDist = 7.0;
    rIp.m_pInOutMask = &rDesk.m_Mask;
}

void SetCorners(ClIpRenderPolygon& rIp, StDesk& rDesk) {
    for (const ClVector& vCorner : {ClVector{3, 4}, ClVector{30, 7}, ClVector{17, 28}})
        rDesk.m_aPolygon.Append(vCorner);
    rIp.m_pPolygon = &rDesk.m_aPolygon;
    rIp.m_pOutImage = &rDesk.m_aOut[0];
    rIp.m_nWidth = 40;
    rIp.m_nHeight = 36;
}

void SetPlanesToJoin(ClIpJoinPlanes& rIp, StDesk& rDesk) {
    rIp.m_apInPlane[0] = &rDesk.m_aIn[0];
    rIp.m_apInPlane[1] = &rDesk.m_aIn[1];
    rIp.m_pOutImage = &rDesk.m_aOut[0];
    rIp.m_nPlanes = 2;
}

void SetPlanesToSplit(ClIpSplitPlanes& rIp, StDesk& rDesk) {
    rDesk.m_aIn[0] = RandomImage(ClImage::eUInt8, 40, 36, 3, 4);
    rIp.m_pInImage = &rDesk.m_aIn[0];
    for (int p = 0; p < 3; ++p)
        rIp.m_apOutPlane[p] = &rDesk.m_aOut[p];
}

void SetEngine(ClIpCalibrateLumivane2& rIp, StDesk& rDesk) {
    const Bytes aBlock = RecordBlock(PlausibleRecord(48, 80, 24, 32));
    ClMemStream Stream(aBlock.data(), aBlock.size());
    rIp.Read(Stream);
    rDesk.m_aIn[0] = RandomImage(ClImage::eUInt8, 48, 80, 1, 5);
    rDesk.m_aIn[0].SetContent(ClImage::eGrayscale);
}

} // namespace

const std::vector<StRow>& AllProcessors() {
    static const std::vector<StRow> aRows = {
        Row<ClIpAbs>("Abs"),
        Row<ClIpAdd>("Add"),
        Row<ClIpBinarizeGlobal>("BinarizeGlobal"),
        Row<ClIpBinarizeLocal2>("BinarizeLocal2"),
        Row<ClIpBrightnessMask>("BrightnessMask",
                                [](ClIpBrightnessMask& rIp, StDesk& rDesk) {
                                    SetDetector(rIp, rDesk);
                                    rIp.m_dMinAreaMM2 = 0.0;
                                }),
        Row<ClIpBuildConvexHull>("BuildConvexHull", SetObjects<ClIpBuildConvexHull>),
        Row<ClIpCalibrateGeometricBicubic>("CalibrateGeometricBicubic",
                                           [](ClIpCalibrateGeometricBicubic& rIp, StDesk& rDesk) {
                                               ReadRecord(rDesk.m_Data);
                                               rIp.m_pData = &rDesk.m_Data;
                                           }),
        Row<ClIpCalibrateGeometricBuildRefPointsQK7>(
            "CalibrateGeometricBuildRefPointsQK7",
            [](ClIpCalibrateGeometricBuildRefPointsQK7& rIp, StDesk& rDesk) {
                static const ClTestImage Whole = Plate(951, 16, 80.0);
                SetPlate(rIp, rDesk, Whole);
            }),
        Row<ClIpCalibrateGeometricBuildRefPointsQK7Half>(
            "CalibrateGeometricBuildRefPointsQK7Half",
            [](ClIpCalibrateGeometricBuildRefPointsQK7Half& rIp, StDesk& rDesk) {
                static const ClTestImage Half = Plate(476, 8, 40.0);
                SetPlate(rIp, rDesk, Half);
            }),
        Row<ClIpCalibrateLumivane2>("CalibrateLumivane2", SetEngine),
        Row<ClIpConnectedComponent2>("ConnectedComponent2",
                                     [](ClIpConnectedComponent2& rIp, StDesk& rDesk) {
                                         SetObjects(rIp, rDesk);
                                         rIp.m_pInImageGrey = &rDesk.m_aIn[1];
                                         rIp.m_pComponents = &rDesk.m_aComponents;
                                     }),
        Row<ClIpContrastMask2>("ContrastMask2", SetDetector<ClIpContrastMask2>),
        Row<ClIpCut>("Cut",
                     [](ClIpCut& rIp, StDesk&) {
                         rIp.m_nDestWidth = 9;
                         rIp.m_nDestHeight = 7;
                     }),
        Row<ClIpEuclidLength>("EuclidLength"),
        Row<ClIpFilterDGauss>("FilterDGauss"),
        Row<ClIpFilterGauss>("FilterGauss"),
        Row<ClIpFilterMax>("FilterMax"),
        Row<ClIpFilterMedian>("FilterMedian"),
        Row<ClIpFilterMid>("FilterMid"),
        Row<ClIpFilterMin>("FilterMin"),
        Row<ClIpFloodFill>("FloodFill", SetObjects<ClIpFloodFill>),
        Row<ClIpImageExtension>("ImageExtension",
                                [](ClIpImageExtension& rIp, StDesk&) { rIp.m_nExtensionX = 6; }),
        Row<ClIpInvert>("Invert"),
        Row<ClIpJoinPlanes>("JoinPlanes", SetPlanesToJoin),
        Row<ClIpLabeling>(
            "Labeling", SetObjects<ClIpLabeling>,
            [](ClIpLabeling& rIp, StDesk& rDesk) { rDesk.m_adNumbers.push_back(rIp.m_nLabels); }),

        Row<ClIpMax>("Max"),
        Row<ClIpOffset>("Offset", [](ClIpOffset& rIp, StDesk&) { rIp.m_dOffset = 7.0; }),
        Row<ClIpQK7DynamicCalibration30>(
            "QK7DynamicCalibration30",
            [](ClIpQK7DynamicCalibration30& rIp, StDesk& rDesk) {
                rDesk.m_aIn[0] = RandomImage(ClImage::eUInt8, 64, 72, 1, 6);
                rIp.m_pOutMaskImage = &rDesk.m_aOut[1];
            },
            [](ClIpQK7DynamicCalibration30& rIp, StDesk& rDesk) {
                rDesk.m_adNumbers = {rIp.m_dDirtWarningLevel, rIp.m_dDryFingerWarningLevel};
            }),
        Row<ClIpQK7FunctionalityCheck>("QK7FunctionalityCheck",
                                       SetNothing<ClIpQK7FunctionalityCheck>,
                                       [](ClIpQK7FunctionalityCheck& rIp, StDesk& rDesk) {
                                           rDesk.m_adNumbers = {rIp.m_dOutDefectWarningLevel};
                                       }),
        Row<ClIpRenderPolygon>("RenderPolygon", SetCorners),
        Row<ClIpRescale>("Rescale",
                         [](ClIpRescale& rIp, StDesk&) {
                             rIp.m_nNewWidth = 53;
                             rIp.m_nNewHeight = 41;
                         }),
        Row<ClIpResize>("Resize"),
        Row<ClIpScale>("Scale", [](ClIpScale& rIp, StDesk&) { rIp.m_dScaleFactor = 0.5; }),
        Row<ClIpSetBorder>("SetBorder"),
        Row<ClIpSplitPlanes>("SplitPlanes", SetPlanesToSplit),
        Row<ClIpStretchRangeGlobal>("StretchRangeGlobal"),
        Row<ClIpStretchRangeGlobalNoiseRemoving>("StretchRangeGlobalNoiseRemoving"),
        Row<ClIpStretchRangeLocal>("StretchRangeLocal"),
        Row<ClIpSubsample>("Subsample"),
        Row<ClIpSubtract>("Subtract"),
        Row<ClIpUnsharpMasking>("UnsharpMasking"),
    };
    return aRows;
}

} // namespace Processors

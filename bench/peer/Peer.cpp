// Our calls and operators beside the same work done with OpenCV, measured in turn on one thread.
//
//     bench_peer [--rounds N] [--filter TEXT] [--level 1|3|4]
//
// Ends with 0 when every goal was reached, with 1 otherwise.

#include "OwnCalls.h"
#include "PeerGeneration.h"
#include "PeerPipeline.h"
#include "Race.h"
#include "Scene.h"

#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/IpSubtract.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "Tools/InstructionLevel.h"

#include <opencv2/core/utility.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace peer {

namespace {

constexpr double cdCall = 0.25; ///< of the peer's time
constexpr double cdContamination = 0.3;
constexpr double cdTable = 0.2;
constexpr double cdWarp = 0.2;
constexpr double cdOperator = 0.5;

/// The image's pixels as the peer sees them.
cv::Mat View(const ClImage& Image) {
    return cv::Mat(Image.Height(), Image.Width(), CV_8U, Image.Data(),
                   static_cast<std::size_t>(Image.LineStrideBytes()));
}

std::vector<cv::Point2d> Points(const ClCalibrateGeometricData::PointList& List) {
    std::vector<cv::Point2d> aPoints;
    for (unsigned long i = 0; i < List.Entries(); ++i)
        aPoints.emplace_back(List.Data()[i].x, List.Data()[i].y);
    return aPoints;
}

/// What both programs keep from run to run.
struct StBench {
    explicit StBench(StScene& rScene);

    std::vector<cv::Point2d> m_aTarget, m_aActual;
    cv::Size m_Frame;
    cv::Mat m_Positions, m_Fractions;
};

StBench::StBench(StScene& rScene)
    : m_aTarget(Points(rScene.m_Record.m_aTarget)), m_aActual(Points(rScene.m_Record.m_aActual[0])),
      m_Frame(View(rScene.m_Warped).size()) {
    ClPeerSpline spline;
    spline.Solve(m_aTarget, m_aActual);
    cv::Mat x;
    cv::Mat y;
    spline.Table(m_Frame, x, y);
    cv::convertMaps(x, y, m_Positions, m_Fractions, CV_16SC2);
}

void AddCalls(ClRace& rRace, StScene& rScene, StBench& rBench) {
    static ClPeerPipeline pipeline(rBench.m_Positions, rBench.m_Fractions);
    const auto peerOn = [&](StCapture& rCapture) {
        return [&rCapture] { pipeline.Run(View(rCapture.m_Image)); };
    };
    const auto ownOn = [](ClOwnCalls& rCalls, StCapture& rCapture) {
        return [&rCalls, &rCapture] { rCalls.Correct(rCapture.m_Block); };
    };
    static ClOwnCalls defaults(rScene.m_RecordBlock, {});
    static ClOwnCalls mask(rScene.m_RecordBlock, {"MaskIsOutput=true"});
    static ClOwnCalls oddLines(rScene.m_RecordBlock, {"GeometricCalibrate=oddLines"});
    StCapture& rFinger = rScene.m_Finger;
    StCapture& rEmpty = rScene.m_Empty;
    rRace.Add("Calibrate, a finger", cdCall, peerOn(rFinger), ownOn(defaults, rFinger));
    rRace.Add("Calibrate, no finger", cdCall, peerOn(rEmpty), ownOn(defaults, rEmpty));
    rRace.Add("Calibrate, MaskIsOutput", cdCall, peerOn(rFinger), ownOn(mask, rFinger));
    rRace.Add("Calibrate, oddLines", cdCall, peerOn(rFinger), ownOn(oddLines, rFinger));

    static ClPeerContamination contamination;
    rRace.Add(
        "ContaminationDetection", cdContamination,
        [&] { contamination.Run(View(rFinger.m_Image)); },
        [&] { defaults.Contamination(rFinger.m_Block); });
}

void AddTables(ClRace& rRace, StScene& rScene, StBench& rBench) {
    static ClPeerGeneration plain(rBench.m_aTarget, rBench.m_aActual, rBench.m_Frame, false);
    static ClPeerGeneration matrices(rBench.m_aTarget, rBench.m_aActual, rBench.m_Frame, true);
    static ClOwnCalls calls(rScene.m_RecordBlock, {});
    StCapture& rTarget = rScene.m_Target;
    const auto own = [&] { calls.Generate(rTarget.m_Block); };
    rRace.Add(
        "CalibrateGenerateData, std::log", cdTable, [&] { plain.Run(View(rTarget.m_Image)); }, own);
    rRace.Add(
        "CalibrateGenerateData, cv::log", cdTable, [&] { matrices.Run(View(rTarget.m_Image)); },
        own);

    static ClPeerSpline spline;
    static cv::Mat x;
    static cv::Mat y;
    rRace.Add(
        "CalibrateSetData", cdTable,
        [&] {
            spline.Solve(rBench.m_aTarget, rBench.m_aActual);
            spline.Table(rBench.m_Frame, x, y);
        },
        [] { calls.SetData(); });

    static ClIpCalibrateGeometricBicubic warp;
    static ClImage warped;
    static cv::Mat remapped;
    warp.m_pData = &rScene.m_Record;
    warp.Initiate();
    warp.m_pInImage = &rScene.m_Finger.m_Image;
    warp.m_pOutImage = &warped;
    rRace.Add(
        "warp by table", cdWarp,
        [&] {
            cv::remap(View(rScene.m_Finger.m_Image), remapped, rBench.m_Positions,
                      rBench.m_Fractions, cv::INTER_CUBIC, cv::BORDER_CONSTANT, cv::Scalar(255));
        },
        [] { warp.Apply(); });
}

// Operators: each pair shares its two outputs with no other.

std::string Sized(const std::string& sName, const ClImage& Image) {
    return sName + " @" + std::to_string(Image.Width()) + "x" + std::to_string(Image.Height());
}

/// One pair on one image; the outputs live as long as the race.
template <class PeerStep, class OwnStep>
void AddOperator(ClRace& rRace, const std::string& sName, ClImage& rIn, PeerStep peerStep,
                 OwnStep ownStep) {
    auto pOutPeer = std::make_shared<cv::Mat>();
    auto pOutOwn = std::make_shared<ClImage>();
    rRace.Add(
        Sized(sName, rIn), cdOperator,
        [&rIn, peerStep, pOutPeer]() mutable {
            peerStep(View(rIn), *pOutPeer);
            Use(pOutPeer->data);
        },
        [&rIn, ownStep, pOutOwn]() mutable {
            ownStep(rIn, *pOutOwn);
            Use(pOutOwn->Data());
        });
}

void AddMeans(ClRace& rRace, StScene& rScene) {
    for (const int nWidth : {5, 15, 21, 23, 51, 53})
        AddOperator(
            rRace, "mean " + std::to_string(nWidth), rScene.m_Warped,
            [nWidth, mean = ClMeans()](const cv::Mat& In, cv::Mat& rOut) mutable {
                mean(In, rOut, nWidth);
            },
            [nWidth](ClImage& rIn, ClImage& rOut) {
                ClIpFilterMid().ApplyParam(rIn, rOut, nWidth);
            });
    AddOperator(
        rRace, "mean 51", rScene.m_Finger.m_Image,
        [mean = ClMeans()](const cv::Mat& In, cv::Mat& rOut) mutable { mean(In, rOut, 51); },
        [](ClImage& rIn, ClImage& rOut) { ClIpFilterMid().ApplyParam(rIn, rOut, 51); });
}

void AddRankFilters(ClRace& rRace, StScene& rScene) {
    ClImage& rWarped = rScene.m_Warped;
    for (const int nWidth : {7, 23}) {
        const cv::Mat square = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(nWidth, nWidth));
        AddOperator(
            rRace, "minimum " + std::to_string(nWidth), rWarped,
            [square](const cv::Mat& In, cv::Mat& rOut) { cv::erode(In, rOut, square); },
            [nWidth](ClImage& rIn, ClImage& rOut) {
                ClIpFilterMin().ApplyParam(rIn, rOut, nWidth, ClIpFilterBase::ModeXY);
            });
        AddOperator(
            rRace, "maximum " + std::to_string(nWidth), rWarped,
            [square](const cv::Mat& In, cv::Mat& rOut) { cv::dilate(In, rOut, square); },
            [nWidth](ClImage& rIn, ClImage& rOut) {
                ClIpFilterMax().ApplyParam(rIn, rOut, nWidth, ClIpFilterBase::ModeXY);
            });
    }
    AddOperator(
        rRace, "median 3", rWarped,
        [](const cv::Mat& In, cv::Mat& rOut) { cv::medianBlur(In, rOut, 3); },
        [](ClImage& rIn, ClImage& rOut) { ClIpFilterMedian().ApplyParam(rIn, rOut, 3); });
}

void AddLinearFilters(ClRace& rRace, StScene& rScene) {
    ClImage& rRaw = rScene.m_Finger.m_Image;
    AddOperator(
        rRace, "Gauss 0.9 along y", rRaw,
        [](const cv::Mat& In, cv::Mat& rOut) { Gauss(In, rOut, 7, 0.9, false); },
        [](ClImage& rIn, ClImage& rOut) {
            ClIpFilterGauss Filter;
            Filter.m_nMode = ClIpFilterBase::ModeY;
            Filter.ApplyParam(rIn, rOut, 0.9, 0);
        });
    AddOperator(
        rRace, "sharpening along y", rRaw,
        [sharpen = ClSharpen()](const cv::Mat& In, cv::Mat& rOut) mutable { sharpen(In, rOut); },
        [](ClImage& rIn, ClImage& rOut) {
            ClIpUnsharpMasking Unsharp;
            Unsharp.m_dGaussSigma = 0.9;
            Unsharp.m_nMode = ClIpFilterBase::ModeY;
            Unsharp.ApplyParam(rIn, rOut, 0);
        });
    AddOperator(
        rRace, "Gauss 1.5", rRaw,
        [](const cv::Mat& In, cv::Mat& rOut) { Gauss(In, rOut, 13, 1.5, true); },
        [](ClImage& rIn, ClImage& rOut) { ClIpFilterGauss().ApplyParam(rIn, rOut, 1.5, 0); });
    AddOperator(
        rRace, "gradient length", rScene.m_Warped,
        [length = ClGradientLength()](const cv::Mat& In, cv::Mat& rOut) mutable {
            length(In, rOut);
        },
        [pX = std::make_shared<ClImage>(), pY = std::make_shared<ClImage>()](ClImage& rIn,
                                                                             ClImage& rOut) {
            ClIpFilterDGauss Filter;
            Filter.m_pInImage = &rIn;
            Filter.m_pOutImage = pX.get();
            Filter.m_nMode = ClIpFilterBase::ModeX;
            Filter.Apply();
            Filter.m_pOutImage = pY.get();
            Filter.m_nMode = ClIpFilterBase::ModeY;
            Filter.Apply();
            ClIpEuclidLength().ApplyParam(*pX, *pY, rOut);
        });
}

void AddGreyValues(ClRace& rRace, StScene& rScene) {
    ClImage& rWarped = rScene.m_Warped;
    ClImage& rMask = rScene.m_Mask;
    rRace.Add(
        Sized("histogram", rWarped), cdOperator,
        [&] {
            const Histogram aCounts = HistogramOf(View(rWarped));
            Use(aCounts.data());
        },
        [&] {
            ClHistogram Histogram;
            Histogram.Create(rWarped);
            Use(&Histogram);
        });
    AddOperator(
        rRace, "global stretch", rWarped,
        [](const cv::Mat& In, cv::Mat& rOut) { cv::LUT(In, StretchTable(20, 230), rOut); },
        [](ClImage& rIn, ClImage& rOut) {
            ClIpStretchRangeGlobal Stretch;
            Stretch.m_nOldRangeFrom = 20;
            Stretch.m_nOldRangeTo = 230;
            Stretch.ApplyParam(rIn, rOut);
        });
    AddOperator(
        rRace, "threshold", rWarped,
        [](const cv::Mat& In, cv::Mat& rOut) { Binarize(In, rOut, 128); },
        [](ClImage& rIn, ClImage& rOut) { ClIpBinarizeGlobal().ApplyParam(rIn, rOut, 128.0); });
    AddOperator(
        rRace, "scale 2.2", rWarped,
        [](const cv::Mat& In, cv::Mat& rOut) { In.convertTo(rOut, CV_8U, 2.2); },
        [](ClImage& rIn, ClImage& rOut) { ClIpScale().ApplyParam(rIn, rOut, 2.2); });
    AddOperator(
        rRace, "add", rWarped,
        [&](const cv::Mat& In, cv::Mat& rOut) { cv::add(In, View(rMask), rOut); },
        [&](ClImage& rIn, ClImage& rOut) {
            ClIpAdd Add;
            Add.m_eMode = ClIpAdd::ModeCut;
            Add.ApplyParam(rIn, rMask, rOut, ClImage::eTypeDefault);
        });
    AddOperator(
        rRace, "subtract", rWarped,
        [&](const cv::Mat& In, cv::Mat& rOut) { cv::subtract(In, View(rMask), rOut); },
        [&](ClImage& rIn, ClImage& rOut) {
            ClIpSubtract().ApplyParam(rIn, rMask, rOut, ClImage::eTypeDefault);
        });
}

void AddLocalSteps(ClRace& rRace, StScene& rScene) {
    AddOperator(
        rRace, "local stretch 23", rScene.m_Warped,
        [stretch = ClLocalStretch()](const cv::Mat& In, cv::Mat& rOut) mutable {
            stretch(In, rOut);
        },
        [](ClImage& rIn, ClImage& rOut) {
            ClIpStretchRangeLocal Stretch;
            Stretch.m_nFilterWidth = 23;
            Stretch.m_nSubSampleRate = 1;
            Stretch.m_bUseMaxSmoothing = true;
            Stretch.ApplyParam(rIn, rOut);
        });
    AddOperator(
        rRace, "local threshold 42 x 87", rScene.m_Target.m_Image,
        [threshold = ClLocalThreshold()](const cv::Mat& In, cv::Mat& rOut) mutable {
            threshold(In, rOut, 42, 87, 10);
        },
        [](ClImage& rIn, ClImage& rOut) {
            ClIpBinarizeLocal2().ApplyParam(rIn, rOut, 42, 87, 10);
        });
}

struct StArguments {
    int m_nRounds = 9;
    std::string m_sFilter;
};

StArguments Parse(int argc, char** argv) {
    StArguments Arguments;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--rounds") == 0)
            Arguments.m_nRounds = std::atoi(argv[i + 1]);
        else if (std::strcmp(argv[i], "--filter") == 0)
            Arguments.m_sFilter = argv[i + 1];
        else if (std::strcmp(argv[i], "--level") == 0)
            LimitInstructionLevel(static_cast<EInstructionLevel>(std::atoi(argv[i + 1])));
    }
    return Arguments;
}

int Run(const StArguments& Arguments) {
    cv::setNumThreads(1);
    std::printf("OpenCV %s, one thread, features in use: %s; our level %d\n", CV_VERSION,
                cv::getCPUFeaturesLine().c_str(), static_cast<int>(InstructionLevel()));
    static StScene scene;
    static StBench bench(scene);
    ClRace race;
    AddCalls(race, scene, bench);
    AddTables(race, scene, bench);
    AddMeans(race, scene);
    AddRankFilters(race, scene);
    AddLinearFilters(race, scene);
    AddGreyValues(race, scene);
    AddLocalSteps(race, scene);
    race.Run(Arguments.m_nRounds, Arguments.m_sFilter);
    return race.Print() == 0 ? 0 : 1;
}

} // namespace

} // namespace peer

int main(int argc, char** argv) {
    return peer::Run(peer::Parse(argc, argv));
}

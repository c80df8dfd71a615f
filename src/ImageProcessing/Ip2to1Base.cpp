#include "ImageProcessing/Ip2to1Base.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/Overlay.h"
#include "ImageProcessing/Walks/PairWalk.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr TpNamedValues<bool> caTrueFalse = {{true, "true"}, {false, "false"}};

constexpr const char* cszInImage1 = "In1: Original Image";
constexpr const char* cszInImage2 = "In2: 2nd Original Image";
constexpr const char* cszOutImage = "Out: Output Image";
constexpr const char* cszOutImageType = "In: OutImage Datatype";
constexpr const char* cszSizeMustBeEqual = "Bool: Size must be equal";
constexpr const char* cszFillColor = "Double: Fillcolor for Offset-Images";
constexpr const char* cszOffsetX = "Long: Offset of Image2 to Image1 in x-direction";
constexpr const char* cszOffsetY = "Long: Offset of Image2 to Image1 in y-direction";

} // namespace

ClIp2to1Base::ClIp2to1Base() {
    ClIp2to1Base::SetParametersToDefault();
}

void ClIp2to1Base::SetParametersToDefault() {
    m_pInImage1 = nullptr;
    m_pInImage2 = nullptr;
    m_pOutImage = nullptr;
    m_nOutImageType = ClImage::eTypeDefault;
    m_bSizeMustBeEqual = true;
    m_dFillColor = 0.0;
    std::fill(std::begin(m_adPlaneFillColor), std::end(m_adPlaneFillColor), 0.0);
    m_nOffsetX = 0;
    m_nOffsetY = 0;
    m_bUseLUT = false;
}

void ClIp2to1Base::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage1", m_pInImage1, cszInImage1);
    AddInImage(List, "InImage2", m_pInImage2, cszInImage2);
    AddOutImage(List, "OutImage", m_pOutImage, cszOutImage);
    AddPixelType(List, "OutImageType", m_nOutImageType, cszOutImageType);
    AddEnum(List, "SizeMustBeEqual", m_bSizeMustBeEqual, caTrueFalse, cszSizeMustBeEqual);
    AddNumber(List, "FillColor", m_dFillColor, cszFillColor);
    AddNumber(List, "OffsetX", m_nOffsetX, cszOffsetX);
    AddNumber(List, "OffsetY", m_nOffsetY, cszOffsetY);
}

void ClIp2to1Base::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage1", m_pInImage1, cszInImage1);
    AddInImage(Container, "pInImage2", m_pInImage2, cszInImage2);
    AddOutImage(Container, "pOutImage", m_pOutImage, cszOutImage);
    AddPixelType(Container, "OutImageType", m_nOutImageType, cszOutImageType);
    Container.AddEnum("SizeMustBeEqual", &m_bSizeMustBeEqual, caTrueFalse, cszSizeMustBeEqual);
    Container.AddNumeric("FillColor", &m_dFillColor, cszFillColor);
    Container.AddNumeric("OffsetX", &m_nOffsetX, cszOffsetX);
    Container.AddNumeric("OffsetY", &m_nOffsetY, cszOffsetY);
    Container.Keep(&m_adPlaneFillColor, &m_bUseLUT);
}

// The run

bool ClIp2to1Base::CanApply() {
    return m_pInImage1 != nullptr && m_pInImage2 != nullptr && m_pOutImage != nullptr &&
           m_pInImage1->Data() != nullptr && m_pInImage2->Data() != nullptr;
}

long ClIp2to1Base::Initialize() {
    if (!CanApply())
        return QMT_ERROR_PARAM_IS_MISSING;
    if (!m_bSizeMustBeEqual)
        return 0;
    const bool bPlain = StOverlay(*m_pInImage1, *m_pInImage2, m_nOffsetX, m_nOffsetY).IsPlain();
    return bPlain ? 0 : QMT_ERROR_INVALID_PARAMETER;
}

long ClIp2to1Base::Process() {
    if (!CanApply())
        return QMT_ERROR_PARAM_IS_MISSING;
    if (m_pOutImage != m_pInImage1 && m_pOutImage != m_pInImage2)
        return ProcessToTarget(*m_pOutImage);
    ClImage Local;
    const long nResult = ProcessToTarget(Local);
    if (nResult == 0)
        m_pOutImage->Swap(Local);
    return nResult;
}

long ClIp2to1Base::ProcessToTarget(ClImage& Target) {
    ClImage& In1 = *m_pInImage1;
    ClImage& In2 = *m_pInImage2;
    const bool bDefault = m_nOutImageType == ClImage::eTypeDefault;
    const unsigned char nType = bDefault ? In1.DataType() : m_nOutImageType;
    if (!IsPixelType(In1.DataType()) || !IsPixelType(In2.DataType()) || !IsPixelType(nType))
        return cnUnknownPixelType;
    ProcessOverlayPreparations(In1, In2, Target, nType);
    return DoProcess(In1, In2, Target, m_nOverlapWidth, m_nOverlapHeight, In1.Planes(),
                     In2.Planes(), m_nIn1Offset, In1.LineStrideSamples(), m_nIn2Offset,
                     In2.LineStrideSamples(), m_nOutOffset, Target.LineStrideSamples());
}

void ClIp2to1Base::ProcessOverlayPreparations(ClImage& In1, ClImage& In2, ClImage& Out,
                                              unsigned char nType) {
    Out.NewWithType(In1, nType);
    const StOverlay Overlay(In1, In2, m_nOffsetX, m_nOffsetY);
    m_nOverlapWidth = Overlay.m_X.m_nOverlap;
    m_nOverlapHeight = Overlay.m_Y.m_nOverlap;
    Overlay.NewOutput(Out, nType, In1);
    if (!Overlay.IsPlain()) {
        FillPlanes(Out, Out.Planes() == 1 ? &m_dFillColor : m_adPlaneFillColor);
        PasteImage(In1, Out, Overlay.m_X.m_nStart1, Overlay.m_Y.m_nStart1);
        PasteImage(In2, Out, Overlay.m_X.m_nStart2, Overlay.m_Y.m_nStart2);
    }
    m_nOutOffset = Overlay.OutOffset(Out);
    m_nIn1Offset = Overlay.In1Offset(In1);
    m_nIn2Offset = Overlay.In2Offset(In2);
}

double ClIp2to1Base::GetValue(ClImage&, ClImage&, ClImage&, double, double) {
    return 0.0;
}

long ClIp2to1Base::DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                             long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride,
                             long nIn2Offset, long nIn2Stride, long nOutOffset, long nOutStride) {
    const StPairArea Area{In1,        In2,        Out,        nWidth,     nHeight,
                          nPlanes1,   nPlanes2,   nIn1Offset, nIn1Stride, nIn2Offset,
                          nIn2Stride, nOutOffset, nOutStride};
    if (!ArePixelTypes(In1, In2, Out))
        return cnUnknownPixelType;
    if (UsesLUT(Area))
        return ProcessLUT(Area);
    WalkPairs(Area, [&](double a, double b) { return GetValue(In1, In2, Out, a, b); });
    return 0;
}

long ClIp2to1Base::ApplyParam(ClImage& In1, ClImage& In2, ClImage& Out, unsigned char nOutType) {
    m_pInImage1 = &In1;
    m_pInImage2 = &In2;
    m_pOutImage = &Out;
    m_nOutImageType = nOutType;
    return Apply();
}

// The table

namespace {

constexpr long cnAxis = 256;

/// The values of one image for which the table has entries, and their places on its axis.
struct StTableAxis {
    explicit StTableAxis(const ClImage& Image) {
        const double dBlack = Image.Black();
        const double dWhite = Image.White();
        if (!std::isfinite(dBlack) || !std::isfinite(dWhite))
            return;
        double dValue = dBlack;
        for (; m_nCount < cnAxis && dValue <= dWhite; dValue += 1.0) {
            const long nPlace = static_cast<long>(dValue - dBlack);
            if (nPlace >= cnAxis) // beyond 2^53 a step of 1 may become one of 2
                return;
            m_aValues[m_nCount] = dValue;
            m_aPlaces[m_nCount++] = nPlace;
        }
    }

    long m_nCount = 0;
    double m_aValues[cnAxis];
    long m_aPlaces[cnAxis];
};

/// The rows of samples of image 1.
class ClTableRows {
public:
    explicit ClTableRows(const ClImage& Image)
        : m_load(LoadSamplesOf(Image.DataType())),
          m_nFirst(Image.DataType() == ClImage::eUInt8
                       ? SampleFromDouble<unsigned char>(Image.Black())
                       : static_cast<unsigned char>(0)) {}

    void Load(const unsigned char* pIn, long nSamples, unsigned char* pRows) const {
        double aBlock[cnSampleBlock];
        m_load(pIn, nSamples, aBlock);
        for (long i = 0; i < nSamples; ++i)
            pRows[i] =
                static_cast<unsigned char>(SampleFromDouble<unsigned char>(aBlock[i]) - m_nFirst);
    }

private:
    LoadSamples m_load;
    unsigned char m_nFirst;
};

} // namespace

bool ClIp2to1Base::UsesLUT(const StPairArea& Area) const {
    return m_bUseLUT && Area.m_rIn2.DataType() == ClImage::eUInt8;
}

long ClIp2to1Base::ProcessLUT(const StPairArea& Area) {
    return DispatchPixelType(Area.m_rOut.DataType(), [&](auto Tag) {
        using TOut = typename decltype(Tag)::Type;
        const auto pTable = Vek::NewArrayPtr<TOut>(cnAxis * cnAxis);
        std::fill_n(pTable.get(), cnAxis * cnAxis, TOut{0});
        FillTable(Area, pTable.get());
        WalkTable(Area, pTable.get());
        return 0L;
    });
}

template <class TOut>
void ClIp2to1Base::FillTable(const StPairArea& Area, TOut* pTable) {
    const StTableAxis Rows(Area.m_rIn1);
    const StTableAxis Columns(Area.m_rIn2);
    for (long i = 0; i < Rows.m_nCount; ++i)
        for (long k = 0; k < Columns.m_nCount; ++k)
            pTable[Rows.m_aPlaces[i] * cnAxis + Columns.m_aPlaces[k]] =
                SampleFromDouble<TOut>(GetValue(Area.m_rIn1, Area.m_rIn2, Area.m_rOut,
                                                Rows.m_aValues[i], Columns.m_aValues[k]));
}

template <class TOut>
void ClIp2to1Base::WalkTable(const StPairArea& Area, const TOut* pTable) {
    const ClTableRows Rows(Area.m_rIn1);
    const long nSpread = PlanesPerSample(Area.m_nPlanes1, Area.m_nPlanes2);
    unsigned char aRows[cnSampleBlock];
    WalkPairBlocks(Area, [&](const unsigned char* pIn1, const unsigned char* pColumns,
                             unsigned char* pOut, long nSamples) {
        Rows.Load(pIn1, nSamples, aRows);
        TOut* pSamples = reinterpret_cast<TOut*>(pOut);
        for (long i = 0; i < nSamples; ++i)
            pSamples[i] = pTable[aRows[i] * cnAxis + pColumns[i / nSpread]];
    });
}

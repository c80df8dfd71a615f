#include "ImageProcessing/IpRescale.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/LocalTarget.h"
#include "ImageProcessing/PlaneByPlane.h"
#include "ImageProcessing/RequireBytes.h"
#include "ImageProcessing/RescaleModes.h"
#include "ImageProcessing/SettingsText.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <cstring>
#include <iterator>

namespace {

/// No capture is larger; what asks for more has lost its numbers.
constexpr int cnLargestSide = 16384;

/// Rounds a size up, unless it exceeds a whole number by less than this lacks to 1.
constexpr double cdRoundUp = 0.9999;

constexpr TpNamedValues<ClIpRescale::eProcessingMode> caModeChoice = {
    {Rescale::caModes[0].m_eMode, Rescale::caModes[0].m_szName},
    {Rescale::caModes[1].m_eMode, Rescale::caModes[1].m_szName},
    {Rescale::caModes[2].m_eMode, Rescale::caModes[2].m_szName},
    {Rescale::caModes[3].m_eMode, Rescale::caModes[3].m_szName},
    {Rescale::caModes[4].m_eMode, Rescale::caModes[4].m_szName}};
static_assert(caModeChoice.size() == std::size(Rescale::caModes));

/// Null for a value that is no mode.
const Rescale::StMode* FindMode(ClIpRescale::eProcessingMode eMode) {
    for (const Rescale::StMode& Mode : Rescale::caModes)
        if (Mode.m_eMode == eMode)
            return &Mode;
    return nullptr;
}

/// The name of a mode without its first word, which every one has.
const char* ModeText(ClIpRescale::eProcessingMode eMode) {
    const Rescale::StMode* pMode = FindMode(eMode);
    return pMode != nullptr ? pMode->m_szName + std::strlen("Mode") : "InvalidMode";
}

constexpr const char* cszInImage = "In: Original Image";
constexpr const char* cszOutImage = "Out: Rescaled Image";
constexpr const char* cszNewWidth = "In: New Image Width";
constexpr const char* cszNewHeight = "In: New Image Height";
constexpr const char* cszNewPelsX = "In: New Horizontal Resolution In Pels";
constexpr const char* cszNewPelsY = "In: New Vertical Resolution In Pels";
constexpr const char* cszMode = "In: Interpolation Mode";

bool HasPels(const ClImage& Image) {
    return Image.PelsX() >= 1 && Image.PelsY() >= 1;
}

} // namespace

ClIpRescale::ClIpRescale() {
    ClIpRescale::SetParametersToDefault();
}

ClProcessorBase* ClIpRescale::Create() {
    return Vek::NewObject<ClIpRescale>();
}

const char* ClIpRescale::Name() const {
    return "ClIpRescale";
}

void ClIpRescale::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_nNewWidth = 0;
    m_nNewHeight = 0;
    m_nNewPelsX = 0;
    m_nNewPelsY = 0;
    m_eMode = ModeBiLinear;
    m_dConvParameter1 = -0.75;
}

void ClIpRescale::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "InImage", m_pInImage, cszInImage);
    AddOutImage(List, "OutImage", m_pOutImage, cszOutImage);
    AddNumber(List, "NewWidth", m_nNewWidth, cszNewWidth);
    AddNumber(List, "NewHeight", m_nNewHeight, cszNewHeight);
    AddNumber(List, "NewPelsX", m_nNewPelsX, cszNewPelsX);
    AddNumber(List, "NewPelsY", m_nNewPelsY, cszNewPelsY);
    AddEnum(List, "Mode", m_eMode, caModeChoice, cszMode);
    AddNumber(List, "dConvParameter1", m_dConvParameter1);
}

void ClIpRescale::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage, cszInImage);
    AddOutImage(Container, "pOutImage", m_pOutImage, cszOutImage);
    Container.AddNumeric("NewWidth", &m_nNewWidth, cszNewWidth);
    Container.AddNumeric("NewHeight", &m_nNewHeight, cszNewHeight);
    Container.AddNumeric("NewPelsX", &m_nNewPelsX, cszNewPelsX);
    Container.AddNumeric("NewPelsY", &m_nNewPelsY, cszNewPelsY);
    Container.AddEnum("eMode", &m_eMode, caModeChoice, cszMode);
    Container.AddNumeric("dConvParameter1", &m_dConvParameter1);
}

long ClIpRescale::ParameterString(char* pBuffer, unsigned long nSize) {
    if (m_nNewWidth != 0)
        return WriteSettings(pBuffer, nSize, "W%d H%d %s", m_nNewWidth, m_nNewHeight,
                             ModeText(m_eMode));
    return WriteSettings(pBuffer, nSize, "X%d Y%d %s", m_nNewPelsX, m_nNewPelsY, ModeText(m_eMode));
}

// The destination

bool ClIpRescale::HasImages() const {
    return m_pInImage != nullptr && m_pOutImage != nullptr && m_pInImage->Data() != nullptr &&
           m_pInImage->Width() >= 1 && m_pInImage->Height() >= 1 && m_pInImage->Planes() >= 1;
}

bool ClIpRescale::NewSizeIsSet() const {
    return m_nNewWidth != 0 || m_nNewHeight != 0;
}

bool ClIpRescale::NewPelsAreSet() const {
    return m_nNewPelsX >= 1 && m_nNewPelsY >= 1;
}

long ClIpRescale::Initialize() {
    if (!HasImages())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    return HasPels(*m_pInImage) && NewPelsAreSet() ? FixByPels() : FixBySize();
}

long ClIpRescale::FixByPels() {
    double dWidth = m_pInImage->Width();
    double dHeight = m_pInImage->Height();
    if (m_nNewPelsX != m_pInImage->PelsX() || m_nNewPelsY != m_pInImage->PelsY()) {
        dWidth = dWidth * m_nNewPelsX / m_pInImage->PelsX() + cdRoundUp;
        dHeight = dHeight * m_nNewPelsY / m_pInImage->PelsY() + cdRoundUp;
    }
    return FixDestination(dWidth, dHeight, m_nNewPelsX, m_nNewPelsY);
}

long ClIpRescale::FixBySize() {
    if (m_nNewWidth < 1 || m_nNewHeight < 1)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    long long nPelsX = m_pInImage->PelsX();
    long long nPelsY = m_pInImage->PelsY();
    if (m_nNewWidth != m_pInImage->Width() || m_nNewHeight != m_pInImage->Height()) {
        nPelsX = m_nNewWidth * nPelsX / m_pInImage->Width();
        nPelsY = m_nNewHeight * nPelsY / m_pInImage->Height();
    }
    return FixDestination(m_nNewWidth, m_nNewHeight, nPelsX, nPelsY);
}

long ClIpRescale::FixDestination(double dWidth, double dHeight, long long nPelsX,
                                 long long nPelsY) {
    if (dWidth >= cnLargestSide + 1 || dHeight >= cnLargestSide + 1)
        return QMT_ERROR_BITMAP_PELS;
    m_nDestWidth = static_cast<int>(dWidth);
    m_nDestHeight = static_cast<int>(dHeight);
    m_nDestPelsX = static_cast<int>(nPelsX);
    m_nDestPelsY = static_cast<int>(nPelsY);
    return 0;
}

// The run

long ClIpRescale::Process() {
    if (!HasImages())
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    if (m_pInImage->DataType() != ClImage::eInt8)
        RequireBytes(*m_pInImage, VEK_HERE);
    if (m_nDestWidth == m_pInImage->Width() && m_nDestHeight == m_pInImage->Height()) {
        *m_pOutImage = *m_pInImage;
        return 0;
    }
    if (m_pInImage->Planes() > 1)
        return ProcessMultiPlane();
    return ProcessInto(*m_pInImage, *m_pOutImage,
                       [this](const ClImage& In, ClImage& Out) { return ProcessPlane(In, Out); });
}

long ClIpRescale::ProcessMultiPlane() {
    // Samples of these spaces are not made of parts that can be averaged one by one.
    if (m_pInImage->Content() == ClImage::eXYZ || m_pInImage->Content() == ClImage::eCIELab)
        return QMT_ERROR_INTERNAL;
    return ProcessPlaneByPlane(*m_pInImage, *m_pOutImage, [this](const ClImage& In, ClImage& Out) {
        return ProcessPlane(In, Out);
    });
}

long ClIpRescale::ProcessPlane(const ClImage& In, ClImage& Out) {
    const Rescale::StMode* pMode = FindMode(m_eMode);
    if (pMode == nullptr)
        return QMT_ERROR_PARAM_OUT_OF_RANGE;
    pMode->m_pfnProcess(*this, In, Out);
    return 0;
}

void Rescale::NewOutput(const ClIpRescale& Run, const ClImage& In, int nWidth, int nHeight,
                        ClImage& Out) {
    if (nWidth < 1 || nHeight < 1)
        throw ClException("Image area must be positive", QMT_ERROR_INTERNAL, true, VEK_HERE);
    Out.NewWithType(In.DataType(), nWidth, nHeight, 1, Run.m_nDestPelsX, Run.m_nDestPelsY);
}

// Entry points

long ClIpRescale::ApplyMode(ClImage& rIn, ClImage& rOut, eProcessingMode eMode) {
    m_pInImage = &rIn;
    m_pOutImage = &rOut;
    m_eMode = eMode;
    return Apply();
}

long ClIpRescale::ApplyParam(ClImage& rIn, ClImage& rOut, eProcessingMode eMode) {
    if (!NewSizeIsSet() && !NewPelsAreSet())
        return QMT_ERROR_INTERNAL;
    return ApplyMode(rIn, rOut, eMode);
}

long ClIpRescale::ApplyParamSize(ClImage& rIn, ClImage& rOut, int nWidth, int nHeight,
                                 eProcessingMode eMode) {
    if (eMode == ModeWholeNumbered)
        return QMT_ERROR_INTERNAL;
    m_nNewPelsX = 0;
    m_nNewPelsY = 0;
    m_nNewWidth = nWidth;
    m_nNewHeight = nHeight;
    return ApplyMode(rIn, rOut, eMode);
}

long ClIpRescale::ApplyParamPels(ClImage& rIn, ClImage& rOut, int nPelsX, int nPelsY,
                                 eProcessingMode eMode) {
    if (!HasPels(rIn))
        return QMT_ERROR_BITMAP_PELS;
    m_nNewWidth = 0;
    m_nNewHeight = 0;
    m_nNewPelsX = nPelsX;
    m_nNewPelsY = nPelsY;
    return ApplyMode(rIn, rOut, eMode);
}

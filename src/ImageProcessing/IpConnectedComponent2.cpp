#include "ImageProcessing/IpConnectedComponent2.h"

#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpLabeling.h"
#include "ImageProcessing/Kernels/Labelling.h"
#include "ImageProcessing/RequireBytes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using ClComponent = ClIpConnectedComponent2::ClComponent;
using ComponentsArray_t = ClIpConnectedComponent2::ComponentsArray_t;

constexpr double cdHalfPi = 1.57079632679489661923;

bool IsSame(double a, double b) {
    return !(a < b) && !(a > b);
}

bool IsSame(const ClVector& a, const ClVector& b) {
    return IsSame(a.x, b.x) && IsSame(a.y, b.y);
}

/// `visit(component, y, run)` for each run of an object, in the order of a scan. All pixels of a
/// run have one label.
template <class Visit>
void WalkObjects(const ClImage& Objects, const ClImage& Labels, ComponentsArray_t& Components,
                 Visit visit) {
    for (int y = 0; y < Objects.Height(); ++y) {
        const auto visitRun = [&](Kernels::StRun Run) {
            const auto nIndex = static_cast<unsigned long>(Labels.Line<int>(y)[Run.m_nBegin]) - 1;
            visit(Components[nIndex], y, Run);
        };
        Kernels::ForEachRun(Objects.LineData(y), 0, Objects.Width(),
                            Kernels::ClLabelArea::OpenValue(), visitRun);
    }
}

/// The sum of the places of a run.
double SumOf(Kernels::StRun Run) {
    const long nTwice = (Run.m_nBegin + Run.m_nEnd - 1) * (Run.m_nEnd - Run.m_nBegin);
    return static_cast<double>(nTwice >> 1);
}

void AddCoordinates(ClComponent& rComponent, int y, Kernels::StRun Run) {
    const auto dBegin = static_cast<double>(Run.m_nBegin);
    const auto dLast = static_cast<double>(Run.m_nEnd - 1);
    const auto dCount = static_cast<double>(Run.m_nEnd - Run.m_nBegin);
    const bool bFirst = rComponent.m_dArea == 0.0;
    rComponent.m_vMin.x = bFirst ? dBegin : std::min(rComponent.m_vMin.x, dBegin);
    rComponent.m_vMax.x = bFirst ? dLast : std::max(rComponent.m_vMax.x, dLast);
    rComponent.m_vMin.y = bFirst ? y : rComponent.m_vMin.y;
    rComponent.m_vMax.y = y; // lines come in ascending order
    rComponent.m_vCentre.x += SumOf(Run);
    rComponent.m_vCentre.y += y * dCount;
    rComponent.m_dArea += dCount;
}

void AddMoments(ClComponent& rComponent, int y, Kernels::StRun Run) {
    const double dCentreX = rComponent.m_vCentre.x;
    const double dy = y - rComponent.m_vCentre.y;
    double dXY = rComponent.m_dMomentXY;
    double dYY = rComponent.m_dMomentYY;
    double dXX = rComponent.m_dMomentXX;
    for (long x = Run.m_nBegin; x < Run.m_nEnd; ++x) {
        const double dx = static_cast<double>(x) - dCentreX;
        dXY += dx * dy;
        dYY += dy * dy;
        dXX += dx * dx;
    }
    rComponent.m_dMomentXY = dXY;
    rComponent.m_dMomentYY = dYY;
    rComponent.m_dMomentXX = dXX;
}

double Eccentricity(const ClComponent& Component) {
    if (!(Component.m_dArea > 1.0))
        return 0.0;
    const double dDifference = Component.m_dMomentXX - Component.m_dMomentYY;
    const double dSum = Component.m_dMomentXX + Component.m_dMomentYY;
    const double dXY = Component.m_dMomentXY;
    return (dDifference * dDifference + 4.0 * dXY * dXY) / (dSum * dSum);
}

/// What the orientation makes small. The cross term is single on purpose.
double MomentAt(const ClComponent& Component, double dAngle) {
    const double dCos = std::cos(dAngle);
    const double dSin = std::sin(dAngle);
    return dCos * dCos * Component.m_dMomentYY - dCos * dSin * Component.m_dMomentXY +
           dSin * dSin * Component.m_dMomentXX;
}

double Orientation(const ClComponent& Component) {
    const double dTangent =
        2.0 * Component.m_dMomentXY / (Component.m_dMomentXX - Component.m_dMomentYY);
    const double dAngle = std::atan(dTangent) / 2.0;
    const double dAcross = dAngle + cdHalfPi;
    return MomentAt(Component, dAcross) < MomentAt(Component, dAngle) ? dAcross : dAngle;
}

void CheckImage(const ClImage& Image) {
    RequireBytes(Image, VEK_HERE);
    if (Image.Planes() > 1)
        throw ClExTessarin(QMT_ERROR_BITMAP_PLANE, VEK_HERE);
}

} // namespace

bool ClIpConnectedComponent2::ClComponent::operator==(const ClComponent& Other) const {
    return IsSame(m_vCentre, Other.m_vCentre) && IsSame(m_vMin, Other.m_vMin) &&
           IsSame(m_vMax, Other.m_vMax) && IsSame(m_dArea, Other.m_dArea) &&
           IsSame(m_dEccentricity, Other.m_dEccentricity) &&
           IsSame(m_dMeanGrey, Other.m_dMeanGrey) && IsSame(m_dOrientation, Other.m_dOrientation) &&
           IsSame(m_dMomentXY, Other.m_dMomentXY) && IsSame(m_dMomentYY, Other.m_dMomentYY) &&
           IsSame(m_dMomentXX, Other.m_dMomentXX);
}

ClIpConnectedComponent2::ClIpConnectedComponent2() {
    ClIpConnectedComponent2::SetParametersToDefault();
}

ClProcessorBase* ClIpConnectedComponent2::Create() {
    return Vek::NewObject<ClIpConnectedComponent2>();
}

const char* ClIpConnectedComponent2::Name() const {
    return "ClIpConnectedComponent2";
}

void ClIpConnectedComponent2::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pInImageGrey = nullptr;
    m_pOutImage = nullptr;
    m_pComponents = nullptr;
}

void ClIpConnectedComponent2::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage);
    AddInImage(Container, "m_pInImageGrey", m_pInImageGrey);
    AddOutImage(Container, "m_pOutImage", m_pOutImage);
    Container.Keep(&m_pComponents);
}

void ClIpConnectedComponent2::QueryParameters(ClParameterInterface& List) {
    AddInImage(List, "pInImage", m_pInImage);
    AddInImage(List, "m_pInImageGrey", m_pInImageGrey);
    AddOutImage(List, "m_pOutImage", m_pOutImage);
}

bool ClIpConnectedComponent2::GreyHasSize() const {
    return m_pInImageGrey == nullptr || (m_pInImageGrey->Width() == m_pInImage->Width() &&
                                         m_pInImageGrey->Height() == m_pInImage->Height());
}

bool ClIpConnectedComponent2::CanApply() {
    return m_pInImage != nullptr && m_pComponents != nullptr && GreyHasSize();
}

void ClIpConnectedComponent2::CheckImages() const {
    if (m_pInImage == nullptr || m_pInImage->Data() == nullptr)
        throw ClException("Objectimage is missing", QMT_ERROR_PARAM_IS_MISSING, true, VEK_HERE);
    if (m_pComponents == nullptr)
        throw ClException("Output object array is missing", QMT_ERROR_PARAM_IS_MISSING, true,
                          VEK_HERE);
    if (!GreyHasSize())
        throw ClException("the given grayimage has not the same size as the object image",
                          QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
    CheckImage(*m_pInImage);
    if (m_pInImageGrey == nullptr)
        return;
    CheckImage(*m_pInImageGrey);
    if (m_pInImageGrey->Data() == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
}

long ClIpConnectedComponent2::Process() {
    CheckImages();
    ClImage Labels; // swapped in last: the output may be an image that is still read
    ClIpLabeling Labeling;
    Labeling.Timer(IsTimerEnabled());
    Labeling.m_pInImage = m_pInImage;
    Labeling.m_pOutImage = &Labels;
    Labeling.Apply();

    m_pComponents->New(static_cast<unsigned long>(Labeling.m_nLabels));
    SumCoordinates(Labels);
    SumMoments(Labels);
    FinishShapes();
    if (m_pInImageGrey != nullptr)
        SumGrey(Labels);
    if (m_pOutImage != nullptr)
        m_pOutImage->Swap(Labels);
    return 0;
}

void ClIpConnectedComponent2::SumCoordinates(const ClImage& Labels) const {
    WalkObjects(*m_pInImage, Labels, *m_pComponents, AddCoordinates);
    for (unsigned long i = 0; i < m_pComponents->Entries(); ++i) {
        ClComponent& rComponent = (*m_pComponents)[i];
        rComponent.m_vCentre.x /= rComponent.m_dArea;
        rComponent.m_vCentre.y /= rComponent.m_dArea;
    }
}

void ClIpConnectedComponent2::SumMoments(const ClImage& Labels) const {
    WalkObjects(*m_pInImage, Labels, *m_pComponents, AddMoments);
}

void ClIpConnectedComponent2::FinishShapes() const {
    for (unsigned long i = 0; i < m_pComponents->Entries(); ++i) {
        ClComponent& rComponent = (*m_pComponents)[i];
        rComponent.m_dEccentricity = Eccentricity(rComponent);
        rComponent.m_dOrientation = Orientation(rComponent);
    }
}

void ClIpConnectedComponent2::SumGrey(const ClImage& Labels) const {
    WalkObjects(*m_pInImage, Labels, *m_pComponents,
                [&](ClComponent& rComponent, int y, Kernels::StRun Run) {
                    const unsigned char* pLine = m_pInImageGrey->LineData(y);
                    const long nSum = std::accumulate(pLine + Run.m_nBegin, pLine + Run.m_nEnd, 0L);
                    rComponent.m_dMeanGrey += static_cast<double>(nSum);
                });
    for (unsigned long i = 0; i < m_pComponents->Entries(); ++i)
        (*m_pComponents)[i].m_dMeanGrey /= (*m_pComponents)[i].m_dArea;
}

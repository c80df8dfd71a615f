#include "ImageProcessing/IpLabeling.h"

#include "ImageProcessing/ImageSwitch.h"
#include "ImageProcessing/Kernels/Labelling.h"
#include "ImageProcessing/RequireBytes.h"
#include "Tools/Allocate.h"
#include "Tools/ParameterContainer.h"

ClIpLabeling::ClIpLabeling() {
    ClIpLabeling::SetParametersToDefault();
}

ClProcessorBase* ClIpLabeling::Create() {
    return Vek::NewObject<ClIpLabeling>();
}

const char* ClIpLabeling::Name() const {
    return "ClIpLabeling";
}

void ClIpLabeling::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOutImage = nullptr;
    m_nLabels = 0;
}

void ClIpLabeling::PublishParameters(ClParameterContainer& Container) {
    Container.Keep(&m_pInImage, &m_pOutImage, &m_nLabels);
}

void ClIpLabeling::CheckImages() const {
    if (m_pInImage == nullptr || m_pInImage->Data() == nullptr)
        throw ClException("Inputimage is missing", QMT_ERROR_PARAM_IS_MISSING, true, VEK_HERE);
    if (m_pOutImage == nullptr)
        throw ClException("Outputimage is missing", QMT_ERROR_PARAM_IS_MISSING, true, VEK_HERE);
    RequireBytes(*m_pInImage, VEK_HERE);
    if (m_pInImage->Planes() > 1)
        throw ClExTessarin(QMT_ERROR_BITMAP_PLANE, VEK_HERE);
}

long ClIpLabeling::Process() {
    CheckImages();
    m_nLabels = 0;
    m_LineParts.Clear(); // a run that failed has left its seeds
    ClImage Labels;      // new, so 0 throughout
    Labels.NewWithType(*m_pInImage, ClImage::eInt32);
    Labels.SetBlack(m_pInImage->Black());
    Labels.SetWhite(m_pInImage->White());
    {
        const ClImageSwitch Out(m_pOutImage, Labels);
        for (long y = 0; y < Labels.Height(); ++y)
            LabelLine(y);
    }
    m_pOutImage->Swap(Labels);
    return 0;
}

void ClIpLabeling::LabelLine(long nY) {
    const unsigned char* pLine = m_pInImage->LineData(nY);
    const std::int32_t* pLabels = m_pOutImage->Line<std::int32_t>(static_cast<int>(nY));
    Kernels::ForEachRun(pLine, 0, m_pInImage->Width(), Kernels::ClLabelArea::OpenValue(),
                        [&](Kernels::StRun Run) {
                            if (pLabels[Run.m_nBegin] == 0)
                                FloodFill(Run.m_nBegin, nY, ++m_nLabels);
                        });
}

void ClIpLabeling::FloodFill(long nX, long nY, std::int32_t nLabel) {
    Kernels::ClLabelArea Area(m_pInImage->Data(), m_pInImage->LineStrideSamples(),
                              m_pOutImage->Line<std::int32_t>(0), m_pOutImage->LineStrideSamples(),
                              m_pInImage->Width(), m_pInImage->Height());
    Area.SetLabel(nLabel);
    m_LineParts.Push({nX, nY});
    Kernels::FillRegion(Area, m_LineParts);
}

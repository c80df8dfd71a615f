#include "ImageProcessing/IpSplitPlanes.h"

#include "ImageProcessing/ImageParameters.h"
#include "Tools/Allocate.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <iterator>

ClIpSplitPlanes::ClIpSplitPlanes() {
    ClIpSplitPlanes::SetParametersToDefault();
}

ClProcessorBase* ClIpSplitPlanes::Create() {
    return Vek::NewObject<ClIpSplitPlanes>();
}

const char* ClIpSplitPlanes::Name() const {
    return "ClIpSplitPlanes";
}

void ClIpSplitPlanes::SetParametersToDefault() {
    m_pInImage = nullptr;
    std::fill(std::begin(m_apOutPlane), std::end(m_apOutPlane), nullptr);
}

void ClIpSplitPlanes::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage);
    AddOutImage(Container, "pOutPlane[0]", m_apOutPlane[0]);
    AddOutImage(Container, "pOutPlane[1]", m_apOutPlane[1]);
    AddOutImage(Container, "pOutPlane[2]", m_apOutPlane[2]);
    AddOutImage(Container, "pOutPlane[3]", m_apOutPlane[3]);
}

long ClIpSplitPlanes::Process() {
    if (m_pInImage == nullptr || (m_pInImage->Data() == nullptr && m_pInImage->SizeBytes() != 0))
        return QMT_ERROR_PARAM_IS_MISSING;
    if (m_pInImage->Planes() > cnMaxPlanes)
        throw ClException("Image has more than 4 planes.", QMT_ERROR_PARAM_OUT_OF_RANGE, true,
                          VEK_HERE);
    ClImage Local; // stands for the input where that is a target
    for (int p = 0; p < m_pInImage->Planes(); ++p)
        if (ClImage* pOut = m_apOutPlane[p])
            m_pInImage->GetPlane(p, pOut == m_pInImage ? Local : *pOut);
    if (Local.Data() != nullptr) {
        Local.SetAttribute(m_pInImage->Attribute());
        m_pInImage->Swap(Local);
    }
    return 0;
}

long ClIpSplitPlanes::ApplyParam(ClImage& In, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2,
                                 ClImage* pPlane3) {
    m_pInImage = &In;
    m_apOutPlane[0] = pPlane0;
    m_apOutPlane[1] = pPlane1;
    m_apOutPlane[2] = pPlane2;
    m_apOutPlane[3] = pPlane3;
    return Apply();
}

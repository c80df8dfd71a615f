#include "ImageProcessing/IpInvert.h"

#include "Tools/Allocate.h"

ClIpInvert::ClIpInvert() {
    m_bInPlace = true;
    EnableAllTypes();
    ClIpInvert::SetParametersToDefault();
}

ClProcessorBase* ClIpInvert::Create() {
    return Vek::NewObject<ClIpInvert>();
}

const char* ClIpInvert::Name() const {
    return "ClIpInvert";
}

double ClIpInvert::GetValue(ClImage& In, ClImage& Out, double dValue) {
    const double bi = In.Black();
    const double wi = In.White();
    const double bo = Out.Black();
    const double wo = Out.White();
    if (wi == bi)
        return bo;
    return bo + (bi - dValue + wi - bi) * (wo - bo) / (wi - bi);
}

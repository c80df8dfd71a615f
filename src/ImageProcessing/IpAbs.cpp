#include "ImageProcessing/IpAbs.h"

#include "Tools/Allocate.h"

#include <cmath>

ClIpAbs::ClIpAbs() {
    EnableAllTypes();
    ClIpAbs::SetParametersToDefault();
}

ClProcessorBase* ClIpAbs::Create() {
    return Vek::NewObject<ClIpAbs>();
}

const char* ClIpAbs::Name() const {
    return "ClIpAbs";
}

double ClIpAbs::GetValue(ClImage&, ClImage&, double dValue) {
    return std::fabs(dValue);
}

#include "ImageProcessing/IpFilterMax.h"

#include "Tools/Allocate.h"

ClProcessorBase* ClIpFilterMax::Create() {
    return Vek::NewObject<ClIpFilterMax>();
}

const char* ClIpFilterMax::Name() const {
    return "ClIpFilterMax";
}

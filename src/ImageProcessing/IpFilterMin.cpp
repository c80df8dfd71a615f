#include "ImageProcessing/IpFilterMin.h"

#include "Tools/Allocate.h"

ClProcessorBase* ClIpFilterMin::Create() {
    return Vek::NewObject<ClIpFilterMin>();
}

const char* ClIpFilterMin::Name() const {
    return "ClIpFilterMin";
}

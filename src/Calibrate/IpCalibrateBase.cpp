#include "Calibrate/IpCalibrateBase.h"

#include "Tools/LoggingFacility.h"

long ClIpCalibrateBase::Process() {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateBase::Process() Enter");
    Initiate();
    Calibrate();
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateBase::Process() Leaving");
    return 0;
}

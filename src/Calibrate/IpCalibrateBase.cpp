#include "Calibrate/IpCalibrateBase.h"

#include "Tools/CallTrace.h"

long ClIpCalibrateBase::Process() {
    const Vek::ClCallTrace Trace("ClIpCalibrateBase::Process()");
    Initiate();
    Calibrate();
    return 0;
}

// Sequences of all exported calls on one to three handles: the bytes decide which calls, with which
// blocks, and which allocations fail. Every answer is compared with a model of the handle.

#include "Harness.h"

#include "calls/InjectedFaults.h"

namespace {

/// Beyond these a sequence shows nothing new.
constexpr long cnSteps = 2000;

class ClHardObserver : public Calls::ClObserver {
public:
    void OnBroken(const std::string& Promise) override { Fuzz::Require(false, Promise.c_str()); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Calls::ClByteChoices Choices(pData, nSize);
    Calls::ClInjectedFaults Faults;
    ClHardObserver Observer;
    Calls::ClCallSequence(Choices, Faults, Observer).Run(cnSteps);
    return 0;
}

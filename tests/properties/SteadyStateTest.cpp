// A handle that has corrected one capture corrects the next of its size in the memory that it has.

#include "api/Api.h"
#include "support/AllocationCount.h"
#include "support/TestData.h"

#include <algorithm>
#include <initializer_list>
#include <string>

using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::ClCountAllocations;
using TestSupport::DataBlock;
using TestSupport::DataFile;
using TestSupport::StAllocations;

namespace {

constexpr long cnMost = 20;
constexpr std::size_t cnSmall = 16384; ///< bytes; the smallest image of a capture has 153,600

using Options = std::initializer_list<const char*>;

class ClScannerAtWork {
public:
    ClScannerAtWork(const std::string& sScanner, Options aOptions) {
        EXPECT_EQ(m_Handle.SetData(DataFile("dynamic/" + sScanner + ".cal")), 0);
        for (const char* szOption : aOptions)
            m_Handle.Set(szOption);
    }

    /// What a capture's correction takes.
    StAllocations Correct(Bytes aIn) {
        Bytes aOut(aIn.size());
        unsigned long nSize = aOut.size();
        const ClCountAllocations count;
        EXPECT_EQ(Calibrate(m_Handle, aIn.data(), aIn.size(), aOut.data(), &nSize), 0);
        return count.SoFar();
    }

    StAllocations Measure(Bytes aIn) {
        double dLevel = 0.0;
        const ClCountAllocations count;
        EXPECT_EQ(ContaminationDetection(m_Handle, aIn.data(), aIn.size(), &dLevel), 0);
        return count.SoFar();
    }

private:
    ClApiHandle m_Handle;
};

Bytes CaptureOf(const std::string& sKind) {
    return DataBlock("dynamic/" + sKind + "_raw.bmp");
}

void ExpectLittle(const StAllocations& Counted) {
    EXPECT_LE(Counted.m_nCount, cnMost);
    EXPECT_LE(Counted.m_nLargest, cnSmall);
}

/// The same capture upside down.
Bytes Turned(Bytes aBlock) {
    std::reverse(aBlock.begin() + 40 + 1024, aBlock.end());
    return aBlock;
}

/// Two captures of a size, and both again.
void ExpectLittleForEachCapture(Options aOptions) {
    for (const char* szKind : {"loop", "wet", "dry", "empty", "two_fingers"}) {
        SCOPED_TRACE(szKind);
        ClScannerAtWork atWork(szKind, aOptions);
        const Bytes aCapture = CaptureOf(szKind);
        const Bytes aOther = Turned(aCapture);
        EXPECT_GT(atWork.Correct(aCapture).m_nLargest, cnSmall) << "images are not counted";
        atWork.Correct(aOther);
        ExpectLittle(atWork.Correct(aCapture));
        ExpectLittle(atWork.Correct(aOther));
    }
}

} // namespace

TEST(SteadyState, CorrectsByDefaultOptionsInTheMemoryThatIsThere) {
    ExpectLittleForEachCapture({"DynamicFingerMask=true"});
}

TEST(SteadyState, FindsMasksInTheMemoryThatIsThere) {
    ExpectLittleForEachCapture({"DynamicFingerMask=true", "MaskIsOutput=true"});
}

TEST(SteadyState, CorrectsOddLinesInTheMemoryThatIsThere) {
    ExpectLittleForEachCapture({"DynamicFingerMask=true", "GeometricCalibrate=oddLines"});
    ExpectLittleForEachCapture({"GeometricCalibrate=oddLines", "DynamicFingerMask=false"});
}

TEST(SteadyState, CorrectsTheGeometryAloneInTheMemoryThatIsThere) {
    ExpectLittleForEachCapture({"DynamicFingerMask=false"});
}

TEST(SteadyState, PassesCapturesThroughInTheMemoryThatIsThere) {
    ExpectLittleForEachCapture({"GeometricCalibrate=off", "DynamicFingerMask=false"});
}

TEST(SteadyState, MeasuresContaminationInTheMemoryThatIsThere) {
    ClScannerAtWork atWork("dirty", {});
    const Bytes aCapture = CaptureOf("dirty");
    EXPECT_GT(atWork.Measure(aCapture).m_nLargest, cnSmall);
    ExpectLittle(atWork.Measure(aCapture));
}

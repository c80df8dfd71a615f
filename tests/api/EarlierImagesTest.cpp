// Calibrate(): what it gives depends on the capture, the options and the data, and on nothing that
// the handle has given before.

#include "api/Api.h"
#include "support/BitmapBlocks.h"
#include "support/Records.h"
#include "support/TestData.h"

#include <random>
#include <set>

using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;

namespace {

constexpr int cnWidth = 374; ///< of captures and of images in both modes: lines have ends
constexpr int cnStride = 376;
constexpr int cnHeight = 1051;

const Bytes& Record() {
    static const Bytes aRecord =
        RecordBlock(PlausibleRecord(cnWidth, cnHeight, cnWidth, cnHeight / 2));
    return aRecord;
}

unsigned char Light(int /*x*/, int /*y*/) {
    return 255;
}

unsigned char Shadow(int x, int y) {
    return static_cast<unsigned char>(2 * x + y / 2);
}

/// Its line ends are what no output may show: 0x55.
Bytes CaptureOf(unsigned char (*pixel)(int, int)) {
    Bytes aBlock = TestSupport::Capture(cnWidth, cnHeight);
    for (int y = 0; y < cnHeight; ++y)
        for (int x = 0; x < cnStride; ++x)
            aBlock[static_cast<std::size_t>(40 + 1024 + cnStride * y + x)] =
                x < cnWidth ? pixel(x, y) : 0x55;
    return aBlock;
}

using Options = std::vector<const char*>;

Bytes CorrectedByANewHandle(const Bytes& aTable, const Options& aOptions, const Bytes& aCapture) {
    ClApiHandle Handle;
    Handle.Set("PrecalculatedData=true");
    EXPECT_EQ(Handle.SetData(Record()), 0);
    EXPECT_EQ(Handle.SetPrecalculatedData(aTable), 0);
    for (const char* szOption : aOptions)
        Handle.Set(szOption);
    return Handle.Corrected(aCapture);
}

} // namespace

TEST(Calibrate, GivesWhatANewHandleGives) {
    const Bytes aCaptures[] = {TestSupport::DataBlock("dynamic/dry_raw.bmp"), CaptureOf(Light),
                               CaptureOf(Shadow)};
    ASSERT_EQ(aCaptures[0].size(), aCaptures[1].size());
    const Options aModes[] = {
        {"DynamicFingerMask=true", "GeometricCalibrate=oddLines"},
        {"DynamicFingerMask=true", "GeometricCalibrate=ThinPlateSpline"},
        {"DynamicFingerMask=false", "GeometricCalibrate=ThinPlateSpline"},
        {"DynamicFingerMask=false", "GeometricCalibrate=oddLines"},
        {"DynamicFingerMask=false", "GeometricCalibrate=off"},
    };
    ClApiHandle Used;
    EXPECT_EQ(Used.SetData(Record()), 0);
    const Bytes aTable = Used.PrecalculatedData();
    std::mt19937 Random(1);
    std::set<Bytes> aGiven;
    for (int i = 0; i < 120; ++i) {
        Options aOptions = aModes[Random() % 5];
        aOptions.push_back(Random() % 3 == 0 ? "MaskIsOutput=true" : "MaskIsOutput=false");
        aOptions.push_back(Random() % 3 == 0 ? "SensitiveMode=true" : "SensitiveMode=false");
        const Bytes& aCapture = aCaptures[Random() % 3];
        for (const char* szOption : aOptions)
            Used.Set(szOption);
        const Bytes aOut = Used.Corrected(aCapture);
        ASSERT_EQ(aOut, CorrectedByANewHandle(aTable, aOptions, aCapture))
            << i << " " << aOptions[1];
        aGiven.insert(aOut);
    }
    EXPECT_GT(aGiven.size(), 12U) << "fingers are found";
}

// Calibrate() with the dynamic step: fingers, blots and noise at three sizes, by every option.

#include "FingerPicture.h"

#include <array>
#include <optional>

namespace {

Fuzz::ClMilestone s_Corrected("a finger is corrected");
Fuzz::ClMilestone s_Mask("a mask is the output");

constexpr unsigned int cnSide = 128;

struct StSize {
    unsigned int m_nWidth;
    unsigned int m_nHeight;
};
constexpr std::array<StSize, 4> caSizes = {{{24, 32}, {48, 160}, {96, 128}, {161, 97}}};

/// Each keeps what earlier inputs left in it, as the handle of an application does.
const Fuzz::ClHandle& Scanner(std::size_t nSize) {
    static std::array<std::optional<Fuzz::ClHandle>, caSizes.size()> s_aHandles;
    std::optional<Fuzz::ClHandle>& rHandle = s_aHandles[nSize];
    if (!rHandle) {
        const StSize& Size = caSizes[nSize];
        const Fuzz::ClBlock data(Fuzz::SmallScanner(cnSide, Size.m_nWidth, Size.m_nHeight));
        rHandle.emplace();
        Fuzz::Require(CalibrateSetData(*rHandle, data.Data(), data.Size()) == 0, "a scanner loads");
    }
    return *rHandle;
}

void SetOptions(const Fuzz::ClHandle& handle, int nBits) {
    handle.Set((nBits & 1) != 0 ? "SensitiveMode=true" : "SensitiveMode=false");
    handle.Set((nBits & 2) != 0 ? "MaskIsOutput=true" : "MaskIsOutput=false");
    handle.Set((nBits & 4) != 0 ? "GeometricCalibrate=oddLines"
                                : "GeometricCalibrate=ThinPlateSpline");
}

void CheckLevels(const Fuzz::ClHandle& handle) {
    double dDirt = -1.0;
    double dDry = -1.0;
    Fuzz::Require(GetCalibrationWarningLevels(handle, &dDirt, &dDry) == 0, "levels are told");
    Fuzz::Require(dDirt >= 0.0 && dDirt < 2000.0, "dirt beyond all measure is told as 100.0");
    Fuzz::Require(dDry >= 0.0 && dDry <= 100.0, "dryness is a percentage");
}

/// What a call gives in a room that is large enough, and no larger; empty where it is refused.
std::string Result(const Fuzz::ClHandle& handle, const Fuzz::ClBlock& capture,
                   unsigned long nRoom) {
    const Fuzz::ClBlock room(std::string(nRoom, '?'));
    unsigned long nSize = nRoom;
    const long nStatus = Calibrate(handle, capture.Data(), capture.Size(), room.Data(), &nSize);
    Fuzz::RequireStatus(nStatus);
    Fuzz::Require(nStatus != 0 || nSize == nRoom, "the size follows from the record");
    const std::string Given(reinterpret_cast<const char*>(room.Data()), nRoom);
    Fuzz::Require(nStatus == 0 || Given == std::string(nRoom, '?'),
                  "a failure leaves the room alone");
    return nStatus == 0 ? Given : std::string();
}

/// Of the block that is given: lines are padded to 4 bytes, odd lines are those of the capture.
unsigned long BlockBytes(const StSize& Size, int nOptions) {
    const StSize Given = (nOptions & 4) != 0 ? StSize{cnSide, cnSide / 2} : Size;
    return 40 + 1024 + ((Given.m_nWidth + 3UL) & ~3UL) * Given.m_nHeight;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const int nOptions = Bytes.Next();
    const std::size_t nScanner = static_cast<std::size_t>(nOptions >> 3) % caSizes.size();
    const Fuzz::ClHandle& handle = Scanner(nScanner);
    SetOptions(handle, nOptions);
    const Fuzz::ClBlock capture(
        Fuzz::GreyBlock(cnSide, cnSide, Fuzz::FingerPicture(cnSide, Bytes), 19685));
    const unsigned long nRoom = BlockBytes(caSizes[nScanner], nOptions);
    const std::string First = Result(handle, capture, nRoom);
    CheckLevels(handle);
    if (First.empty())
        return 0;
    Fuzz::Require(Result(handle, capture, nRoom) == First, "a second call gives the same");
    ((nOptions & 2) != 0 ? s_Mask : s_Corrected).Reach();
    return 0;
}

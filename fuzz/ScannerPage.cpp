// The page of a scanner, from files that the bytes make: a capture of the target that they spoil,
// or any bitmap in its place, a second capture, a calibration block, an empty platen, a finger, and
// a title. It is gathered and written as `qk7 report` does it.

#include "ByteOrder.h"
#include "DotTarget.h"
#include "FingerPicture.h"
#include "Formats.h"
#include "MemoryFile.h"
#include "PageMarkup.h"

#include "apps/qk7/Document.h"
#include "apps/qk7/File.h"
#include "apps/qk7/ScannerReport.h"
#include "report/Page.h"

#include <cmath>

namespace {

using report::EVerdict;

Fuzz::ClMilestone s_Good("a calibration is good");
Fuzz::ClMilestone s_Doubtful("a calibration is doubtful");
Fuzz::ClMilestone s_Refused("a target is refused");
Fuzz::ClMilestone s_Stored("a stored calibration is judged");
Fuzz::ClMilestone s_Second("a second capture is judged");
Fuzz::ClMilestone s_Finger("a finger is corrected");
Fuzz::ClMilestone s_Unreadable("a file is refused with words");

/// What the first byte says. Behind it stand the length of the record, little endian in two bytes,
/// the record, and what the pictures are made of.
enum EFlag : unsigned {
    eSecond = 1,
    eRecord = 2,
    eIsReference = 4,
    eEmpty = 8,
    eFinger = 16,
    eAnyBitmap = 32
};

constexpr std::size_t cnHead = 3;
constexpr std::size_t cnTargetBytes = 150; ///< two for each dot

struct StInput {
    unsigned m_nFlags = 0;
    std::string m_Record;
    std::string m_Rest;
};

StInput Split(const std::string& Bytes) {
    if (Bytes.size() < cnHead)
        return {};
    const std::size_t nRecord = Fuzz::Little<std::uint16_t>(Bytes, 1) % (Bytes.size() - cnHead + 1);
    return {static_cast<unsigned char>(Bytes[0]), Bytes.substr(cnHead, nRecord),
            Bytes.substr(cnHead + nRecord)};
}

/// A record for captures of the target's size.
void Repair(std::string& rBytes, Fuzz::ClRandom& rRandom) {
    StInput Input = Split(rBytes);
    if ((Input.m_nFlags & eAnyBitmap) != 0)
        Fuzz::RepairBitmap(Input.m_Rest, rRandom);
    if ((Input.m_nFlags & eRecord) != 0 && !Input.m_Record.empty()) {
        Input.m_Record.resize(std::max<std::size_t>(Input.m_Record.size(), 20));
        Input.m_Record[10] = '6';
        if (!rRandom.OneIn(16)) {
            Fuzz::PutBig<std::uint32_t>(Input.m_Record, 12, Fuzz::cRawTarget.m_nWidth);
            Fuzz::PutBig<std::uint32_t>(Input.m_Record, 16, Fuzz::cRawTarget.m_nHeight);
        }
        Fuzz::RepairRecord(Input.m_Record, rRandom);
    }
    rBytes.assign(cnHead, static_cast<char>(Input.m_nFlags));
    Fuzz::PutLittle(rBytes, 1, static_cast<std::uint16_t>(Input.m_Record.size()));
    rBytes += Input.m_Record + Input.m_Rest;
}
const Fuzz::ClFormat s_Format(Repair);

std::string Target(const std::string& Spoilt) {
    return Fuzz::DotTarget(Fuzz::cRawTarget, reinterpret_cast<const std::uint8_t*>(Spoilt.data()),
                           Spoilt.size());
}

/// Ridges, drawn small and stretched to a capture of the target's size.
std::string Finger(const std::string& Painted) {
    constexpr unsigned int cnSide = 128;
    Fuzz::ClBytes Bytes(reinterpret_cast<const std::uint8_t*>(Painted.data()), Painted.size());
    const std::string Small = Fuzz::FingerPicture(cnSide, Bytes);
    const auto [nWidth, nHeight, dDpiX, dDpiY] = Fuzz::cRawTarget;
    std::string Pixels;
    for (unsigned int y = 0; y < nHeight; ++y)
        for (unsigned int x = 0; x < nWidth; ++x)
            Pixels += Small[std::size_t{cnSide} * (y * cnSide / nHeight) + x * cnSide / nWidth];
    return Fuzz::GreyBlock(nWidth, nHeight, Pixels);
}

/// Files that last as long as this.
class ClFiles {
public:
    std::string Add(const std::string& Content) {
        m_aFiles.push_back(std::make_unique<Fuzz::ClMemoryFile>(Content));
        return m_aFiles.back()->Path();
    }

private:
    std::vector<std::unique_ptr<Fuzz::ClMemoryFile>> m_aFiles;
};

qk7::StScannerFiles FilesOf(const StInput& Input, ClFiles& rFiles) {
    const auto has = [&Input](EFlag eFlag) { return (Input.m_nFlags & eFlag) != 0; };
    const bool bShared = has(eSecond) || has(eFinger);
    const std::string Own = Input.m_Rest.substr(0, bShared ? cnTargetBytes : std::string::npos);
    const std::string Behind = Input.m_Rest.substr(std::min(cnTargetBytes, Input.m_Rest.size()));
    qk7::StScannerFiles Files;
    Files.m_Title = Input.m_Rest.substr(0, 40);
    Files.m_Target = rFiles.Add(has(eAnyBitmap) ? Own : Target(Own));
    if (has(eSecond))
        Files.m_Second = rFiles.Add(Target(Behind));
    if (has(eRecord))
        (has(eIsReference) ? Files.m_Reference : Files.m_Calibration) = rFiles.Add(Input.m_Record);
    if (has(eEmpty))
        Files.m_Empty = rFiles.Add(Finger(Input.m_Rest));
    if (has(eFinger))
        Files.m_aFingers.push_back(rFiles.Add(Finger(Behind)));
    return Files;
}

/// What grey values say of a dot: nothing where nothing dark is.
bool IsOfGreyDot(const std::string& Name) {
    constexpr const char* aszOfGrey[] = {"/grey_off/", "/contrast", "/diameter_mm", "/roundness"};
    return std::any_of(std::begin(aszOfGrey), std::end(aszOfGrey), [&](const char* szField) {
        return Name.find(szField) != std::string::npos;
    });
}

void RequireFinite(const report::Values& Known) {
    for (const auto& [name, value] : Known)
        Fuzz::Require(std::isfinite(value) || IsOfGreyDot(name), name.c_str());
}

void CheckVerdict(const report::StScanner& Scanner) {
    const EVerdict eVerdict = Scanner.m_eVerdict;
    Fuzz::Require((eVerdict == EVerdict::eGood) == Scanner.m_aReasons.empty(),
                  "what is not good has reasons");
    Fuzz::Require((eVerdict == EVerdict::eRefused) == !Scanner.m_Calibrated,
                  "what is refused has no calibration");
    (eVerdict == EVerdict::eGood      ? s_Good
     : eVerdict == EVerdict::eRefused ? s_Refused
                                      : s_Doubtful)
        .Reach();
    if (Scanner.m_Calibrated && Scanner.m_Calibrated->m_bStored)
        s_Stored.Reach();
    if (Scanner.m_Calibrated && Scanner.m_Calibrated->m_Second)
        s_Second.Reach();
}

void CheckValues(const report::StScanner& Scanner) {
    RequireFinite(Scanner.m_Values);
    if (Scanner.m_Platen)
        RequireFinite(Scanner.m_Platen->m_Values);
    for (const report::StFinger& Finger : Scanner.m_aFingers) {
        RequireFinite(Finger.m_Values);
        Fuzz::Require(Finger.m_sFault.empty() == Finger.m_Corrected.has_value(),
                      "a finger is corrected, or it is told why not");
        if (Finger.m_Corrected)
            s_Finger.Reach();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const StInput Input = Split(std::string(reinterpret_cast<const char*>(pData), nSize));
    ClFiles Files;
    try {
        const report::StScanner Scanner = qk7::GatherScanner(FilesOf(Input, Files));
        CheckVerdict(Scanner);
        CheckValues(Scanner);
        Fuzz::RequireSoundMarkup(report::PageOf(Scanner));
        qk7::Dump(qk7::ScannerJson(Scanner));
    } catch (const qk7::ClFailure& failure) {
        Fuzz::Require(std::strlen(failure.what()) > 0, "a refusal has words");
        s_Unreadable.Reach();
    }
    return 0;
}

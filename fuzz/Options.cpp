// CalibrateSetOption() and CalibrateGetOption() with any texts and rooms: what is refused changes
// nothing, and what is set is read back.

#include "Harness.h"

#include <array>

namespace {

Fuzz::ClMilestone s_Set("an option is set");

constexpr std::array<const char*, 5> cazKeys = {"DynamicFingerMask", "SensitiveMode",
                                                "GeometricCalibrate", "MaskIsOutput",
                                                "PrecalculatedData"};

/// A text that ends where its memory ends.
Fuzz::ClBlock TextBlock(const std::string& Text) {
    return Fuzz::ClBlock(std::string(Text.c_str()) + '\0');
}
char* Chars(const Fuzz::ClBlock& block) {
    return reinterpret_cast<char*>(block.Data());
}

/// The value of a key, asked for with a room that is too small first.
std::string Value(const Fuzz::ClHandle& handle, const char* szKey) {
    unsigned long nSize = 0;
    Fuzz::Require(CalibrateGetOption(handle, szKey, nullptr, &nSize) == QMT_ERROR_TEMPLATE_SIZE,
                  "a size is told");
    const Fuzz::ClBlock room(std::string(nSize, '?'));
    Fuzz::Require(CalibrateGetOption(handle, szKey, Chars(room), &nSize) == 0 &&
                      nSize == room.Size() && Chars(room)[nSize - 1] == '\0',
                  "the size that was told is enough");
    return Chars(room);
}

std::string All(const Fuzz::ClHandle& handle) {
    std::string Values;
    for (const char* szKey : cazKeys)
        Values += Value(handle, szKey) + ';';
    return Values;
}

void Set(const Fuzz::ClHandle& handle, const std::string& Text) {
    const std::string Before = All(handle);
    const Fuzz::ClBlock text = TextBlock(Text);
    const long nStatus = CalibrateSetOption(handle, Chars(text));
    Fuzz::Require(nStatus == 0 || nStatus == QMT_ERROR_PARAM_IS_MISSING, "set or refused");
    if (nStatus == 0)
        s_Set.Reach();
    const std::string After = All(handle);
    Fuzz::Require(nStatus == 0 || After == Before, "what is refused changes nothing");
    Fuzz::Require(CalibrateSetOption(handle, Chars(text)) == nStatus && All(handle) == After,
                  "a second call gives the same");
}

void Get(const Fuzz::ClHandle& handle, const std::string& Text, unsigned long nRoom) {
    const Fuzz::ClBlock key = TextBlock(Text);
    const Fuzz::ClBlock room(std::string(nRoom, '?'));
    unsigned long nSize = nRoom;
    const long nStatus = CalibrateGetOption(handle, Chars(key), Chars(room), &nSize);
    Fuzz::Require(nStatus == 0 || nStatus == QMT_ERROR_PARAM_IS_MISSING ||
                      nStatus == QMT_ERROR_TEMPLATE_SIZE,
                  "given, unknown or too large");
    Fuzz::Require(nStatus == 0 || std::string(Chars(room), nRoom) == std::string(nRoom, '?'),
                  "a failure leaves the room alone");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const Fuzz::ClHandle handle;
    for (int i = 0; i < 20 && !Bytes.IsEmpty(); ++i) {
        const int nWhat = Bytes.Next();
        std::string Text = Bytes.Text(60);
        if ((nWhat & 1) != 0) // behind a known key
            Text = cazKeys[static_cast<std::size_t>(nWhat >> 2) % cazKeys.size()] + Text;
        if ((nWhat & 2) != 0)
            Get(handle, Text, static_cast<unsigned long>(nWhat >> 4));
        else
            Set(handle, Text);
    }
    return 0;
}

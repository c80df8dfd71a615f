// Byte operations of a memory stream in any order, on any bytes, owned or foreign, strict or not.

#include "Harness.h"

#include "Tools/Exception.h"
#include "Tools/MemStream.h"

#include <limits>

namespace {

Fuzz::ClMilestone s_Text("a text is read");
Fuzz::ClMilestone s_Refused("an operation is refused");

constexpr std::size_t cnRoom = 64;

/// An owned stream takes the memory for what it is sent to; a foreign block is sent anywhere.
long Distance(Fuzz::ClBytes& rBytes, bool bOwned) {
    static constexpr long canExtremes[] = {-1, std::numeric_limits<long>::min(), 0x7FFFFFFF,
                                           std::numeric_limits<long>::max()};
    const int nWhat = rBytes.Next();
    return nWhat < (bOwned ? 2 : 4) ? canExtremes[nWhat] : rBytes.NextSigned();
}

void ReadText(ClMemStream& rStream) {
    char* szText = nullptr;
    try {
        rStream.ReadString(&szText);
    } catch (const ClException&) {
        Fuzz::Require(szText == nullptr, "no text is left on a failure");
        throw;
    }
    if (szText == nullptr)
        return;
    Fuzz::Require(std::strlen(szText) < (1U << 20), "a text ends");
    s_Text.Reach();
    delete[] szText;
}

void ReadIntoRoom(Fuzz::ClBytes& rBytes, ClMemStream& rStream) {
    const Fuzz::ClBlock room(std::string(static_cast<std::size_t>(rBytes.Below(cnRoom)), '?'));
    rStream.ReadString(reinterpret_cast<char*>(room.Data()), room.Size());
    Fuzz::Require(room.Size() == 0 || room.Data()[room.Size() - 1] == 0, "a text in a room ends");
}

void ReadArray(Fuzz::ClBytes& rBytes, ClMemStream& rStream) {
    const unsigned long nElement = static_cast<unsigned long>(rBytes.Below(10));
    const unsigned long nCount = static_cast<unsigned long>(rBytes.Below(8));
    const Fuzz::ClBlock room(std::string(nElement * nCount, '?'));
    Fuzz::Require(rStream.ReadNumericArray(room.Data(), nCount, nElement) <= room.Size(),
                  "no more is read than there is room");
}

void WriteArray(Fuzz::ClBytes& rBytes, ClMemStream& rStream) {
    const std::string Text = rBytes.Text(40);
    const Fuzz::ClBlock block(Text);
    const unsigned long nElement = 1UL << rBytes.Below(4);
    rStream.WriteNumericArray(block.Data(), block.Size() / nElement, nElement);
}

template <class T>
void Number(Fuzz::ClBytes& rBytes, ClMemStream& rStream) {
    T Value{};
    if (rBytes.Below(2) == 0)
        rStream.ReadAutoSwap(Value);
    else
        rStream.WriteAutoSwap(static_cast<T>(rBytes.Next32()));
}

void Step(Fuzz::ClBytes& rBytes, ClMemStream& rStream, bool bOwned) {
    unsigned int nBits = 0;
    switch (rBytes.Below(16)) {
    case 0:
        return ReadText(rStream);
    case 1:
        return ReadIntoRoom(rBytes, rStream);
    case 2:
        return ReadArray(rBytes, rStream);
    case 3:
        return WriteArray(rBytes, rStream);
    case 4:
        rStream.Seek(Distance(rBytes, bOwned), rBytes.Below(4));
        return;
    case 5:
        return rStream.WriteString(rBytes.Text(40).c_str());
    case 6:
        return Number<std::uint16_t>(rBytes, rStream);
    case 7:
        return Number<double>(rBytes, rStream);
    case 8:
        rStream.SetBigEndian(rBytes.Below(2) == 0);
        return;
    case 9:
        rStream.SetThrowOnShort(rBytes.Below(2) == 0);
        return;
    case 10:
        return rStream.ReadBits(nBits, static_cast<unsigned long>(rBytes.Below(40)));
    case 11:
        return rStream.WriteBits(rBytes.Next32(), static_cast<unsigned long>(rBytes.Below(40)));
    case 12:
        rStream.BitSeek(Distance(rBytes, bOwned), rBytes.Below(4));
        return;
    case 13:
        return rStream.BitFlush();
    case 14:
        return rStream.ReadBitFlush();
    default:
        return Number<std::int64_t>(rBytes, rStream);
    }
}

void Run(Fuzz::ClBytes& rBytes, ClMemStream& rStream, bool bOwned) {
    for (int i = 0; i < 200 && !rBytes.IsEmpty(); ++i)
        try {
            Step(rBytes, rStream, bOwned);
        } catch (const ClException& e) {
            Fuzz::RequireStatus(e.Number());
            s_Refused.Reach();
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const int nKind = Bytes.Below(3);
    const Fuzz::ClBlock block(Bytes.Text(100));
    ClMemStream Stream;
    if (nKind == 1)
        Stream.Attach(block.Data(), block.Size(), true);
    else if (nKind == 2)
        Stream.Attach(static_cast<const unsigned char*>(block.Data()), block.Size());
    Run(Bytes, Stream, nKind == 0);
    Fuzz::Require(nKind == 0 || Stream.Size() == block.Size(), "a foreign block keeps its size");
    return 0;
}

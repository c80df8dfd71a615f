// The raw image format, extension .kpf: everything that a `ClImage` holds, without loss.
//
//   offset  bytes  field
//        0      4  magic "KPF", 0
//        4      4  version, 1
//        8      1  pixel type
//        9      4  width
//       13      4  height
//       17      4  planes
//       21      4  pels X
//       25      4  pels Y
//       29      4  content
//       33      8  white
//       41      8  black
//       49      4  attribute; version 0 has none
//       53      n  the lines as they are in memory, padding included
//   53 + n      4  the magic again
//
// Numbers are in the stream's byte order, samples in that of its array transfers.

#include "Tools/RawImage.h"

#include "Tools/Exception.h"
#include "Tools/FileStream.h"
#include "Tools/FpImage.h"

#include <cstdint>

namespace {

using RawImage::cnMagic;
using RawImage::cnVersion;

struct StDescription {
    unsigned char m_nType;
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::int32_t m_nPlanes;
    std::int32_t m_nPelsX;
    std::int32_t m_nPelsY;
    std::uint32_t m_nContent;
    double m_dWhite;
    double m_dBlack;
    std::int32_t m_nAttribute;
};

template <class T>
T ReadNumber(ClStream& rStream) {
    T nNumber{};
    rStream.ReadAutoSwap(nNumber);
    return nNumber;
}

[[noreturn]] void ThrowDamaged(const char* szText) {
    throw ClException(szText, QMT_ERROR_INTERNAL, false, VEK_NOWHERE);
}

void ReadMagic(ClStream& rStream, const char* szComplaint) {
    if (ReadNumber<std::uint32_t>(rStream) != cnMagic)
        ThrowDamaged(szComplaint);
}

std::uint32_t ReadVersion(ClStream& rStream) {
    const auto nVersion = ReadNumber<std::uint32_t>(rStream);
    if (nVersion > cnVersion)
        ThrowDamaged("Wrong KPF version");
    return nVersion;
}

StDescription ReadDescription(ClStream& rStream, std::uint32_t nVersion) {
    StDescription Description;
    rStream.ReadAutoSwap(Description.m_nType);
    rStream.ReadAutoSwap(Description.m_nWidth);
    rStream.ReadAutoSwap(Description.m_nHeight);
    rStream.ReadAutoSwap(Description.m_nPlanes);
    rStream.ReadAutoSwap(Description.m_nPelsX);
    rStream.ReadAutoSwap(Description.m_nPelsY);
    rStream.ReadAutoSwap(Description.m_nContent);
    rStream.ReadAutoSwap(Description.m_dWhite);
    rStream.ReadAutoSwap(Description.m_dBlack);
    Description.m_nAttribute = nVersion > 0 ? ReadNumber<std::int32_t>(rStream) : 0;
    return Description;
}

/// A record is believed as far as its stream reaches: what lies beyond is the end that is missing.
void CheckRest(const ClStream& rStream, std::int64_t nBytes) {
    const std::optional<unsigned long> nRest = rStream.Rest();
    if (!nRest || nBytes <= 0 || static_cast<unsigned long>(nBytes) <= *nRest)
        return;
    if (rStream.GetThrowOnShort())
        Vek::ThrowUnexpectedEnd();
    ThrowDamaged("KPF end Magic is missing");
}

/// Samples of all lines, padding included; 0 where there are no pixels.
unsigned long SampleCount(const ClImage& rImage) {
    if (rImage.Data() == nullptr || rImage.SizeBytes() == 0 || rImage.LineStrideSamples() < 1)
        return 0;
    return static_cast<unsigned long>(rImage.Height()) *
           static_cast<unsigned long>(rImage.LineStrideSamples());
}

} // namespace

void ClImage::Store(ClStream& Stream) const {
    Stream.WriteAutoSwap(cnMagic);
    Stream.WriteAutoSwap(cnVersion);
    Stream.WriteAutoSwap(m_nDataType);
    for (const std::int32_t nNumber : {m_nWidth, m_nHeight, m_nPlanes, m_nPelsX, m_nPelsY})
        Stream.WriteAutoSwap(nNumber);
    Stream.WriteAutoSwap(static_cast<std::uint32_t>(m_eContent));
    Stream.WriteAutoSwap(m_dWhite);
    Stream.WriteAutoSwap(m_dBlack);
    Stream.WriteAutoSwap(m_nAttribute);
    Stream.WriteNumericArray(Data(), SampleCount(*this),
                             static_cast<unsigned long>(BytesPerSample()));
    Stream.WriteAutoSwap(cnMagic);
}

void ClImage::Load(ClStream& Stream) {
    Delete();
    ReadMagic(Stream, "KPF Magic is missing");
    const StDescription Raw = ReadDescription(Stream, ReadVersion(Stream));
    if (Raw.m_nWidth > 0 && Raw.m_nHeight > 0 && Raw.m_nPlanes > 0)
        CheckRest(Stream, StrideBytes(Raw.m_nType, Raw.m_nWidth, Raw.m_nPlanes) * Raw.m_nHeight);
    NewWithType(Raw.m_nType, Raw.m_nWidth, Raw.m_nHeight, Raw.m_nPlanes, Raw.m_nPelsX,
                Raw.m_nPelsY);
    m_eContent = static_cast<EContent>(Raw.m_nContent);
    m_dWhite = Raw.m_dWhite;
    m_dBlack = Raw.m_dBlack;
    m_nAttribute = Raw.m_nAttribute;
    Stream.ReadNumericArray(Data(), SampleCount(*this),
                            static_cast<unsigned long>(BytesPerSample()));
    ReadMagic(Stream, "KPF end Magic is missing");
}

void ClImage::Store(const char* pFileName) const {
    ClFileStream Stream(pFileName, "wb");
    Store(Stream);
    Stream.Close();
}

void ClImage::Load(const char* pFileName) {
    ClFileStream Stream(pFileName, "rb");
    Load(Stream);
    Stream.Close();
}

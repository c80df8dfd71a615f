#pragma once

/// Containers of bytes on a stream: `std::vector<unsigned char>` and
/// `TpArrayStatic<unsigned char>`. Nothing but the bytes is stored; a count is the caller's affair.

#include "Tools/Array.h"
#include "Tools/Stream.h"

#include <cstring>
#include <exception>
#include <vector>

namespace IO {

namespace Detail {

inline unsigned long Entries(const std::vector<unsigned char>& aBytes) {
    return aBytes.size();
}
inline unsigned long Entries(const TpArrayStatic<unsigned char>& aBytes) {
    return aBytes.Entries();
}
inline const unsigned char* Bytes(const std::vector<unsigned char>& aBytes) {
    return aBytes.data();
}
inline const unsigned char* Bytes(const TpArrayStatic<unsigned char>& aBytes) {
    return aBytes.Data();
}
inline unsigned char* Bytes(std::vector<unsigned char>& aBytes) {
    return aBytes.data();
}
inline unsigned char* Bytes(TpArrayStatic<unsigned char>& aBytes) {
    return aBytes.Data();
}

/// Gives the container `nEntries` zeros.
inline void Renew(std::vector<unsigned char>& aBytes, unsigned long nEntries) {
    try {
        aBytes.assign(nEntries, 0);
    } catch (const std::exception&) { // no memory, or more than a vector can have
        Vek::ThrowBadAlloc();
    }
}
inline void Renew(TpArrayStatic<unsigned char>& aBytes, unsigned long nEntries) {
    aBytes.New(nEntries);
    if (nEntries > 0)
        std::memset(aBytes.Data(), 0, nEntries);
}

} // namespace Detail

/// Writes the bytes, as `ClStream::Write`; nothing for an empty container.
template <class T>
void Store(const T& aBytes, ClStream& Stream) {
    if (Detail::Entries(aBytes) > 0)
        Stream.Write(Detail::Bytes(aBytes), Detail::Entries(aBytes));
}

/// Makes the container as long as the whole stream and reads from the position on, as
/// `ClStream::Read`; entries that cannot be read are 0.
template <class T>
void Load(T& aBytes, ClStream& Stream) {
    Detail::Renew(aBytes, Stream.Size());
    if (Detail::Entries(aBytes) > 0)
        Stream.Read(Detail::Bytes(aBytes), Detail::Entries(aBytes));
}

} // namespace IO

#pragma once

/// The size protocol of the texts that parameters give.

#include "Harness.h"

namespace Fuzz {

/// Asks for a text with a room of no bytes, and of as many as are told. Nothing where there is
/// none.
template <class Ask>
std::string TextOf(Ask ask) {
    unsigned long nSize = 0;
    const bool bGiven = ask(static_cast<char*>(nullptr), nSize);
    Require(!bGiven, "no text fits into no room");
    if (nSize == 0 || nSize > (1U << 20))
        return {};
    const ClBlock room(std::string(nSize, '?'));
    char* const pRoom = reinterpret_cast<char*>(room.Data());
    Require(ask(pRoom, nSize), "the size that was told is enough");
    Require(pRoom[nSize - 1] == '\0' && nSize == room.Size(),
            "a text ends where its size says"); // "%c" may print a zero before
    return pRoom;
}

} // namespace Fuzz

#pragma once

/// The place of a virtual operation in the table of its class, which programs compiled against an
/// earlier header rely on.

#include <cstddef>
#include <cstring>

namespace TestSupport {

/// Counted from 0, a destructor taking two. For the C++ ABI of x86-64, where a pointer to a virtual
/// member holds the offset of its entry plus 1.
template <class Member>
long SlotOf(Member pfnMember) {
    std::ptrdiff_t nEntry = 0;
    static_assert(sizeof pfnMember == 2 * sizeof nEntry, "a pointer and an adjustment");
    std::memcpy(&nEntry, &pfnMember, sizeof nEntry);
    return nEntry % 2 == 1 ? nEntry / static_cast<long>(sizeof nEntry) : -1;
}

} // namespace TestSupport

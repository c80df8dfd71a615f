#pragma once

/// Makes a list that fails a short one that still does: parts are left out, first halves, then ever
/// smaller ones, until no single element can go.

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Calls {

/// `aList` without its elements from `nFirst` to `nEnd` - 1.
template <class T>
std::vector<T> Without(const std::vector<T>& aList, std::size_t nFirst, std::size_t nEnd) {
    std::vector<T> aRest(aList.begin(), aList.begin() + static_cast<std::ptrdiff_t>(nFirst));
    aRest.insert(aRest.end(), aList.begin() + static_cast<std::ptrdiff_t>(nEnd), aList.end());
    return aRest;
}

/// Leaves out parts of `nPart` elements as long as `fails(list)` holds for what is left. The last
/// parts go first: they lean on those in front of them.
template <class T, class Fails>
bool LeaveOutParts(std::vector<T>& rList, std::size_t nPart, Fails& fails) {
    bool bLeftOut = false;
    for (std::size_t nEnd = rList.size(); nEnd > 0;) {
        const std::size_t nFirst = nEnd > nPart ? nEnd - nPart : 0;
        std::vector<T> aRest = Without(rList, nFirst, nEnd);
        if (!aRest.empty() && fails(aRest)) {
            rList = std::move(aRest);
            bLeftOut = true;
        }
        nEnd = nFirst;
    }
    return bLeftOut;
}

/// `aList` has to fail. What is returned fails, and would not without any one of its elements, as
/// long as `fails` answers the same for the same list.
template <class T, class Fails>
std::vector<T> Shrunk(std::vector<T> aList, Fails fails) {
    std::size_t nPart = aList.size();
    while (nPart > 1) {
        nPart = (nPart + 1) / 2;
        LeaveOutParts(aList, nPart, fails);
    }
    while (aList.size() > 1 && LeaveOutParts(aList, 1, fails)) {
    }
    return aList;
}

} // namespace Calls

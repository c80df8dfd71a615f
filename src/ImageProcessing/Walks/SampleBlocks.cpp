#include "ImageProcessing/Walks/SampleBlocks.h"

#include "ImageProcessing/PixelTypeDispatch.h"

#include <algorithm>

namespace {

template <class T>
void Load(const unsigned char* pFrom, long nCount, double* pTo) {
    const T* pSamples = reinterpret_cast<const T*>(pFrom);
    for (long i = 0; i < nCount; ++i)
        pTo[i] = static_cast<double>(pSamples[i]);
}

template <class T>
void Store(const double* pFrom, long nCount, unsigned char* pTo) {
    T* pSamples = reinterpret_cast<T*>(pTo);
    for (long i = 0; i < nCount; ++i)
        pSamples[i] = SampleFromDouble<T>(pFrom[i]);
}

} // namespace

bool IsPixelType(unsigned char nType) {
    return DispatchPixelType(nType, [](auto) { return 0L; }) == 0;
}

LoadSamples LoadSamplesOf(unsigned char nType) {
    LoadSamples load = nullptr;
    DispatchPixelType(nType, [&](auto Tag) {
        load = Load<typename decltype(Tag)::Type>;
        return 0L;
    });
    return load;
}

StoreSamples StoreSamplesOf(unsigned char nType) {
    StoreSamples store = nullptr;
    DispatchPixelType(nType, [&](auto Tag) {
        store = Store<typename decltype(Tag)::Type>;
        return 0L;
    });
    return store;
}

void SpreadSamples(double* pSamples, long nCount, long nPlanes) {
    if (nPlanes == 1)
        return;
    for (long i = nCount - 1; i >= 0; --i) // from the end: what is read has not been written
        std::fill_n(pSamples + i * nPlanes, nPlanes, double{pSamples[i]});
}

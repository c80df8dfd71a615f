// The category of the statuses is one object in all parts of an application: codes of one part
// equal those of another.

#include <TessarinCalibrateSDK.hpp>

#include <cstdio>

extern "C" const std::error_category* categoryOfFirst();
extern "C" const std::error_category* categoryOfSecond();

int main() {
    const std::error_category* const apCategories[] = {&tessarin::category(), categoryOfFirst(),
                                                       categoryOfSecond()};
    for (const std::error_category* pCategory : apCategories)
        if (*pCategory != *apCategories[0]) {
            std::fprintf(stderr, "the parts have categories of their own\n");
            return 1;
        }
    return 0;
}

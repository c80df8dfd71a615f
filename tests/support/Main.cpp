// Runs the tests of a program, with `--instruction-level=1` or `3` on no higher level than told, so
// that a whole suite can be seen at the levels that this processor would pass over.

#include "Tools/InstructionLevel.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr char cszOption[] = "--instruction-level=";

bool LimitTo(const char* szArgument) {
    if (std::strncmp(szArgument, cszOption, sizeof cszOption - 1) != 0)
        return false;
    const int nLevel = std::atoi(szArgument + sizeof cszOption - 1);
    LimitInstructionLevel(static_cast<EInstructionLevel>(nLevel));
    return InstructionLevel() == static_cast<EInstructionLevel>(nLevel);
}

} // namespace

int main(int nArguments, char** pszArguments) {
    testing::InitGoogleTest(&nArguments, pszArguments);
    if (nArguments == 2 ? LimitTo(pszArguments[1]) : nArguments == 1)
        return RUN_ALL_TESTS();
    std::fprintf(stderr, "usage: %s [%sLEVEL], a level that this processor has\n", pszArguments[0],
                 cszOption);
    return 2;
}

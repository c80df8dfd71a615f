// Runs a harness over every file of a corpus, and over mutations of each: truncated, with bytes
// replaced, with 32-bit numbers replaced by extreme values; where the harness has told the format
// of its bytes, every second one is repaired, so that its change is seen behind the first tests.
// The mutations come from a fixed generator, so that a failure is the same on every machine. Their
// number can be told for harnesses that take long.
//
// Fails where no input has reached what the harness names as a milestone.

#include "Formats.h"
#include "Harness.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

constexpr int cnUsualMutations = 100;

using Fuzz::ClRandom;

void Run(const std::string& Bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
}

std::string Mutate(std::string Bytes, ClRandom& rRandom) {
    static constexpr std::array<std::uint32_t, 8> canExtremes = {
        0, 1, 4, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x10000, 0xFFFFFFF0};
    const std::size_t nChanges = 1 + rRandom.Below(3);
    for (std::size_t i = 0; i < nChanges && !Bytes.empty(); ++i) {
        // Headers decide most: half of the changes hit the first 128 bytes.
        const std::size_t nEnd =
            rRandom.Below(2) == 0 ? std::min<std::size_t>(Bytes.size(), 128) : Bytes.size();
        const std::size_t nAt = rRandom.Below(nEnd);
        switch (rRandom.Below(3)) {
        case 0:
            Bytes.resize(nAt);
            break;
        case 1:
            Bytes[nAt] = static_cast<char>(rRandom.Below(256));
            break;
        default: {
            const std::uint32_t nValue = canExtremes[rRandom.Below(canExtremes.size())];
            for (std::size_t b = 0; b < 4 && nAt + b < Bytes.size(); ++b)
                Bytes[nAt + b] = static_cast<char>(nValue >> (8 * b));
        }
        }
    }
    return Bytes;
}

/// Every second mutation of a format that is known is repaired.
std::string Mutation(const std::string& Bytes, ClRandom& rRandom) {
    std::string Mutated = Mutate(Bytes, rRandom);
    if (Fuzz::ClFormat::Repair() != nullptr && rRandom.OneIn(2))
        Fuzz::ClFormat::Repair()(Mutated, rRandom);
    return Mutated;
}

/// The milestones that no input has reached are told.
bool AreMilestonesReached() {
    bool bAll = true;
    for (const auto* p = Fuzz::ClMilestone::First(); p != nullptr; p = p->Next())
        if (!p->IsReached()) {
            std::fprintf(stderr, "no input has reached: %s\n", p->What());
            bAll = false;
        }
    return bAll;
}

std::string ReadFile(const std::filesystem::path& Path) {
    std::ifstream File(Path, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: %s CORPUS [MUTATIONS]\n", argv[0]);
        return 2;
    }
    const int nMutations = argc == 3 ? std::atoi(argv[2]) : cnUsualMutations;
    std::vector<std::filesystem::path> aFiles;
    for (const auto& Entry : std::filesystem::directory_iterator(argv[1]))
        aFiles.push_back(Entry.path());
    std::sort(aFiles.begin(), aFiles.end());
    if (aFiles.empty()) {
        std::fprintf(stderr, "%s: the corpus is empty\n", argv[1]);
        return 1;
    }
    Run("");
    for (const auto& Path : aFiles) {
        const std::string Bytes = ReadFile(Path);
        Run(Bytes);
        ClRandom Random(Bytes.size() * 7919 + 1);
        for (int i = 0; i < nMutations; ++i)
            Run(Mutation(Bytes, Random));
    }
    std::printf("%zu inputs and %d mutations of each\n", aFiles.size(), nMutations);
    return AreMilestonesReached() ? 0 : 1;
}

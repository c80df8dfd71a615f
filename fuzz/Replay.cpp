// Runs a harness over every file of a corpus, and over mutations of each: truncated, with bytes
// replaced, with 32-bit numbers replaced by extreme values. The mutations come from a fixed
// generator, so that a failure is the same on every machine. Their number can be told for harnesses
// that take long.

#include "Harness.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

constexpr int cnUsualMutations = 400;

/// xorshift64*, which is enough to choose bytes with.
class ClRandom {
public:
    explicit ClRandom(std::uint64_t nSeed) : m_nState(nSeed | 1) {}
    std::size_t Below(std::size_t nEnd) {
        m_nState ^= m_nState >> 12;
        m_nState ^= m_nState << 25;
        m_nState ^= m_nState >> 27;
        return static_cast<std::size_t>((m_nState * 0x2545F4914F6CDD1DULL) >> 32) % nEnd;
    }

private:
    std::uint64_t m_nState;
};

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
            Run(Mutate(Bytes, Random));
    }
    std::printf("%zu inputs and %d mutations of each\n", aFiles.size(), nMutations);
    return 0;
}

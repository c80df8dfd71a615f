// Runs a harness over every file of a corpus, and over mutations of each. The mutations come from a
// fixed generator, so that a failure is the same on every machine. Their number can be told for
// harnesses that take long. Fails where no input has reached what the harness names as a milestone.
//
// With --slowest it looks for the input that takes longest instead.

#include "Harness.h"
#include "Mutations.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

constexpr int cnUsualMutations = 100;

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

/// The files of a folder in the order of their names.
std::vector<std::string> ReadFiles(const char* szFolder) {
    std::vector<std::filesystem::path> aFiles;
    for (const auto& Entry : std::filesystem::directory_iterator(szFolder))
        aFiles.push_back(Entry.path());
    std::sort(aFiles.begin(), aFiles.end());
    std::vector<std::string> aInputs;
    for (const auto& Path : aFiles)
        aInputs.push_back(ReadFile(Path));
    return aInputs;
}

int Replay(const std::vector<std::string>& aInputs, int nMutations) {
    Fuzz::Run("");
    for (const std::string& Bytes : aInputs) {
        Fuzz::Run(Bytes);
        Fuzz::ClRandom Random(Bytes.size() * 7919 + 1);
        for (int i = 0; i < nMutations; ++i)
            Fuzz::Run(Fuzz::Mutation(Bytes, Random));
    }
    std::printf("%zu inputs and %d mutations of each\n", aInputs.size(), nMutations);
    return AreMilestonesReached() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    const bool bSlowest = argc == 5 && std::strcmp(argv[2], "--slowest") == 0;
    if (argc != 2 && argc != 3 && !bSlowest) {
        std::fprintf(stderr, "usage: %s CORPUS [MUTATIONS | --slowest SECONDS FILE]\n", argv[0]);
        return 2;
    }
    const std::vector<std::string> aInputs = ReadFiles(argv[1]);
    if (aInputs.empty()) {
        std::fprintf(stderr, "%s: the corpus is empty\n", argv[1]);
        return 1;
    }
    if (!bSlowest)
        return Replay(aInputs, argc == 3 ? std::atoi(argv[2]) : cnUsualMutations);
    Fuzz::SearchSlowest(aInputs, std::atoi(argv[3]), argv[4]);
    return 0;
}

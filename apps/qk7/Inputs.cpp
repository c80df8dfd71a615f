#include "apps/qk7/Inputs.h"

#include "apps/qk7/Console.h"
#include "apps/qk7/File.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <optional>
#include <set>
#include <utility>

#include <glob.h>
#include <strings.h>
#include <sys/stat.h>

namespace qk7 {

namespace {

namespace fs = std::filesystem;

const std::vector<const char*> aPictureEndings = {".bmp", ".dib", ".png"};
const std::vector<const char*> aBlockEndings = {".cal", ".pre"};

bool EndsInOneOf(const fs::path& Path, const std::vector<const char*>& aEndings) {
    const std::string ending = Path.extension().string();
    return std::any_of(aEndings.begin(), aEndings.end(), [&](const char* szEnding) {
        return strcasecmp(ending.c_str(), szEnding) == 0;
    });
}

bool IsHidden(const fs::path& Path) {
    return Path.filename().string().rfind('.', 0) == 0;
}

bool IsFolder(const std::string& Path) {
    std::error_code ignored;
    return fs::is_directory(Path, ignored);
}

bool IsThatFolder(const fs::path& a, const std::string& b) {
    std::error_code ignored;
    return !b.empty() && fs::equivalent(a, b, ignored);
}

/// The folder, its folders behind its files.
class ClFolder {
public:
    ClFolder(const std::string& Root, const StInputRules& Rules, StInputs& rInputs)
        : m_Root(Root), m_Rules(Rules), m_rInputs(rInputs) {}

    void Add() {
        const std::size_t nBefore = m_rInputs.m_aFiles.size();
        AddBelow(m_Root);
        if (m_rInputs.m_aFiles.size() == nBefore)
            m_rInputs.m_aFiles.push_back({m_Root, "", NothingFound()});
    }

private:
    bool IsWanted(const fs::path& Path) const {
        return !IsHidden(Path) && ((m_Rules.m_bPictures && EndsInOneOf(Path, aPictureEndings)) ||
                                   (m_Rules.m_bBlocks && EndsInOneOf(Path, aBlockEndings)));
    }

    bool IsEntered(const fs::directory_entry& Entry) const {
        std::error_code ignored;
        return m_Rules.m_bRecursive && Entry.is_directory(ignored) && !Entry.is_symlink(ignored) &&
               !IsHidden(Entry.path()) && !IsThatFolder(Entry.path(), m_Rules.m_Except);
    }

    void AddBelow(const fs::path& Folder) {
        std::vector<std::string> files;
        std::vector<std::string> folders;
        std::error_code error;
        for (fs::directory_iterator i(Folder, error), end; !error && i != end; i.increment(error)) {
            std::error_code ignored;
            if (IsEntered(*i))
                folders.push_back(i->path().string());
            else if (!i->is_directory(ignored) && IsWanted(i->path()))
                files.push_back(i->path().string());
        }
        if (error)
            m_rInputs.m_aFiles.push_back({Folder.string(), "", error.message()});
        std::sort(files.begin(), files.end());
        std::sort(folders.begin(), folders.end());
        for (const std::string& file : files)
            m_rInputs.m_aFiles.push_back({file, fs::path(file).lexically_relative(m_Root), ""});
        for (const std::string& folder : folders)
            AddBelow(folder);
    }

    std::string NothingFound() const {
        std::string words = "is a folder without";
        if (m_Rules.m_bPictures)
            words += " pictures (.bmp, .dib, .png)";
        if (m_Rules.m_bPictures && m_Rules.m_bBlocks)
            words += " and";
        if (m_Rules.m_bBlocks)
            words += " blocks (.cal, .pre)";
        return words + (m_Rules.m_bRecursive ? "." : "; --recursive looks into its folders too.");
    }

    std::string m_Root;
    const StInputRules& m_Rules;
    StInputs& m_rInputs;
};

bool IsPattern(const std::string& Argument) {
    std::error_code ignored;
    return Argument.find_first_of("*?[") != std::string::npos &&
           !fs::exists(fs::symlink_status(Argument, ignored));
}

class ClMatches {
public:
    explicit ClMatches(const std::string& Pattern) {
        if (glob(Pattern.c_str(), 0, nullptr, &m_Glob) == GLOB_NOSPACE)
            throw std::bad_alloc();
    }
    ClMatches(const ClMatches&) = delete;
    ClMatches& operator=(const ClMatches&) = delete;
    ~ClMatches() { globfree(&m_Glob); }

    std::vector<std::string> Paths() const {
        return std::vector<std::string>(m_Glob.gl_pathv, m_Glob.gl_pathv + m_Glob.gl_pathc);
    }

private:
    glob_t m_Glob = {};
};

void AddPath(const std::string& Path, const StInputRules& Rules, StInputs& rInputs) {
    if (IsFolder(Path)) {
        rInputs.m_bSeveral = true;
        ClFolder(Path, Rules, rInputs).Add();
        return;
    }
    rInputs.m_aFiles.push_back({Path, fs::path(Path).filename().string(), ""});
}

void AddMatches(const std::string& Pattern, const StInputRules& Rules, StInputs& rInputs) {
    rInputs.m_bSeveral = true;
    const std::vector<std::string> paths = ClMatches(Pattern).Paths();
    for (const std::string& path : paths)
        if (!IsThatFolder(path, Rules.m_Except))
            AddPath(path, Rules, rInputs);
    if (paths.empty())
        rInputs.m_aFiles.push_back({Pattern, "", "No file has this name or matches this pattern."});
}

/// What a file is, by whatever name; none for what is no regular file, or is not there.
using Identity = std::optional<std::pair<dev_t, ino_t>>;

Identity IdentityOf(const std::string& Path) {
    struct stat status {};
    if (IsStream(Path) || stat(Path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return std::make_pair(status.st_dev, status.st_ino);
}

} // namespace

StInputs ExpandInputs(const std::vector<std::string>& aArguments, const StInputRules& Rules) {
    StInputs inputs;
    inputs.m_bSeveral = aArguments.size() > 1;
    for (const std::string& argument : aArguments) {
        if (IsPattern(argument))
            AddMatches(argument, Rules, inputs);
        else
            AddPath(argument, Rules, inputs);
    }
    return inputs;
}

std::vector<std::string> PathsOf(const StInputs& Inputs) {
    std::vector<std::string> paths;
    for (const StInput& file : Inputs.m_aFiles)
        paths.push_back(file.m_Path);
    return paths;
}

void CheckInputsStay(const std::vector<std::string>& aInputs,
                     const std::vector<std::string>& aOutputs) {
    std::set<Identity> inputs;
    for (const std::string& input : aInputs)
        inputs.insert(IdentityOf(input));
    for (const std::string& output : aOutputs) {
        const Identity identity = IdentityOf(output);
        if (identity && inputs.count(identity) > 0)
            throw ClWrongUsage(output + " is an input; give another output");
    }
}

} // namespace qk7

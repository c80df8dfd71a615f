#include "apps/qk7/ReportBatch.h"

#include "apps/qk7/Console.h"
#include "apps/qk7/Derivation.h"
#include "report/Index.h"
#include "report/Page.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace qk7 {

namespace {

namespace fs = std::filesystem;

constexpr const char* g_szReference = "plate.cal";

bool BeginsWith(const std::string& Name, const std::string& Front) {
    return Name.compare(0, Front.size(), Front) == 0;
}

/// Takes out the pictures that begin with a word.
std::vector<std::string> TakeOut(const std::string& Word, std::vector<StInput>& rPictures) {
    std::vector<std::string> taken;
    const auto isTaken = [&](const StInput& picture) { return BeginsWith(picture.m_Name, Word); };
    for (const StInput& picture : rPictures)
        if (isTaken(picture))
            taken.push_back(picture.m_Path);
    rPictures.erase(std::remove_if(rPictures.begin(), rPictures.end(), isTaken), rPictures.end());
    return taken;
}

/// Takes out those that begin with a word, and gives the one among them that counts.
std::string TakeOne(const std::string& Word, const std::string& Folder,
                    std::vector<StInput>& rPictures) {
    const std::vector<std::string> begun = TakeOut(Word, rPictures);
    std::vector<std::string> named;
    std::copy_if(begun.begin(), begun.end(), std::back_inserter(named),
                 [&](const std::string& path) { return fs::path(path).stem() == Word; });
    const std::vector<std::string>& candidates = named.empty() ? begun : named;
    if (candidates.size() > 1)
        throw ClFailure(Folder, "has several pictures of one kind: " + FileNameOf(candidates[0]) +
                                    " and " + FileNameOf(candidates[1]) + "; leave one of them.");
    return candidates.empty() ? "" : candidates[0];
}

std::vector<StInput> FoldersIn(const StReportBatch& Batch) {
    std::vector<StInput> folders;
    std::error_code error;
    for (fs::directory_iterator i(Batch.m_Folder, error), end; !error && i != end;
         i.increment(error)) {
        std::error_code ignored;
        const std::string name = i->path().filename().string();
        if (i->is_directory(ignored) && name[0] != '.' &&
            !fs::equivalent(i->path(), Batch.m_Output, ignored))
            folders.push_back({i->path().string(), name, ""});
    }
    if (error)
        throw ClFailure(Batch.m_Folder, error.message());
    if (folders.empty())
        throw ClFailure(Batch.m_Folder,
                        "is a folder without folders of scanners; qk7 report --help tells how they "
                        "are laid out.");
    std::sort(folders.begin(), folders.end(),
              [](const StInput& a, const StInput& b) { return a.m_Name < b.m_Name; });
    return folders;
}

report::EState StateOf(report::EVerdict eVerdict) {
    return eVerdict == report::EVerdict::eGood       ? report::EState::eGood
           : eVerdict == report::EVerdict::eDoubtful ? report::EState::eDoubtful
                                                     : report::EState::eRefused;
}

report::StEntry EntryOf(const report::StScanner& Scanner, const std::string& Page) {
    report::StEntry entry;
    entry.m_sName = Scanner.m_sTitle;
    entry.m_sPage = Page;
    entry.m_eState = StateOf(Scanner.m_eVerdict);
    entry.m_aReasons = Scanner.m_aReasons;
    entry.m_Values = Scanner.m_Values;
    if (Scanner.m_Platen)
        entry.m_Values.insert(Scanner.m_Platen->m_Values.begin(), Scanner.m_Platen->m_Values.end());
    return entry;
}

report::StEntry FailedEntry(const std::string& Name, const std::exception& Error) {
    report::StEntry entry;
    entry.m_sName = Name;
    entry.m_aReasons = {WordsOf(Error)};
    return entry;
}

StTold ToldOf(const StInput& Folder, const std::string& Path, const report::StScanner& Scanner) {
    StTold told;
    told.m_bBad = Scanner.m_eVerdict == report::EVerdict::eRefused;
    told.m_bDoubtful = Scanner.m_eVerdict == report::EVerdict::eDoubtful;
    told.m_Text = ScannerText(Folder.m_Name, Scanner);
    told.m_Json = {{"file", Folder.m_Path}, {"report", Path}};
    told.m_Json.update(ScannerJson(Scanner));
    return told;
}

class ClBatch {
public:
    explicit ClBatch(const StReportBatch& Batch)
        : m_Batch(Batch), m_aFolders(FoldersIn(Batch)), m_aEntries(m_aFolders.size()) {}

    void Run() {
        MakeDirectory(m_Batch.m_Output);
        StFileRun run;
        run.m_Command = "report";
        run.m_eForm = m_Batch.m_Files.m_bJson ? EForm::eJson : EForm::eText;
        run.m_Done = "good";
        run.m_LastWords = "interrupted; pages that are there are whole, the index is not made";
        const auto makeWork = [this]() -> FileWork {
            return [this](std::size_t nFolder) { return Report(nFolder); };
        };
        run.m_Last = [this] { WriteIndex(); };
        DoFiles(run, m_Batch.m_Files, m_aFolders, makeWork(), makeWork);
    }

private:
    /// Each thread has entries of its own.
    StTold Report(std::size_t nFolder) {
        const StInput& folder = m_aFolders[nFolder];
        try {
            StScannerFiles files = FilesInFolder(folder.m_Path);
            files.m_Title = folder.m_Name;
            report::StScanner scanner = GatherScanner(files);
            scanner.m_sIndex = report::IndexFiles().front();
            const std::string page = "scanner-" + folder.m_Name + ".html";
            const std::string path = PathOf(page);
            WriteText(path, report::PageOf(scanner));
            m_aEntries[nFolder] = EntryOf(scanner, page);
            return ToldOf(folder, path, scanner);
        } catch (const std::exception& error) {
            m_aEntries[nFolder] = FailedEntry(folder.m_Name, error);
            throw;
        }
    }

    void WriteIndex() const {
        for (const report::StIndexPage& page : report::IndexPages(m_aEntries, QK7_VERSION))
            WriteText(PathOf(page.m_sFile), page.m_sHtml);
    }

    std::string PathOf(const std::string& Page) const {
        return (fs::path(m_Batch.m_Output) / Page).string();
    }

    const StReportBatch& m_Batch;
    std::vector<StInput> m_aFolders;
    std::vector<report::StEntry> m_aEntries;
};

} // namespace

StScannerFiles FilesInFolder(const std::string& Folder) {
    std::error_code error;
    if (fs::directory_iterator(Folder, error); error)
        throw ClFailure(Folder, error.message());
    std::vector<StInput> pictures = ExpandInputs({Folder}, {false, true, false, ""}).m_aFiles;
    if (!pictures.empty() && !pictures[0].m_Fault.empty())
        throw ClFailure(Folder, "has no pictures (.bmp, .dib, .png).");
    StScannerFiles files;
    files.m_Target = TakeOne("target", Folder, pictures);
    if (files.m_Target.empty())
        throw ClFailure(Folder, "has no capture of the target; its name has to begin with "
                                "\"target\".");
    files.m_Second = TakeOne("second", Folder, pictures);
    files.m_Empty = TakeOne("empty", Folder, pictures);
    TakeOut("ruled", pictures);
    for (const StInput& picture : pictures)
        files.m_aFingers.push_back(picture.m_Path);
    // Of one that is there and cannot be reached its reader tells: none is another plate.
    const fs::path reference = fs::path(Folder) / g_szReference;
    if (fs::symlink_status(reference, error).type() != fs::file_type::not_found)
        files.m_Reference = reference.string();
    return files;
}

void ReportBatch(const StReportBatch& Batch) {
    ClBatch(Batch).Run();
}

std::string ScannerText(const std::string& Name, const report::StScanner& Scanner) {
    const EColour eColour = Scanner.m_eVerdict == report::EVerdict::eGood       ? EColour::eGood
                            : Scanner.m_eVerdict == report::EVerdict::eDoubtful ? EColour::eDoubtful
                                                                                : EColour::eBad;
    std::string text =
        Name + ": " + OutColoured(eColour, report::VerdictName(Scanner.m_eVerdict)) + "\n";
    for (const std::string& reason : Scanner.m_aReasons)
        text += "  " + reason + "\n";
    return text;
}

} // namespace qk7

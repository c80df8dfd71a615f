#pragma once

/// The pages over many scanners: one for each order, since there is no script to sort by.

#include "report/PageData.h"

#include <string>
#include <vector>

namespace report {

enum class EState { eGood, eDoubtful, eRefused, eFailed };

/// "good", "doubtful", "refused" or "failed".
const char* StateName(EState eState);

/// A scanner in the index.
struct StEntry {
    std::string m_sName;
    std::string m_sPage; ///< the file of its page beside the index; empty for none
    EState m_eState = EState::eFailed;
    std::vector<std::string> m_aReasons; ///< sentences
    Values m_Values;                     ///< those of its page, without its fingers'
};

struct StIndexPage {
    std::string m_sFile;
    std::string m_sHtml;
};

/// "index.html", failed, refused, doubtful ones and outliers first; "index-name.html" in the order
/// that is handed in; one for each figure of the table, the worst first. `sVersion` is the tool's.
std::vector<StIndexPage> IndexPages(const std::vector<StEntry>& aEntries,
                                    const std::string& sVersion);

/// The names of the files that `IndexPages` gives, whatever the entries.
std::vector<std::string> IndexFiles();

} // namespace report

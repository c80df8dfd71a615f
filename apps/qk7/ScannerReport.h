#pragma once

/// Gathers what the page of a scanner tells, from its files.

#include "apps/qk7/Document.h"
#include "report/PageData.h"

#include <string>
#include <vector>

namespace qk7 {

/// Paths; empty where there is no such file.
struct StScannerFiles {
    std::string m_Title;
    std::string m_Target;
    std::string m_Second;
    std::string m_Reference;
    std::string m_Calibration; ///< a stored block, judged in place of one that is derived
    std::string m_Empty;
    std::vector<std::string> m_aFingers;
};

/// A target that is refused is told on its page, and so is a finger that the library does not
/// correct. Throws `ClFailure` for files that cannot be read, and for pictures of which nothing can
/// be told.
report::StScanner GatherScanner(const StScannerFiles& Files);

/// All paths.
std::vector<std::string> PathsOf(const StScannerFiles& Files);

/// "verdict", "reasons", "figures", "platen", "fingers".
Json ScannerJson(const report::StScanner& Scanner);

/// The numbers of a JSON value by their paths below a name: "generate/plate/middle/shear".
void AddNumbers(const std::string& Name, const Json& Value, report::Values& rValues);

} // namespace qk7

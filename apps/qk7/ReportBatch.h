#pragma once

/// Reports on many scanners: a page for each, and an index.

#include "apps/qk7/FileRun.h"
#include "apps/qk7/ScannerReport.h"

namespace qk7 {

struct StReportBatch {
    std::string m_Folder;  ///< with a folder for each scanner
    std::string m_Output;  ///< folder of the pages
    StFileOptions m_Files; ///< jobs, quiet, JSON
};

/// The files of a scanner in its folder, by their names: the pictures that begin with "target",
/// "second" and "empty", and the block plate.cal; those that begin with "ruled" are left out, other
/// pictures are fingers. Of several that begin alike the one that is named "target.bmp" and so on
/// counts. Throws `ClFailure` where there is no target, or where several are as good.
StScannerFiles FilesInFolder(const std::string& Folder);

/// Each scanner is told as it is done; one that fails stops no other. The index is written last.
/// Ends as `DoFiles`. Throws `ClFailure` where nothing can be read or written at all.
void ReportBatch(const StReportBatch& Batch);

/// A page's verdict in words: "scanner.html: doubtful" and a line for each reason.
std::string ScannerText(const std::string& Name, const report::StScanner& Scanner);

} // namespace qk7

#pragma once

/// A calibration derived from a capture of the target, and judged: what `qk7 generate` writes and
/// `qk7 report` tells about.

#include "apps/qk7/File.h"
#include "apps/qk7/TargetReport.h"
#include "apps/qk7/VerdictReport.h"

namespace qk7 {

/// A file and what stands in it; no name where there is none.
struct StSource {
    std::string m_Path;
    Bytes m_Bytes;

    bool IsThere() const { return !m_Path.empty(); }
    /// As messages name it.
    std::string Name() const { return ShownName(m_Path, EStream::eIn); }
};

/// The last part of a path, or "standard input".
std::string FileNameOf(const std::string& Path);

/// A picture file as a bitmap block; nothing without a name.
StSource PictureSource(const std::string& Path);
/// Another file; nothing without a name.
StSource FileSource(const std::string& Path);

struct StDerivation {
    StSource m_Target;
    StSource m_Reference; ///< a block whose target points are the dots' places on this plate
    StSource m_Second;    ///< a capture of the target, laid anew
    std::string m_Hint;   ///< ends the advice of a refusal, behind a semicolon; may be empty
};

/// The blocks of a calibration; the precalculated one is empty where nobody asked for it.
struct StBlocks {
    Bytes m_Calibration;
    Bytes m_Precalculated;
};

/// Blocks that load: what was generated need not, and is read back on a handle of its own. The
/// table comes from there too, since a block holds coordinates rounded to 32-bit floats: results
/// are then the same with the precalculated block and without it. Throws `ClRefusedTarget`,
/// `ClUnloadableRecord`, or `ClFailure` where a file is to blame.
StBlocks Derive(const StDerivation& Derivation, bool bPrecalculated);

/// The calibration against the target that it was derived from and, where there is one, the second
/// capture. Throws `ClFailure`.
StJudged Judge(const StDerivation& Derivation, const Bytes& Calibration);
/// The same of a stored calibration: what its own dots say is nothing of this target, which has to
/// come out as the pattern, corrected, as the second capture has to.
StJudged JudgeStored(const StDerivation& Derivation, const StSource& Stored);

/// A capture of the target, corrected with the calibration, without finger mask. Throws `ClFailure`
/// with its name.
Bytes Corrected(const StSource& Capture, const Bytes& Calibration);

/// The dots of the target once more, in the open.
StTargetDiagnosis Diagnose(const StDerivation& Derivation);

/// What to do about a refused target, without a full stop.
extern const char* const g_szRecapture;

/// What to do about a doubtful calibration, without the last full stop.
std::string DoubtAdvice(const diagnosis::Reasons& aReasons);

} // namespace qk7

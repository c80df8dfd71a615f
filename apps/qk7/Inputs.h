#pragma once

/// The files that a command works on: what its arguments stand for.

#include <string>
#include <vector>

namespace qk7 {

struct StInput {
    std::string m_Path;
    /// How an output in a folder is named after it: the file's own name, or its path below the
    /// folder that was given.
    std::string m_Name;
    /// Why there is nothing to read, for an argument that stands for no file; else empty.
    std::string m_Fault;
};

struct StInputs {
    std::vector<StInput> m_aFiles;
    /// There are several, or there could have been: a folder or a pattern was given.
    bool m_bSeveral = false;
};

struct StInputRules {
    bool m_bRecursive = false; ///< also what lies in folders of the folders
    bool m_bPictures = true;   ///< what is taken out of folders, by the endings
    bool m_bBlocks = false;
    std::string m_Except; ///< a folder that is left out; empty for none
};

/// An argument is the name of a file, or of a folder for the pictures and blocks in it, by the
/// rules, sorted, hidden ones left out; or a pattern with *, ? and [...], where
/// no file has that very name, for all that match, sorted. The order of the arguments is kept.
StInputs ExpandInputs(const std::vector<std::string>& aArguments, const StInputRules& Rules);

std::vector<std::string> PathsOf(const StInputs& Inputs);

/// Finds an output that would take the place of a file that is read, whatever the two names are.
/// Empty names and streams count as none. Throws `ClWrongUsage`.
void CheckInputsStay(const std::vector<std::string>& aInputs,
                     const std::vector<std::string>& aOutputs);

} // namespace qk7

#pragma once

/// What the tool prints, and how it ends.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace qk7 {

/// The exit statuses.
enum EExit { eDone = 0, eFailed = 1, eWrongUsage = 2, eDoubtful = 3 };

/// A call that is wrong in a way that only the command can see. what() says how.
class ClWrongUsage : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Whether texts are coloured: on a terminal that is not dumb, unless NO_COLOR is set; or decided.
enum class EColours { eAuto, eAlways, eNever };
void ChooseColours(EColours eColours);

enum class EColour { eBad, eDoubtful, eGood };

/// The text in its colour, where standard output (or error) shows colours.
std::string OutColoured(EColour eColour, const std::string& Text);
std::string ErrColoured(EColour eColour, const std::string& Text);

/// Finds out what goes through standard input and output: each may be named once, by "-". What is
/// printed goes to standard error from then on, when an output has taken standard output; JSON
/// cannot. Throws `ClWrongUsage`.
void ClaimStreams(const std::vector<std::string>& aInputs, const std::vector<std::string>& aOutputs,
                  bool bJson);

/// Writes a whole text to standard output, or to standard error where that is taken; to a terminal
/// without control characters but those of colours. Throws `ClFailure` when it is closed or full.
void Print(const std::string& Text);

/// One line on standard error: "qk7 calibrate: message".
void PrintError(const std::string& Command, const std::string& Message);
/// The same for what is no error.
void PrintNote(const std::string& Command, const std::string& Message);

/// A level or a percentage: "12.50".
std::string Hundredths(double dValue);

/// The words of an exception, for such a message.
std::string WordsOf(const std::exception& Error);

/// The text without control characters, which could drive a terminal; line feeds stay.
std::string Harmless(const std::string& Text);

} // namespace qk7

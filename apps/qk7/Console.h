#pragma once

/// What the tool prints, and how it ends.

#include <cstddef>
#include <stdexcept>
#include <string>

namespace qk7 {

class ClProgress;

/// The exit statuses.
enum EExit { eDone = 0, eFailed = 1, eWrongUsage = 2, eDoubtful = 3 };

/// A call that is wrong in a way that only the command can see. what() says how.
class ClWrongUsage : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes a whole text to standard output. Throws `ClFailure` when that is closed or full.
void Print(const std::string& Text);

/// One line on standard error: "qk7 calibrate: message".
void PrintError(const std::string& Command, const std::string& Message);

/// A level or a percentage: "12.50".
std::string Hundredths(double dValue);

/// The words of an exception, for such a message.
std::string WordsOf(const std::exception& Error);

/// The failures of a command that goes on with its other files: each is printed at once, and the
/// end of the command knows of them.
class ClFailures {
public:
    explicit ClFailures(const std::string& Command) : m_Command(Command) {}

    /// Prints; the bar, if there is one, makes room.
    void Add(const std::exception& Error, ClProgress* pProgress = nullptr);
    /// Throws what lets the tool end with the status for failures, when there were any.
    void End() const;

private:
    std::string m_Command;
    std::size_t m_nCount = 0;
};

} // namespace qk7

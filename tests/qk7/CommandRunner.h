#pragma once

/// Runs the tool as a user does: a process with arguments, an exit status and two outputs.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace TestSupport {

struct StEnded {
    int m_nExit = -1;  ///< -1 when a signal ended it
    int m_nSignal = 0; ///< 0 when it ended by itself
    std::string m_Out;
    std::string m_Err;
};

using Arguments = std::vector<std::string>;

/// Where the tool lies.
std::string ToolPath();

/// For a child that waits to be interrupted: a shell starts what runs in its background with
/// interrupts ignored, and children inherit that.
void HeedSignals();

/// Runs to the end, in a directory when one is given.
StEnded Qk7(const Arguments& arguments, const std::string& Folder = "");

/// The same in a process that was prepared, as by limits; the outputs are open by then.
StEnded Qk7Under(const std::function<void()>& prepare, const Arguments& arguments,
                 const std::string& Folder = "");

/// The same with standard input coming from a file.
StEnded Qk7From(const std::string& Input, const Arguments& arguments,
                const std::string& Folder = "");

/// Two at the same time: their exit statuses.
std::pair<int, int> Qk7AtOnce(const Arguments& one, const Arguments& other);

/// The same with standard output going to a path, such as a full device.
StEnded Qk7Into(const std::string& Output, const Arguments& arguments);

/// The same with standard output going to a pipe whose other end is closed.
StEnded Qk7IntoClosedPipe(const Arguments& arguments);

/// The same with standard error being a terminal; m_Err is what it shows.
StEnded Qk7AtTerminal(const Arguments& arguments);

/// Starts, sends the signal as soon as `ready` says so, and waits for the end.
StEnded Qk7Interrupted(const Arguments& arguments, int nSignal, const std::function<bool()>& ready);

} // namespace TestSupport

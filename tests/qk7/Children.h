#pragma once

/// Work in a process of its own, which may end in every way.

#include <functional>

#include <sys/types.h>

namespace TestSupport {

/// Starts a child with the tool's signal handling. It ends with 0, or with 1 after a `ClFailure`.
pid_t StartChild(const std::function<void()>& work);

/// How a child ended, as waitpid() tells it.
int StatusOf(pid_t nChild);

/// Both.
int StatusOfChild(const std::function<void()>& work);

/// Runs expectations in a child, whose failures fail the test, too.
void ExpectInChild(const std::function<void()>& expectations);

/// For a child: puts a disk of this many bytes in the place of a folder and returns true; where the
/// machine lets nobody mount, limits every file to as many and returns false.
bool LimitRoom(const char* szFolder, unsigned long nBytes);

/// For a child, before it starts the tool: permissions hold for root, too.
void HeedPermissions();

} // namespace TestSupport

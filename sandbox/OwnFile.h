// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "sandbox/Outcome.h"

namespace korvane::sandbox {

// Files that nobody else may have a hand in. A file is ours when it is a regular one, of this user, and
// others cannot write to it; a symbolic link never is. A folder is ours when this user or root has it, and
// others cannot put a file in the place of another in it: they cannot write to it, or it is sticky as /tmp
// is.

/// Creates the file, or puts a new one in the place of one that is ours: a crash leaves the old one or the
/// new one. Readable by this user alone. "", or why not: a folder or file that is not ours, or the system's
/// reason.
std::string writeOwnFile(const std::string& path, const std::string& text);

/// The content of a file that is ours.
Outcome<std::string> readOwnFile(const std::string& path);

/// Why the file, which need not be there, or its folder is not ours; "" when they are.
std::string ownFileProblem(const std::string& path);

/// Creates the file when there is none; "" when it is ours, in a folder that is ours.
std::string claimOwnFile(const std::string& path);

}  // namespace korvane::sandbox

#pragma once

#include <string>

/// The path that the system was given to start this program, symbolic links not followed. It can be
/// relative to the directory that was current then. The program's own first argument where the
/// system does not tell, or where the path and its NUL take more than 1024 bytes.
std::string executablePath();

/// Takes the directory that holds \a executablePath, goes \a levelsUp directories up, by the text
/// alone and no further than the root, and stores the canonical form of what is reached: no
/// symbolic link, "." or ".." is left in it. Stores the empty text where that directory does not
/// exist.
void initInstallationDirectory(const char *executablePath, int levelsUp);

/// What was stored last; empty until then.
std::string installationDirectory();

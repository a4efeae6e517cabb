#pragma once

#include <QString>

/// Takes the directory that holds \a executablePath (Latin-1), goes \a levelsUp directories up,
/// by the text alone and no further than the root, and stores the canonical form of what is
/// reached: no symbolic link, "." or ".." is left in it. Stores the empty text where that
/// directory does not exist.
void initInstallationDirectory(const char *executablePath, int levelsUp);

/// What was stored last; null until then.
QString installationDirectory();

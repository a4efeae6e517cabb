#pragma once

#include <QString>

/// Where the file that \a fileName names in the file \a includingFile is. A name that is empty or
/// does not begin with '/' is relative to the directory of the including file: what stands
/// before the last '/' of its name, "." where there is none, "/" for a file in the root.
QString resolveFileName(const QString &fileName, const QString &includingFile);

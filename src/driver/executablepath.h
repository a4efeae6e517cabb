#pragma once

#include <QString>

/// The path that the system was given to start this program, symbolic links not followed, as
/// Latin-1. It can be relative to the directory that was current then. The program's own first
/// argument where the system does not tell, or where the path and its NUL take more than 1024
/// bytes.
QString executablePath();

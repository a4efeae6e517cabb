#pragma once

#include <QString>

#include <cstdio>

/// Opens a C stream, as fopen() does. The name reaches the file system byte for byte as the
/// Latin-1 text that it is; a character that Latin-1 lacks becomes '?'. Null when the file
/// cannot be opened. Every file that a document names is opened here.
FILE *openFile(const QString &name, const char *mode);

// Alone in this file, so that a program which brings operations of its own links none of these.

#include "inputtext.h"

#include <sys/stat.h>

FILE *openFile(const std::string &name, const char *mode)
{
    return std::fopen(name.c_str(), mode);
}

bool canBeReadAgain(const std::string &name)
{
    struct stat status = {};
    return stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

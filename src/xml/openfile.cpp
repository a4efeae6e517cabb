#include "openfile.h"

FILE *openFile(const QString &name, const char *mode)
{
    return std::fopen(name.toLatin1().constData(), mode);
}

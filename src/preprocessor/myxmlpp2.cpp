#include "myxmlpp2.h"

#include <cstdio>
#include <cstdlib>

void MyXMLPP2::reportError(const QString &message)
{
    std::fprintf(stderr, "%s\n", message.toLatin1().constData());
    std::exit(EXIT_FAILURE);
}

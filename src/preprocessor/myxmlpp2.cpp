#include "myxmlpp2.h"

#include <cstdio>
#include <cstdlib>

void MyXMLPP2::reportError(const std::string &message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(EXIT_FAILURE);
}

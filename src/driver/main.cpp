#include "command.h"
#include "myxmlpp2.h"

#include <cstdlib>

namespace
{

int preprocess(command::Arguments arguments)
{
    // Never destroyed: the system takes the memory back at once, where the pool would first fill
    // all of it to show stale pointers.
    static MyXMLPP2 &document = *new MyXMLPP2(false);
    return command::process(&document, arguments) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char **argv)
{
    command::execute({2, "<infile> <outfile> [macro1=value;macro2=value;..]", preprocess}, argc,
                     argv);
}

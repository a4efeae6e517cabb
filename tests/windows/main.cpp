// xmlpp with windows of XMLPP_WINDOW bytes, for the tests.

#include "command.h"
#include "myxmlpp2.h"

#include <cstdlib>

namespace
{

int preprocess(command::Arguments arguments)
{
    const char *given = std::getenv("XMLPP_WINDOW");
    windows::Sizes sizes;
    if (given) {
        sizes.text = std::strtoul(given, nullptr, 10);
        sizes.lookAhead = 2 * sizes.text;
    }
    static MyXMLPP2 &document = *new MyXMLPP2(false);
    return command::process(&document, arguments, sizes) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char **argv)
{
    command::execute({2, "<infile> <outfile> [macro1=value;macro2=value;..]", preprocess}, argc,
                     argv);
}

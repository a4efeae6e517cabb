// xmlpp with windows of XMLPP_WINDOW bytes.

#include "command.h"
#include "myxmlpp2.h"

#include <cstdlib>

namespace
{

int preprocess(command::Arguments arguments)
{
    const char *const given = std::getenv("XMLPP_WINDOW");
    const std::size_t window = std::strtoul(given ? given : "32", nullptr, 10);
    static MyXMLPP2 &document = *new MyXMLPP2(false);
    const bool ok =
        command::process(&document, arguments, {.text = window, .lookAhead = 2 * window});
    return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char **argv)
{
    command::execute({2, "<infile> <outfile> [macro1=value;macro2=value;..]", preprocess}, argc,
                     argv);
}

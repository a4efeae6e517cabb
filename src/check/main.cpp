#include "checker.h"
#include "command.h"

#include <cstdlib>

int main(int argc, char **argv)
{
    const auto check = [](command::Arguments arguments) {
        const char *const macroList = arguments.size() > 2 ? arguments[2] : "";
        const bool isSilent = checkRun(arguments[0], macroList, command::limits(), stderr);
        return isSilent ? EXIT_SUCCESS : EXIT_FAILURE;
    };
    command::execute({2, "<infile> <outfile> [macro1=value;macro2=value;..]", check}, argc, argv);
}

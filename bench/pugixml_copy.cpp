// The plain use of pugixml: load a document, save it with two spaces a level.
//
//     pugixml_copy INPUT OUTPUT

#include <cstdio>
#include <pugixml.hpp>

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(argv[1]);
    if (!result) {
        fprintf(stderr, "pugixml_copy: %s: %s\n", argv[1], result.description());
        return 1;
    }
    return document.save_file(argv[2], "  ") ? 0 : 1;
}

#pragma once

#include "messages.h"
#include "xmlnode.h"

#include <string>
#include <unordered_map>
#include <vector>

/// What the files of a run say of macros.
struct Names {
    /// Something that is wrong if there is such a macro, which the end of the run tells.
    struct Doubt {
        std::string macro;
        Place place;
        const char *category;
        std::string text;
    };

    std::size_t elements = 0;                               ///< that were read
    std::unordered_map<std::string, std::size_t> mentions;  ///< and the last element that has one
    std::size_t lastOpen = 0;  ///< the last element that brings mentions from elsewhere
    bool areOpen = false;      ///< whether there can be mentions that are not seen
    std::vector<Doubt> doubts;
};

bool hasBlankAround(std::string_view name);

/// Says what a file shows as it stands, its text included. \a number is that of the file.
void checkFile(const XMLNode *root, std::size_t number, bool isLatin1, Names *names,
               Messages *messages);

// Reader and writer: what was read and written, read and written again, gives the same bytes.

#include "check.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string text(reinterpret_cast<const char *>(data), size);
    for (const bool keepComments : {false, true}) {
        XMLDocument document(keepComments);
        if (!document.parse(text.data()))
            continue;
        requireStable(&document, 0);
        // Indentation becomes part of the text that is kept.
        if (!keepComments)
            requireStable(&document, 2);
    }
    return 0;
}

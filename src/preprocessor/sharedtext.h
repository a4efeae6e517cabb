#pragma once

#include "budget.h"
#include "xmlnode.h"

#include <cstdint>
#include <unordered_map>

namespace directive
{

/// The text that copies share with the fragments that they were copied from. It takes no memory,
/// but every copy that is left in the document is written, so that a small document could make an
/// output without end.
class SharedText
{
public:
    /// Notes that \a fragment was copied once more.
    void noteCopy(const XMLNode *fragment);

    /// Spends what writing \a root takes. Only looks where all that was copied would be too much:
    /// directives can have removed most of it.
    void charge(const XMLNode *root, Budget *budget) const;

private:
    std::unordered_map<const XMLNode *, std::uint64_t> bytesOfFragments;
    std::uint64_t bytes = 0;  ///< of all copies
};

}  // namespace directive

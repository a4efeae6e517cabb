#include "budget.h"

#include <cassert>

void Limits::fitStack(std::uint64_t bytes)
{
    constexpr std::uint64_t usual = std::uint64_t{8} << 20;
    if (bytes >= usual)
        return;
    for (int *depth : {&nestedLevels, &expressionDepth})
        *depth = static_cast<int>(static_cast<std::uint64_t>(*depth) * bytes / usual);
}

namespace directive
{

Budget::Budget(const Limits &atMost, const Pool &target, const MacroScopes &scopes)
    : limits(atMost),
      pool(target),
      macros(scopes),
      workAtMost(atMost.work)
{
    exclude(target.bytesUsed() + scopes.bytesUsed(), target.bytesUsed());
}

std::string Budget::message() const
{
    assert(isSpent());
    if (growth() > limits.growth)
        return growthMessage();
    return std::string("directives make more than ")
        .append(std::to_string(limits.work))
        .append(" steps of work");
}

std::string Budget::growthMessage() const
{
    return std::string("directives bring more than ")
        .append(std::to_string(limits.growth))
        .append(" bytes into the document");
}

}  // namespace directive

#include "budget.h"

namespace directive
{

Budget::Budget(const Limits &atMost, const Pool &target)
    : limits(atMost),
      pool(target),
      bytesAtStart(target.bytesUsed()),
      workAtMost(atMost.work + static_cast<std::uint64_t>(Price::DocumentByte) * bytesAtStart)
{
}

std::string Budget::message() const
{
    std::string text = "directives ";
    if (growth() > limits.growth)
        text.append("bring more than ")
            .append(std::to_string(limits.growth))
            .append(" bytes into the document");
    else
        text.append("make more than ").append(std::to_string(limits.work)).append(" steps of work");
    return text;
}

}  // namespace directive

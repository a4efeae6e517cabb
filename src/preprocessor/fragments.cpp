#include "run.h"

#include <string>

namespace directive
{

Outcome handleXmldef(Run &run, XMLElement &element, const Level &)
{
    if (!element.hasAttribute("name"))
        return Outcome::keep();
    const std::string_view name = attributeText(element, "name");
    run.budget.spend(Price::Character, name.size());
    run.document.xmldefs.insert_or_assign(std::string(name), &element);
    return Outcome::remove();
}

Outcome handleXmlput(Run &run, XMLElement &element, const Level &level)
{
    if (!element.hasAttribute("name"))
        return Outcome::keep();
    const std::string_view name = attributeText(element, "name");
    run.budget.spend(Price::Character, name.size());
    const auto stored = run.document.xmldefs.find(name);
    if (stored == run.document.xmldefs.end()) {
        run.report(std::string("xmlput cannot fine xmldef named ").append(name));
        return Outcome::keep();
    }
    run.sharedText.noteCopy(stored->second);
    auto *const copy = static_cast<XMLElement *>(run.document.copyNode(stored->second, nullptr));
    return {Outcome::Action::Unwrap, copy, run.contentFor(element, level)};
}

}  // namespace directive

#include "run.h"

#include "macrovalues.h"

namespace directive
{

Run::Run(XMLPP2 *target, MacroMap *outermostMacros)
    : document(*target),
      limits(target->limits),
      macros(outermostMacros),
      budget(target->limits, *target, macros),
      firstRoot(static_cast<const XMLElement *>(target->root))
{
}

std::string Run::expanded(std::string_view text)
{
    std::string result;
    budget.spend(Price::Nanosecond, globalMacros.expand(macros, text, &result));
    return result;
}

XMLElement *Run::copyExpanded(const XMLElement &source, MacroLookup &lookup)
{
    std::uint64_t steps = 0;
    XMLElement *const copy = document.copyElementExpanded(&source, lookup, &steps);
    budget.spend(Price::Nanosecond, steps);
    return copy;
}

Content::Content(Run *run, const XMLElement &directive, const Level &outer)
    : macros(&run->macros),
      level{outer.fileName, run->addMacros(directive, outer), outer.includes}
{
}

bool Run::addMacros(const XMLElement &directive, const Level &level)
{
    const bool hasMacros = (level.expand || directive.hasAttribute("expand_macros")) &&
                           directive.hasAttribute("macros");
    if (hasMacros)
        budget.spend(Price::Nanosecond, macros.setList(attributeText(directive, "macros")));
    return level.expand || hasMacros;
}

std::unique_ptr<Content> Run::contentFor(const XMLElement &directive, const Level &level)
{
    return std::make_unique<Content>(this, directive, level);
}

void Run::tellExpression(const std::string &text, SimpleExpressionParser *failed)
{
    const std::string failure = failed ? failed->failureOf(text.c_str(), false) : "";
    document.expressionRead(*document.executed, text, failed ? failure.c_str() : nullptr);
}

void Run::report(const std::string &message)
{
    document.reportError(std::string("XmlPP::processConditionals(): ").append(message));
}

void Run::stopTooDeep(int levels)
{
    stop(std::string("nested more than ").append(std::to_string(levels)).append(" levels deep"));
}

void Run::stop(const std::string &message)
{
    stopped = true;
    report(message);
}

}  // namespace directive

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

std::unique_ptr<Content> Run::contentFor(const XMLElement &directive, const Level &level)
{
    const bool hasMacros = (level.expand || directive.hasAttribute("expand_macros")) &&
                           directive.hasAttribute("macros");
    auto content = std::make_unique<Content>(&macros, level.fileName, level.expand || hasMacros,
                                             level.includes);
    if (hasMacros)
        budget.spend(Price::Nanosecond, macros.setList(attributeText(directive, "macros")));
    return content;
}

void Run::tellExpression(const std::string &text, SimpleExpressionParser *failed)
{
    const std::string failure = failed ? failed->failureOf(text.c_str()) : "";
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

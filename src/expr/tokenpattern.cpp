#include "tokenpattern.h"

TokenPattern::TokenPattern(std::string_view pattern) : source(pattern), valid(true)
{
    while (valid && !pattern.empty())
        valid = takeStep(&pattern, &steps.emplace_back());
    if (!valid)
        steps.clear();
}

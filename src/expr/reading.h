#pragma once

#include "expression.h"
#include "expressionparser.h"
#include "lexer.h"
#include "parserexception.h"

/// One reading of one expression, as all that takes part in it shares it: the tokens, the parser
/// that knows names, and how much is made. Whatever is no expression, or is past one of the bounds
/// below, ends in a ParserException.
class Reading
{
public:
    /// What a tree may consist of: one for each node, and one for every 32 characters of a name or
    /// a string. What an assignment such as += stands for counts each time that it is evaluated,
    /// because x++++++ and so on doubles with every step.
    static constexpr std::size_t maximumSize = 2'000'000;

    /// Counts a call that can contain itself, for as long as it is open.
    class Nesting
    {
    public:
        explicit Nesting(Reading *reading) : depth(reading->depth)
        {
            reading->checkHeight(depth + 1);
            *reading->entered = ++depth;
        }
        ~Nesting() { --depth; }
        Nesting(const Nesting &) = delete;
        Nesting &operator=(const Nesting &) = delete;

    private:
        int &depth;
    };

    /// The tokens are those of \a tokens from its current one on; the nodes ask \a resolver.
    /// *lastDepth receives how many calls were open when the last of them began.
    Reading(Lexer &tokens, ExpressionParser &resolver, int *lastDepth)
        : lexer(tokens),
          parser(resolver),
          maximumDepth(resolver.maximumDepth),
          entered(lastDepth)
    {
    }

    /// Makes a node or a type and counts it.
    template <typename Made, typename... Arguments>
    std::unique_ptr<Made> make(Arguments &&...arguments)
    {
        return counted(std::make_unique<Made>(std::forward<Arguments>(arguments)...));
    }
    template <typename Made>
    std::unique_ptr<Made> counted(std::unique_ptr<Made> made)
    {
        charge(1);
        checkHeight(made->height());
        return made;
    }
    /// Counts \a amount without making anything.
    void charge(std::size_t amount)
    {
        total += amount;
        if (total > maximumSize)
            throw ParserException("expression too large");
    }
    /// What is counted so far.
    std::size_t size() const { return total; }

    /// Throws \a message where the current token is none of \a kind.
    void require(Token::Kind kind, const char *message) const
    {
        if (lexer.kind() != kind)
            throw ParserException(message);
    }
    void advancePast(Token::Kind kind, const char *message)
    {
        require(kind, message);
        lexer.next();
    }
    /// \a bytes, which are text that a node or a type keeps.
    std::string takeText(std::string_view bytes)
    {
        charge(bytes.size() / 32);
        return std::string(bytes);
    }

    Lexer &lexer;
    ExpressionParser &parser;

private:
    void checkHeight(int height)
    {
        parser.wasTooDeep = height > maximumDepth;
        if (parser.wasTooDeep)
            throw ParserException("expression nested too deeply");
    }

    const int maximumDepth;
    int depth = 0;  ///< calls that are open
    int *entered;
    std::size_t total = 0;
};

#pragma once

#include "expressionparser.h"
#include "types.h"

/// One reading of one expression: makes its tree by recursive descent. Whatever is no expression,
/// or is past one of the bounds below, ends in a ParserException.
class TreeParser
{
public:
    /// What a tree may consist of: one for each node, and one for every 32 characters of a name or
    /// a string. What an assignment such as += stands for counts each time that it is evaluated,
    /// because x++++++ and so on doubles with every step.
    static constexpr std::size_t maximumSize = 2'000'000;

    /// The tokens are those of \a tokens from its current one on; the nodes ask \a resolver.
    /// *lastDepth receives how many calls were open when the last of them began.
    TreeParser(Lexer &tokens, ExpressionParser &resolver, int *lastDepth)
        : lexer(tokens),
          parser(resolver),
          maximumDepth(resolver.maximumDepth),
          entered(lastDepth)
    {
    }

    /// The whole expression that begins at the current token. Afterwards the current token is the
    /// first one behind it.
    std::unique_ptr<Expression> parseExpression() { return parseBinary(Token::loosestLevel); }

private:
    using Node = std::unique_ptr<Expression>;
    using Type = std::unique_ptr<BaseType>;

    /// Counts a call that can contain itself, for as long as it is open.
    class Nesting
    {
    public:
        explicit Nesting(TreeParser *reading) : depth(reading->depth)
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

    Node parseBinary(std::int32_t level);
    Node parseUnary();
    Node parsePrimary();
    Node parsePostfix(Node base, std::size_t sizeBefore);

    template <typename Made, typename... Arguments>
    Node parseToken(Arguments &&...arguments);
    Node parseWord();
    Node parseSizeof();
    Node parseAddressofLine();
    Node parseName(bool rooted);
    Node parseParenthesis();
    Node parsePrefixStep();
    template <typename Operator, typename... Arguments>
    Node parseUnaryOperator(Arguments... arguments);
    Node parseDereference();
    Node parseIndex(Node base);
    Node parseMember(Node base);
    Node parseCall(Node base);

    Node combine(Token::Kind kind, Node left, Node right, std::size_t leftSize);
    Node makeStep(Token::Kind sign, Node target, std::size_t targetSize);

    // The type of a cast, behind the opening parenthesis; see typereader.cpp.
    Type readType();
    Type readSuffixes(Type type);
    Type readSimpleType();
    Type readStruct();
    Type readFields();
    StructType::Field readField();
    Type readRegister();
    RegisterType::Field readRegisterField();
    std::int32_t takeNumber(const char *message);

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
        size += amount;
        if (size > maximumSize)
            throw ParserException("expression too large");
    }
    void checkHeight(int height)
    {
        parser.wasTooDeep = height > maximumDepth;
        if (parser.wasTooDeep)
            throw ParserException("expression nested too deeply");
    }

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
    /// The characters of the current token, taken.
    std::string takeToken()
    {
        std::string text = takeText(lexer.tokenBytes());
        lexer.next();
        return text;
    }

    Lexer &lexer;
    ExpressionParser &parser;
    const int maximumDepth;
    int depth = 0;  ///< calls that are open
    int *entered;
    std::size_t size = 0;  ///< what is counted so far
};

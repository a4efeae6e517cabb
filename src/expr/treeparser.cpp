#include "treeparser.h"

#include "operators.h"
#include "resolution.h"

// How an expression is read. Each production of the grammar is a function, and stands above it:
// quotes enclose tokens, braces what may stand any number of times, brackets what may be missing.
// A function begins at the first token of what it reads and ends with the first one behind it as
// the current token. One token decides what comes next, so nothing is ever read twice.
//
// The operators with two operands are a loop. The lexer gives each token a level, from -4 (loosest)
// to 9 (tightest), and Token::noOperator to what cannot stand between operands. parseBinary(level)
// reads one operand and goes on as long as operators of its level or a tighter one follow. A right
// operand takes only what is tighter still, so that equals group to the left, assignments too:
// a = b = c is (a = b) = c. A chain leans to the left and adds nothing to the height of its tree.
//
// Two things are not as in C: a cast takes all that follows it, so that (int)a + b is the cast of
// a + b, and what is left behind an expression is not looked at: "1 2" is 1.
//
// "a += b" becomes "a = a + b", where the addition refers to the a of the assignment. x++ and ++x
// are both "x += 1", and "*x" is "x[0]".

namespace
{

std::string_view unquoted(std::string_view literal)
{
    assert(literal.size() >= 2);
    return literal.substr(1, literal.size() - 2);
}

}  // namespace

/// expression = binary of the loosest level
/// binary = unary { operator of the level or a tighter one, binary of a tighter level than its }
TreeParser::Node TreeParser::parseBinary(std::int32_t level)
{
    const Nesting nesting(this);
    const std::size_t sizeBefore = size;
    Node left = parseUnary();
    while (lexer.precedence() >= level && lexer.precedence() <= Token::tightestLevel) {
        const Token::Kind kind = lexer.kind();
        const std::int32_t rightLevel = lexer.precedence() + 1;
        const std::size_t leftSize = size - sizeBefore;
        lexer.next();
        Node right = rightLevel > Token::tightestLevel ? parseUnary() : parseBinary(rightLevel);
        left = combine(kind, std::move(left), std::move(right), leftSize);
    }
    return left;
}

TreeParser::Node TreeParser::combine(Token::Kind kind, Node left, Node right, std::size_t leftSize)
{
    if (kind != Token::Assign) {
        const OperatorRow *row = findOperator(kind);
        if (!row)
            throw ParserException("operator not supported");
        if (kind == row->token)
            return counted(row->make(std::move(left), std::move(right)));
        charge(leftSize);
        right = counted(row->make(make<SharedExpression>(*left), std::move(right)));
    }
    return make<AssignExpression>(std::move(left), std::move(right), &parser);
}

/// unary = primary { postfix }
TreeParser::Node TreeParser::parseUnary()
{
    const Nesting nesting(this);
    const std::size_t sizeBefore = size;
    return parsePostfix(parsePrimary(), sizeBefore);
}

/// primary = number | string | word | "::" name | register | parenthesis | ( "++" | "--" ) unary
///         | ( "~" | "!" | "-" | "+" | "&" | "*" ) unary
TreeParser::Node TreeParser::parsePrimary()
{
    switch (lexer.kind()) {
    case Token::DecimalNumber:
        return parseToken<IntegerConstantExpression>(lexer.tokenToInt64());
    case Token::HexadecimalNumber:
    case Token::BinaryNumber:
        return parseToken<IntegerConstantExpression>(
            static_cast<std::int64_t>(lexer.tokenToUInt64()));
    case Token::FloatingNumber:
        return parseToken<FloatConstantExpression>(lexer.tokenToDouble());
    case Token::String:
        return parseToken<StringConstantExpression>(takeText(unquoted(lexer.tokenBytes())));
    case Token::Identifier:
        return parseWord();
    case Token::Scope:
        lexer.next();
        return parseName(true);
    case Token::Register:
        return parseToken<RegisterExpression>(takeText(lexer.tokenBytes().substr(1)), &parser);
    case Token::LeftParenthesis:
        return parseParenthesis();
    case Token::Increment:
    case Token::Decrement:
        return parsePrefixStep();
    case Token::Tilde:
        return parseUnaryOperator<BitNotExpression>();
    case Token::Exclamation:
        return parseUnaryOperator<LogicalNotExpression>();
    case Token::Minus:
        return parseUnaryOperator<NegateExpression>();
    case Token::Plus:
        lexer.next();
        return parseUnary();
    case Token::Ampersand:
        return parseUnaryOperator<AddressofExpression>(&parser);
    case Token::Star:
        return parseDereference();
    default:
        throw ParserException("expression expected");
    }
}

/// The node of the current token, made of \a arguments.
template <typename Made, typename... Arguments>
TreeParser::Node TreeParser::parseToken(Arguments &&...arguments)
{
    Node node = make<Made>(std::forward<Arguments>(arguments)...);
    lexer.next();
    return node;
}

/// word = sizeof | addressof | name
TreeParser::Node TreeParser::parseWord()
{
    if (lexer.tokenIs("sizeof"))
        return parseSizeof();
    if (lexer.tokenIs("addressof"))
        return parseAddressofLine();
    return parseName(false);
}

/// sizeof = "sizeof" "(" expression ")"
TreeParser::Node TreeParser::parseSizeof()
{
    lexer.next();
    advancePast(Token::LeftParenthesis, "'(' expected");
    Node operand = parseExpression();
    advancePast(Token::RightParenthesis, "')' expected");
    return make<SizeofExpression>(std::move(operand), &parser);
}

/// addressof = "addressof" "(" string "," decimal ")"
TreeParser::Node TreeParser::parseAddressofLine()
{
    lexer.next();
    advancePast(Token::LeftParenthesis, "'(' expected");
    require(Token::String, "string expected");
    std::string fileName = takeText(unquoted(lexer.tokenBytes()));
    lexer.next();
    advancePast(Token::Comma, "',' expected");
    require(Token::DecimalNumber, "int expected");
    const std::int64_t line = lexer.tokenToInt64();
    lexer.next();
    advancePast(Token::RightParenthesis, "')' expected");
    return make<AddressofLineExpression>(std::move(fileName), line, &parser);
}

/// name = identifier { "::" identifier }
TreeParser::Node TreeParser::parseName(bool rooted)
{
    require(Token::Identifier, "identifier expected");
    std::vector<std::string> parts{takeToken()};
    while (lexer.kind() == Token::Scope) {
        lexer.next();
        require(Token::Identifier, "identifier expected after '::'");
        charge(1);
        parts.push_back(takeToken());
    }
    if (parts.size() == 1 && !rooted)
        return make<IdentifierExpression>(std::move(parts.front()), &parser);
    return make<ScopedIdentifierExpression>(std::move(parts), &parser);
}

/// parenthesis = "(" type ")" expression | "(" expression ")"
TreeParser::Node TreeParser::parseParenthesis()
{
    lexer.next();
    Type type = readType();
    Node inner = type ? nullptr : parseExpression();
    advancePast(Token::RightParenthesis, "')' expected");
    return type ? make<CastExpression>(std::move(type), parseExpression(), &parser)
                : std::move(inner);
}

TreeParser::Node TreeParser::parsePrefixStep()
{
    const Token::Kind sign = lexer.kind();
    lexer.next();
    const std::size_t sizeBefore = size;
    Node target = parseUnary();
    return makeStep(sign, std::move(target), size - sizeBefore);
}

/// What ++ or -- makes of \a target.
TreeParser::Node TreeParser::makeStep(Token::Kind sign, Node target, std::size_t targetSize)
{
    const Token::Kind kind = sign == Token::Increment ? Token::PlusAssign : Token::MinusAssign;
    return combine(kind, std::move(target), make<IntegerConstantExpression>(1), targetSize);
}

template <typename Operator, typename... Arguments>
TreeParser::Node TreeParser::parseUnaryOperator(Arguments... arguments)
{
    lexer.next();
    return make<Operator>(parseUnary(), arguments...);
}

TreeParser::Node TreeParser::parseDereference()
{
    lexer.next();
    Node base = parseUnary();
    Node zero = make<ConstantExpression>(ExpressionValue::fromUInt64(0, 2));
    return make<LeftSquareBracketExpression>(std::move(base), std::move(zero), &parser);
}

/// postfix = index | member | call | "++" | "--"
TreeParser::Node TreeParser::parsePostfix(Node base, std::size_t sizeBefore)
{
    for (;;) {
        switch (lexer.kind()) {
        case Token::LeftBracket:
            base = parseIndex(std::move(base));
            break;
        case Token::Dot:
        case Token::Arrow:
            base = parseMember(std::move(base));
            break;
        case Token::Increment:
        case Token::Decrement:
            base = makeStep(lexer.kind(), std::move(base), size - sizeBefore);
            lexer.next();
            break;
        case Token::LeftParenthesis:
            base = parseCall(std::move(base));
            break;
        default:
            return base;
        }
    }
}

/// index = "[" expression "]"
TreeParser::Node TreeParser::parseIndex(Node base)
{
    lexer.next();
    Node index = parseExpression();
    advancePast(Token::RightBracket, "expected ']'");
    return make<LeftSquareBracketExpression>(std::move(base), std::move(index), &parser);
}

/// member = ( "." | "->" ) name
TreeParser::Node TreeParser::parseMember(Node base)
{
    lexer.next();
    return make<DotExpression>(std::move(base), parseName(false), &parser);
}

/// call = "(" { unary [ "," ] } ")"
TreeParser::Node TreeParser::parseCall(Node base)
{
    const Nesting nesting(this);
    lexer.next();
    std::vector<Node> arguments;
    while (lexer.kind() != Token::RightParenthesis) {
        arguments.push_back(parseUnary());
        if (lexer.kind() == Token::Comma)
            lexer.next();
    }
    lexer.next();
    return make<CallExpression>(std::move(base), std::move(arguments), &parser);
}

#include "treeparser.h"

#include "binaryoperators.h"
#include "expressionparser.h"
#include "lexer.h"
#include "parserexception.h"
#include "resolution.h"
#include "types.h"
#include "unaryoperators.h"

#include <array>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{

QByteArrayView unquoted(QByteArrayView literal)
{
    return literal.sliced(1, literal.size() - 2);
}

}  // namespace

/// What a token makes of its two operands: the node of an operator, or the assignment of the right
/// operand, or of the operator's node, to the left one.
struct TreeParser::OperatorRow {
    Token::Kind kind;
    bool assigns;
    Node (TreeParser::*makeOperator)(Node left, Node right);
};

// Loosest first. A token that has a level and no row here is no operator.
const TreeParser::OperatorRow TreeParser::operatorRows[] = {
    {Token::StarAssign, true, &TreeParser::makeOperator<MultiplyExpression>},
    {Token::SlashAssign, true, &TreeParser::makeOperator<DivideExpression>},
    {Token::PercentAssign, true, &TreeParser::makeOperator<ModExpression>},
    {Token::PlusAssign, true, &TreeParser::makeOperator<PlusExpression>},
    {Token::MinusAssign, true, &TreeParser::makeOperator<MinusExpression>},
    {Token::ShiftLeftAssign, true, &TreeParser::makeOperator<LshiftExpression>},
    {Token::ShiftRightAssign, true, &TreeParser::makeOperator<RshiftExpression>},
    {Token::AmpersandAssign, true, &TreeParser::makeOperator<BitAndExpression>},
    {Token::CaretAssign, true, &TreeParser::makeOperator<BitXorExpression>},
    {Token::BarAssign, true, &TreeParser::makeOperator<BitOrExpression>},
    {Token::Assign, true, nullptr},
    {Token::OrOr, false, &TreeParser::makeOperator<LogicalOrExpression>},
    {Token::AndAnd, false, &TreeParser::makeOperator<LogicalAndExpression>},
    {Token::Bar, false, &TreeParser::makeOperator<BitOrExpression>},
    {Token::Caret, false, &TreeParser::makeOperator<BitXorExpression>},
    {Token::Ampersand, false, &TreeParser::makeOperator<BitAndExpression>},
    {Token::Equal, false, &TreeParser::makeOperator<EqExpression>},
    {Token::NotEqual, false, &TreeParser::makeOperator<NeExpression>},
    {Token::Less, false, &TreeParser::makeOperator<LtExpression>},
    {Token::LessEqual, false, &TreeParser::makeOperator<LeExpression>},
    {Token::Greater, false, &TreeParser::makeOperator<GtExpression>},
    {Token::GreaterEqual, false, &TreeParser::makeOperator<GeExpression>},
    {Token::ShiftLeft, false, &TreeParser::makeOperator<LshiftExpression>},
    {Token::ShiftRight, false, &TreeParser::makeOperator<RshiftExpression>},
    {Token::Plus, false, &TreeParser::makeOperator<PlusExpression>},
    {Token::Minus, false, &TreeParser::makeOperator<MinusExpression>},
    {Token::Star, false, &TreeParser::makeOperator<MultiplyExpression>},
    {Token::Slash, false, &TreeParser::makeOperator<DivideExpression>},
    {Token::Percent, false, &TreeParser::makeOperator<ModExpression>},
};

/// Counts a call that can contain itself, for as long as it is open.
class TreeParser::Nesting
{
public:
    explicit Nesting(TreeParser *tree) : depth(tree->depth)
    {
        checkHeight(depth + 1);
        ++depth;
    }
    ~Nesting() { --depth; }
    Q_DISABLE_COPY_MOVE(Nesting)

private:
    int &depth;
};

TreeParser::Node TreeParser::parseExpression()
{
    return parseBinary(Token::loosestLevel);
}

TreeParser::Node TreeParser::parseBinary(qint32 level)
{
    const Nesting nesting(this);
    const qsizetype sizeBefore = size;
    Node left = parseUnary();
    while (lexer.precedence() >= level && lexer.precedence() <= Token::tightestLevel) {
        const qint32 kind = lexer.kind();
        const qint32 rightLevel = lexer.precedence() + 1;  // so that equal levels group to the left
        const qsizetype leftSize = size - sizeBefore;
        lexer.next();
        Node right = rightLevel > Token::tightestLevel ? parseUnary() : parseBinary(rightLevel);
        left = combine(kind, std::move(left), std::move(right), leftSize);
    }
    return left;
}

TreeParser::Node TreeParser::combine(qint32 kind, Node left, Node right, qsizetype leftSize)
{
    const OperatorRow *row = findOperator(kind);
    if (!row)
        throw ParserException("operator not supported"_L1);
    if (!row->assigns)
        return (this->*row->makeOperator)(std::move(left), std::move(right));
    if (row->makeOperator)
        right = (this->*row->makeOperator)(share(*left, leftSize), std::move(right));
    return make<AssignExpression>(std::move(left), std::move(right), &parser);
}

const TreeParser::OperatorRow *TreeParser::findOperator(qint32 kind)
{
    using RowsByKind = std::array<const OperatorRow *, Token::Comma + 1>;
    static const RowsByKind rows = [] {
        RowsByKind byKind = {};
        for (const OperatorRow &row : operatorRows)
            byKind[static_cast<std::size_t>(row.kind)] = &row;
        return byKind;
    }();
    // A parser may have added kinds of its own to its lexer.
    return kind >= 0 && kind <= Token::Comma ? rows[static_cast<std::size_t>(kind)] : nullptr;
}

TreeParser::Node TreeParser::share(const Expression &target, qsizetype targetSize)
{
    charge(targetSize);
    return make<SharedExpression>(target);
}

template <typename Operator>
TreeParser::Node TreeParser::makeOperator(Node left, Node right)
{
    return make<Operator>(std::move(left), std::move(right));
}

TreeParser::Node TreeParser::parseUnary()
{
    const Nesting nesting(this);
    const qsizetype sizeBefore = size;
    return parsePostfix(parsePrimary(), sizeBefore);
}

TreeParser::Node TreeParser::parsePrimary()
{
    switch (lexer.kind()) {
    case Token::DecimalNumber:
        return parseConstant<IntegerConstantExpression>(lexer.tokenToInt64());
    case Token::HexadecimalNumber:
    case Token::BinaryNumber:
        return parseConstant<IntegerConstantExpression>(static_cast<qint64>(lexer.tokenToUInt64()));
    case Token::FloatingNumber:
        return parseConstant<FloatConstantExpression>(lexer.tokenToDouble());
    case Token::String:
        return parseConstant<StringConstantExpression>(takeText(unquoted(lexer.tokenBytes())));
    case Token::Identifier:
        return parseWord();
    case Token::Scope:
        lexer.next();
        return parseIdentifier(true);
    case Token::Register:
        return parseRegister();
    case Token::LeftParenthesis:
        return parseParenthesis();
    case Token::Increment:
        return parsePrefixStep(Token::PlusAssign);
    case Token::Decrement:
        return parsePrefixStep(Token::MinusAssign);
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
        return parseAddressof();
    case Token::Star:
        return parseDereference();
    default:
        throw ParserException("expression expected"_L1);
    }
}

template <typename Constant, typename Value>
TreeParser::Node TreeParser::parseConstant(const Value &value)
{
    Node constant = make<Constant>(value);
    lexer.next();
    return constant;
}

TreeParser::Node TreeParser::parseWord()
{
    if (lexer.tokenIs("sizeof"))
        return parseSizeof();
    if (lexer.tokenIs("addressof"))
        return parseAddressofLine();
    return parseIdentifier(false);
}

TreeParser::Node TreeParser::parseSizeof()
{
    lexer.next();
    advancePast(Token::LeftParenthesis, "'(' expected"_L1);
    Node operand = parseExpression();
    advancePast(Token::RightParenthesis, "')' expected"_L1);
    return make<SizeofExpression>(std::move(operand), &parser);
}

TreeParser::Node TreeParser::parseAddressofLine()
{
    lexer.next();
    advancePast(Token::LeftParenthesis, "'(' expected"_L1);
    require(Token::String, "string expected"_L1);
    const QString fileName = takeText(unquoted(lexer.tokenBytes()));
    lexer.next();
    advancePast(Token::Comma, "',' expected"_L1);
    require(Token::DecimalNumber, "int expected"_L1);
    const qint64 line = lexer.tokenToInt64();
    lexer.next();
    advancePast(Token::RightParenthesis, "')' expected"_L1);
    return make<AddressofLineExpression>(fileName, line, &parser);
}

TreeParser::Node TreeParser::parseIdentifier(bool rooted)
{
    require(Token::Identifier, "identifier expected"_L1);
    QStringList parts(takeText(lexer.tokenBytes()));
    lexer.next();
    while (lexer.kind() == Token::Scope) {
        lexer.next();
        require(Token::Identifier, "identifier expected after '::'"_L1);
        charge(1);
        parts.append(takeText(lexer.tokenBytes()));
        lexer.next();
    }
    if (parts.size() == 1 && !rooted)
        return make<IdentifierExpression>(parts.first(), &parser);
    return make<ScopedIdentifierExpression>(parts, &parser);
}

TreeParser::Node TreeParser::parseRegister()
{
    Node node = make<RegisterExpression>(takeText(lexer.tokenBytes().sliced(1)), &parser);
    lexer.next();
    return node;
}

TreeParser::Node TreeParser::parseParenthesis()
{
    lexer.next();
    if (Node cast = parseCast())
        return cast;
    Node inner = parseExpression();
    advancePast(Token::RightParenthesis, "')' expected"_L1);
    return inner;
}

/// Null, with no token taken, where what follows the parenthesis is no type.
TreeParser::Node TreeParser::parseCast()
{
    Type type = parseCastType();
    if (!type)
        return nullptr;
    advancePast(Token::RightParenthesis, "')' expected"_L1);
    // The operand is all that follows, not just a unary expression.
    Node operand = parseExpression();
    return make<CastExpression>(std::move(type), std::move(operand), &parser);
}

TreeParser::Node TreeParser::parsePrefixStep(qint32 assignment)
{
    lexer.next();
    const qsizetype sizeBefore = size;
    Node target = parseUnary();
    return makeStep(assignment, std::move(target), size - sizeBefore);
}

/// "++x" and "x++" are both "x += 1".
TreeParser::Node TreeParser::makeStep(qint32 assignment, Node target, qsizetype targetSize)
{
    return combine(assignment, std::move(target), make<IntegerConstantExpression>(1), targetSize);
}

template <typename Operator>
TreeParser::Node TreeParser::parseUnaryOperator()
{
    lexer.next();
    return make<Operator>(parseUnary());
}

TreeParser::Node TreeParser::parseAddressof()
{
    lexer.next();
    return make<AddressofExpression>(parseUnary(), &parser);
}

TreeParser::Node TreeParser::parseDereference()
{
    lexer.next();
    Node base = parseUnary();
    Node zero = make<ConstantExpression>(ExpressionValue::fromUInt64(0, 2));
    return make<LeftSquareBracketExpression>(std::move(base), std::move(zero), &parser);
}

TreeParser::Node TreeParser::parsePostfix(Node base, qsizetype sizeBefore)
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
            base = makeStep(Token::PlusAssign, std::move(base), size - sizeBefore);
            lexer.next();
            break;
        case Token::Decrement:
            base = makeStep(Token::MinusAssign, std::move(base), size - sizeBefore);
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

TreeParser::Node TreeParser::parseIndex(Node base)
{
    lexer.next();
    Node index = parseExpression();
    advancePast(Token::RightBracket, "expected ']'"_L1);
    return make<LeftSquareBracketExpression>(std::move(base), std::move(index), &parser);
}

TreeParser::Node TreeParser::parseMember(Node base)
{
    lexer.next();
    return make<DotExpression>(std::move(base), parseIdentifier(false), &parser);
}

/// The arguments are unary expressions, with or without commas between them.
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

void TreeParser::require(qint32 kind, QLatin1StringView message) const
{
    if (lexer.kind() != kind)
        throw ParserException(message);
}

void TreeParser::advancePast(qint32 kind, QLatin1StringView message)
{
    require(kind, message);
    lexer.next();
}

QString TreeParser::takeText(QByteArrayView bytes)
{
    charge(bytes.size() / 32);
    return QString::fromLatin1(bytes);
}

void TreeParser::charge(qsizetype amount)
{
    size += amount;
    if (size > maximumSize)
        throw ParserException("expression too large"_L1);
}

void TreeParser::checkHeight(int height)
{
    if (height > maximumDepth)
        throw ParserException("expression nested too deeply"_L1);
}

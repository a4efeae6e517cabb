#pragma once

#include "expression.h"

#include <QString>

class BaseType;
class ExpressionParser;
class Lexer;

/// One reading of one expression: makes the tree of the tokens of a lexer by recursive descent,
/// with one loop for all levels of binary operators. Whatever is no expression, or is past one of
/// the bounds below, ends in a ParserException.
class TreeParser
{
public:
    /// How deep the calls of this reader, and of what visits its trees, may go. A parenthesis takes
    /// two or three of them, and each takes about 200 bytes of stack.
    static constexpr int maximumDepth = 4000;
    /// What a tree may consist of: one for each node, and one for every 32 characters of a name or
    /// a string. What an assignment such as += stands for counts each time that it is evaluated,
    /// because x++++++ and so on doubles with every step.
    static constexpr qsizetype maximumSize = 2'000'000;

    /// The tokens are those of \a tokens from its current one on; the nodes ask \a resolver.
    TreeParser(Lexer &tokens, ExpressionParser &resolver) : lexer(tokens), parser(resolver) {}

    /// The whole expression that begins at the current token. Afterwards the current token is the
    /// first one behind it.
    std::unique_ptr<Expression> parseExpression();

private:
    using Node = std::unique_ptr<Expression>;
    using Type = std::unique_ptr<BaseType>;
    struct OperatorRow;
    class Nesting;

    Node parseBinary(qint32 level);
    Node parseUnary();
    Node parsePrimary();
    Node parsePostfix(Node base, qsizetype sizeBefore);

    template <typename Constant, typename Value>
    Node parseConstant(const Value &value);
    Node parseWord();
    Node parseSizeof();
    Node parseAddressofLine();
    Node parseIdentifier(bool rooted);
    Node parseRegister();
    Node parseParenthesis();
    Node parseCast();
    Node parsePrefixStep(qint32 assignment);
    template <typename Operator>
    Node parseUnaryOperator();
    Node parseAddressof();
    Node parseDereference();
    Node parseIndex(Node base);
    Node parseMember(Node base);
    Node parseCall(Node base);

    Type parseCastType();
    Type parseTypeSuffixes(Type type);
    Type parseSimpleType();
    Type parseStructType();
    Type parseStructFields();
    Type parseRegisterType();

    static const OperatorRow operatorRows[];
    static const OperatorRow *findOperator(qint32 kind);
    Node combine(qint32 kind, Node left, Node right, qsizetype leftSize);
    Node share(const Expression &target, qsizetype targetSize);
    Node makeStep(qint32 assignment, Node target, qsizetype targetSize);
    template <typename Operator>
    Node makeOperator(Node left, Node right);
    template <typename Made, typename... Arguments>
    std::unique_ptr<Made> make(Arguments &&...arguments);

    void require(qint32 kind, QLatin1StringView message) const;
    void advancePast(qint32 kind, QLatin1StringView message);
    QString takeText(QByteArrayView bytes);
    void charge(qsizetype amount);
    static void checkHeight(int height);

    Lexer &lexer;
    ExpressionParser &parser;
    int depth = 0;       ///< calls that are open
    qsizetype size = 0;  ///< of all that was made, counted as for maximumSize
};

/// Makes a node or a type and counts it.
template <typename Made, typename... Arguments>
std::unique_ptr<Made> TreeParser::make(Arguments &&...arguments)
{
    charge(1);
    auto made = std::make_unique<Made>(std::forward<Arguments>(arguments)...);
    checkHeight(made->height());
    return made;
}

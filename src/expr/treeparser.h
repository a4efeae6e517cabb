#pragma once

#include "reading.h"

/// Makes the tree of an expression by recursive descent.
class TreeParser : public Reading
{
public:
    using Reading::Reading;

    /// The whole expression that begins at the current token. Afterwards the current token is the
    /// first one behind it.
    std::unique_ptr<Expression> parseExpression();

private:
    using Node = std::unique_ptr<Expression>;

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
    Node parsePrefixStep(Token::Kind assignment);
    template <typename Operator, typename... Arguments>
    Node parseUnaryOperator(Arguments... arguments);
    Node parseDereference();
    Node parseIndex(Node base);
    Node parseMember(Node base);
    Node parseCall(Node base);

    Node combine(Token::Kind kind, Node left, Node right, std::size_t leftSize);
    Node share(const Expression &target, std::size_t targetSize);
    Node makeStep(Token::Kind assignment, Node target, std::size_t targetSize);
};

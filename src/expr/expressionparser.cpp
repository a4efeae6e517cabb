#include "expressionparser.h"

#include "parserexception.h"
#include "treeparser.h"

using namespace Qt::StringLiterals;

ExpressionValue ExpressionParser::addressOfValue(ExpressionObject *)
{
    throw ParserException("addressof not implemented"_L1);
}

ExpressionValue ExpressionParser::sizeOfValue(ExpressionObject *)
{
    throw ParserException("sizeof not implemented"_L1);
}

ExpressionValue ExpressionParser::addressOfLine(const QString &, qint64)
{
    throw ParserException("addressof not implemented"_L1);
}

ExpressionValue ExpressionParser::callFunction(const ExpressionValue &,
                                               const QList<ExpressionValue> &)
{
    throw ParserException("function calling not implemented"_L1);
}

std::unique_ptr<Expression> ExpressionParser::parse(const char *text, qsizetype *position)
{
    std::unique_ptr<Expression> tree;
    // Not a copy: nothing asks the lexer for its text once the tree is made.
    lexer.setText(QByteArray::fromRawData(text, static_cast<qsizetype>(qstrlen(text))));
    if (text && *text)
        tree = TreeParser(lexer, *this).parseExpression();
    if (position)
        *position = lexer.position();
    return tree;
}

ExpressionValue ExpressionParser::evaluate(const char *text, qsizetype *position)
{
    const std::unique_ptr<Expression> tree = parse(text, position);
    return tree ? tree->evaluate() : ExpressionValue();
}

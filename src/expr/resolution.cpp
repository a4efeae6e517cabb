#include "resolution.h"

#include "expressionparser.h"
#include "parserexception.h"
#include "types.h"

using namespace Qt::StringLiterals;

namespace
{

int heightAbove(const Expression &left, const Expression &right)
{
    return 1 + qMax(left.height(), right.height());
}

int heightAbove(const Expression &function,
                const std::vector<std::unique_ptr<Expression>> &arguments)
{
    int height = function.height();
    for (const std::unique_ptr<Expression> &argument : arguments)
        height = qMax(height, argument->height());
    return 1 + height;
}

/// The value of \a node, which must be an object; else throws \a message.
ExpressionValue evaluateObject(const Expression &node, QLatin1StringView message)
{
    ExpressionValue value = node.evaluate();
    if (!value.isObject())
        throw ParserException(message);
    return value;
}

/// The value of \a node, read by the parser where it is an object.
ExpressionValue evaluatePlain(const Expression &node, ExpressionParser *parser)
{
    ExpressionValue value = node.evaluate();
    if (value.isObject())
        value = parser->objectValue(value.object.get());
    return value;
}

}  // namespace

ExpressionValue IdentifierExpression::evaluate() const
{
    return ExpressionValue::fromObject(parser->lookupSymbol(name.toLatin1().constData()));
}

void IdentifierExpression::dumpTo(QString &text) const
{
    text += "Identifier("_L1 + name + u')';
}

ExpressionValue ScopedIdentifierExpression::evaluate() const
{
    return ExpressionValue::fromObject(parser->lookupScopedSymbol(parts));
}

void ScopedIdentifierExpression::dumpTo(QString &text) const
{
    text += "Identifier("_L1 + parts.join("::"_L1) + u')';
}

ExpressionValue RegisterExpression::evaluate() const
{
    return ExpressionValue::fromObject(parser->lookupRegister(name));
}

void RegisterExpression::dumpTo(QString &text) const
{
    text += "Identifier("_L1 + name + u')';
}

AssignExpression::AssignExpression(std::unique_ptr<Expression> target,
                                   std::unique_ptr<Expression> value, ExpressionParser *resolver)
    : BinaryExpression(heightAbove(*target, *value), target, value),
      parser(resolver)
{
}

ExpressionValue AssignExpression::evaluate() const
{
    ExpressionValue target = evaluateObject(*left, "bad expression type"_L1);
    parser->assignValue(target.object.get(), evaluatePlain(*right, parser));
    return target;
}

QLatin1StringView AssignExpression::dumpName() const
{
    return "="_L1;
}

DotExpression::DotExpression(std::unique_ptr<Expression> base, std::unique_ptr<Expression> member,
                             ExpressionParser *resolver)
    : BinaryExpression(heightAbove(*base, *member), base, member),
      parser(resolver)
{
}

ExpressionValue DotExpression::evaluate() const
{
    const ExpressionValue base = left->evaluate();
    if (const auto *member = dynamic_cast<const IdentifierExpression *>(right.get()))
        return parser->memberValue(base, member->name);
    if (const auto *member = dynamic_cast<const ScopedIdentifierExpression *>(right.get()))
        return parser->scopedMemberValue(base, member->parts);
    throw ParserException("bad expression type"_L1);
}

QLatin1StringView DotExpression::dumpName() const
{
    return "Dot"_L1;
}

LeftSquareBracketExpression::LeftSquareBracketExpression(std::unique_ptr<Expression> base,
                                                         std::unique_ptr<Expression> index,
                                                         ExpressionParser *resolver)
    : BinaryExpression(heightAbove(*base, *index), base, index),
      parser(resolver)
{
}

ExpressionValue LeftSquareBracketExpression::evaluate() const
{
    const ExpressionValue base = evaluateObject(*left, "bad expression type"_L1);
    return parser->dereferenceValue(base.object.get(), evaluateIndex());
}

/// The low 32 bits of a number, or 0 or 1 for a boolean.
qint32 LeftSquareBracketExpression::evaluateIndex() const
{
    const ExpressionValue index = evaluatePlain(*right, parser);
    if (!index.isNumeric() && !index.isBoolean())
        throw ParserException("bad index type"_L1);
    return static_cast<qint32>(index.toInt64());
}

QLatin1StringView LeftSquareBracketExpression::dumpName() const
{
    return "LeftSquareBracket"_L1;
}

ExpressionValue SizeofExpression::evaluate() const
{
    const ExpressionValue value =
        evaluateObject(*operand, "cannot determine sizeof of a constant"_L1);
    return parser->sizeOfValue(value.object.get());
}

void SizeofExpression::dumpTo(QString &text) const
{
    text += "sizeof("_L1;
    operand->dumpTo(text);
    text += u')';
}

ExpressionValue AddressofExpression::evaluate() const
{
    const ExpressionValue value = evaluateObject(*operand, "cannot take address of a constant"_L1);
    return parser->addressOfValue(value.object.get());
}

void AddressofExpression::dumpTo(QString &text) const
{
    text += u'&';
    operand->dumpTo(text);
}

ExpressionValue AddressofLineExpression::evaluate() const
{
    return parser->addressOfLine(fileName, line);
}

void AddressofLineExpression::dumpTo(QString &text) const
{
    text += "addressof("_L1 + u'"' + fileName + u'"' + ", "_L1 + QString::number(line) + u')';
}

CastExpression::CastExpression(std::unique_ptr<BaseType> target,
                               std::unique_ptr<Expression> operandNode, ExpressionParser *resolver)
    : Expression(1 + qMax(target->height(), operandNode->height())),
      type(std::move(target)),
      operand(std::move(operandNode)),
      parser(resolver)
{
}

CastExpression::~CastExpression() = default;

ExpressionValue CastExpression::evaluate() const
{
    return parser->castValue(*type, operand->evaluate());
}

void CastExpression::dumpTo(QString &text) const
{
    text += u'(';
    type->nameTo(text);
    text += u')';
    operand->dumpTo(text);
}

CallExpression::CallExpression(std::unique_ptr<Expression> functionNode,
                               std::vector<std::unique_ptr<Expression>> argumentNodes,
                               ExpressionParser *resolver)
    : Expression(heightAbove(*functionNode, argumentNodes)),
      function(std::move(functionNode)),
      arguments(std::move(argumentNodes)),
      parser(resolver)
{
}

ExpressionValue CallExpression::evaluate() const
{
    const ExpressionValue functionValue = function->evaluate();
    QList<ExpressionValue> values;
    values.reserve(static_cast<qsizetype>(arguments.size()));
    for (const std::unique_ptr<Expression> &argument : arguments)
        values.append(argument->evaluate());
    return parser->callFunction(functionValue, values);
}

void CallExpression::dumpTo(QString &text) const
{
    function->dumpTo(text);
    text += u'(';
    for (const std::unique_ptr<Expression> &argument : arguments)
        argument->dumpTo(text);
    text += u')';
}

#include "resolution.h"

namespace
{

int heightOf(const std::vector<std::unique_ptr<Expression>> &nodes)
{
    int height = 0;
    for (const std::unique_ptr<Expression> &node : nodes)
        height = std::max(height, node->height());
    return height;
}

/// The value of \a node, which must be an object; else throws \a message.
ExpressionValue evaluateObject(const Expression &node, const char *message)
{
    ExpressionValue value = node.evaluate();
    if (!value.isObject())
        throw ParserException(message);
    return value;
}

/// The value of \a node, read by the parser where it is an object.
ExpressionValue evaluateRead(const Expression &node, ExpressionParser *parser)
{
    ExpressionValue value = node.evaluate();
    if (value.isObject())
        value = parser->objectValue(value.object.get());
    return value;
}

}  // namespace

std::string joined(const std::vector<std::string> &parts)
{
    std::string text;
    for (const std::string &part : parts)
        text.append(&part == &parts.front() ? "" : "::").append(part);
    return text;
}

ExpressionValue AssignExpression::evaluate() const
{
    ExpressionValue target = evaluateObject(*left, "bad expression type");
    parser->assignValue(target.object.get(), evaluateRead(*right, parser));
    return target;
}

ExpressionValue DotExpression::evaluate() const
{
    const ExpressionValue base = left->evaluate();
    if (const auto *member = dynamic_cast<const IdentifierExpression *>(right.get()))
        return parser->memberValue(base, member->name);
    if (const auto *member = dynamic_cast<const ScopedIdentifierExpression *>(right.get()))
        return parser->scopedMemberValue(base, member->parts);
    throw ParserException("bad expression type");
}

ExpressionValue LeftSquareBracketExpression::evaluate() const
{
    const ExpressionValue base = evaluateObject(*left, "bad expression type");
    const ExpressionValue index = evaluateRead(*right, parser);
    if (!index.isNumeric() && !index.isBoolean())
        throw ParserException("bad index type");
    return parser->dereferenceValue(base.object.get(), static_cast<std::int32_t>(index.toInt64()));
}

ExpressionValue SizeofExpression::evaluate() const
{
    const ExpressionValue value = evaluateObject(*operand, "cannot determine sizeof of a constant");
    return parser->sizeOfValue(value.object.get());
}

ExpressionValue AddressofExpression::evaluate() const
{
    const ExpressionValue value = evaluateObject(*operand, "cannot take address of a constant");
    return parser->addressOfValue(value.object.get());
}

CallExpression::CallExpression(std::unique_ptr<Expression> function,
                               std::vector<std::unique_ptr<Expression>> argumentNodes,
                               ExpressionParser *resolver)
    : AskingUnaryExpression(std::move(function), resolver, heightOf(argumentNodes)),
      arguments(std::move(argumentNodes))
{
}

ExpressionValue CallExpression::evaluate() const
{
    const ExpressionValue functionValue = operand->evaluate();
    std::vector<ExpressionValue> values;
    values.reserve(arguments.size());
    for (const std::unique_ptr<Expression> &argument : arguments)
        values.push_back(argument->evaluate());
    return parser->callFunction(functionValue, values);
}

void CallExpression::dumpTo(std::string &text) const
{
    operand->dumpTo(text);
    text += '(';
    for (const std::unique_ptr<Expression> &argument : arguments)
        argument->dumpTo(text);
    text += ')';
}

#include "expressionparser.h"

#include "treeparser.h"

std::unique_ptr<Expression> ExpressionParser::parse(const char *text, std::size_t *position)
{
    std::unique_ptr<Expression> tree;
    // Not a copy: nothing asks the lexer for its text once the tree is made.
    lexer.borrowText(text ? text : "");
    readingDepth = 0;
    treeHeight = 0;
    wasTooDeep = false;
    if (text && *text) {
        tree = TreeParser(lexer, *this, &readingDepth).parseExpression();
        treeHeight = tree->height();
    }
    if (position)
        *position = lexer.position();
    return tree;
}

ExpressionValue ExpressionParser::evaluate(const char *text, std::size_t *position)
{
    const std::unique_ptr<Expression> tree = parse(text, position);
    return tree ? tree->evaluate() : ExpressionValue();
}

#pragma once

#include "expression.h"
#include "lexer.h"
#include "parserexception.h"

class BaseType;

/// Reads expressions and evaluates them. What a name, a register, a type or a place in memory
/// means is asked of the virtual operations; they throw ParserException for what is not there. An
/// object that they return is never null and stays theirs.
///
/// Text is Latin-1 up to a NUL, and null counts as empty. Reading stops behind the first whole
/// expression, whatever follows. Time and memory grow with the text, up to bounds past which
/// reading throws ParserException, see expressionparser.cpp. One thread at a time.
class ExpressionParser
{
public:
    virtual ExpressionObject *lookupScopedSymbol(const std::vector<std::string> &parts) = 0;
    virtual ExpressionObject *lookupSymbol(const char *name) = 0;
    /// \a name is without the "@".
    virtual ExpressionObject *lookupRegister(const std::string &name) = 0;
    /// Asked for names of types and for "struct " followed by a tag.
    virtual bool isTypeName(const std::string &name) = 0;
    virtual ExpressionValue castValue(const BaseType &type, const ExpressionValue &value) = 0;
    virtual ExpressionValue dereferenceValue(ExpressionObject *base, std::int32_t index) = 0;
    virtual ExpressionValue memberValue(const ExpressionValue &value, const std::string &name) = 0;
    virtual ExpressionValue scopedMemberValue(const ExpressionValue &value,
                                              const std::vector<std::string> &parts) = 0;
    virtual ExpressionValue addressOfValue(ExpressionObject *)
    {
        fail("addressof not implemented");
    }
    virtual ExpressionValue sizeOfValue(ExpressionObject *) { fail("sizeof not implemented"); }
    virtual ExpressionValue addressOfLine(const std::string & /*fileName*/, std::int64_t /*line*/)
    {
        fail("addressof not implemented");
    }
    virtual void assignValue(ExpressionObject *target, const ExpressionValue &value) = 0;
    /// The value of an object where a plain value is needed: an index, an assigned value.
    virtual ExpressionValue objectValue(ExpressionObject *object) = 0;
    virtual ExpressionValue callFunction(const ExpressionValue & /*function*/,
                                         const std::vector<ExpressionValue> & /*arguments*/)
    {
        fail("function calling not implemented");
    }
    virtual ~ExpressionParser() = default;

    /// The tree of \a text, which points to this parser; null for an empty text. *position receives
    /// where reading stopped, the index behind the last token looked at, unless reading throws.
    OwnedExpression parse(const char *text, std::size_t *position = nullptr);
    /// The value of \a text; the void value for an empty text. *position as in parse().
    ExpressionValue evaluate(const char *text, std::size_t *position = nullptr);

    /// How deep the calls of reading an expression, and of what visits its tree, may go. A
    /// parenthesis takes two or three of them, and each takes about 200 bytes of stack.
    int maximumDepth = 4000;
    bool wasTooDeep = false;  ///< whether that ended the last parse() or evaluate()

    ExpressionParser(const ExpressionParser &) = delete;
    ExpressionParser &operator=(const ExpressionParser &) = delete;

protected:
    ExpressionParser() = default;

    [[noreturn]] static void fail(const char *message) { throw ParserException(message); }

    Lexer lexer;  ///< only its counts are of use once parse() is through
    // What an exception out of the last parse() or evaluate() had to leave.
    int readingDepth = 0;  ///< calls that were open when the last of them began
    int treeHeight = 0;    ///< of the tree that was read; 0 for none

private:
    class TreeParser;
};

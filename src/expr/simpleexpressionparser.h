#pragma once

#include "expressionparser.h"

/// A parser that knows no names: only literals and operators have a value, and everything else is
/// a ParserException. Making one costs next to nothing.
class SimpleExpressionParser : public ExpressionParser
{
public:
    using Value = ExpressionValue;

    /// One for the whole process, made when it is first asked for and never released.
    static SimpleExpressionParser *instance();

    ExpressionObject *lookupScopedSymbol(const std::vector<std::string> &parts) override;
    ExpressionObject *lookupSymbol(const char *name) override
    {
        throw ParserException(std::string(name).append(" symbol not found"));
    }
    ExpressionObject *lookupRegister(const std::string &) override { fail("unknown register"); }
    bool isTypeName(const std::string &) override { return false; }
    Value castValue(const BaseType &, const Value &) override { fail("cannot cast"); }
    Value dereferenceValue(ExpressionObject *, std::int32_t) override
    {
        fail("cannot dereference");
    }
    Value memberValue(const Value &, const std::string &) override { fail("cannot dereference"); }
    Value scopedMemberValue(const Value &, const std::vector<std::string> &) override
    {
        fail("cannot dereference");
    }
    void assignValue(ExpressionObject *, const Value &) override { fail("this symbol not found"); }
    Value objectValue(ExpressionObject *) override { fail("this symbol not found"); }

    // These never throw a ParserException: where there is no value of the kind asked for, they
    // return 0 or false, and *ok, which must not be null, is false.

    /// A number as PlainValue::toUInt64() reads it: for a floating value its bit pattern.
    std::uint64_t evaluateUnsigned(const char *text, bool *ok)
    {
        return evaluateWanted(text, &PlainValue::isNumeric, ok).toUInt64();
    }
    /// A number as PlainValue::toInt64() reads it.
    std::int64_t evaluateSigned(const char *text, bool *ok)
    {
        return evaluateWanted(text, &PlainValue::isNumeric, ok).toInt64();
    }
    /// A boolean; no number counts as one.
    bool evaluateBool(const char *text, bool *ok)
    {
        return evaluateWanted(text, &PlainValue::isBoolean, ok).toBool();
    }

    /// Why one of these finds no value in \a text: the message of the ParserException, or what the
    /// value is instead. They keep no reason, and the short cuts that they take do not know one.
    /// Where the text \a hasValue, empty, but for text behind the expression.
    std::string failureOf(const char *text, bool hasValue);

    /// What the last of these cost, in steps of about a nanosecond: counted, not measured, so that
    /// it is the same in every run, and within a factor of about two of what a clock says.
    std::uint64_t steps() const { return cost; }

private:
    /// The value of \a text if it has one and \a isWanted accepts it, else the void value, which
    /// every conversion reads as 0.
    PlainValue evaluateWanted(const char *text, bool (PlainValue::*isWanted)() const, bool *ok);
    /// The value of \a text; the void value where there is none.
    PlainValue evaluateWithTree(const char *text);

    std::uint64_t cost = 0;
};

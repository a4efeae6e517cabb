#include "expr_support.h"

#include "resolution.h"
#include "types.h"

#include <map>

namespace
{

class Variable : public ExpressionObject
{
public:
    QString text() override { return QStringLiteral("a variable"); }
    ExpressionValue value() override { return current; }

    ExpressionValue current;
};

/// Knows every name, as a variable that is void until it is assigned, and notes what it is asked.
class RecordingParser : public SimpleExpressionParser
{
public:
    ExpressionObject *lookupSymbol(const char *name) override
    {
        return variable(QString::fromLatin1(name));
    }
    ExpressionObject *lookupScopedSymbol(const QStringList &parts) override
    {
        return variable(QStringLiteral("::") + parts.join(u'/'));
    }
    ExpressionObject *lookupRegister(const QString &name) override { return variable(u'%' + name); }
    ExpressionValue castValue(const BaseType &type, const ExpressionValue &value) override
    {
        note("cast " + type.name().toStdString() + " " + describe(value));
        return value;
    }
    ExpressionValue dereferenceValue(ExpressionObject *base, qint32 index) override
    {
        note("index " + std::to_string(index));
        return ExpressionValue::fromObject(base);
    }
    ExpressionValue memberValue(const ExpressionValue &value, const QString &name) override
    {
        note("member " + name.toStdString());
        return value;
    }
    ExpressionValue scopedMemberValue(const ExpressionValue &value,
                                      const QStringList &parts) override
    {
        note("member " + parts.join(u'/').toStdString());
        return value;
    }
    void assignValue(ExpressionObject *target, const ExpressionValue &value) override
    {
        static_cast<Variable *>(target)->current = value;
        note("assign " + describe(value));
    }
    ExpressionValue objectValue(ExpressionObject *object) override { return object->value(); }

    std::string notes;

private:
    Variable *variable(const QString &name)
    {
        note(name.toStdString());
        return &variables[name];
    }
    void note(const std::string &what) { notes += (notes.empty() ? "" : ", ") + what; }

    std::map<QString, Variable> variables;
};

/// What evaluating \a text asks the parser for, and the value or failure that it ends with.
std::string resolved(RecordingParser *parser, const char *text)
{
    parser->notes.clear();
    const std::string value = outcomeOf([&] {
        ExpressionValue result = parser->evaluate(text);
        result.resolve();
        return describe(result);
    });
    return parser->notes + ": " + value;
}

}  // namespace

TEST(ExprResolution, NamesBecomeObjectsAndOperatorsReadThem)
{
    RecordingParser parser;
    expectAll({"a = 5 => a, assign signed/8 5: signed/8 5", "a + 1 => a: signed/8 6",
               "1 + a => a: signed/8 6", "-a => a: signed/8 -5", "~a => a: signed/8 -6",
               "!a => a: boolean/0 false", "a == a => a, a: boolean/0 true",
               "1 << a => a: signed/8 32", "n::a = a => ::n/a, a, assign signed/8 5: signed/8 5",
               "::a = 1 => ::a, assign signed/8 1: signed/8 1",
               "@r1 = 1.5 => %r1, assign floating/8 1.5: floating/8 1.5",
               "nothing + 1 => nothing: ! unsupported binary numeric operation",
               "nothing == 1 => nothing: ! unsupported comparison operation",
               "1 / nothing => nothing: ! unsupported binary numeric operation"},
              [&parser](const char *text) { return resolved(&parser, text); });
}

TEST(ExprResolution, AssignmentsEvaluateTheirTargetFirst)
{
    RecordingParser parser;
    expectAll({"a = b = 3 => a, b, assign void/2 , assign signed/8 3: signed/8 3",
               "a += 4 => a, a, assign signed/8 7: signed/8 7",
               "a++ => a, a, assign signed/8 8: signed/8 8",
               "--a => a, a, assign signed/8 7: signed/8 7",
               "a + 1 = 2 => a: ! bad expression type", "1 = b => : ! bad expression type"},
              [&parser](const char *text) { return resolved(&parser, text); });
    EXPECT_EQ(resolved(&parser, "a -= 1 *= 3"),
              "a, a, assign signed/8 6, a, a, assign signed/8 5, assign signed/8 15: signed/8 15");
}

TEST(ExprResolution, IndexesAreNumbers)
{
    RecordingParser parser;
    expectAll({"i = 2 => i, assign signed/8 2: signed/8 2", "i[i] => i, i, index 2: signed/8 2",
               "*i => i, index 0: signed/8 2", "i[-1] => i, index -1: signed/8 2",
               "i[1.9] => i, index 1: signed/8 2", "i[-1.9] => i, index -1: signed/8 2",
               "i[1==1] => i, index 1: signed/8 2", "i[4294967297] => i, index 1: signed/8 2",
               R"(i["a"] => i: ! bad index type)", "i[void] => i, void: ! bad index type"},
              [&parser](const char *text) { return resolved(&parser, text); });
}

TEST(ExprResolution, MembersCastsAddressesAndCalls)
{
    RecordingParser parser;
    expectAll({"a.b => a, member b: void/2 ", "a->b::c => a, member b/c: void/2 ",
               "(long[2])-1 => cast long[Constant(2)] signed/8 -1: signed/8 -1",
               "&a => a: ! addressof not implemented", "sizeof(a) => a: ! sizeof not implemented",
               "f(a 1) => f, a: ! function calling not implemented"},
              [&parser](const char *text) { return resolved(&parser, text); });

    const DotExpression odd(std::make_unique<IntegerConstantExpression>(1),
                            std::make_unique<IntegerConstantExpression>(2), &parser);
    EXPECT_EQ(outcomeOf([&] { return describe(odd.evaluate()); }), "! bad expression type");
}

#include "expr_support.h"

namespace
{

/// Knows the types "size_t" and "struct point".
class TypedParser : public SimpleExpressionParser
{
public:
    bool isTypeName(const QString &name) override
    {
        return name == QStringLiteral("size_t") || name == QStringLiteral("struct point");
    }
};

void expectTypedDumps(std::initializer_list<std::string> cases)
{
    expectAll(cases, [](const char *text) {
        TypedParser parser;
        return parser.parse(text)->dump().toStdString();
    });
}

}  // namespace

TEST(ExprTypes, SimpleTypesEndAtTheWordThatCompletesThem)
{
    expectDumps({"(char)1 => (char)Constant(1)", "(unsigned)1 => (unsigned int)Constant(1)",
                 "(unsigned short)1 => (unsigned short)Constant(1)", "(long)1 => (long)Constant(1)",
                 "(long unsigned)1 => (unsigned long)Constant(1)",
                 "(long unsigned long)1 => (unsigned long long)Constant(1)",
                 "(unsigned signed int)1 => (unsigned int)Constant(1)",
                 "(const)1 => (int)Constant(1)", "(volatile signed char)1 => (char)Constant(1)",
                 "(long int)1 => (int)Constant(1)", "(short int)1 => ! ')' expected",
                 "(long long int)1 => ! ')' expected", "(int x)1 => ! ')' expected",
                 "(const x)1 => ! ')' expected"});
}

TEST(ExprTypes, Suffixes)
{
    expectDumps({"(char*)1 => (char*)Constant(1)", "(int[4])1 => (int[Constant(4)])Constant(1)",
                 "(int*[1+x]*)1 => (int*[PlusExpression(Constant(1),Identifier(x))]*)Constant(1)",
                 "(int[4)1 => ! ']' expected", "(int[])1 => ! expression expected"});
}

TEST(ExprTypes, NamesThatTheParserKnows)
{
    expectTypedDumps({"(size_t*)1 => (size_t*)Constant(1)",
                      "(const unsigned size_t)1 => (size_t)Constant(1)",
                      "(struct point)1 => (struct point)Constant(1)",
                      "(struct { size_t n; })1 => (size_t n;)Constant(1)",
                      "(point)1 => Identifier(point)", "(struct line)1 => ! struct type not found",
                      "(struct { struct point p; })1 => ! struct parse error"});
}

TEST(ExprTypes, Structures)
{
    expectDumps(
        {"(struct { int a; char b : 3; })1 => (int a;char b:3;)Constant(1)",
         "(struct {unsigned;long:010;short c:0;})1 => (unsigned int ;long :8;short c;)Constant(1)",
         "(struct {}*)1 => (*)Constant(1)", "(struct S)1 => ! struct type not found",
         "(struct 1)1 => ! '{' expected", "(struct { foo a; })1 => ! struct parse error",
         "(struct { => ! struct parse error",
         "(struct { int a : x; })1 => ! integer must follow ':'",
         "(struct { int a })1 => ! ';' expected", "(struct { int a, b; })1 => ! ';' expected",
         "(struct {int a;} b)1 => ! ')' expected"});
}

TEST(ExprTypes, Registers)
{
    expectDumps({"(register 32 EN 0 1 MODE 1 3 ;)x => (32 EN 0 1 MODE 1 3)Identifier(x)",
                 "(register 8;)x => (8)Identifier(x)",
                 "(register 4294967295 \"a b\" 010 2;*)x => (-1 \"a b\" 8 2*)Identifier(x)",
                 "(register x)1 => ! size expected", "(register 8)1 => ! fieldname expected",
                 "(register 8 A)1 => ! bitoffset expected",
                 "(register 8 A 0x1 1;)1 => ! bitoffset expected",
                 "(register 8 A 0)1 => ! bitsize expected"});
}

#include "binaryoperators.h"
#include "lexer.h"
#include "numberreader.h"
#include "parserexception.h"
#include "resolution.h"
#include "simpleexpressionparser.h"
#include "types.h"
#include "valueformat.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace
{

using Value = ExpressionValue;

/// Every token as kind, precedence and characters: "3/10 1, 28/8 +, 3/10 2".
std::string tokensFrom(Lexer lexer, const char *text)
{
    std::string all;
    for (lexer.setText(text); lexer.kind() != Token::EndOfInput; lexer.next()) {
        all += (all.empty() ? "" : ", ") + std::to_string(lexer.kind()) + "/" +
               std::to_string(lexer.precedence()) + " " + lexer.token().toStdString();
    }
    return all;
}

/// The kind's letter, the size and the text of a value: "s8 7" is a signed 7 of 8 bytes.
std::string describe(const Value &value)
{
    const std::string text = toString(value).toStdString();
    return "bsutofv"[value.kind] + std::to_string(value.size) + (text.empty() ? "" : " ") + text;
}

class Variable : public ExpressionObject
{
public:
    QString text() override { return QStringLiteral("a variable"); }
    Value value() override { return current; }
    Value current;
};

/// Knows every name, as a variable that is void until it is assigned, and notes what it is asked.
/// A cast to a simple type reads the bits anew, one to "size_t" gives single precision.
class RecordingParser : public SimpleExpressionParser
{
public:
    ExpressionObject *lookupSymbol(const char *name) override
    {
        return variable(QLatin1StringView(name));
    }
    ExpressionObject *lookupScopedSymbol(const QStringList &parts) override
    {
        return variable(QStringLiteral("::") + parts.join(u'/'));
    }
    ExpressionObject *lookupRegister(const QString &name) override { return variable(u'%' + name); }
    bool isTypeName(const QString &name) override
    {
        return name == QStringLiteral("size_t") || name == QStringLiteral("struct point");
    }
    Value castValue(const BaseType &type, const Value &value) override
    {
        const auto *simple = dynamic_cast<const SimpleType *>(&type);
        if (dynamic_cast<const UserType *>(&type))
            return Value::fromDouble(value.toDouble(), 4);
        if (!simple)
            return noted("cast " + type.name().toStdString() + " " + describe(value), value);
        const qint32 size = 1 << simple->code;
        return simple->isUnsigned ? Value::fromUInt64(value.payload, size)
                                  : Value::fromInt64(static_cast<qint64>(value.payload), size);
    }
    Value dereferenceValue(ExpressionObject *base, qint32 index) override
    {
        return noted("index " + std::to_string(index), Value::fromObject(base));
    }
    Value memberValue(const Value &value, const QString &name) override
    {
        return noted("member " + name.toStdString(), value);
    }
    Value scopedMemberValue(const Value &value, const QStringList &parts) override
    {
        return noted("member " + parts.join(u'/').toStdString(), value);
    }
    void assignValue(ExpressionObject *target, const Value &value) override
    {
        static_cast<Variable *>(target)->current = noted("assign " + describe(value), value);
    }
    Value objectValue(ExpressionObject *object) override { return object->value(); }

    std::string notes;

private:
    Variable *variable(const QString &name)
    {
        noted(name.toStdString(), {});
        return &variables[name];
    }
    Value noted(const std::string &what, const Value &value)
    {
        notes += what + "; ";
        return value;
    }
    std::map<QString, Variable> variables;
};

std::string tokensOf(const char *text)
{
    return tokensFrom({}, text);
}

std::string dumpOf(const char *text)
{
    return RecordingParser().parse(text)->dump().toStdString();
}

/// What the parser that a test shares is asked for, if anything, and the value.
RecordingParser *shared = nullptr;
std::string valueOf(const char *text)
{
    shared->notes.clear();
    Value result = shared->evaluate(text);
    result.resolve();
    return shared->notes + describe(result);
}

/// Reads, dumps, evaluates and releases a text in which `3 ab` stands for ababab.
std::string lifeOf(const char *text)
{
    QByteArray all;
    bool repeats = false;
    for (const QByteArray &part : QByteArray(text).split('`')) {
        const qsizetype blank = part.indexOf(' ');
        all += repeats ? part.sliced(blank + 1).repeated(part.first(blank).toInt()) : part;
        repeats = !repeats;
    }
    SimpleExpressionParser parser;
    const std::unique_ptr<Expression> tree = parser.parse(all.constData());
    EXPECT_FALSE(tree->dump().isEmpty());
    return describe(tree->evaluate());
}

/// The signed view, the unsigned one in hexadecimal, and the number.
std::string views(const Value &value)
{
    return std::to_string(value.toInt64()) + " " +
           QString::number(value.toUInt64(), 16).toStdString() + " " +
           QString::number(value.toDouble(), 'g', 20).toStdString();
}

/// Decimal, the other bases, those filled up with zeros.
std::string texts(const Value &value)
{
    QStringList all(toString(value));
    for (const bool zeroPad : {false, true}) {
        for (const int base : {16, 8, 2})
            all.append(toString(value, base, zeroPad));
    }
    return all.join(u' ').toStdString();
}

/// The results that are to be unsigned, signed and boolean; "-" for a zero that is not ok.
std::string wantedOf(const char *text)
{
    const auto wanted = [text](auto evaluate) {
        bool ok = true;
        const auto result = (SimpleExpressionParser::instance()->*evaluate)(text, &ok);
        return ok || result != 0 ? std::to_string(result) + (ok ? "" : " not ok") : "-";
    };
    return wanted(&SimpleExpressionParser::evaluateUnsigned) + " " +
           wanted(&SimpleExpressionParser::evaluateSigned) + " " +
           wanted(&SimpleExpressionParser::evaluateBool);
}

/// Rows "text => outcome", on lines of their own or two spaces apart; a text without an outcome has
/// that of the next one. An outcome is what the call returns, or "! " and the message it ends with.
struct Claim {
    const char *name;
    std::string (*outcomeOf)(const char *text);
    const char *table;
};

const Claim claims[] = {
    {"KnowsEveryKindOfToken", tokensOf,
     R"("a b" 0x1F 0b10 1.5 => 7/10 "a b", 4/10 0x1F, 5/10 0b10, 6/10 1.5
     10 a_$1 @r0 ; :: : => 3/10 10, 8/10 a_$1, 9/10 @r0, 10/10 ;, 12/10 ::, 11/10 :
     ( ) [ ] { } => 13/10 (, 14/10 ), 15/10 [, 16/10 ], 17/10 {, 18/10 }
     . -> ++ -- != ! ~ => 19/10 ., 20/10 ->, 21/10 ++, 22/10 --, 38/5 !=, 24/10 !, 23/10 ~
     *= * /= / %= % => 48/-3 *=, 25/9 *, 49/-3 /=, 26/9 /, 50/-3 %=, 27/9 %
     += + -= - <<= << => 46/-3 +=, 28/8 +, 47/-3 -=, 29/8 -, 52/-3 <<=, 30/7 <<
     >>>= >>> >>= >> <= < => 53/-3 >>>=, 32/7 >>>, 51/-3 >>=, 31/7 >>, 34/6 <=, 33/6 <
     >= > == ^= ^ &= => 36/6 >=, 35/6 >, 37/5 ==, 55/-3 ^=, 40/3 ^, 54/-3 &=
     && & |= || | ? = , => 42/1 &&, 39/4 &, 56/-3 |=, 43/0 ||, 41/2 |, 44/-1 ?, 45/-2 =, 57/-4 ,)"},
    {"WhatNoRuleMatchesIsReportedToItsEnd", tokensOf,
     "1 \x85 => ! unrecognised token: \xC2\x85  1 \x1F => ! unrecognised token: \x1F  "
     "a # b => ! unrecognised token: # b  \"open => ! unrecognised token: \"open  "
     "\xE4 1 => ! unrecognised token: \xC3\xA4 1  1\xB2 => ! unrecognised token: \xC2\xB2"},
    {"ReadsNumbersWithoutCheckingDigits",
     [](const char *text) { return std::to_string(static_cast<qint64>(readNumber(text))); },
     R"(0  0x  0b => 0  42 => 42  010  08 => 8  09 => 9  0x1F => 31  0xff => 255  0b101 => 5
     +7 => 7  -12 => -12  -0x10 => -16  -010 => -8  1z  1Z => 45  1/ => 2  0x1z => 51
     18446744073709551617 => 1  9223372036854775808 => -9223372036854775808)"
     "  \t-12 => -12"},
    {"InvalidPatternsAndEmptyMatchesNeverApply",
     [](const char *text) {
         Lexer lexer;
         lexer.addToken(text, 100, 10);
         return tokensFrom(std::move(lexer), "#");
     },
     R"(a|b  (#)  #?  [#  #\  *#  []#  x* => ! unrecognised token: #)"},
    {"PostfixForms", dumpOf,
     R"(a.b->c => Dot(Dot(Identifier(a),Identifier(b)),Identifier(c))
     a[1].b::c => Dot(LeftSquareBracket(Identifier(a),Constant(1)),Identifier(b::c))
     f() => Identifier(f)()  f(1)(2) => Identifier(f)(Constant(1))(Constant(2))
     f(1,"x" -2,) => Identifier(f)(Constant(1)Constant(x)NegateExpression(Constant(2)))
     f(1*2) => Identifier(f)(Constant(1)LeftSquareBracket(Constant(2),Constant(0)))
     1 2 => Constant(1)  3) => Constant(3))"},
    {"OperandsOfOtherSizesAndKinds", valueOf,
     R"(((char)255)+((char)255) => s1 -2  ((char)255)>0 => b0 true  ((char)0x1FF)/2 => s1 -1
     ((short)1)-((unsigned short)0xFFFF) => s2 2  ((unsigned)1)-2 => u4 4294967295
     ((unsigned long)0)+((char)-1) => u8 255  ((unsigned long)0)+1.0 => u8 4607182418800017408
     ((unsigned long)0)+((size_t)1) => u8 1065353216  ((unsigned long)3)*(1==1) => u8 3
     ((unsigned long)6)^3 => u8 5  ((unsigned long)-1)/2 => u8 9223372036854775807
     ((unsigned long)-1)%10 => u8 5  ((unsigned long)5)&&0.5 => u8 1
     ((size_t)1)+((char)255) => f4 0  1.0+((unsigned char)255) => f8 256
     (1==1)==257  (1==1)<255  ((unsigned long)1)<0.5 => b0 true
     ((unsigned long)1)>-1 => b0 false)"},
    {"ViewsFollowKindAndSize", [](const char *text) { return views(shared->evaluate(text)); },
     R"((char)0x1FF => -1 ff -1  (unsigned char)0x1FF => -1 ff 255  (char)0x17F => 127 7f 127
     (short)0x18000 => -32768 8000 -32768  (unsigned short)0x18000 => -32768 8000 32768
     (int)0x1FFFFFFFF => -1 ffffffff -1  (unsigned)0x1FFFFFFFF => -1 ffffffff 4294967295
     0x8000000000000000 => -9223372036854775808 8000000000000000 -9223372036854775808
     (unsigned long)0xFFFFFFFFFFFFF800 => -2048 fffffffffffff800 18446744073709549568
     (long long)0x1FFFFFFFF => 8589934591 1ffffffff 8589934591  1.0 => 1 3ff0000000000000 1
     (size_t)1.5 => 1 3fc00000 1.5  -1.5 => -1 bff8000000000000 -1.5
     9223372036854774784.0 => 9223372036854774784 43dfffffffffffff 9223372036854774784
     9223372036854775808.0 => -9223372036854775808 43e0000000000000 9223372036854775808
     -99999999999999999999.0 => -9223372036854775808 c415af1d78b58c40 -1e+20
     (1==1) => 1 1 1  (1==2)  "7"  x => 0 0 0)"},
    {"TextInEveryBase", [](const char *text) { return texts(shared->evaluate(text)); },
     R"((char)255 => -1 0xff 0377 0b11111111 0xff 0377 0b11111111
     (short)0xAB => 171 0xab 0253 0b10101011 0x00ab 0000253 0b0000000010101011
     (unsigned char)0x10F => 15 0xf 017 0b1111 0x0f 0017 0b00001111
     1==1 => true true true true true true true  "a" => a a a a a a a)"},
    {"TextAsCharacter",
     [](const char *text) {
         return "'" + toString(shared->evaluate(text), 10, false, true).toStdString() + "'";
     },
     R"(65 => 'A'  32 => ' '  126 => '~'  127 => '\u007f'  31 => '\u001f'  0x1FFFF => '\uffff')"},
    {"FloatingText", valueOf,
     R"(0.5 => f8 0.5  100000.0 => f8 100000  -0.0 => f8 -0  1234567.0 => f8 1.23457e+06)"},
    {"WithoutSymbolsOnlyLiteralsHaveAValue",
     [](const char *text) { return describe(SimpleExpressionParser().evaluate(text)); },
     R"(::a  1/0+a  a*1-2<<3 => ! a symbol not found  a::b => ! a::b symbol not found
     @r0 => ! unknown register  (int)1 => ! cannot cast
     x  (int)x  x[0]  x=y  &x  *x  x.y  x++  sizeof(x)  1(x)  x(y)  y+x
     (x)1 => ! x symbol not found  1.b  1->a::b => ! cannot dereference
     *5  5[x]  1=x  1+=x  1++  --1 => ! bad expression type
     &1  &(1+1) => ! cannot take address of a constant
     sizeof(1)  sizeof("a") => ! cannot determine sizeof of a constant
     addressof("a.c", 1) => ! addressof not implemented
     1(2)  "f"() => ! function calling not implemented)"},
    {"OnlyTheWantedKindIsOk", wantedOf,
     R"(1==1 => - - 1  1!=1 => - - 0  1  1&&1 => 1 1 -  0x10+1 => 17 17 -
     -1 => 18446744073709551615 -1 -  1.5 => 4609434218613702656 1 -
     "1"  1+  #  x  1/0 => - - -)"},
    {"MembersCastsAddressesAndCalls", valueOf,
     R"(a=1 => a; assign s8 1; s8 1  a.b => a; member b; s8 1  a->b::c => a; member b/c; s8 1
     (long[2])-1 => cast long[Constant(2)] s8 -1; s8 -1  &a => ! addressof not implemented
     sizeof(a) => ! sizeof not implemented  f(a 1) => ! function calling not implemented)"},
    {"FirstRuleThatMatchesWins", tokensOf,
     R"(a<<=b => 8/10 a, 52/-3 <<=, 8/10 b  x->y => 8/10 x, 20/10 ->, 8/10 y
     +++ => 21/10 ++, 28/8 +  ::: => 12/10 ::, 11/10 :  === => 37/5 ==, 45/-2 =
     1.2.3 => 6/10 1.2, 19/10 ., 3/10 3  1. => 3/10 1, 19/10 .  .5 => 19/10 ., 3/10 5
     1e5 => 3/10 1, 8/10 e5  0b12 => 5/10 0b1, 3/10 2  0xg => 4/10 0x, 8/10 g
     0X1 => 3/10 0, 8/10 X1  @1- => 9/10 @1, 29/8 -  @ => 9/10 @  """a" => 7/10 "", 7/10 "a")"},
    {"LevelsNestFromLooseToTight", dumpOf,
     "a||b&&c|d^e&f==g<h<<i+j*k => LogicalOrExpression(Identifier(a),LogicalAndExpression("
     "Identifier(b),BitOrExpression(Identifier(c),BitXorExpression(Identifier(d),BitAndExpression("
     "Identifier(e),EqExpression(Identifier(f),LtExpression(Identifier(g),LshiftExpression("
     "Identifier(h),PlusExpression(Identifier(i),MultiplyExpression(Identifier(j),Identifier("
     "k)))))))))))"
     R"(  1*2+3 => PlusExpression(MultiplyExpression(Constant(1),Constant(2)),Constant(3))
     1>=2!=3 => NeExpression(GeExpression(Constant(1),Constant(2)),Constant(3)))"},
    {"EqualLevelsGroupToTheLeft", dumpOf,
     R"(1-2+3 => PlusExpression(MinusExpression(Constant(1),Constant(2)),Constant(3))
     1*2/3 => DivideExpression(MultiplyExpression(Constant(1),Constant(2)),Constant(3))
     1<=2>3 => GtExpression(LeExpression(Constant(1),Constant(2)),Constant(3))
     a=b=c => =(=(Identifier(a),Identifier(b)),Identifier(c))
     1+=2=3 => =(Constant(1),PlusExpression(Constant(1),=(Constant(2),Constant(3)))))"},
    {"CompoundAssignmentsUseTheirTargetTwice", valueOf,
     R"(a=6 => a; assign s8 6; s8 6  a*=4 => a; a; assign s8 24; s8 24
     a/=5 => a; a; assign s8 4; s8 4  a%=3 => a; a; assign s8 1; s8 1
     a<<=4 => a; a; assign s8 16; s8 16  a>>=2 => a; a; assign s8 4; s8 4
     a&=6 => a; a; assign s8 4; s8 4  a^=7 => a; a; assign s8 3; s8 3
     a|=8 => a; a; assign s8 11; s8 11  a-=1 => a; a; assign s8 10; s8 10
     a+=4 => a; a; assign s8 14; s8 14  a++ => a; a; assign s8 15; s8 15
     --a => a; a; assign s8 14; s8 14)"},
    {"PositionIsBehindTheTokenThatEndedReading",
     [](const char *text) {
         qsizetype position = -1;
         SimpleExpressionParser().parse(text, &position);
         return std::to_string(position);
     },
     "1 => 1  1\t => 2  1 23 4 => 4  a[1] ] => 6"},
    {"StepsAreCompoundAssignments", dumpOf,
     R"(a++ => =(Identifier(a),PlusExpression(Identifier(a),Constant(1)))
     a-- => =(Identifier(a),MinusExpression(Identifier(a),Constant(1)))
     ++f() => =(Identifier(f)(),PlusExpression(Identifier(f)(),Constant(1)))
     a=b++ => =(Identifier(a),=(Identifier(b),PlusExpression(Identifier(b),Constant(1)))))"},
    {"UnaryAndPrimaryForms", dumpOf,
     R"(0x10 => Constant(16)  0xffffffffffffffff => Constant(-1)  0.5 => Constant(0.5)
     0b11 => Constant(3)  "a\n" => Constant(a\n)  @r0 => Identifier(r0)  @ => Identifier()
     ::a => Identifier(a)  a::b::c => Identifier(a::b::c)  sizeofx => Identifier(sizeofx)
     size => Identifier(size)  Sizeof => Identifier(Sizeof)  1.5e3 => Constant(1.5)
     -~!+1 => NegateExpression(BitNotExpression(LogicalNotExpression(Constant(1))))
     -a[0] => NegateExpression(LeftSquareBracket(Identifier(a),Constant(0)))
     (-a)[0] => LeftSquareBracket(NegateExpression(Identifier(a)),Constant(0))
     *p+1 => PlusExpression(LeftSquareBracket(Identifier(p),Constant(0)),Constant(1))
     &a&b => BitAndExpression(&Identifier(a),Identifier(b))
     sizeof(a+1) => sizeof(PlusExpression(Identifier(a),Constant(1)))
     addressof("a.c",010) => addressof("a.c", 8))"},
    {"CastsTakeAllThatFollows", dumpOf,
     R"((int)a + b => (int)PlusExpression(Identifier(a),Identifier(b))
     2*(char)a=b => MultiplyExpression(Constant(2),(char)=(Identifier(a),Identifier(b)))
     ((int)1)+2 => PlusExpression((int)Constant(1),Constant(2))  (foo)1 => Identifier(foo))"},
    {"SimpleTypesEndAtTheWordThatCompletesThem", dumpOf,
     R"((char)1  (volatile signed char)1 => (char)Constant(1)
     (unsigned)1  (unsigned signed int)1 => (unsigned int)Constant(1)
     (unsigned short)1 => (unsigned short)Constant(1)  (long)1 => (long)Constant(1)
     (long unsigned)1 => (unsigned long)Constant(1)  (const)1  (long int)1 => (int)Constant(1)
     (long unsigned long)1 => (unsigned long long)Constant(1)
     (short int)1  (long long int)1  (int x)1  (const x)1 => ! ')' expected)"},
    {"TypeSuffixesAndNamesOfTypes", dumpOf,
     R"((char*)1 => (char*)Constant(1)  (int[4])1 => (int[Constant(4)])Constant(1)
     (int*[1+x]*)1 => (int*[PlusExpression(Constant(1),Identifier(x))]*)Constant(1)
     (int[4)1 => ! ']' expected  (int[])1 => ! expression expected
     (size_t*)1 => (size_t*)Constant(1)  (const unsigned size_t)1 => (size_t)Constant(1)
     (struct point)1 => (struct point)Constant(1)  (point)1 => Identifier(point))"},
    {"Structures", dumpOf,
     R"((struct { int a; char b : 3; size_t n; })1 => (int a;char b:3;size_t n;)Constant(1)
     (struct {unsigned;long:010;short c:0;})1 => (unsigned int ;long :8;short c;)Constant(1)
     (struct {}*)1 => (*)Constant(1)  (struct line)1 => ! struct type not found
     (struct 1)1 => ! '{' expected  (struct { int a : x; })1 => ! integer must follow ':'
     (struct { foo a; })1  (struct { struct point p; })1  (struct { => ! struct parse error
     (struct { int a })1  (struct { int a, b; })1 => ! ';' expected
     (struct {int a;} b)1 => ! ')' expected)"},
    {"Registers", dumpOf,
     R"((register 32 EN 0 1 MODE 1 3 ;)x => (32 EN 0 1 MODE 1 3)Identifier(x)
     (register 4294967295 "a b" 010 2;*)x => (-1 "a b" 8 2*)Identifier(x)
     (register 8;)x => (8)Identifier(x)  (register x)1 => ! size expected
     (register 8)1 => ! fieldname expected  (register 8 A 0)1 => ! bitsize expected
     (register 8 A)1  (register 8 A 0x1 1;)1 => ! bitoffset expected)"},
    {"SyntaxErrors", dumpOf,
     "\t  1 +\t => ! expression expected  "
     R"()  1 +  1 + +  f(,)  f(1,  1,  a[  1 = => ! expression expected
     sizeof 1  addressof  addressof "a" => ! '(' expected
     (1  (1 2)  sizeof(1  addressof("a",1  (int 1 => ! ')' expected
     addressof(1  addressof(a => ! string expected
     addressof("a" 1)  addressof("a") => ! ',' expected
     addressof("a",0x1)  addressof("a",) => ! int expected
     a.1  a->  ::1  a.::b => ! identifier expected  a::  ::a::1 => ! identifier expected after '::'
     a[1  a[1) => ! expected ']'
     1, 2  a ? 1 : 2  1 >>> 2  a >>>= 2  1 ? 2) => ! operator not supported
     1 ? #  1 #  (int #  f(# => ! unrecognised token: #)"},
    {"SignedArithmeticWraps", valueOf,
     R"(7/2 => s8 3  -7/2 => s8 -3  -7%2 => s8 -1  7%-2 => s8 1
     -9223372036854775807-2 => s8 9223372036854775807
     9223372036854775807+1  4611686018427387904*2  -9223372036854775808
     -9223372036854775808/-1 => s8 -9223372036854775808  -9223372036854775808%-1 => s8 0
     7/-1 => s8 -7  12&10 => s8 8  12|10 => s8 14  12^10 => s8 6  1&&2  0||2 => s8 1
     1&&0  0||0 => s8 0)"},
    {"TheLeftKindDecides", valueOf,
     R"(1+1.9  1+(1==1)  2+"9"  3+-1.9 => s8 2  1.5+1  3.5-(1==1)  5.0/2  2.5+"9"  1.25*2 => f8 2.5
     2>1.5  (1==1)+255  (1==1)%2  (1==1)|"x"  (1==2)||1  (1==1)&&1  (1==1)&&(2==2) => b0 true
     (1==1)-257  (1==1)*256  (1==1)/2  (1==1)&2  (1==1)^1  (1==1)&&1.0  (1==1)&&256 => b0 false
     0+99999999999999999999.0 => s8 -9223372036854775808)"},
    {"Comparisons", valueOf,
     R"(1<2  2<=2  3>2  2>=2  2==2  1!=2  -1<0  (1==2)<(1==1)  0=="7"  "a"<"b"  ""==7 => b0 true
     2<2  3<=2  2>2  1>=2  1==2  2!=2  7=="7"  (1==1)!=(2==2)  "B">"a"  "7"==7 => b0 false)"},
    {"Shifts", valueOf,
     R"(1<<3 => s8 8  -8>>1 => s8 -4  -1>>127 => s8 -1  1<<64  1>>0  2>>65 => s8 1
     1<<63  1<<-1 => s8 -9223372036854775808  ((unsigned long)0x8000000000000000)>>63 => u8 1
     ((short)1)<<((char)0x1FF) => s2 0
     1<<1.0  1>>(1==1)  "a"<<"a"  1>>((unsigned long)1) => ! integer shift value expected
     1.5<<1  (1==1)>>1 => ! can only shift numeric values)"},
    {"UnaryOperators", valueOf,
     R"(-5 => s8 -5  -1.5 => f8 -1.5  -(1==1) => s0 -1  -(1==2) => s0 0  +(1==1) => b0 true
     ~0 => s8 -1  ~5 => s8 -6  +"a" => t0 a  !0  !0.0  !(1==2) => b0 true
     !2  !0.5  !(1==1)  !((unsigned)1) => b0 false  -((unsigned)1) => u4 4294967295
     ~((unsigned)1) => u4 4294967294
     ~1.0  ~(1==1)  -"a"  !"a" => ! unsupported unary num operation)"},
    {"DivisionByWhatConvertsToZero", valueOf,
     R"(7/0  7.0/0  7.0/-0.0  7/0.5  7/(1==2)  (1==1)/256  7%0  7%0.5  7%"3"  (1==1)%256
     ((unsigned long)7)/0.0  ((unsigned long)7)%(1==2)  7/((char)256) => ! divide by zero
     7/"0"  7.0/"0"  (1==1)/"0"  "7"/0  1.5%0 => ! unsupported binary numeric operation
     ((unsigned long)7)/0.5 => u8 0)"},
    {"KindsWithoutTheOperator", valueOf,
     R"(1.5%1  1.5&&1  1.5||1  1.5&1  1.5^1  1.5|1  "7"+1  "7"-1  "7"*1  "7"/1  "7"%1  "7"&&1
     "7"|1 => ! unsupported binary numeric operation
     1.5<1  1.5<=1  1.5>1  1.5>=1  1.5==1  1.5!=1 => ! unsupported comparison operation
     x+1  x%1  x||1  1/x => ! unsupported binary numeric operation
     x<1  x==1 => ! unsupported comparison operation)"},
    {"BothOperandsAreEvaluatedTheRightOneFirst", valueOf,
     R"(a=1 => a; assign s8 1; s8 1  (1==2)&&a => a; b0 false  (1==1)||a => a; b0 true
     (a=1)-(b=2) => b; assign s8 2; a; assign s8 1; s8 -1)"},
    {"NamesBecomeObjectsAndOperatorsReadThem", valueOf,
     R"(a=5 => a; assign s8 5; s8 5  a+1  1+a => a; s8 6  -a => a; s8 -5  ~a => a; s8 -6
     !a => a; b0 false  a==a => a; a; b0 true  1<<a => a; s8 32
     n::a=a => ::n/a; a; assign s8 5; s8 5  ::a=1 => ::a; assign s8 1; s8 1
     @r1=1.5 => %r1; assign f8 1.5; f8 1.5)"},
    {"AssignmentsEvaluateTheirTargetFirst", valueOf,
     R"(a=b=3 => a; b; assign v2; assign s8 3; s8 3
     a-=1*=2 => a; a; assign s8 2; a; a; assign s8 1; assign s8 2; s8 2
     a+1=2 => ! bad expression type)"},
    {"IndexesAreNumbers", valueOf,
     R"(i=2 => i; assign s8 2; s8 2  i[i] => i; i; index 2; s8 2  *i => i; index 0; s8 2
     i[-1]  i[-1.9] => i; index -1; s8 2  i[1.9]  i[1==1]  i[4294967297] => i; index 1; s8 2
     i["a"] => ! bad index type  i[x] => ! bad index type)"},
    {"WhatIsWithinTheBoundsHasAValue", lifeOf,
     R"(`1000 (`1`1000 )`  `2000 - `1 => s8 1  `1000 1+2*(`0`1000 )` => s8 -1
     1`1000 +2*3-4/5%6<<0>>0&7|8^9&&1||0==1!=0<3<=4>5>=6` => s8 1  1`999999 +1` => s8 1000000
     1`999999 <1`  "`100000 a`"==1 => b0 false)"},
    {"EndlessNestingIsRefused", lifeOf,
     R"(`100000 (`1  `100000 - `1  `100000 + `1  `100000 !`1  `100000 ~`1  `100000 *`1
     `100000 & `1  `100000 ++`1  `100000 (int)`1  `100000 x[`1  `100000 f(`1  `100000 sizeof(`1
     `100000 (int[`1  `100000 1+1*(`1  `100000 -(1+`1
     `100000 (1,1*=1=1?1||1&&1|1^1&(`1 => ! expression nested too deeply)"},
    {"ChainsThatAreNoOperatorsAreBounded", lifeOf,
     R"(x`3999 [0]`  x`3999 .a`  x`3999 ()`  x`3999 =1` => ! x symbol not found
     x`4000 [0]`  x`4000 .a`  x`4000 ()`  x`4000 =1` => ! expression nested too deeply
     (int`3998 *`)1  (int`3998 [1]`)1 => ! cannot cast
     (int`4000 *`)1  (int`4000 [1]`)1 => ! expression nested too deeply)"},
    {"TargetsThatDoubleAreRefused", lifeOf,
     R"(x`10 ++` => ! x symbol not found
     x`100 ++`  x`100 +=1`  `100 --`x  `1000000 x``10 ++` => ! expression too large)"},
    {"TextThatWouldTakeTooMuchMemoryIsRefused", lifeOf,
     R"(1`2100000 +1`  f(`2100000 1 `)  a`2100000 ::a`  (struct {`2100000 int;`})1
     (register 8 `2100000 A 0 1 `;)1
     "`2100000 0123456789abcdef0123456789abcdef`" => ! expression too large)"},
};

using ExprClaims = testing::TestWithParam<Claim>;

}  // namespace

TEST_P(ExprClaims, Hold)
{
    RecordingParser parser;
    shared = &parser;
    std::string table = GetParam().table;
    for (std::size_t at = 0; (at = table.find('\n', at)) != std::string::npos;)
        table.replace(at, 1, "  ");
    std::vector<std::string> texts;
    for (std::size_t start = 0, end = 0; start < table.size(); start = end) {
        end = std::min(table.find("  ", start), table.size());
        const std::string each = table.substr(start, end - start);
        end = std::min(table.find_first_not_of(' ', end), table.size());
        const std::size_t arrow = each.find(" => ");
        texts.push_back(each.substr(0, arrow));
        for (; arrow != std::string::npos && !texts.empty(); texts.pop_back()) {
            std::string outcome;
            try {
                outcome = GetParam().outcomeOf(texts.back().c_str());
            } catch (const ParserException &error) {
                outcome = "! " + error.message().toStdString();
            }
            EXPECT_EQ(texts.back() + " => " + outcome, texts.back() + each.substr(arrow));
        }
    }
    EXPECT_TRUE(texts.empty()) << "a text without an outcome";
    shared = nullptr;
}

INSTANTIATE_TEST_SUITE_P(Expr, ExprClaims, testing::ValuesIn(claims),
                         [](const auto &claim) { return std::string(claim.param.name); });

TEST(ExprLexer, DropsWhiteSpace)
{
    EXPECT_EQ(tokensOf("\t\n\v\f\r \xA0 1\xA0"), "3/10 1");
    Lexer lexer;
    EXPECT_THROW(lexer.setText("  # b"), ParserException);
    EXPECT_EQ(lexer.position(), 2);
}

TEST(ExprLexer, EndOfInputKeepsTheLastPrecedenceScanned)
{
    Lexer lexer;
    EXPECT_EQ(lexer.precedence(), Token::noOperator);
    lexer.setText("+");
    lexer.next();
    EXPECT_EQ(std::pair(lexer.kind(), lexer.precedence()), std::pair(0, 8));
}

TEST(ExprLexer, AddedRulesComeLast)
{
    Lexer lexer;
    lexer.addToken("#[^;\\s]*", 100, 10);
    lexer.addToken("\\+\\+", 101, 10);
    lexer.addToken("'[a-c\\-\\]-]+'", 103, 10);
    EXPECT_EQ(tokensFrom(std::move(lexer), "#x!; # ++ 'ab-]c'"),
              "100/10 #x!, 10/10 ;, 100/10 #, 21/10 ++, 103/10 'ab-]c'");
    EXPECT_EQ(Lexer().rules().size(), 56U);
}

TEST(ExprParser, OneParserReadsOneTextAfterTheOther)
{
    SimpleExpressionParser parser;
    const std::unique_ptr<Expression> first = parser.parse("1 + 2");
    EXPECT_THROW(parser.parse("((3"), ParserException);
    EXPECT_EQ(parser.parse(nullptr), nullptr);
    qsizetype position = -1;
    EXPECT_EQ(parser.parse("", &position), nullptr);
    EXPECT_EQ(position, 0);
    EXPECT_EQ(parser.evaluate("4").toInt64(), 4);
    EXPECT_EQ(first->evaluate().toInt64(), 3);
}

TEST(ExprValues, ObjectsShareOneHolderAndResolveToTheirValue)
{
    Variable variable;
    variable.current = Value::fromInt64(5, 4);
    Value first = Value::fromObject(&variable);
    EXPECT_EQ(Value(first).object.count(), 2);
    Value moved = std::move(first);
    EXPECT_EQ(describe(moved), "o0 a variable");
    EXPECT_EQ(moved.object.count(), 1);
    moved.resolve();
    EXPECT_EQ(describe(moved), "s4 5");
}

TEST(ExprValues, WhatTextAloneDoesNotShow)
{
    SimpleExpressionParser parser;
    EXPECT_THROW(DotExpression(parser.parse("1"), parser.parse("2"), &parser).evaluate(),
                 ParserException);
    const double infinity = std::numeric_limits<double>::infinity();
    const Value nan = Value::fromDouble(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(views(Value::fromDouble(infinity)), "-9223372036854775808 7ff0000000000000 inf");
    EXPECT_EQ(views(nan), "-9223372036854775808 7ff8000000000000 nan");
    EXPECT_EQ(Value::fromDouble(1e300, 4).toUInt64(), 0x7F800000U);
    EXPECT_EQ(describe(parser.parse("*p")->asBinary()->right->evaluate()), "u2 0");
    EXPECT_EQ(describe(Value::fromDouble(-infinity)), "f8 Inf");
    EXPECT_EQ(toString(Value::fromDouble(1e300), 10, false, false, "%.1f").size(), 303);
    EXPECT_EQ(describe(parser.evaluate("")), "v2");
    Value narrow = Value::fromInt64(0xAB, 2);
    narrow.bitWidth = 9;
    EXPECT_EQ(texts(narrow), "171 0xab 0253 0b10101011 0x0ab 0253 0b010101011");
    EXPECT_EQ(describe(applyOperator(BinaryOperator::Divide, Value(nan), Value(nan))), "f8 NaN");
}

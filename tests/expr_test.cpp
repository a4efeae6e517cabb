#include "lexer.h"
#include "numberreader.h"
#include "parserexception.h"
#include "recordingparser.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cmath>

namespace
{

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

std::string tokensOf(const char *text)
{
    return tokensFrom({}, text);
}

std::string wholeDumpOf(const char *text)
{
    return RecordingParser().parse(text)->dump().toStdString();
}

/// Without "Expression", and of names and constants only what they are.
std::string dumpOf(const char *text)
{
    static const QRegularExpression noise(
        QStringLiteral("Expression|(?:Constant|Identifier)\\(([\\w:.]*)\\)"));
    QString dump = QString::fromStdString(wholeDumpOf(text));
    return dump.replace(noise, QStringLiteral("\\1")).toStdString();
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
    {"KnowsTheKindsOfTokens", tokensOf,
     R"("a b" 0x1F 0b10 1.5 => 7/10 "a b", 4/10 0x1F, 5/10 0b10, 6/10 1.5
     10 a_$1 @r0 ; :: : => 3/10 10, 8/10 a_$1, 9/10 @r0, 10/10 ;, 12/10 ::, 11/10 :
     . -> ++ -- != ! ~ => 19/10 ., 20/10 ->, 21/10 ++, 22/10 --, 38/5 !=, 24/10 !, 23/10 ~
     >>>= >>> >>= >> % - => 53/-3 >>>=, 32/7 >>>, 51/-3 >>=, 31/7 >>, 27/9 %, 29/8 -
     >= > == ^= ^ &= => 36/6 >=, 35/6 >, 37/5 ==, 55/-3 ^=, 40/3 ^, 54/-3 &=
     && & |= || | ? = , => 42/1 &&, 39/4 &, 56/-3 |=, 43/0 ||, 41/2 |, 44/-1 ?, 45/-2 =, 57/-4 ,)"},
    {"WhatNoRuleMatchesIsReportedToItsEnd", tokensOf,
     "1 \x85 => ! unrecognised token: \xC2\x85  1 \x1F => ! unrecognised token: \x1F  "
     "\"open => ! unrecognised token: \"open  \xE4 1 => ! unrecognised token: \xC3\xA4 1"},
    {"ReadsNumbersWithoutCheckingDigits",
     [](const char *text) { return std::to_string(static_cast<qint64>(readNumber(text))); },
     R"(0  0x  0b => 0  010  08 => 8  09 => 9  0x1f => 31  0b101 => 5  +7 => 7  -010 => -8
     1z  1Z => 45  1/ => 2  9223372036854775808 => -9223372036854775808)"
     "  18446744073709551617 => 1  \t-12 => -12"},
    {"PostfixForms", dumpOf,
     R"(a[1].b->c::d => Dot(Dot(LeftSquareBracket(a,1),b),c::d)  f(1)(2) => f(1)(2)  1 2 => 1
     f(1,"x" -2,) => f(1xNegate(2))  f(1*2) => f(1LeftSquareBracket(2,0)))"},
    {"OperandsOfOtherSizesAndKinds", valueOf,
     R"(((char)255)>0  (1==1)==257  ((unsigned long)1)<0.5 => b0 true  ((char)0x1FF)/2 => s1 -1
     ((short)1)-((unsigned short)0xFFFF) => s2 2  ((unsigned)1)-2 => u4 4294967295
     ((unsigned long)0)+((char)-1) => u8 255  ((unsigned long)0)+((size_t)1) => u8 1065353216
     ((unsigned long)6)^3 => u8 5  ((unsigned long)-1)/2 => u8 9223372036854775807
     ((unsigned long)-1)%10 => u8 5  ((unsigned long)5)&&0.5 => u8 1
     ((size_t)1)+((char)255) => f4 0  (1==1)>=255  ((unsigned long)1)>-1 => b0 false)"},
    {"ViewsFollowKindAndSize", [](const char *text) { return views(shared->evaluate(text)); },
     R"((char)0x1FF => -1 ff -1  (unsigned char)0x1FF => -1 ff 255  (1==1) => 1 1 1
     (short)0x18000 => -32768 8000 -32768  (unsigned)0x1FFFFFFFF => -1 ffffffff 4294967295
     (unsigned long)0xFFFFFFFFFFFFF800 => -2048 fffffffffffff800 18446744073709549568
     (size_t)1.5 => 1 3fc00000 1.5  -1.5 => -1 bff8000000000000 -1.5  (1==2)  "7"  x => 0 0 0
     9223372036854774784.0 => 9223372036854774784 43dfffffffffffff 9223372036854774784
     9223372036854775808.0 => -9223372036854775808 43e0000000000000 9223372036854775808)"},
    {"TextInEveryBase", [](const char *text) { return texts(shared->evaluate(text)); },
     R"((char)255 => -1 0xff 0377 0b11111111 0xff 0377 0b11111111
     (short)0xAB => 171 0xab 0253 0b10101011 0x00ab 0000253 0b0000000010101011
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
    {"OnlyTheWantedKindIsOk", wantedOf, R"(1==1 => - - 1  1!=1 => - - 0  1  1&&1 => 1 1 -
     0x10+1 => 17 17 -  -1 => 18446744073709551615 -1 -  1.5 => 4609434218613702656 1 -
     "1"  1+  #  x  1/0 => - - -)"},
    {"MembersCastsAddressesAndCalls", valueOf,
     R"(a=1 => a; := s8 1; s8 1  a.b => a; member b; s8 1  a->b::c => a; member b/c; s8 1
     (long[2])-1 => cast long[Constant(2)] s8 -1; s8 -1  &a => ! addressof not implemented
     sizeof(a) => ! sizeof not implemented  f(a 1) => ! function calling not implemented)"},
    {"FirstRuleThatMatchesWins", tokensOf, R"(a<<=b => 8/10 a, 52/-3 <<=, 8/10 b
     x->y => 8/10 x, 20/10 ->, 8/10 y  +++ => 21/10 ++, 28/8 +  1.2.3 => 6/10 1.2, 19/10 ., 3/10 3
     1. => 3/10 1, 19/10 .  1e5 => 3/10 1, 8/10 e5  0b12 => 5/10 0b1, 3/10 2  0xg => 4/10 0x, 8/10 g
     @1- => 9/10 @1, 29/8 -  @ => 9/10 @  """a" => 7/10 "", 7/10 "a")"},
    {"LevelsNestFromLooseToTight", dumpOf,
     R"(a||b&&c|d^e&f => LogicalOr(a,LogicalAnd(b,BitOr(c,BitXor(d,BitAnd(e,f)))))
     f&g==h<i<<j+k*l => BitAnd(f,Eq(g,Lt(h,Lshift(i,Plus(j,Multiply(k,l))))))
     1>=2!=3 => Ne(Ge(1,2),3))"},
    {"EqualLevelsGroupToTheLeft", dumpOf, R"(1-2+3 => Plus(Minus(1,2),3)
     1*2/3 => Divide(Multiply(1,2),3)  a=b=c => =(=(a,b),c)  1+=2=3 => =(1,Plus(1,=(2,3))))"},
    {"CompoundAssignmentsUseTheirTargetTwice", valueOf,
     R"(a=6 => a; := s8 6; s8 6  a*=4 => a; a; := s8 24; s8 24  a/=5 => a; a; := s8 4; s8 4
     a%=3 => a; a; := s8 1; s8 1  a<<=4 => a; a; := s8 16; s8 16  a>>=2 => a; a; := s8 4; s8 4
     a&=6 => a; a; := s8 4; s8 4  a^=7 => a; a; := s8 3; s8 3  a|=8 => a; a; := s8 11; s8 11
     a-=1 => a; a; := s8 10; s8 10  a+=4 => a; a; := s8 14; s8 14  --a => a; a; := s8 13; s8 13)"},
    {"StepsAreCompoundAssignments", dumpOf,
     R"(a-- => =(a,Minus(a,1))  ++f() => =(f(),Plus(f(),1))  a=b++ => =(a,=(b,Plus(b,1))))"},
    {"PrimaryForms", wholeDumpOf, R"(0xffffffffffffffff => Constant(-1)  0b11 => Constant(3)
     "a\n" => Constant(a\n)  @r0 => Identifier(r0)  ::a => Identifier(a)
     sizeofx => Identifier(sizeofx)  size => Identifier(size)  1.5e3 => Constant(1.5)
     addressof("a.c",010) => addressof("a.c", 8)  -1 => NegateExpression(Constant(1)))"},
    {"UnaryForms", dumpOf, R"(-~!+1 => Negate(BitNot(LogicalNot(1)))
     -a[0] => Negate(LeftSquareBracket(a,0))  (-a)[0] => LeftSquareBracket(Negate(a),0)
     *p+1 => Plus(LeftSquareBracket(p,0),1)  &a&sizeof(b) => BitAnd(&a,sizeof(b)))"},
    {"CastsTakeAllThatFollows", dumpOf, R"((int)a + b => (int)Plus(a,b)
     2*(char)a=b => Multiply(2,(char)=(a,b))  ((int)1)+2 => Plus((int)1,2)  (foo)1 => foo)"},
    {"SimpleTypesEndAtTheWordThatCompletesThem", dumpOf,
     R"((char)1  (volatile signed char)1 => (char)1  (long unsigned)1 => (unsigned long)1
     (unsigned)1  (unsigned signed int)1 => (unsigned int)1  (long)1 => (long)1
     (const)1  (long int)1 => (int)1  (long unsigned long)1 => (unsigned long long)1
     (short int)1  (long long int)1  (int x)1  (const x)1 => ! ')' expected)"},
    {"TypeSuffixesAndNamesOfTypes", dumpOf,
     R"((char*)1 => (char*)1  (int*[1+x]*)1 => (int*[Plus(1,x)]*)1
     (int[4)1 => ! ']' expected  (int[])1 => ! expression expected
     (size_t*)1 => (size_t*)1  (const unsigned size_t)1 => (size_t)1
     (struct point)1 => (struct point)1  (point)1 => point)"},
    {"Structures", dumpOf,
     R"((struct { int a; char b : 3; size_t n; })1 => (int a;char b:3;size_t n;)1
     (struct {unsigned;long:010;short c:0;})1 => (unsigned int ;long :8;short c;)1
     (struct {}*)1 => (*)1  (struct line)1 => ! struct type not found
     (struct 1)1 => ! '{' expected  (struct { int a : x; })1 => ! integer must follow ':'
     (struct { foo a; })1  (struct { struct point p; })1  (struct { => ! struct parse error
     (struct { int a, b; })1 => ! ';' expected  (struct {int a;} b)1 => ! ')' expected)"},
    {"Registers", dumpOf,
     R"((register 32 EN 0 1 MODE 1 3 ;)x => (32 EN 0 1 MODE 1 3)x  (register 8;)x => (8)x
     (register 4294967295 "a b" 010 2;*)x => (-1 "a b" 8 2*)x  (register x)1 => ! size expected
     (register 8)1 => ! fieldname expected  (register 8 A 0)1 => ! bitsize expected
     (register 8 A)1  (register 8 A 0x1 1;)1 => ! bitoffset expected)"},
    {"SyntaxErrors", dumpOf, R"(1 +  )  1 + +  f(,)  f(1,  1,  a[  1 = => ! expression expected
     sizeof 1  addressof  addressof "a" => ! '(' expected
     (1  (1 2)  sizeof(1  addressof("a",1  (int 1 => ! ')' expected
     addressof(1  addressof(a => ! string expected  addressof("a" 1) => ! ',' expected
     addressof("a",0x1) => ! int expected  a[1  a[1) => ! expected ']'
     a.1  a->  ::1  a.::b => ! identifier expected  a::  ::a::1 => ! identifier expected after '::'
     1, 2  a ? 1 : 2  1 >>> 2  a >>>= 2  1 ? 2) => ! operator not supported
     1 ? #  1 #  (int #  f(# => ! unrecognised token: #)"},
    {"SignedArithmeticWraps", valueOf, R"(-7/2 => s8 -3  -7%2 => s8 -1  7%-2 => s8 1  7/-1 => s8 -7
     -9223372036854775807-2 => s8 9223372036854775807  9223372036854775807+1  4611686018427387904*2
     -9223372036854775808/-1 => s8 -9223372036854775808  12&10 => s8 8  12|10 => s8 14
     12^10 => s8 6  1&&2  0||2 => s8 1  -9223372036854775808%-1  1&&0  0||0 => s8 0)"},
    {"TheLeftKindDecides", valueOf,
     R"(1+1.9  1+(1==1)  2+"9"  3+-1.9 => s8 2  1.5+1  3.5-(1==1)  5.0/2  2.5+"9"  1.25*2 => f8 2.5
     2>1.5  (1==1)+255  (1==1)%2  (1==1)|"x"  (1==2)||1  (1==1)&&1  (1==1)&&(2==2) => b0 true
     (1==1)-257  (1==1)*256  (1==1)/2  (1==1)&2  (1==1)^1  (1==1)&&1.0  (1==1)&&256 => b0 false
     0+99999999999999999999.0 => s8 -9223372036854775808)"},
    {"Comparisons", valueOf,
     R"(1<2  2<=2  3>2  2>=2  2==2  1!=2  -1<0  (1==2)<(1==1)  0=="7"  "a"<"b"  ""==7 => b0 true
     2<2  3<=2  2>2  1>=2  1==2  2!=2  7=="7"  (1==1)!=(2==2)  "B">"a"  "7"==7 => b0 false)"},
    {"Shifts", valueOf,
     R"(1<<3 => s8 8  -8>>1 => s8 -4  1<<64  1>>0  2>>65 => s8 1  ((short)1)<<((char)0x1FF) => s2 0
     1<<-1 => s8 -9223372036854775808  ((unsigned long)0x8000000000000000)>>63 => u8 1
     1<<1.0  1>>(1==1)  "a"<<"a"  1>>((unsigned long)1) => ! integer shift value expected
     1.5<<1  (1==1)>>1 => ! can only shift numeric values)"},
    {"UnaryOperators", valueOf, R"(-5 => s8 -5  -1.5 => f8 -1.5  -(1==1) => s0 -1  -(1==2) => s0 0
     +(1==1) => b0 true  ~5 => s8 -6  +"a" => t0 a  !0  !-0.0  !(1==2) => b0 true
     !2  !0.5  !(1==1) => b0 false  -((unsigned)1) => u4 4294967295  ~((unsigned)1) => u4 4294967294
     ~1.0  ~(1==1)  -"a"  !"a" => ! unsupported unary num operation)"},
    {"DivisionByWhatConvertsToZero", valueOf,
     R"(7/0  7.0/0  7.0/-0.0  7/0.5  7/(1==2)  (1==1)/256  7%0  7%0.5  7%"3"  (1==1)%256
     ((unsigned long)7)/0.0  ((unsigned long)7)%(1==2)  7/((char)256) => ! divide by zero
     7/"0"  7.0/"0"  (1==1)/"0"  "7"/0  1.5%0 => ! unsupported binary numeric operation
     ((unsigned long)7)/0.5 => u8 0)"},
    {"KindsWithoutTheOperator", valueOf,
     R"(1.5%1  1.5&&1  1.5||1  1.5&1  1.5^1  1.5|1  "7"+1  "7"-1  "7"*1  "7"/1  "7"%1  "7"&&1  "7"|1
     x+1  x%1  x||1  1/x => ! unsupported binary numeric operation
     1.5<1  1.5<=1  1.5>1  1.5>=1  1.5==1  1.5!=1  x<1 => ! unsupported comparison operation)"},
    {"BothOperandsAreEvaluatedTheRightOneFirst", valueOf,
     R"(a=1 => a; := s8 1; s8 1  (1==2)&&a => a; b0 false  (1==1)||a => a; b0 true
     (a=1)-(b=2) => b; := s8 2; a; := s8 1; s8 -1)"},
    {"NamesBecomeObjectsAndOperatorsReadThem", valueOf, R"(a=5 => a; := s8 5; s8 5
     a+1  1+a => a; s8 6  -a => a; s8 -5  ~a => a; s8 -6  !a => a; b0 false  a==a => a; a; b0 true
     1<<a => a; s8 32  n::a=a => ::n/a; a; := s8 5; s8 5  ::a=1 => ::a; := s8 1; s8 1
     @r1=1.5 => %r1; := f8 1.5; f8 1.5)"},
    {"AssignmentsEvaluateTheirTargetFirst", valueOf, R"(a=b=3 => a; b; := v2; := s8 3; s8 3
     a-=1*=2 => a; a; := s8 2; a; a; := s8 1; := s8 2; s8 2  a+1=2 => ! bad expression type)"},
    {"IndexesAreNumbers", valueOf,
     R"(i=2 => i; := s8 2; s8 2  i[i] => i; i; index 2; s8 2  *i => i; index 0; s8 2
     i[-1]  i[-1.9] => i; index -1; s8 2  i[1.9]  i[1==1]  i[4294967297] => i; index 1; s8 2
     i["a"] => ! bad index type  i[x] => ! bad index type)"},
    {"WhatIsWithinTheBoundsHasAValue", lifeOf, R"(`1000 (`1`1000 )`  `2000 - `1 => s8 1
     `1000 1+2*(`0`1000 )` => s8 -1  1`1000 +2*3-4/5%6<<0>>0&7|8^9&&1||0==1!=0<3<=4>5>=6` => s8 1
     1`999999 +1` => s8 1000000  1`999999 <1`  "`100000 a`"==1 => b0 false)"},
    {"EndlessNestingIsRefused", lifeOf, R"(`100000 (`1  `100000 - `1  `100000 + `1  `100000 !`1
     `100000 ~`1  `100000 *`1  `100000 & `1  `100000 ++`1  `100000 (int)`1  `100000 x[`1
     `100000 f(`1  `100000 sizeof(`1  `100000 (int[`1  `100000 1+1*(`1  `100000 -(1+`1
     `100000 (1,1*=1=1?1||1&&1|1^1&(`1 => ! expression nested too deeply)"},
    {"ChainsThatAreNoOperatorsAreBounded", lifeOf,
     R"(x`3999 [0]`  x`3999 .a`  x`3999 ()`  x`3999 =1` => ! x symbol not found
     x`4000 [0]`  x`4000 .a`  x`4000 ()`  x`4000 =1` => ! expression nested too deeply
     (int`3998 *`)1  (int`3998 [1]`)1 => ! cannot cast
     (int`4000 *`)1  (int`4000 [1]`)1 => ! expression nested too deeply)"},
    {"TargetsThatDoubleAreRefused", lifeOf, R"(x`10 ++` => ! x symbol not found
     x`100 ++`  x`100 +=1`  `100 --`x  `1000000 x``10 ++` => ! expression too large)"},
    {"TextThatWouldTakeTooMuchMemoryIsRefused", lifeOf, R"(1`2100000 +1`  f(`2100000 1 `)
     a`2100000 ::a`  (struct {`2100000 int;`})1  (register 8 `2100000 A 0 1 `;)1
     "`2100000 0123456789abcdef0123456789abcdef`" => ! expression too large)"},
};

using ExprClaims = testing::TestWithParam<Claim>;

}  // namespace

TEST_P(ExprClaims, Hold)
{
    RecordingParser parser;
    shared = &parser;
    const QRegularExpression gap(QStringLiteral("  +|\n *"));
    std::vector<std::string> texts;
    for (const QString &row : QString::fromLatin1(GetParam().table).split(gap)) {
        const std::string each = row.toLatin1().toStdString();
        const std::size_t arrow = std::min(each.find(" => "), each.size());
        texts.push_back(each.substr(0, arrow));
        for (; arrow < each.size() && !texts.empty(); texts.pop_back()) {
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

TEST(ExprLexer, AddedRulesComeLastAndInvalidOnesNever)
{
    Lexer lexer;
    for (const char *invalid : {"a|b", "(#)", "#?", "[#", "#\\", "*#", "[]#", "x*"})
        lexer.addToken(invalid, 99, 10);
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
    EXPECT_EQ(parser.parse(""), nullptr);
    EXPECT_EQ(describe(parser.evaluate("")), "v2");
    EXPECT_EQ(describe(first->evaluate()), "s8 3");
}

TEST(ExprParser, PositionIsBehindTheTokenThatEndedReading)
{
    for (const auto &[text, behind] : {std::pair("1", 1), {"1\t", 2}, {"1 23 4", 4}, {"", 0}}) {
        qsizetype position = -1;
        SimpleExpressionParser().parse(text, &position);
        EXPECT_EQ(position, behind) << text;
    }
}

TEST(ExprValues, WhatTextAloneDoesNotShow)
{
    SimpleExpressionParser parser;
    const Value nan = Value::fromDouble(std::nan(""));
    EXPECT_EQ(views(nan), "-9223372036854775808 7ff8000000000000 nan");
    EXPECT_EQ(Value::fromDouble(1e300, 4).toUInt64(), 0x7F800000U);
    EXPECT_EQ(describe(parser.parse("*p")->asBinary()->right->evaluate()), "u2 0");
    EXPECT_EQ(describe(Value::fromDouble(-HUGE_VAL)), "f8 Inf");
    EXPECT_EQ(toString(Value::fromDouble(1e300), 10, false, false, "%.1f").size(), 303);
    Value narrow = Value::fromInt64(0xAB, 2);
    narrow.bitWidth = 9;
    EXPECT_EQ(texts(narrow), "171 0xab 0253 0b10101011 0x0ab 0253 0b010101011");
    EXPECT_EQ(describe(nan), "f8 NaN");
}

#include "expr_support.h"

#include <limits>
#include <tuple>

namespace
{

constexpr qint64 least = std::numeric_limits<qint64>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

class Symbol : public ExpressionObject
{
public:
    QString text() override { return QStringLiteral("a symbol"); }
    ExpressionValue value() override { return ExpressionValue::fromInt64(5, 4); }
};

}  // namespace

TEST(ExprValues, ViewsOfIntegersFollowTheirSize)
{
    const std::tuple<quint64, qint32, qint64, quint64> cases[] = {
        {0x1FF, 1, -1, 255},
        {0x17F, 1, 127, 127},
        {0x18000, 2, -32768, 32768},
        {0x1FFFFFFFF, 4, -1, 0xFFFFFFFF},
        {0x8000000000000000, 8, least, 0x8000000000000000},
        {0x1FFFFFFFF, 0, 0x1FFFFFFFF, 0x1FFFFFFFF}};
    for (const auto &[payload, size, asSigned, asUnsigned] : cases) {
        for (const ExpressionValue::Kind kind :
             {ExpressionValue::Signed, ExpressionValue::Unsigned}) {
            ExpressionValue value = ExpressionValue::fromUInt64(payload, size);
            value.kind = kind;
            EXPECT_EQ(value.toInt64(), asSigned) << payload;
            EXPECT_EQ(value.toUInt64(), asUnsigned) << payload;
            EXPECT_EQ(value.toDouble(), kind == ExpressionValue::Signed
                                            ? static_cast<double>(asSigned)
                                            : static_cast<double>(asUnsigned));
        }
    }
}

TEST(ExprValues, FloatingValuesTruncateOrShowTheirBits)
{
    const std::tuple<double, qint64, quint64> cases[] = {
        {1.0, 1, 4607182418800017408},
        {-1.9, -1, 0xBFFE666666666666},
        {9223372036854774784.0, 9223372036854774784, 0x43DFFFFFFFFFFFFF},
        {9223372036854775808.0, least, 0x43E0000000000000},
        {-9223372036854775808.0, least, 0xC3E0000000000000},
        {-1e300, least, 0xFE37E43C8800759C},
        {infinity, least, 0x7FF0000000000000},
        {notANumber, least, 0x7FF8000000000000}};
    for (const auto &[number, truncated, bits] : cases) {
        EXPECT_EQ(ExpressionValue::fromDouble(number).toInt64(), truncated) << number;
        EXPECT_EQ(ExpressionValue::fromDouble(number).toUInt64(), bits) << number;
    }
    EXPECT_EQ(ExpressionValue::fromDouble(1.5, 4).toUInt64(), 0x3FC00000U);
    EXPECT_EQ(ExpressionValue::fromDouble(1e300, 4).toUInt64(), 0x7F800000U);
    EXPECT_EQ(ExpressionValue::fromDouble(1.5, 4).toInt64(), 1);
}

TEST(ExprValues, OtherKindsReadAsZeroOrOne)
{
    Symbol symbol;
    for (const auto &[value, number] :
         {std::pair(ExpressionValue::fromBool(true), 1),
          std::pair(ExpressionValue::fromBool(false), 0),
          std::pair(ExpressionValue::fromText(QStringLiteral("7")), 0),
          std::pair(ExpressionValue::fromObject(&symbol), 0), std::pair(ExpressionValue(), 0)}) {
        EXPECT_EQ(value.toInt64(), number) << describe(value);
        EXPECT_EQ(value.toUInt64(), static_cast<quint64>(number)) << describe(value);
        EXPECT_EQ(value.toDouble(), number) << describe(value);
        EXPECT_EQ(value.firstByte(), number) << describe(value);
    }
}

TEST(ExprValues, ObjectsShareOneHolderAndResolveToTheirValue)
{
    Symbol symbol;
    ExpressionValue first = ExpressionValue::fromObject(&symbol);
    EXPECT_EQ(first.object.count(), 1);
    {
        const ExpressionValue copy = first;
        EXPECT_EQ(copy.object.get(), &symbol);
        EXPECT_EQ(first.object.count(), 2);
    }
    EXPECT_EQ(first.object.count(), 1);
    const ExpressionValue moved = std::move(first);
    EXPECT_EQ(moved.object.count(), 1);

    ExpressionValue resolved = moved;
    resolved.resolve();
    EXPECT_EQ(describe(moved), "object/0 a symbol");
    EXPECT_EQ(describe(resolved), "signed/4 5");
    EXPECT_EQ(moved.object.count(), 1);
    resolved.resolve();
    EXPECT_EQ(describe(resolved), "signed/4 5");
}

TEST(ExprValues, DecimalText)
{
    const auto narrow = ExpressionValue::fromInt64(0xFF, 1);
    EXPECT_EQ(toString(narrow).toStdString(), "-1");
    EXPECT_EQ(toString(ExpressionValue::fromUInt64(0x1FF, 1)).toStdString(), "255");
    EXPECT_EQ(toString(ExpressionValue::fromBool(true), 16).toStdString(), "true");
    EXPECT_EQ(toString(ExpressionValue(), 16).toStdString(), "");
    for (const auto &[value, text] :
         {std::pair(0.5, "0.5"), std::pair(1e300, "1e+300"), std::pair(100000.0, "100000"),
          std::pair(1234567.0, "1.23457e+06"), std::pair(-0.0, "-0"), std::pair(-infinity, "Inf"),
          std::pair(notANumber, "NaN")})
        EXPECT_EQ(toString(ExpressionValue::fromDouble(value)).toStdString(), text);
    EXPECT_EQ(toString(ExpressionValue::fromDouble(1e300), 10, false, false, "%.1f").size(), 303);
}

TEST(ExprValues, TextInOtherBasesAndAsCharacter)
{
    ExpressionValue value = ExpressionValue::fromInt64(0xAB, 2);
    EXPECT_EQ(toString(value, 16).toStdString(), "0xab");
    EXPECT_EQ(toString(value, 16, true).toStdString(), "0x00ab");
    EXPECT_EQ(toString(value, 8).toStdString(), "0253");
    EXPECT_EQ(toString(value, 2).toStdString(), "0b10101011");
    value.bitWidth = 9;
    EXPECT_EQ(toString(value, 16, true).toStdString(), "0x0ab");
    EXPECT_EQ(toString(value, 2, true).toStdString(), "0b010101011");
    EXPECT_EQ(toString(ExpressionValue::fromDouble(1.0), 16).toStdString(), "0x3ff0000000000000");

    const std::pair<int, const char *> characters[] = {
        {65, "A"}, {32, " "}, {126, "~"}, {127, "\\u007f"}, {31, "\\u001f"}, {0x1FFFF, "\\uffff"}};
    for (const auto &[code, text] : characters)
        EXPECT_EQ(toString(ExpressionValue::fromInt64(code), 10, false, true).toStdString(), text);
}

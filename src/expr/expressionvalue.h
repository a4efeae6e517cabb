#pragma once

#include <bit>
#include <cassert>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct ExpressionValue;

/// Something that has a value, as a parser that resolves names supplies it: a symbol, a register,
/// a place in memory. It belongs to that parser and must outlive every value that refers to it.
class ExpressionObject
{
public:
    virtual std::string text() = 0;
    virtual ExpressionValue value() = 0;

protected:
    ~ExpressionObject() = default;
};

/// A counted reference to a holder of an object. The last one frees the holder, never the object.
class ObjectReference
{
public:
    ObjectReference() = default;
    /// The first reference to a new holder of \a object.
    explicit ObjectReference(ExpressionObject *object) : holder(object, [](ExpressionObject *) {})
    {
    }

    /// Null for a reference to nothing.
    ExpressionObject *get() const { return holder.get(); }
    /// References that share the holder, this one included.
    int count() const { return static_cast<int>(holder.use_count()); }

private:
    std::shared_ptr<ExpressionObject> holder;
};

/// As much of a value as most operators look at: its kind, and what fits into 8 bytes. Reading
/// never fails; what a kind cannot give reads as 0.
struct PlainValue {
    enum Kind : std::int32_t {
        Boolean = 0,
        Signed = 1,
        Unsigned = 2,
        String = 3,
        Object = 4,
        Floating = 5,
        Void = 6,  ///< the value of an empty text
    };

    Kind kind = Void;
    /// Width of the value's type in bytes: 1, 2, 4 or 8 for integers, of which the low bytes of the
    /// payload count; any other width counts as 8. 4 or 8 for floating values. 0 for booleans and
    /// strings.
    std::int32_t size = 2;
    /// By kind: a boolean in the lowest byte, a 64-bit integer, or the IEEE 754 bits of a double
    /// (also where size is 4). 0 for the other kinds.
    std::uint64_t payload = 0;

    bool isBoolean() const { return kind == Boolean; }
    bool isInteger() const { return kind == Signed || kind == Unsigned; }
    bool isNumeric() const { return isInteger() || kind == Floating; }
    bool isObject() const { return kind == Object; }

    /// The lowest byte of the payload, whatever the kind.
    std::uint8_t firstByte() const { return static_cast<std::uint8_t>(payload); }
    bool toBool() const { return firstByte() != 0; }
    /// Integers sign-extended from their size, floating values truncated toward zero. A floating
    /// value that no 64-bit integer holds, and one that is not a number, gives -2^63.
    std::int64_t toInt64() const;
    /// Integers zero-extended from their size. For a floating value its bit pattern, in single
    /// precision where size is 4: 1.5 gives 0x3FF8000000000000.
    std::uint64_t toUInt64() const;
    /// The number itself; integers are read as their kind says.
    double toDouble() const;

private:
    /// The high bits of the payload that do not count in an integer of this size.
    int unusedBits() const { return size == 1 || size == 2 || size == 4 ? 64 - 8 * size : 0; }
};

/// What an evaluation produces: a value, with the text or the object where its kind has one.
struct ExpressionValue : PlainValue {
    std::string text;            ///< kind String only
    ObjectReference object;      ///< kind Object only
    std::uint32_t bitWidth = 0;  ///< bits where they are fewer than size has; 0: all. For display.

    /// The void value.
    ExpressionValue() = default;
    explicit ExpressionValue(const PlainValue &plain) : PlainValue(plain) {}
    static ExpressionValue fromBool(bool value) { return ExpressionValue({Boolean, 0, value}); }
    static ExpressionValue fromInt64(std::int64_t value, std::int32_t size = 8)
    {
        return ExpressionValue({Signed, size, static_cast<std::uint64_t>(value)});
    }
    static ExpressionValue fromUInt64(std::uint64_t value, std::int32_t size = 8)
    {
        return ExpressionValue({Unsigned, size, value});
    }
    static ExpressionValue fromDouble(double value, std::int32_t size = 8)
    {
        return ExpressionValue({Floating, size, std::bit_cast<std::uint64_t>(value)});
    }
    static ExpressionValue fromText(std::string_view text)
    {
        ExpressionValue value({String, 0, 0});
        value.text = text;
        return value;
    }
    /// \a object must not be null.
    static ExpressionValue fromObject(ExpressionObject *object)
    {
        assert(object);
        ExpressionValue value({Object, 0, 0});
        value.object = ObjectReference(object);
        return value;
    }

    /// Replaces an object by its current value; leaves other values alone.
    void resolve()
    {
        if (isObject())
            *this = object.get()->value();
    }
};

#pragma once

#include <QString>

#include <utility>

struct ExpressionValue;

/// Something that has a value, as a parser that resolves names supplies it: a symbol, a register,
/// a place in memory. It belongs to that parser and must outlive every value that refers to it.
class ExpressionObject
{
public:
    virtual QString text() = 0;
    virtual ExpressionValue value() = 0;

protected:
    ~ExpressionObject() = default;
};

/// A counted reference to a holder of an object. The last reference frees the holder, never the
/// object. The count is not atomic: one thread at a time.
class ObjectReference
{
public:
    ObjectReference() = default;
    /// The first reference to a new holder of \a object.
    explicit ObjectReference(ExpressionObject *object) : holder(new Holder{1, object}) {}
    ObjectReference(const ObjectReference &other) : holder(other.holder)
    {
        if (holder)
            ++holder->references;
    }
    ObjectReference(ObjectReference &&other) noexcept : holder(std::exchange(other.holder, nullptr))
    {
    }
    ObjectReference &operator=(ObjectReference other) noexcept
    {
        std::swap(holder, other.holder);
        return *this;
    }
    ~ObjectReference()
    {
        if (holder && --holder->references == 0)
            delete holder;
    }

    /// Null for a reference to nothing.
    ExpressionObject *get() const { return holder ? holder->object : nullptr; }
    /// References that share the holder, this one included.
    int count() const { return holder ? holder->references : 0; }

private:
    struct Holder {
        int references;
        ExpressionObject *object;
    };
    Holder *holder = nullptr;
};

/// What an evaluation produces: a value and the kind that says how to read it. Reading never
/// fails; what a kind cannot give reads as 0 or as an empty text.
struct ExpressionValue {
    enum Kind : qint32 {
        Boolean = 0,
        Signed = 1,
        Unsigned = 2,
        String = 3,
        Object = 4,
        Floating = 5,
        Void = 6,  ///< the value of an empty text
    };

    qint32 kind = Void;
    /// Width of the value's type in bytes: 1, 2, 4 or 8 for integers, of which the low bytes of the
    /// payload count; any other width counts as 8. 4 or 8 for floating values. 0 for booleans and
    /// strings.
    qint32 size = 2;
    /// By kind: a boolean in the lowest byte, a 64-bit integer, or the IEEE 754 bits of a double
    /// (also where size is 4). 0 for the other kinds.
    quint64 payload = 0;
    QString text;            ///< kind String only
    ObjectReference object;  ///< kind Object only
    quint32 bitWidth = 0;    ///< bits where they are fewer than size has; 0: all. Only for display.

    /// The void value.
    ExpressionValue() = default;
    static ExpressionValue fromBool(bool value) { return {Boolean, 0, value ? 1U : 0U}; }
    static ExpressionValue fromInt64(qint64 value, qint32 size = 8)
    {
        return {Signed, size, static_cast<quint64>(value)};
    }
    static ExpressionValue fromUInt64(quint64 value, qint32 size = 8)
    {
        return {Unsigned, size, value};
    }
    static ExpressionValue fromDouble(double value, qint32 size = 8);
    static ExpressionValue fromText(const QString &text);
    static ExpressionValue fromObject(ExpressionObject *object);

    bool isBoolean() const { return kind == Boolean; }
    bool isNumeric() const { return kind == Signed || kind == Unsigned || kind == Floating; }
    bool isObject() const { return kind == Object; }

    /// The lowest byte of the payload, whatever the kind.
    quint8 firstByte() const { return static_cast<quint8>(payload); }
    bool toBool() const { return firstByte() != 0; }
    /// Integers sign-extended from their size, floating values truncated toward zero. A floating
    /// value that no 64-bit integer holds, and one that is not a number, gives -2^63.
    qint64 toInt64() const;
    /// Integers zero-extended from their size. For a floating value its bit pattern, in single
    /// precision where size is 4: 1.5 gives 0x3FF8000000000000.
    quint64 toUInt64() const;
    /// The number itself; integers are read as their kind says.
    double toDouble() const;

    /// Replaces an object by its current value; leaves other values alone.
    void resolve();

private:
    ExpressionValue(Kind valueKind, qint32 valueSize, quint64 bits)
        : kind(valueKind),
          size(valueSize),
          payload(bits)
    {
    }
};

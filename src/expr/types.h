#pragma once

#include "expression.h"

#include <algorithm>
#include <vector>

/// What a cast converts to, as written in the text. A description owns what it is made of and does
/// not change once it is read.
class BaseType
{
public:
    /// The type as text: "unsigned long*", "int[Constant(4)]".
    std::string name() const
    {
        std::string text;
        nameTo(text);
        return text;
    }
    /// Appends the same.
    virtual void nameTo(std::string &text) const = 0;
    virtual ~BaseType() = default;

    /// How many calls deep naming and releasing the type go at most.
    int height() const { return levels; }

    BaseType(const BaseType &) = delete;
    BaseType &operator=(const BaseType &) = delete;

protected:
    explicit BaseType(int height = 1) : levels(height) {}

private:
    int levels;
};

using OwnedType = std::unique_ptr<BaseType>;

class SimpleType : public BaseType
{
public:
    enum Code : std::int32_t { Char = 0, Short = 1, Int = 2, Long = 3, LongLong = 4 };

    SimpleType(Code typeCode, bool withoutSign) : code(typeCode), isUnsigned(withoutSign) {}
    void nameTo(std::string &text) const override
    {
        static constexpr const char *names[] = {"char", "short", "int", "long", "long long"};
        text.append(isUnsigned ? "unsigned " : "").append(names[code]);
    }

    Code code;
    bool isUnsigned;
};

/// A type that the parser knows by name; structures have the name "struct " and their tag.
class UserType : public BaseType
{
public:
    explicit UserType(std::string name) : typeName(std::move(name)) {}
    void nameTo(std::string &text) const override { text += typeName; }

    std::string typeName;
};

class StructType : public BaseType
{
public:
    struct Field {
        std::string name;  ///< may be empty
        OwnedType type;
        std::int32_t bitCount = 0;  ///< 0: not a bit field
    };

    /// The fields are simple and user types, which are of height 1.
    explicit StructType(std::vector<Field> structFields)
        : BaseType(2),
          fields(std::move(structFields))
    {
    }
    void nameTo(std::string &text) const override
    {
        for (const Field &field : fields) {
            field.type->nameTo(text);
            text.append(" ").append(field.name);
            if (field.bitCount != 0)
                text.append(":").append(std::to_string(field.bitCount));
            text += ';';
        }
    }

    std::vector<Field> fields;
};

/// The layout of a register. Sizes and offsets count bits.
class RegisterType : public BaseType
{
public:
    struct Field {
        std::string name;
        std::int32_t bitOffset = 0;
        std::int32_t bitSize = 0;
    };

    RegisterType(std::int32_t registerSize, std::vector<Field> registerFields)
        : size(registerSize),
          fields(std::move(registerFields))
    {
    }
    void nameTo(std::string &text) const override
    {
        text += std::to_string(size);
        for (const Field &field : fields) {
            text.append(" ").append(field.name);
            text.append(" ").append(std::to_string(field.bitOffset));
            text.append(" ").append(std::to_string(field.bitSize));
        }
    }

    std::int32_t size;
    std::vector<Field> fields;
};

class ArrayType : public BaseType
{
public:
    ArrayType(OwnedType element, OwnedExpression count)
        : BaseType(1 + std::max(element->height(), count->height())),
          elementType(std::move(element)),
          elementCount(std::move(count))
    {
    }
    void nameTo(std::string &text) const override
    {
        elementType->nameTo(text);
        elementCount->dumpTo(text += '[');
        text += ']';
    }

    OwnedType elementType;
    OwnedExpression elementCount;  ///< never evaluated here
};

class PointerType : public BaseType
{
public:
    explicit PointerType(OwnedType target)
        : BaseType(1 + target->height()),
          targetType(std::move(target))
    {
    }
    void nameTo(std::string &text) const override
    {
        targetType->nameTo(text);
        text += '*';
    }

    OwnedType targetType;
};

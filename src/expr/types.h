#pragma once

#include "expression.h"

#include <memory>
#include <vector>

/// What a cast converts to, as written in the text. A description owns the descriptions and
/// expressions that it is made of and does not change once it is read.
class BaseType
{
public:
    /// The type as text: "unsigned long*", "int[Constant(4)]".
    virtual QString name() const = 0;
    virtual ~BaseType() = default;

    /// Appends what name() returns.
    virtual void nameTo(QString &text) const = 0;

    /// How many calls deep naming and releasing the type go at most.
    int height() const { return levels; }

    BaseType(const BaseType &) = delete;
    BaseType(BaseType &&) = delete;
    BaseType &operator=(const BaseType &) = delete;
    BaseType &operator=(BaseType &&) = delete;

protected:
    explicit BaseType(int height) : levels(height) {}
    QString named() const;

private:
    int levels;
};

class SimpleType : public BaseType
{
public:
    enum Code : qint32 { Char = 0, Short = 1, Int = 2, Long = 3, LongLong = 4 };

    SimpleType(Code typeCode, bool withoutSign)
        : BaseType(1),
          code(typeCode),
          isUnsigned(withoutSign)
    {
    }
    QString name() const override { return named(); }
    void nameTo(QString &text) const override;

    Code code;
    bool isUnsigned;
};

/// A type that the parser knows by name; structures have the name "struct " and their tag.
class UserType : public BaseType
{
public:
    explicit UserType(QString name) : BaseType(1), typeName(std::move(name)) {}
    QString name() const override { return named(); }
    void nameTo(QString &text) const override;

    QString typeName;
};

class StructType : public BaseType
{
public:
    struct Field {
        QString name;  ///< may be empty
        std::unique_ptr<BaseType> type;
        qint32 bitCount = 0;  ///< 0: not a bit field
    };

    /// The fields are simple and user types, which are of height 1.
    explicit StructType(std::vector<Field> structFields)
        : BaseType(2),
          fields(std::move(structFields))
    {
    }
    QString name() const override { return named(); }
    void nameTo(QString &text) const override;

    std::vector<Field> fields;
};

/// The layout of a register. Sizes and offsets count bits.
class RegisterType : public BaseType
{
public:
    struct Field {
        QString name;
        qint32 bitOffset = 0;
        qint32 bitSize = 0;
    };

    RegisterType(qint32 registerSize, std::vector<Field> registerFields)
        : BaseType(1),
          size(registerSize),
          fields(std::move(registerFields))
    {
    }
    QString name() const override { return named(); }
    void nameTo(QString &text) const override;

    qint32 size;
    std::vector<Field> fields;
};

class ArrayType : public BaseType
{
public:
    ArrayType(std::unique_ptr<BaseType> element, std::unique_ptr<Expression> count);
    QString name() const override { return named(); }
    void nameTo(QString &text) const override;

    std::unique_ptr<BaseType> elementType;
    std::unique_ptr<Expression> elementCount;  ///< never evaluated here
};

class PointerType : public BaseType
{
public:
    explicit PointerType(std::unique_ptr<BaseType> target);
    QString name() const override { return named(); }
    void nameTo(QString &text) const override;

    std::unique_ptr<BaseType> targetType;
};

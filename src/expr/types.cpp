#include "types.h"

using namespace Qt::StringLiterals;

QString BaseType::named() const
{
    QString text;
    nameTo(text);
    return text;
}

void SimpleType::nameTo(QString &text) const
{
    static constexpr QLatin1StringView names[] = {"char"_L1, "short"_L1, "int"_L1, "long"_L1,
                                                  "long long"_L1};
    if (isUnsigned)
        text += "unsigned "_L1;
    text += names[code];
}

void UserType::nameTo(QString &text) const
{
    text += typeName;
}

void StructType::nameTo(QString &text) const
{
    for (const Field &field : fields) {
        field.type->nameTo(text);
        text += u' ' + field.name;
        if (field.bitCount != 0)
            text += u':' + QString::number(field.bitCount);
        text += u';';
    }
}

void RegisterType::nameTo(QString &text) const
{
    text += QString::number(size);
    for (const Field &field : fields) {
        text += u' ' + field.name + u' ' + QString::number(field.bitOffset) + u' ' +
                QString::number(field.bitSize);
    }
}

ArrayType::ArrayType(std::unique_ptr<BaseType> element, std::unique_ptr<Expression> count)
    : BaseType(1 + qMax(element->height(), count->height())),
      elementType(std::move(element)),
      elementCount(std::move(count))
{
}

void ArrayType::nameTo(QString &text) const
{
    elementType->nameTo(text);
    text += u'[';
    elementCount->dumpTo(text);
    text += u']';
}

PointerType::PointerType(std::unique_ptr<BaseType> target)
    : BaseType(1 + target->height()),
      targetType(std::move(target))
{
}

void PointerType::nameTo(QString &text) const
{
    targetType->nameTo(text);
    text += u'*';
}

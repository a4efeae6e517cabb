#include "types.h"

std::string BaseType::name() const
{
    std::string text;
    nameTo(text);
    return text;
}

void SimpleType::nameTo(std::string &text) const
{
    static constexpr const char *names[] = {"char", "short", "int", "long", "long long"};
    text.append(isUnsigned ? "unsigned " : "").append(names[code]);
}

void StructType::nameTo(std::string &text) const
{
    for (const Field &field : fields) {
        field.type->nameTo(text);
        text.append(" ").append(field.name);
        if (field.bitCount != 0)
            text.append(":").append(std::to_string(field.bitCount));
        text += ';';
    }
}

void RegisterType::nameTo(std::string &text) const
{
    text += std::to_string(size);
    for (const Field &field : fields) {
        text.append(" ").append(field.name);
        text.append(" ").append(std::to_string(field.bitOffset));
        text.append(" ").append(std::to_string(field.bitSize));
    }
}

void ArrayType::nameTo(std::string &text) const
{
    elementType->nameTo(text);
    text += '[';
    elementCount->dumpTo(text);
    text += ']';
}

void PointerType::nameTo(std::string &text) const
{
    targetType->nameTo(text);
    text += '*';
}

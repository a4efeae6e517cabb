#pragma once

#include "types.h"

class TreeParser;
class Lexer;

/// Reads the type of a cast. Its tokens and bounds are those of a reading that is under way, whose
/// parser also reads the numbers of elements of arrays and knows the names of types.
class TypeReader
{
public:
    /// \a underWay must outlive the reader.
    explicit TypeReader(TreeParser *underWay);

    /// The type that begins at the current token, behind an opening parenthesis; null, with no token
    /// taken, where there is none.
    std::unique_ptr<BaseType> readType();

private:
    using Type = std::unique_ptr<BaseType>;

    Type readSuffixes(Type type);
    Type readSimpleType();
    Type readStruct();
    Type readFields();
    StructType::Field readField();
    Type readRegister();
    RegisterType::Field readRegisterField();
    std::int32_t takeNumber(const char *message);
    std::string takeToken();

    TreeParser &reading;
    Lexer &lexer;
};

#include "typereader.h"

#include "expressionparser.h"
#include "parserexception.h"
#include "treeparser.h"

#include <algorithm>
#include <iterator>

namespace
{

enum class Role {
    Names,   ///< completes the type
    Widens,  ///< "long", which twice is complete
    Unsigned,
    Nothing,  ///< belongs to a type and changes nothing
};

struct TypeWord {
    const char *word;
    Role role;
    SimpleType::Code code;  ///< of a type that this word completes
};

constexpr TypeWord typeWords[] = {
    {"char", Role::Names, SimpleType::Char},       {"short", Role::Names, SimpleType::Short},
    {"int", Role::Names, SimpleType::Int},         {"long", Role::Widens, SimpleType::LongLong},
    {"unsigned", Role::Unsigned, SimpleType::Int}, {"signed", Role::Nothing, SimpleType::Int},
    {"const", Role::Nothing, SimpleType::Int},     {"volatile", Role::Nothing, SimpleType::Int},
};

const TypeWord *findTypeWord(const Lexer &lexer)
{
    const auto *word =
        std::find_if(std::begin(typeWords), std::end(typeWords),
                     [&lexer](const TypeWord &each) { return lexer.tokenIs(each.word); });
    return word == std::end(typeWords) ? nullptr : word;
}

}  // namespace

TypeReader::TypeReader(TreeParser *underWay) : reading(*underWay), lexer(underWay->lexer) {}

/// type = ( simple | struct | register ) { "*" | "[" expression "]" }
std::unique_ptr<BaseType> TypeReader::readType()
{
    if (lexer.kind() != Token::Identifier)
        return nullptr;
    if (lexer.tokenIs("struct"))
        return readSuffixes(readStruct());
    if (lexer.tokenIs("register"))
        return readSuffixes(readRegister());
    Type type = readSimpleType();
    return type ? readSuffixes(std::move(type)) : nullptr;
}

TypeReader::Type TypeReader::readSuffixes(Type type)
{
    for (;;) {
        if (lexer.kind() == Token::Star) {
            lexer.next();
            type = reading.make<PointerType>(std::move(type));
        } else if (lexer.kind() == Token::LeftBracket) {
            lexer.next();
            std::unique_ptr<Expression> count = reading.parseExpression();
            reading.advancePast(Token::RightBracket, "']' expected");
            type = reading.make<ArrayType>(std::move(type), std::move(count));
        } else {
            return type;
        }
    }
}

/// simple = { word of a type } [ name of a type ]
/// Returns as soon as the type is complete: in "short int" the "int" is left. Null, with no token
/// taken, where the first one is no word of a type.
TypeReader::Type TypeReader::readSimpleType()
{
    bool isType = false;
    bool isLong = false;
    bool isUnsigned = false;
    while (lexer.kind() == Token::Identifier) {
        const TypeWord *word = findTypeWord(lexer);
        if (!word) {
            const std::string name = reading.takeText(lexer.tokenBytes());
            if (!reading.parser.isTypeName(name))
                break;
            lexer.next();
            return reading.make<UserType>(name);
        }
        lexer.next();
        if (word->role == Role::Names || (word->role == Role::Widens && isLong))
            return reading.make<SimpleType>(word->code, isUnsigned);
        isType = true;
        isLong = isLong || word->role == Role::Widens;
        isUnsigned = isUnsigned || word->role == Role::Unsigned;
    }
    if (!isType)
        return nullptr;
    return reading.make<SimpleType>(isLong ? SimpleType::Long : SimpleType::Int, isUnsigned);
}

/// struct = "struct" ( identifier | fields )
TypeReader::Type TypeReader::readStruct()
{
    lexer.next();
    if (lexer.kind() != Token::Identifier)
        return readFields();
    std::string name = "struct ";
    name += reading.takeText(lexer.tokenBytes());
    if (!reading.parser.isTypeName(name))
        throw ParserException("struct type not found");
    lexer.next();
    return reading.make<UserType>(std::move(name));
}

/// fields = "{" { field } "}"
TypeReader::Type TypeReader::readFields()
{
    reading.advancePast(Token::LeftBrace, "'{' expected");
    std::vector<StructType::Field> fields;
    while (lexer.kind() != Token::RightBrace)
        fields.push_back(readField());
    lexer.next();
    return reading.make<StructType>(std::move(fields));
}

/// field = simple [ identifier ] [ ":" decimal ] ";"
StructType::Field TypeReader::readField()
{
    StructType::Field field;
    field.type = readSimpleType();
    if (!field.type)
        throw ParserException("struct parse error");
    if (lexer.kind() == Token::Identifier)
        field.name = takeToken();
    if (lexer.kind() == Token::Colon) {
        lexer.next();
        field.bitCount = takeNumber("integer must follow ':'");
    }
    reading.advancePast(Token::Semicolon, "';' expected");
    return field;
}

/// register = "register" decimal { register field } ";"
TypeReader::Type TypeReader::readRegister()
{
    lexer.next();
    const std::int32_t size = takeNumber("size expected");
    std::vector<RegisterType::Field> fields;
    while (lexer.kind() != Token::Semicolon)
        fields.push_back(readRegisterField());
    lexer.next();
    return reading.make<RegisterType>(size, std::move(fields));
}

/// register field = ( identifier | string ) decimal decimal
RegisterType::Field TypeReader::readRegisterField()
{
    if (lexer.kind() != Token::Identifier && lexer.kind() != Token::String)
        throw ParserException("fieldname expected");
    reading.charge(1);
    RegisterType::Field field;
    field.name = takeToken();  // a string keeps its quotes
    field.bitOffset = takeNumber("bitoffset expected");
    field.bitSize = takeNumber("bitsize expected");
    return field;
}

std::int32_t TypeReader::takeNumber(const char *message)
{
    reading.require(Token::DecimalNumber, message);
    const auto number = static_cast<std::int32_t>(lexer.tokenToInt64());
    lexer.next();
    return number;
}

std::string TypeReader::takeToken()
{
    std::string text = reading.takeText(lexer.tokenBytes());
    lexer.next();
    return text;
}

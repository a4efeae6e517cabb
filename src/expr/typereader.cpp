#include "treeparser.h"

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
    for (const TypeWord &each : typeWords) {
        if (lexer.tokenIs(each.word))
            return &each;
    }
    return nullptr;
}

}  // namespace

/// Null, with no token taken, where no type begins.
/// type = ( simple | struct | register ) { "*" | "[" expression "]" }
TreeParser::Type TreeParser::readType()
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

TreeParser::Type TreeParser::readSuffixes(Type type)
{
    for (;;) {
        if (lexer.kind() == Token::Star) {
            lexer.next();
            type = make<PointerType>(std::move(type));
        } else if (lexer.kind() == Token::LeftBracket) {
            lexer.next();
            Node count = parseExpression();
            advancePast(Token::RightBracket, "']' expected");
            type = make<ArrayType>(std::move(type), std::move(count));
        } else {
            return type;
        }
    }
}

/// simple = { word of a type } [ name of a type ]
/// Ends as soon as the type is complete: in "short int" the "int" is left. Null, with no token taken,
/// where the first one is no word of a type.
TreeParser::Type TreeParser::readSimpleType()
{
    bool isType = false;
    bool isLong = false;
    bool isUnsigned = false;
    while (lexer.kind() == Token::Identifier) {
        const TypeWord *word = findTypeWord(lexer);
        if (!word) {
            const std::string name = takeText(lexer.tokenBytes());
            if (!parser.isTypeName(name))
                break;
            lexer.next();
            return make<UserType>(name);
        }
        lexer.next();
        if (word->role == Role::Names || (word->role == Role::Widens && isLong))
            return make<SimpleType>(word->code, isUnsigned);
        isType = true;
        isLong = isLong || word->role == Role::Widens;
        isUnsigned = isUnsigned || word->role == Role::Unsigned;
    }
    if (!isType)
        return nullptr;
    return make<SimpleType>(isLong ? SimpleType::Long : SimpleType::Int, isUnsigned);
}

/// struct = "struct" ( identifier | fields )
TreeParser::Type TreeParser::readStruct()
{
    lexer.next();
    if (lexer.kind() != Token::Identifier)
        return readFields();
    std::string name = "struct ";
    name += takeText(lexer.tokenBytes());
    if (!parser.isTypeName(name))
        throw ParserException("struct type not found");
    lexer.next();
    return make<UserType>(std::move(name));
}

/// fields = "{" { field } "}"
TreeParser::Type TreeParser::readFields()
{
    advancePast(Token::LeftBrace, "'{' expected");
    std::vector<StructType::Field> fields;
    while (lexer.kind() != Token::RightBrace)
        fields.push_back(readField());
    lexer.next();
    return make<StructType>(std::move(fields));
}

/// field = simple [ identifier ] [ ":" decimal ] ";"
StructType::Field TreeParser::readField()
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
    advancePast(Token::Semicolon, "';' expected");
    return field;
}

/// register = "register" decimal { register field } ";"
TreeParser::Type TreeParser::readRegister()
{
    lexer.next();
    const std::int32_t bits = takeNumber("size expected");
    std::vector<RegisterType::Field> fields;
    while (lexer.kind() != Token::Semicolon)
        fields.push_back(readRegisterField());
    lexer.next();
    return make<RegisterType>(bits, std::move(fields));
}

/// register field = ( identifier | string ) decimal decimal
RegisterType::Field TreeParser::readRegisterField()
{
    if (lexer.kind() != Token::Identifier && lexer.kind() != Token::String)
        throw ParserException("fieldname expected");
    charge(1);
    RegisterType::Field field;
    field.name = takeToken();  // a string keeps its quotes
    field.bitOffset = takeNumber("bitoffset expected");
    field.bitSize = takeNumber("bitsize expected");
    return field;
}

std::int32_t TreeParser::takeNumber(const char *message)
{
    require(Token::DecimalNumber, message);
    const auto number = static_cast<std::int32_t>(lexer.tokenToInt64());
    lexer.next();
    return number;
}

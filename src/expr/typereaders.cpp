#include "treeparser.h"

#include "expressionparser.h"
#include "lexer.h"
#include "parserexception.h"
#include "types.h"

#include <algorithm>

using namespace Qt::StringLiterals;

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

qint32 tokenToInt32(const Lexer &lexer)
{
    return static_cast<qint32>(lexer.tokenToInt64());
}

}  // namespace

/// The type behind an opening parenthesis; null, with no token taken, where there is none.
TreeParser::Type TreeParser::parseCastType()
{
    if (lexer.kind() != Token::Identifier)
        return nullptr;
    if (lexer.tokenIs("struct"))
        return parseTypeSuffixes(parseStructType());
    if (lexer.tokenIs("register"))
        return parseTypeSuffixes(parseRegisterType());
    Type type = parseSimpleType();
    return type ? parseTypeSuffixes(std::move(type)) : nullptr;
}

TreeParser::Type TreeParser::parseTypeSuffixes(Type type)
{
    for (;;) {
        if (lexer.kind() == Token::Star) {
            lexer.next();
            type = make<PointerType>(std::move(type));
        } else if (lexer.kind() == Token::LeftBracket) {
            lexer.next();
            Node count = parseExpression();
            advancePast(Token::RightBracket, "']' expected"_L1);
            type = make<ArrayType>(std::move(type), std::move(count));
        } else {
            return type;
        }
    }
}

/// Returns as soon as the type is complete: in "short int" the "int" is left. Null, with no token
/// taken, where the first one is no word of a type.
TreeParser::Type TreeParser::parseSimpleType()
{
    bool isType = false;
    bool isLong = false;
    bool isUnsigned = false;
    while (lexer.kind() == Token::Identifier) {
        const TypeWord *word = findTypeWord(lexer);
        if (!word) {
            const QString name = takeText(lexer.tokenBytes());
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

TreeParser::Type TreeParser::parseStructType()
{
    lexer.next();
    if (lexer.kind() != Token::Identifier)
        return parseStructFields();
    const QString name = "struct "_L1 + takeText(lexer.tokenBytes());
    if (!parser.isTypeName(name))
        throw ParserException("struct type not found"_L1);
    lexer.next();
    return make<UserType>(name);
}

TreeParser::Type TreeParser::parseStructFields()
{
    advancePast(Token::LeftBrace, "'{' expected"_L1);
    std::vector<StructType::Field> fields;
    while (lexer.kind() != Token::RightBrace) {
        StructType::Field &field = fields.emplace_back();
        field.type = parseSimpleType();
        if (!field.type)
            throw ParserException("struct parse error"_L1);
        if (lexer.kind() == Token::Identifier) {
            field.name = takeText(lexer.tokenBytes());
            lexer.next();
        }
        if (lexer.kind() == Token::Colon) {
            lexer.next();
            require(Token::DecimalNumber, "integer must follow ':'"_L1);
            field.bitCount = tokenToInt32(lexer);
            lexer.next();
        }
        advancePast(Token::Semicolon, "';' expected"_L1);
    }
    lexer.next();
    return make<StructType>(std::move(fields));
}

TreeParser::Type TreeParser::parseRegisterType()
{
    lexer.next();
    require(Token::DecimalNumber, "size expected"_L1);
    const qint32 registerSize = tokenToInt32(lexer);
    std::vector<RegisterType::Field> fields;
    for (lexer.next(); lexer.kind() != Token::Semicolon; lexer.next()) {
        if (lexer.kind() != Token::Identifier && lexer.kind() != Token::String)
            throw ParserException("fieldname expected"_L1);
        charge(1);
        RegisterType::Field &field = fields.emplace_back();
        field.name = takeText(lexer.tokenBytes());  // a string keeps its quotes
        lexer.next();
        require(Token::DecimalNumber, "bitoffset expected"_L1);
        field.bitOffset = tokenToInt32(lexer);
        lexer.next();
        require(Token::DecimalNumber, "bitsize expected"_L1);
        field.bitSize = tokenToInt32(lexer);
    }
    lexer.next();
    return make<RegisterType>(registerSize, std::move(fields));
}

#include "expressionparser.h"

#include "operators.h"
#include "resolution.h"

// How an expression is read. Each production of the grammar is a function, and stands above it:
// quotes enclose tokens, braces what may stand any number of times, brackets what may be missing.
// A function begins at the first token of what it reads and ends with the first one behind it as
// the current token. One token decides what comes next, so nothing is ever read twice.
//
// The operators with two operands are a loop. The lexer gives each token a level, from -4 (loosest)
// to 9 (tightest), and Token::noOperator to what cannot stand between operands. parseBinary(level)
// reads one operand and goes on as long as operators of its level or a tighter one follow. A right
// operand takes only what is tighter still, so that equals group to the left, assignments too:
// a = b = c is (a = b) = c. A chain leans to the left and adds nothing to the height of its tree.
//
// Two things are not as in C: a cast takes all that follows it, so that (int)a + b is the cast of
// a + b, and what is left behind an expression is not looked at: "1 2" is 1.
//
// "a += b" becomes "a = a + b", where the addition refers to the a of the assignment. x++ and ++x
// are both "x += 1", and "*x" is "x[0]".

/// One reading of one expression: makes its tree by recursive descent, of the tokens from the current
/// one of the parser's lexer on. Whatever is no expression, or is past one of the bounds below, ends
/// in a ParserException.
class ExpressionParser::TreeParser
{
public:
    explicit TreeParser(ExpressionParser *resolver) : parser(*resolver), lexer(resolver->lexer) {}

    /// expression = binary of the loosest level
    OwnedExpression parseExpression() { return parseBinary(Token::loosestLevel); }

private:
    /// binary = unary { operator of the level or a tighter one, binary of a tighter level than its }
    OwnedExpression parseBinary(std::int32_t level)
    {
        enter();
        const std::size_t sizeBefore = size;
        OwnedExpression left = parseUnary();
        while (lexer.precedence() >= level && lexer.precedence() <= Token::tightestLevel) {
            const Token::Kind kind = lexer.kind();
            const std::int32_t rightLevel = lexer.precedence() + 1;
            const std::size_t leftSize = size - sizeBefore;
            lexer.next();
            OwnedExpression right =
                rightLevel > Token::tightestLevel ? parseUnary() : parseBinary(rightLevel);
            left = combine(kind, std::move(left), std::move(right), leftSize);
        }
        --depth;
        return left;
    }

    OwnedExpression combine(Token::Kind kind, OwnedExpression left, OwnedExpression right,
                            std::size_t leftSize)
    {
        if (kind != Token::Assign) {
            const OperatorRow *row = findOperator(kind);
            if (!row)
                throw ParserException("operator not supported");
            if (kind == row->token)
                return counted(row->make(std::move(left), std::move(right)));
            charge(leftSize);
            right = counted(row->make(make<SharedExpression>(*left), std::move(right)));
        }
        return make<AssignExpression>(std::move(left), std::move(right), &parser);
    }

    /// unary = primary { postfix }
    OwnedExpression parseUnary()
    {
        enter();
        const std::size_t sizeBefore = size;
        OwnedExpression node = parsePostfix(parsePrimary(), sizeBefore);
        --depth;
        return node;
    }

    /// primary = number | string | word | "::" name | register | parenthesis | ( "++" | "--" ) unary
    ///         | ( "~" | "!" | "-" | "+" | "&" | "*" ) unary
    OwnedExpression parsePrimary()
    {
        switch (lexer.kind()) {
        case Token::DecimalNumber:
            return parseToken<IntegerConstantExpression>(lexer.tokenToInt64());
        case Token::HexadecimalNumber:
        case Token::BinaryNumber:
            return parseToken<IntegerConstantExpression>(
                static_cast<std::int64_t>(lexer.tokenToUInt64()));
        case Token::FloatingNumber:
            return parseToken<FloatConstantExpression>(lexer.tokenToDouble());
        case Token::String:
            return parseToken<StringConstantExpression>(takeText(unquotedToken()));
        case Token::Identifier:
            return parseWord();
        case Token::Scope:
            lexer.next();
            return parseName(true);
        case Token::Register:
            return parseToken<RegisterExpression>(takeText(lexer.tokenBytes().substr(1)), &parser);
        case Token::LeftParenthesis:
            return parseParenthesis();
        case Token::Increment:
        case Token::Decrement:
            return parsePrefixStep();
        case Token::Tilde:
            return parseUnaryOperator<BitNotExpression>();
        case Token::Exclamation:
            return parseUnaryOperator<LogicalNotExpression>();
        case Token::Minus:
            return parseUnaryOperator<NegateExpression>();
        case Token::Plus:
            lexer.next();
            return parseUnary();
        case Token::Ampersand:
            return parseUnaryOperator<AddressofExpression>(&parser);
        case Token::Star:
            return parseDereference();
        default:
            throw ParserException("expression expected");
        }
    }

    /// The node of the current token, made of \a arguments.
    template <typename Made, typename... Arguments>
    OwnedExpression parseToken(Arguments &&...arguments)
    {
        OwnedExpression node = make<Made>(std::forward<Arguments>(arguments)...);
        lexer.next();
        return node;
    }

    /// word = sizeof | addressof | name
    OwnedExpression parseWord()
    {
        if (lexer.tokenIs("sizeof"))
            return parseSizeof();
        if (lexer.tokenIs("addressof"))
            return parseAddressofLine();
        return parseName(false);
    }

    /// sizeof = "sizeof" "(" expression ")"
    OwnedExpression parseSizeof()
    {
        lexer.next();
        take(Token::LeftParenthesis, "'(' expected");
        OwnedExpression operand = parseExpression();
        take(Token::RightParenthesis, "')' expected");
        return make<SizeofExpression>(std::move(operand), &parser);
    }

    /// addressof = "addressof" "(" string "," decimal ")"
    OwnedExpression parseAddressofLine()
    {
        lexer.next();
        take(Token::LeftParenthesis, "'(' expected");
        require(Token::String, "string expected");
        std::string fileName = takeText(unquotedToken());
        lexer.next();
        take(Token::Comma, "',' expected");
        const std::uint64_t line = readNumber(take(Token::DecimalNumber, "int expected"));
        take(Token::RightParenthesis, "')' expected");
        return make<AddressofLineExpression>(std::move(fileName), static_cast<std::int64_t>(line),
                                             &parser);
    }

    /// name = identifier { "::" identifier }
    OwnedExpression parseName(bool rooted)
    {
        require(Token::Identifier, "identifier expected");
        std::vector<std::string> parts{takeToken()};
        while (lexer.kind() == Token::Scope) {
            lexer.next();
            require(Token::Identifier, "identifier expected after '::'");
            charge(1);
            parts.push_back(takeToken());
        }
        if (parts.size() == 1 && !rooted)
            return make<IdentifierExpression>(std::move(parts.front()), &parser);
        return make<ScopedIdentifierExpression>(std::move(parts), &parser);
    }

    /// parenthesis = "(" type ")" expression | "(" expression ")"
    OwnedExpression parseParenthesis()
    {
        lexer.next();
        OwnedType type = readType();
        OwnedExpression inner = type ? nullptr : parseExpression();
        take(Token::RightParenthesis, "')' expected");
        return type ? make<CastExpression>(std::move(type), parseExpression(), &parser)
                    : std::move(inner);
    }

    OwnedExpression parsePrefixStep()
    {
        const Token::Kind sign = lexer.kind();
        lexer.next();
        const std::size_t sizeBefore = size;
        OwnedExpression target = parseUnary();
        return makeStep(sign, std::move(target), size - sizeBefore);
    }

    /// What ++ or -- makes of \a target.
    OwnedExpression makeStep(Token::Kind sign, OwnedExpression target, std::size_t targetSize)
    {
        const Token::Kind kind = sign == Token::Increment ? Token::PlusAssign : Token::MinusAssign;
        return combine(kind, std::move(target), make<IntegerConstantExpression>(1), targetSize);
    }

    template <typename Operator, typename... Arguments>
    OwnedExpression parseUnaryOperator(Arguments... arguments)
    {
        lexer.next();
        return make<Operator>(parseUnary(), arguments...);
    }

    OwnedExpression parseDereference()
    {
        lexer.next();
        OwnedExpression base = parseUnary();
        OwnedExpression zero = make<ConstantExpression>(ExpressionValue::fromUInt64(0, 2));
        return make<LeftSquareBracketExpression>(std::move(base), std::move(zero), &parser);
    }

    /// postfix = "[" expression "]" | ( "." | "->" ) name | call | "++" | "--"
    OwnedExpression parsePostfix(OwnedExpression base, std::size_t sizeBefore)
    {
        for (;;) {
            switch (lexer.kind()) {
            case Token::LeftBracket: {
                lexer.next();
                OwnedExpression index = parseExpression();
                take(Token::RightBracket, "expected ']'");
                base =
                    make<LeftSquareBracketExpression>(std::move(base), std::move(index), &parser);
                break;
            }
            case Token::Dot:
            case Token::Arrow:
                lexer.next();
                base = make<DotExpression>(std::move(base), parseName(false), &parser);
                break;
            case Token::Increment:
            case Token::Decrement:
                base = makeStep(lexer.kind(), std::move(base), size - sizeBefore);
                lexer.next();
                break;
            case Token::LeftParenthesis:
                base = parseCall(std::move(base));
                break;
            default:
                return base;
            }
        }
    }

    /// call = "(" { unary [ "," ] } ")"
    OwnedExpression parseCall(OwnedExpression base)
    {
        enter();
        lexer.next();
        std::vector<OwnedExpression> arguments;
        while (lexer.kind() != Token::RightParenthesis) {
            arguments.push_back(parseUnary());
            if (lexer.kind() == Token::Comma)
                lexer.next();
        }
        lexer.next();
        --depth;
        return make<CallExpression>(std::move(base), std::move(arguments), &parser);
    }

    /// Null, with no token taken, where no type begins.
    /// type = ( simple | struct | register ) { "*" | "[" expression "]" }
    OwnedType readType()
    {
        if (lexer.kind() != Token::Identifier)
            return nullptr;
        OwnedType type = lexer.tokenIs("struct")     ? readStruct()
                         : lexer.tokenIs("register") ? readRegister()
                                                     : readSimpleType();
        while (type) {
            if (lexer.kind() == Token::Star) {
                lexer.next();
                type = make<PointerType>(std::move(type));
            } else if (lexer.kind() == Token::LeftBracket) {
                lexer.next();
                OwnedExpression count = parseExpression();
                take(Token::RightBracket, "']' expected");
                type = make<ArrayType>(std::move(type), std::move(count));
            } else {
                break;
            }
        }
        return type;
    }

    // The words of a simple type. One of the first, which stand in the order of its codes, completes it.
    static constexpr std::string_view completingWords[] = {"char", "short", "int"};
    static constexpr std::string_view otherWords[] = {"unsigned", "signed", "const", "volatile"};

    /// simple = { word of a type } [ name of a type ]
    /// Ends as soon as the type is complete: in "short int" the "int" is left. Null, with no token
    /// taken, where the first one is no word of a type.
    OwnedType readSimpleType()
    {
        SimpleType::Code code = SimpleType::Int;
        bool isUnsigned = false;
        bool isType = false;
        bool isComplete = false;
        for (; lexer.kind() == Token::Identifier && !isComplete; lexer.next()) {
            const std::string_view word = lexer.tokenBytes();
            const auto *completing = std::ranges::find(completingWords, word);
            if (completing != std::end(completingWords)) {
                code = static_cast<SimpleType::Code>(completing - completingWords);
                isComplete = true;
            } else if (word == "long") {
                isComplete = code == SimpleType::Long;
                code = isComplete ? SimpleType::LongLong : SimpleType::Long;
            } else if (std::ranges::find(otherWords, word) != std::end(otherWords)) {
                isUnsigned = isUnsigned || word == "unsigned";
            } else {
                std::string name = takeText(word);
                if (!parser.isTypeName(name))
                    break;
                lexer.next();
                return make<UserType>(std::move(name));
            }
            isType = true;
        }
        return isType ? make<SimpleType>(code, isUnsigned) : nullptr;
    }

    /// struct = "struct" ( identifier | fields )
    OwnedType readStruct()
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
    OwnedType readFields()
    {
        take(Token::LeftBrace, "'{' expected");
        std::vector<StructType::Field> fields;
        while (lexer.kind() != Token::RightBrace)
            fields.push_back(readField());
        lexer.next();
        return make<StructType>(std::move(fields));
    }

    /// field = simple [ identifier ] [ ":" decimal ] ";"
    StructType::Field readField()
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
        take(Token::Semicolon, "';' expected");
        return field;
    }

    /// register = "register" decimal { register field } ";"
    OwnedType readRegister()
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
    RegisterType::Field readRegisterField()
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

    std::int32_t takeNumber(const char *message)
    {
        return static_cast<std::int32_t>(readNumber(take(Token::DecimalNumber, message)));
    }

    /// Counts a call that can contain itself and takes itself off the depth where it returns. One that
    /// ends by an exception need not, since that is the end of the reading.
    void enter()
    {
        checkHeight(depth + 1);
        parser.readingDepth = ++depth;
    }

    /// Makes a node or a type and counts it.
    template <typename Made, typename... Arguments>
    std::unique_ptr<Made> make(Arguments &&...arguments)
    {
        return counted(std::make_unique<Made>(std::forward<Arguments>(arguments)...));
    }
    template <typename Made>
    std::unique_ptr<Made> counted(std::unique_ptr<Made> made)
    {
        charge(1);
        checkHeight(made->height());
        return made;
    }
    /// Counts \a amount without making anything.
    void charge(std::size_t amount)
    {
        size += amount;
        if (size > maximumSize)
            throw ParserException("expression too large");
    }
    void checkHeight(int height)
    {
        parser.wasTooDeep = height > parser.maximumDepth;
        if (parser.wasTooDeep)
            throw ParserException("expression nested too deeply");
    }

    /// Throws \a message where the current token is none of \a kind.
    void require(Token::Kind kind, const char *message) const
    {
        if (lexer.kind() != kind)
            throw ParserException(message);
    }
    /// The same; else takes the token and returns its characters.
    std::string_view take(Token::Kind kind, const char *message)
    {
        require(kind, message);
        const std::string_view characters = lexer.tokenBytes();
        lexer.next();
        return characters;
    }
    std::string_view unquotedToken() const
    {
        const std::string_view literal = lexer.tokenBytes();
        return literal.substr(1, literal.size() - 2);
    }
    /// \a bytes, which are text that a node or a type keeps.
    std::string takeText(std::string_view bytes)
    {
        charge(bytes.size() / 32);
        return std::string(bytes);
    }
    /// The characters of the current token, taken.
    std::string takeToken()
    {
        std::string text = takeText(lexer.tokenBytes());
        lexer.next();
        return text;
    }

    /// What a tree may consist of: one for each node, and one for every 32 characters of a name or
    /// a string. What an assignment such as += stands for counts each time that it is evaluated,
    /// because x++++++ and so on doubles with every step.
    static constexpr std::size_t maximumSize = 2'000'000;

    ExpressionParser &parser;
    Lexer &lexer;
    int depth = 0;         ///< calls that are open
    std::size_t size = 0;  ///< what is counted so far
};

OwnedExpression ExpressionParser::parse(const char *text, std::size_t *position)
{
    OwnedExpression tree;
    // Not a copy: nothing asks the lexer for its text once the tree is made.
    lexer.borrowText(text ? text : "");
    readingDepth = 0;
    treeHeight = 0;
    wasTooDeep = false;
    if (text && *text) {
        tree = TreeParser(this).parseExpression();
        treeHeight = tree->height();
    }
    if (position)
        *position = lexer.position();
    return tree;
}

ExpressionValue ExpressionParser::evaluate(const char *text, std::size_t *position)
{
    const OwnedExpression tree = parse(text, position);
    return tree ? tree->evaluate() : ExpressionValue();
}

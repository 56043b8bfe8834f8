// Operands of one token: literals, names, groups and definitions.
#include "builtins/bfunc.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "values/convert.h"

namespace vesko {

// ---- Numbers -------------------------------------------------------------------------------------

PcNode *newNumNode(double value, uint32_t line) {
    if (value == 0.0) return newMatPcNode(theFalseMat(), line);
    if (value == 1.0) return newMatPcNode(theTrueMat(), line);
    return newMatPcNode(newRealScalarMat(value), line);
}

PcNode *newZNumNode(double value, uint32_t line) {
    return newMatPcNode(newIntScalarMat(truncToInt(value)), line);
}

PcNode *newBNumNode(double value, uint32_t line) {
    return newMatPcNode(newByteScalarMat(static_cast<uint8_t>(truncToInt(value))), line);
}

// ---- Names ---------------------------------------------------------------------------------------

static PcNode *newNameNode(const Token *token) {
    uint32_t symbol = token->symbol, k;
    auto leaf = [&](Opr kind) { return newPcNode(kind, static_cast<int32_t>(k), 0, token->line); };
    if ((k = findVarIndex(symbol)) != not_found) return leaf(Opr::Variable);
    if ((k = findParameter(symbol)) != not_found) return leaf(Opr::Parameter);
    if ((k = findGv(symbol)) != not_found) return leaf(Opr::GlobalVar);
    if ((k = findBuiltin(symbol)) != not_found) return leaf(Opr::Builtin);
    if ((k = findSyscmd(getSymbolName(symbol))) != not_found) return leaf(Opr::SysCommand);
    syntaxError(token->line, "symbol \"%s\" not defined", getSymbolName(symbol));
}

static PcNode *topReferenceNode(const Token *token) {
    PcNode *limit = topReference();
    if (!limit) syntaxError(token->line, "unexpected token '$'");
    return limit;
}

[[noreturn]] static void refuseToken(const Token *token) {
    syntaxError(token->line, "unexpected token1 '%s', type=%d, NA=%d", tok2str(token),
                static_cast<int>(index(token->kind)), no_value);
}

// ---- The token -----------------------------------------------------------------------------------

PcNode *processTokenAtom(Token *token) {
    uint32_t line = token->line;
    switch (token->kind) {
        case TokenKind::Number: return newNumNode(token->number, line);
        case TokenKind::Imaginary: return newMatPcNode(newCompScalarMat(0.0, token->number), line);
        case TokenKind::Integer: return newZNumNode(token->number, line);
        case TokenKind::Byte: return newBNumNode(token->number, line);
        case TokenKind::BigInt: syntaxError(line, "big integer literals are not built yet");
        case TokenKind::Mpf: syntaxError(line, "multi-precision literals are not built yet");
        case TokenKind::Regexp: return newRegexpNode(token);
        case TokenKind::Regsub: return newRegsubNode(token);
        case TokenKind::String: return newMatPcNode(newStrMatCopy(token->text), line);
        case TokenKind::Colon: return newMatPcNode(theRng0Mat(), line);
        case TokenKind::Dollar: return topReferenceNode(token);
        case TokenKind::Identifier: return newNameNode(token);
        case TokenKind::ParenGroup: return parseList(token->first, line);
        case TokenKind::BracketGroup: return parseMat(token->first, line);
        case TokenKind::BraceGroup: return parseStruct(token->first, line);
        case TokenKind::FunctionBlock: return makeFunctionNode(token->inst, line);
        case TokenKind::ClassBlock: return readClass(token->inst);
        case TokenKind::ConditionalBlock: return readConditional(token->inst);
        case TokenKind::AutomatonBlock: return readproc(token->inst);
        case TokenKind::Global: syntaxError(line, "unexpected keyword 'global'");
        case TokenKind::Builtin: syntaxError(line, "unexpected keyword 'builtin'");
        case TokenKind::Parent: return newPcNode(Opr::Parent, no_value, 0, line);
        case TokenKind::This: return newPcNode(Opr::This, no_value, 0, line);
        default: refuseToken(token);
    }
}

}  // namespace vesko

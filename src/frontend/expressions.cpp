// Expressions: a token list is cut at its operator of lowest priority, and the operator builds a node of the
// two halves. Chains of left-associative operators are built in one walk.
#include <array>
#include <cassert>

#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"

namespace vesko {

// ---- Prefix and postfix operators ----------------------------------------------------------------

static PcNode *buildUnary(Opr op, PcNode *operand) {
    PcNode *node = newPcNode(op, no_value, 1, operand->line);
    setPcCub(node, 0, operand);
    return node;
}

static PcNode *buildPrefix(Opr op, Token *right) { return buildUnary(op, parseTokenList(right)); }

// A numeric constant is negated in its node.
static PcNode *buildNegative(Opr op, Token *right) {
    PcNode *operand = parseTokenList(right);
    if (!isNumericConstant(operand)) return buildUnary(op, operand);
    replaceMat(operand->constant, getMatNeg(operand->constant, operand));
    return operand;
}

static PcNode *buildPlus(Opr, Token *right) { return parseTokenList(right); }

static PcNode *buildDeref(Opr, PcNode *left) { return buildUnary(Opr::Deref, left); }

// A sign with nothing behind it is dropped, so that of two signs the one nearest to the operand decides.
static PcNode *dropSign(Opr, PcNode *left) { return left; }

// ---- Binary operators ----------------------------------------------------------------------------

static PcNode *joinBinary(Opr op, PcNode *left, Token *right) {
    return newBinaryNode(op, left, parseTokenList(right));
}

static PcNode *joinProduct(Opr, PcNode *left, Token *right) {
    return newProductNode(left, parseTokenList(right));
}

// `S -) x` is `x (- S`, `a <-< b` is `b >-> a`.
static PcNode *joinMirrored(Opr op, PcNode *left, Token *right) {
    Opr mirrored = op == Opr::Contains ? Opr::MemberOf : Opr::Connect;
    return newBinaryNode(mirrored, parseTokenList(right), left);
}

// `a:b:c` is one node.
static PcNode *joinRange(Opr, PcNode *left, Token *right) {
    PcNode *last = parseTokenList(right);
    if (left->kind != Opr::Colon1) return newBinaryNode(Opr::Colon1, left, last);
    addPcCub(left, last);
    setOpr(left, Opr::Colon2);
    return left;
}

// Marks the powers that the handler knows: 2 and 3 by their number, the square root by 12.
static int32_t powerMark(const Token *exponent) {
    if (!isSingle(exponent) || !exponent->is(TokenKind::Number)) return no_value;
    if (exponent->number == 2) return 2;
    if (exponent->number == 3) return 3;
    return exponent->number == 0.5 ? 12 : no_value;
}

static PcNode *joinPower(Opr op, PcNode *left, Token *right) {
    int32_t mark = powerMark(right);
    PcNode *node = newBinaryNode(op, left, parseTokenList(right));
    node->value = mark;
    return node;
}

static PcNode *joinIndex(Opr, PcNode *left, Token *group) {
    return makeMatRefNode(left, group, IndexMode::Read);
}
static PcNode *joinListEntry(Opr, PcNode *left, Token *right) { return makeListEntryNode(left, right); }
static PcNode *joinHashEntry(Opr, PcNode *left, Token *right) { return makeHashEntryNode(left, right); }

static PcNode *buildOneLineFunction(Opr, Token *left, Token *right) {
    return makeOneLineFunctionNode(left, right, left->line);
}

// ---- Intervals -----------------------------------------------------------------------------------

// True if the list ends in the sign, as `a+` does; the sign is cut off.
static bool cutOpenBound(Token *list, Opr sign) {
    if (isSingle(list)) return false;
    Cut cut = findCut(list);
    if (cut.op != sign || !cut.lacksRight()) return false;
    cut.before->next = nullptr;
    return true;
}

static PcNode *newIntervalNode(PcNode *lower, bool lower_open, Token *right) {
    bool upper_open = cutOpenBound(right, Opr::Sub);
    PcNode *node = newBinaryNode(Opr::Interval, lower, parseTokenList(right));
    node->value = (lower_open ? 0 : 2) + (upper_open ? 0 : 1);
    return node;
}

static PcNode *buildInterval(Opr, Token *left, Token *right) {
    bool lower_open = cutOpenBound(left, Opr::Sum);
    return newIntervalNode(parseTokenList(left), lower_open, right);
}

static PcNode *joinInterval(Opr, PcNode *left, Token *right) { return newIntervalNode(left, false, right); }

// ---- The table -----------------------------------------------------------------------------------

struct Builder {
    PrefixFn prefix;
    PostfixFn postfix;
    TokensFn tokens;  // asked before join
    JoinFn join;
};

static constexpr std::array<Builder, n_node_kinds> fillBuilders() {
    std::array<Builder, n_node_kinds> b{};
    auto at = [&b](Opr op) -> Builder & { return b[index(op)]; };
    for (unsigned k = 0; k < n_node_kinds; k++) b[k].join = joinBinary;
    for (Opr op : {Opr::PreInc, Opr::PreDec, Opr::Deref, Opr::Link, Opr::Not, Opr::Arrow, Opr::Atom}) {
        at(op).join = nullptr;
    }
    at(Opr::PreInc).prefix = at(Opr::PreDec).prefix = buildPreStep;
    at(Opr::Link).prefix = buildLink;
    at(Opr::Deref).prefix = at(Opr::Not).prefix = at(Opr::ListLength).prefix = buildPrefix;
    at(Opr::Negative).prefix = buildNegative;
    at(Opr::PrefixPlus).prefix = buildPlus;

    at(Opr::Link).postfix = buildDeref;
    at(Opr::Sum).postfix = at(Opr::Sub).postfix = dropSign;
    at(Opr::Transpose).postfix = buildUnary;

    at(Opr::VarAsgn).tokens = buildAssignment;
    at(Opr::LinkAsgn).tokens = buildLinkAssignment;
    for (Opr op : {Opr::AddAsgn, Opr::SubAsgn, Opr::MulAsgn, Opr::DvdAsgn, Opr::DotMulAsgn, Opr::ModAsgn,
                   Opr::BslAsgn, Opr::DotDivAsgn, Opr::PowAsgn, Opr::DotPowAsgn}) {
        at(op).tokens = buildCompoundAssignment;
    }
    at(Opr::OneLineFunc).tokens = buildOneLineFunction;
    at(Opr::ParenGroup).tokens = buildCall;
    at(Opr::BraceGroup).tokens = buildNamedCall;
    at(Opr::Field).tokens = buildField;
    at(Opr::Interval).tokens = buildInterval;

    at(Opr::Interval).join = joinInterval;
    at(Opr::Colon).join = joinRange;
    at(Opr::Product).join = joinProduct;
    at(Opr::Pow).join = joinPower;
    at(Opr::Contains).join = at(Opr::ConnectBack).join = joinMirrored;
    at(Opr::BracketGroup).join = joinIndex;
    at(Opr::ListEntry).join = joinListEntry;
    at(Opr::HashEntry).join = joinHashEntry;
    return b;
}
static constexpr std::array<Builder, n_node_kinds> builders = fillBuilders();

static PcNode *postfixNode(Opr op, PcNode *left) {
    PostfixFn postfix = builders[index(op)].postfix;
    if (!postfix) syntaxError(left->line, "'%s' not a postfix unary operator", opr2str(op));
    return postfix(op, left);
}

// Right null: postfix use.
static PcNode *joinNode(Opr op, PcNode *left, Token *right) {
    if (!right) return postfixNode(op, left);
    JoinFn join = builders[index(op)].join;
    if (!join) syntaxError(left->line, "'%s' undefined as binary operator", opr2str(op));
    return join(op, left, right);
}

static PcNode *prefixNode(Opr op, Token *right) {
    PrefixFn prefix = builders[index(op)].prefix;
    if (!prefix) syntaxError(right->line, "'%s' not a prefix unary operator", opr2str(op));
    return prefix(op, right);
}

PcNode *makeNode(Opr op, Token *left, Token *right) {
    assert(left || right);
    if (!left) return prefixNode(op, right);
    TokensFn tokens = builders[index(op)].tokens;
    if (right && tokens) return tokens(op, left, right);
    if (!right && (op == Opr::PreInc || op == Opr::PreDec)) return buildPostStep(op, left);
    return joinNode(op, parseTokenList(left), right);
}

// ---- Chains --------------------------------------------------------------------------------------

// Rows of left-associative binary operators, from `<>` to the powers.
static bool isChainRow(int priority) { return priority >= 2 && priority <= 18; }

// Takes the operand in front of the next operator of the row; `op` gets the operator's token, or null at the
// end of the list, and `rest` what follows it. An operand without tokens is null.
static Token *takeOperand(Token *&rest, int row, Token *&op) {
    Token *head = rest, *before = nullptr;
    for (op = rest; op && thePriorityOf(getTokOpr(op->kind)) != row; op = op->next) before = op;
    rest = op ? op->next : nullptr;
    if (!before) return nullptr;
    before->next = nullptr;
    return head;
}

// The first node of a chain. At the head the sign is a prefix operator.
static PcNode *startChain(Opr first, Token *op, Token *left, Token *right) {
    if (left) return makeNode(first, left, right);
    if (!right) {
        op->next = nullptr;
        return processTokenAtom(op);
    }
    if (op->is(TokenKind::Plus)) first = Opr::PrefixPlus;
    if (op->is(TokenKind::Minus)) first = Opr::Negative;
    return prefixNode(first, right);
}

// A long chain costs one walk and no depth of the machine stack.
static PcNode *parseChain(Token *list, int row) {
    Token *op, *next_op;
    Token *left = takeOperand(list, row, op);
    Token *right = takeOperand(list, row, next_op);
    PcNode *node = startChain(getTokOpr(op->kind), op, left, right);
    for (op = next_op; op; op = next_op) {
        right = takeOperand(list, row, next_op);
        node = joinNode(getTokOpr(op->kind), node, right);
    }
    return node;
}

// ---- Lists ---------------------------------------------------------------------------------------

static bool isCommandWord(const Token *token) {
    return token->is(TokenKind::Identifier) || token->is(TokenKind::String) || token->is(TokenKind::Number);
}

// A word that names nothing else, with words, texts or numbers behind it: `cd "x"`.
static uint32_t findCommandLine(const Token *list) {
    if (!list->is(TokenKind::Identifier)) return not_found;
    for (const Token *token = list; token; token = token->next) {
        if (!isCommandWord(token)) return not_found;
    }
    uint32_t symbol = list->symbol;
    if (findVarIndex(symbol) != not_found || findGv(symbol) != not_found ||
        findParameter(symbol) != not_found) {
        return not_found;
    }
    return findSyscmd(getSymbolName(symbol));
}

static uint32_t countTokens(const Token *list) {
    uint32_t n = 0;
    for (; list; list = list->next) n++;
    return n;
}

PcNode *parseTokenList(Token *list) {
    guardParse();
    if (!list) return nullptr;
    if (isSingle(list)) return processTokenAtom(list);
    uint32_t command = findCommandLine(list);
    if (command != not_found) return processSyscmd(command, countTokens(list->next), list->next);
    Cut cut = findCut(list);
    int row = thePriorityOf(cut.op);
    if (isChainRow(row)) return parseChain(list, row);
    Token *left, *right;
    cutAt(list, cut, left, right);
    return makeNode(cut.op, left, right);
}

}  // namespace vesko

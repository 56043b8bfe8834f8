// The cut of a token list: one scan with the priorities finds the operator that is applied last. The table of
// priorities is the grammar of expressions.
#include <cassert>

#include "console/message.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/source.h"

namespace vesko {

// The row of prefix operators, which bind from the left end.
static const int prefix_row = 19;

// At the head of a list a group is an operand, and signs and `#` are prefix operators.
static Opr operatorAt(const Token *token, const Token *before) {
    Opr op = getTokOpr(token->kind);
    if (op == Opr::None) syntaxError(token->line, "token '%s' cannot be processed", tok2str(token));
    if (before) return op;
    if (isGroup(token->kind)) return Opr::Atom;
    if (op == Opr::Sum) return Opr::PrefixPlus;
    if (op == Opr::Sub) return Opr::Negative;
    if (op == Opr::ListEntry) return Opr::ListLength;
    return op;
}

// Operators that go on from a group: `a[1].b`, `a[1]::T`, `a[1]>>`.
static bool goesOn(const Token *token) {
    return token->is(TokenKind::Dot) || token->is(TokenKind::ForcedType) || token->is(TokenKind::Deref);
}

// A chain behind the group of the cut reads from left to right: the cut moves to its last operator.
static void moveBehindGroup(Cut &cut) {
    if (!goesOn(cut.at->next)) {
        syntaxError(cut.at->next->line, "can't split token list4 '%s'", tok2str(cut.at->next));
    }
    for (Token *before = cut.at, *token = before->next; token; before = token, token = token->next) {
        if (goesOn(token)) cut = {getTokOpr(token->kind), before, token};
    }
}

Cut findCut(Token *list) {
    assert(list);
    Cut cut{Opr::Atom, nullptr, list};
    int best = thePriorityOf(Opr::Atom);
    Token *before = nullptr;
    for (Token *token = list; token && best > 0; before = token, token = token->next) {
        Opr op = operatorAt(token, before);
        int priority = thePriorityOf(op);
        if (op == Opr::ParenGroup && cut.op == Opr::Field && before->is(TokenKind::Dot)) priority = best + 1;
        if (priority < best || (priority == best && priority != prefix_row)) {
            best = priority;
            cut = {op, before, token};
        }
    }
    if (cut.before && isGroup(cut.at->kind) && cut.op != Opr::Atom && cut.at->next) moveBehindGroup(cut);
    return cut;
}

// Only operands: there is no place to cut.
[[noreturn]] static void refuseOperands(const Token *list, const Token *last) {
    if (isSingle(list)) syntaxError(list->line, "can't split token list1 '%s'", tok2str(list));
    xMesg("Error %s %u: can't split token list3 '%s'", getCurrentFileName(), last->line, tok2str(last));
    syntaxError(last->line, "can't split token list3 '%s'", tok2str(last));
}

void cutAt(Token *list, const Cut &cut, Token *&left, Token *&right) {
    if (cut.op == Opr::Atom) refuseOperands(list, cut.at);
    left = cut.before ? list : nullptr;
    if (cut.before) cut.before->next = nullptr;
    right = isGroup(cut.at->kind) ? cut.at : cut.at->next;
}

Opr splitTokenList(Token *list, Token *&left, Token *&right) {
    Cut cut = findCut(list);
    cutAt(list, cut, left, right);
    return cut.op;
}

}  // namespace vesko

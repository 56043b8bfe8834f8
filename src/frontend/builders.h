// Inside the expression parser: where a list is cut, and what each operator builds.
#pragma once

#include "engine/node.h"
#include "frontend/token.h"

namespace vesko {

// ---- The cut: the operator of lowest priority.
struct Cut {
    Opr op;         // Atom: the list has operands only
    Token *before;  // null: the operator stands at the head
    Token *at;

    bool lacksRight() const { return at->next == nullptr; }
};
Cut findCut(Token *list);
void cutAt(Token *list, const Cut &cut, Token *&left, Token *&right);
inline bool isSingle(const Token *list) { return list && !list->next; }
inline bool isSingleIdentifier(const Token *list) {
    return isSingle(list) && list->is(TokenKind::Identifier);
}
inline bool isGroup(TokenKind kind) {
    return kind == TokenKind::ParenGroup || kind == TokenKind::BracketGroup || kind == TokenKind::BraceGroup;
}

// ---- Builders by the use of the operator. One that takes tokens parses them itself; the others stand in
// chains too, where the left operand is built already.
using PrefixFn = PcNode *(*)(Opr op, Token *right);
using PostfixFn = PcNode *(*)(Opr op, PcNode *left);
using TokensFn = PcNode *(*)(Opr op, Token *left, Token *right);
using JoinFn = PcNode *(*)(Opr op, PcNode *left, Token *right);

// ---- Steps: ++ and --
PcNode *buildPreStep(Opr op, Token *right);
PcNode *buildPostStep(Opr op, Token *left);

// ---- Assignments
PcNode *buildAssignment(Opr op, Token *left, Token *right);
PcNode *buildLinkAssignment(Opr op, Token *left, Token *right);
PcNode *buildCompoundAssignment(Opr op, Token *left, Token *right);
PcNode *buildLink(Opr op, Token *right);

// ---- Calls and fields
PcNode *buildCall(Opr op, Token *left, Token *group);
PcNode *buildNamedCall(Opr op, Token *left, Token *group);
PcNode *buildField(Opr op, Token *left, Token *right);

// ---- Literals of patterns
PcNode *newRegexpNode(const Token *token);
PcNode *newRegsubNode(const Token *token);

// ---- Binary operators: node with its specialised handler, or the constant it folds to.
PcNode *newBinaryNode(Opr op, PcNode *left, PcNode *right);
PcNode *newProductNode(PcNode *left, PcNode *right);
bool is_ds_node(const PcNode *node);  // yields a real scalar, known at compile time
bool isNumericConstant(const PcNode *node);
bool allNumericConstants(const PcNode *node);

}  // namespace vesko

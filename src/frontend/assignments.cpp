// Assignments and steps: stores to variables with their domains, to places and to several targets, the
// compound forms, ++ and --.
#include "builtins/bfunc.h"
#include "engine/handlers.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"

namespace vesko {

// ---- Places --------------------------------------------------------------------------------------

// Assignment of a value to a target that is no plain variable.
static PcNode *newStoreNode(PcNode *target, PcNode *value) {
    PcNode *node = newPcNode(target->kind, target->value, 2, target->line);
    setPcCub(node, 0, target);
    setPcCub(node, 1, value);
    setAsgnOpr(node);
    return node;
}

// A target in brackets of its own is the target: `(a) = 1`, `[a] = 1`.
static Token *openTarget(Token *left) {
    while (isSingle(left) && (left->is(TokenKind::ParenGroup) || left->is(TokenKind::BracketGroup)) &&
           countParts(left->first, TokenKind::Comma) == 1) {
        left = left->first;
    }
    return left;
}

// ---- Steps ---------------------------------------------------------------------------------------

// The sum of the place and 1, which keeps the kind of the element.
static PcNode *newStepNode(PcNode *target, Opr step) {
    bool up = step == Opr::PreInc;
    PcNode *sum = newPcNode(up ? Opr::Sum : Opr::Sub, no_value, 2, target->line);
    setPcCub(sum, 0, target);
    setPcCub(sum, 1, newNumNode(1.0, target->line));
    sum->exec = up ? getTreeStepUp : getTreeStepDown;
    return newStoreNode(target, sum);
}

PcNode *buildPreStep(Opr op, Token *right) {
    PcNode *target = getLValueNode(right);
    if (target->kind == Opr::Variable) {
        setOpr(target, op);
        return target;
    }
    PcNode *node = newStepNode(target, op);
    if (target->kind == Opr::Ref)
        node->exec = op == Opr::PreInc ? doMatRefPreIncOutput : doMatRefPreDecOutput;
    return node;
}

PcNode *buildPostStep(Opr op, Token *left) {
    PcNode *target = getLValueNode(left);
    if (target->kind == Opr::Variable) {
        setOpr(target, op == Opr::PreInc ? Opr::PostInc : Opr::PostDec);
        return target;
    }
    PcNode *node = newPcNode(Opr::PostIncDec, no_value, 1, target->line);
    setPcCub(node, 0, newStepNode(target, op));
    return node;
}

// ---- Plain variables -----------------------------------------------------------------------------

static ExecFn declarationHandler(const CtVar *var) {
    if (progstkdepth == 0 || ctscope->kind == 'P') return initVarDomain_VV;
    switch (var->attr) {
        case DomainMode::KnownKnown: return initVarDomain_CC;
        case DomainMode::KnownRun: return initVarDomain_CV;
        case DomainMode::RunKnown: return initVarDomain_VC;
        default: return initVarDomain_VV;
    }
}

static PcNode *newVarStoreNode(uint32_t k, PcNode *value) {
    PcNode *node = newPcNode(Opr::VarAsgn, static_cast<int32_t>(k), 1, value->line);
    setPcCub(node, 0, value);
    return node;
}

// `x = v in D`
static PcNode *declareVariable(const Token *name, PcNode *in_node) {
    uint32_t k = cFindVarIndexWithDomain(name->symbol, in_node);
    copyIfProtected(in_node->child(0));
    PcNode *node = newVarStoreNode(k, in_node);
    node->exec = declarationHandler(getCtVar(k));
    return node;
}

// A running loop counter always holds a value of its domain.
static bool isCounterOfDomain(const PcNode *value, const CtVar *var) {
    if (value->kind != Opr::CopyVar || !var->hasKnownDomain()) return false;
    const CtVar *counter = getCtVar(static_cast<uint32_t>(value->value));
    return counter->hasKnownDomain() && counter->domain == var->domain;
}

// The operand of a product stands in a list node.
static PcNode *unwrapped(PcNode *node) {
    return node->kind == Opr::List && node->ncub == 1 ? node->child(0) : node;
}

// Arithmetic on real scalars gives a real scalar.
static bool yieldsRealScalar(PcNode *node) {
    guardParse();
    switch (node->kind) {
        case Opr::Sum:
        case Opr::Sub:
        case Opr::Product:
        case Opr::Slash:
            return yieldsRealScalar(unwrapped(node->child(1))) && yieldsRealScalar(node->child(0));
        default: return is_ds_node(node);
    }
}

static bool needsDomainCheck(PcNode *value, const CtVar *var) {
    if (var->isFree() || isCounterOfDomain(value, var)) return false;
    if (!var->hasKnownDomain()) return true;
    if (value->isConstant()) return memberOfSet(value->constant, var->domain, value) == 0;
    return var->domain != Class_D || value->kind == Opr::Variable || !yieldsRealScalar(value);
}

static bool readsVariable(const PcNode *node, int32_t k) {
    return node->kind == Opr::Variable && node->value == k;
}

static Opr compoundOf(Opr op) {
    switch (op) {
        case Opr::Sum: return Opr::AddAsgn;
        case Opr::Sub: return Opr::SubAsgn;
        case Opr::Product: return Opr::MulAsgn;
        case Opr::Slash: return Opr::DvdAsgn;
        default: return Opr::None;
    }
}

// `x = x + e` becomes `x += e`, and so do the other three operators. `x = e + x` too, with its operands in
// order. In a domain only the forms for real scalars need no test.
static bool foldIntoCompound(PcNode *node, const CtVar *var) {
    PcNode *value = node->child(0);
    Opr op = compoundOf(value->kind);
    if (op == Opr::None) return false;
    bool first = readsVariable(value->child(0), node->value);
    bool second = op == Opr::AddAsgn && readsVariable(value->child(1), node->value);
    if (!first && !second) return false;
    PcNode *operand = unwrapped(value->child(first ? 1 : 0));
    if (!var->isFree() && !is_ds_node(operand)) return false;
    setPcCub(node, 0, operand);
    setOpr(node, op);
    if (!first && var->domain != Class_D) node->exec = addAsgnBefore;
    return true;
}

static PcNode *assignVariable(const Token *name, PcNode *value) {
    uint32_t k = cFindVarIndex(name->symbol);
    if (isprotected(k)) {
        syntaxError(name->line, "attempt to change protected variable '%s'", getSymbolName(name->symbol));
    }
    PcNode *node = newVarStoreNode(k, copyIfProtected(value));
    const CtVar *var = getCtVar(k);
    if (needsDomainCheck(value, var)) {
        node->exec = doVarAsgnChkDomain;
    } else if (!foldIntoCompound(node, var)) {
        setOpr(node, Opr::VarAsgn);
    }
    return node;
}

// ---- Several targets -----------------------------------------------------------------------------

static bool isListNode(const PcNode *node) {
    return node->kind == Opr::List || node->kind == Opr::VList || node->kind == Opr::Sequence;
}

static PcNode *assignTargetList(PcNode *targets, PcNode *value) {
    bool written_out = isListNode(value);
    if (written_out && value->ncub != targets->ncub) {
        syntaxError(targets->line, "lhs and rhs in assignment have unequal number of items");
    }
    PcNode *node = newStoreNode(targets, value);
    if (written_out && targets->value == no_value) node->exec = doMultiVarAsgn_rhs_list;
    return node;
}

PcNode *buildAssignment(Opr, Token *left, Token *right) {
    Token *target = openTarget(left);
    PcNode *value = parseTokenList(right);
    if (isSingleIdentifier(target)) {
        return value->kind == Opr::In ? declareVariable(target, value) : assignVariable(target, value);
    }
    PcNode *place = cGetLValueNode(target);
    return place->kind == Opr::TargetList ? assignTargetList(place, value) : newStoreNode(place, value);
}

// ---- Links and compound forms --------------------------------------------------------------------

PcNode *buildLink(Opr, Token *right) {
    PcNode *node = parseTokenList(right);
    if (node->kind != Opr::Variable) syntaxError(node->line, "attempt to take address of non-variable");
    setOpr(node, Opr::Link);
    return node;
}

PcNode *buildLinkAssignment(Opr, Token *left, Token *right) {
    PcNode *link = parseTokenList(right);
    if (link->kind != Opr::Variable) {
        syntaxError(right->line, "attempt to take address of non-variable '%s'", tok2str(right));
    }
    setOpr(link, Opr::Link);
    PcNode *target = cGetLValueNode(left);
    if (target->kind != Opr::Variable) return newStoreNode(target, link);
    PcNode *node = newVarStoreNode(static_cast<uint32_t>(target->value), link);
    if (!getCtVar(static_cast<uint32_t>(target->value))->isFree()) node->exec = doVarAsgnChkDomain;
    return node;
}

// The target's subtree is read and assigned to, so its indices are evaluated twice.
static PcNode *compoundStore(Opr op, PcNode *target, PcNode *operand) {
    if (target->kind == Opr::TargetList) syntaxError(target->line, "invalid lvalue16 '%s'", opr2str(op));
    PcNode *value = newPcNode(cmpasgn2opr(op), no_value, 2, target->line);
    setPcCub(value, 0, target);
    setPcCub(value, 1, operand);
    return newStoreNode(target, value);
}

PcNode *buildCompoundAssignment(Opr op, Token *left, Token *right) {
    PcNode *operand = parseTokenList(right);
    PcNode *target = cGetLValueNode(left);
    if (target->kind != Opr::Variable) return compoundStore(op, target, operand);
    addPcCub(target, operand);
    setOpr(target, op);
    return target;
}

}  // namespace vesko

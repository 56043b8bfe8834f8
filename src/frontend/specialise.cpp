// What is settled at parse time so that evaluation need not ask: folded constants, handlers for operands
// known to be real scalars, and the change from reading a place to assigning to it.
#include <cassert>

#include "builtins/bfunc.h"
#include "engine/handlers.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"

namespace vesko {

// ---- What is known of a node ---------------------------------------------------------------------

static bool holdsRealScalars(int32_t variable) {
    const CtVar *var = getCtVar(static_cast<uint32_t>(variable));
    return var->hasKnownDomain() && var->domain == Class_D;
}

bool is_ds_var_node(const PcNode *node) {
    return node->kind == Opr::Variable && holdsRealScalars(node->value);
}

static bool is_ds_const_node(const PcNode *node) {
    return node->isConstant() && node->constant->l2type == L2::RS;
}

bool is_ds_node(const PcNode *node) { return is_ds_const_node(node) || is_ds_var_node(node); }

bool isNumericConstant(const PcNode *node) { return node->isConstant() && isNumeric(node->constant->l2type); }

bool allNumericConstants(const PcNode *node) {
    for (uint32_t k = 0; k < node->ncub; k++) {
        if (!isNumericConstant(node->child(k))) return false;
    }
    return true;
}

PcNode *copyIfProtected(PcNode *node) {
    if (node->kind == Opr::Variable && isprotected(static_cast<uint32_t>(node->value)))
        setOpr(node, Opr::CopyVar);
    return node;
}

// ---- Operators on a variable ---------------------------------------------------------------------

// Handlers of an operator on a variable that holds real scalars only: the operand is such a variable too, or
// a real scalar constant. A step has no operand.
struct VariableFast {
    Opr op;
    ExecFn with_var, with_const, alone;
};
static const VariableFast variable_fast[] = {
    {Opr::AddAsgn, addAsgn_DD, addAsgn_DS, nullptr},  {Opr::SubAsgn, subAsgn_DD, subAsgn_DS, nullptr},
    {Opr::MulAsgn, mulAsgn_DD, mulAsgn_DS, nullptr},  {Opr::DvdAsgn, dvdAsgn_DD, dvdAsgn_DS, nullptr},
    {Opr::PreInc, nullptr, nullptr, doVarPreInc_D},   {Opr::PreDec, nullptr, nullptr, doVarPreDec_D},
    {Opr::PostInc, nullptr, nullptr, doVarPostInc_D}, {Opr::PostDec, nullptr, nullptr, doVarPostDec_D},
};

static ExecFn fastHandler(const VariableFast &fast, const PcNode *node) {
    if (fast.alone) return fast.alone;
    assert(node->ncub == 1);
    const PcNode *operand = node->child(0);
    if (is_ds_var_node(operand)) return fast.with_var;
    return is_ds_const_node(operand) ? fast.with_const : nullptr;
}

// The operators beyond the handled ones keep the handler, so that the six of them that have no in-place form
// assign nothing to a plain variable.
void setOpr(PcNode *node, Opr op) {
    node->kind = op;
    if (index(op) <= index(Opr::Yield)) node->exec = pcOprn[index(op)];
    for (const VariableFast &fast : variable_fast) {
        if (fast.op != op || !holdsRealScalars(node->value)) continue;
        if (ExecFn handler = fastHandler(fast, node)) node->exec = handler;
    }
}

// ---- Arithmetic ----------------------------------------------------------------------------------

struct ArithmeticFast {
    Opr op;
    BinaryFn fold;
    ExecFn var_var, var_const, const_var;
    ExecFn quick;  // may reuse temporaries of its operands
};
static const ArithmeticFast arithmetic_fast[] = {
    {Opr::Sum, getMatSum, getTreeSum_VDS_VDS, getTreeSum_VDS_MDS, getTreeSum_MDS_VDS, getTreeQSum},
    {Opr::Sub, getMatSub, getTreeSub_VDS_VDS, getTreeSub_VDS_MDS, getTreeSub_MDS_VDS, getTreeQSub},
    {Opr::Product, getMatProduct, getTreeProduct_VDS_VDS, getTreeProduct_VDS_MDS, getTreeProduct_MDS_VDS,
     getTreeQProd},
    {Opr::Slash, getMatSlash, getTreeSlash_VDS_VDS, getTreeSlash_VDS_MDS, getTreeSlash_MDS_VDS, nullptr},
};

static const ArithmeticFast *findArithmetic(Opr op) {
    for (const ArithmeticFast &fast : arithmetic_fast) {
        if (fast.op == op) return &fast;
    }
    return nullptr;
}

static ExecFn scalarHandler(const ArithmeticFast &fast, const PcNode *left, const PcNode *right) {
    bool left_var = is_ds_var_node(left), right_var = is_ds_var_node(right);
    if (left_var && right_var) return fast.var_var;
    if (left_var && is_ds_const_node(right)) return fast.var_const;
    if (right_var && is_ds_const_node(left)) return fast.const_var;
    return nullptr;
}

static bool isComputed(const PcNode *node) { return index(node->kind) >= index(Opr::Link); }

static PcNode *specialise(PcNode *node, const ArithmeticFast &fast) {
    PcNode *left = node->child(0), *right = node->child(1);
    if (left->isConstant() && right->isConstant()) {
        return newMatPcNode(fast.fold(left->constant, right->constant, node), node->line);
    }
    if (ExecFn handler = scalarHandler(fast, left, right)) {
        node->exec = handler;
    } else if (fast.quick && (isComputed(left) || isComputed(right))) {
        node->exec = fast.quick;
    }
    return node;
}

PcNode *newBinaryNode(Opr op, PcNode *left, PcNode *right) {
    PcNode *node = newPcNode(op, no_value, 2, left->line);
    setPcCub(node, 0, left);
    setPcCub(node, 1, right);
    const ArithmeticFast *fast = findArithmetic(op);
    return fast ? specialise(node, *fast) : node;
}

// The right operand of a product is always a list node, which evaluates to its only child: `a * (b, c)`
// multiplies by the list. So products are never folded.
PcNode *newProductNode(PcNode *left, PcNode *right) {
    if (right->kind != Opr::List) {
        PcNode *list = newPcNode(Opr::List, 1, 1, right->line);
        setPcCub(list, 0, right);
        right = list;
    }
    return newBinaryNode(Opr::Product, left, right);
}

// ---- From read to assignment ---------------------------------------------------------------------

Opr cmpasgn2opr(Opr op) {
    switch (op) {
        case Opr::AddAsgn: return Opr::Sum;
        case Opr::SubAsgn: return Opr::Sub;
        case Opr::MulAsgn: return Opr::Product;
        case Opr::DvdAsgn: return Opr::Slash;
        case Opr::DotMulAsgn: return Opr::DotMul;
        case Opr::ModAsgn: return Opr::Mod;
        case Opr::BslAsgn: return Opr::Backslash;
        case Opr::DotDivAsgn: return Opr::DotDiv;
        case Opr::PowAsgn: return Opr::Pow;
        case Opr::DotPowAsgn: return Opr::DotPow;
        default: tokenError("operatoration '%s' not implemented", opr2str(op));
    }
}

bool lv_has_par(const PcNode *node) {
    for (;; node = node->child(0)) {
        if (node->kind == Opr::ParFieldAsgn || node->kind == Opr::ParField || node->kind == Opr::Parent)
            return true;
        if (node->isConstant() || node->ncub == 0) return false;
        if (node->kind != Opr::MultiVarAsgn) continue;
        for (uint32_t k = 0; k < node->ncub; k++) {
            if (lv_has_par(node->child(k))) return true;
        }
        return false;
    }
}

static Opr fieldAssignment(const PcNode *node) {
    switch (node->child(0)->child(0)->kind) {
        case Opr::Parent: return Opr::ParFieldAsgn;
        case Opr::ForcedType: return Opr::ForcedFieldAsgn;
        default: return Opr::FieldAsgn;
    }
}

static Opr assignmentOf(const PcNode *node) {
    switch (node->kind) {
        case Opr::Variable: return Opr::VarAsgn;
        case Opr::Deref: return Opr::PtrAsgn;
        case Opr::GlobalVar: return Opr::GlobalAsgn;
        case Opr::Parameter: return Opr::ParmAsgn;
        case Opr::Ref: return Opr::RefAsgn;
        case Opr::Ref2: return Opr::Ref2Asgn;
        case Opr::Ref3: return Opr::Ref3Asgn;
        case Opr::RefMd: return Opr::RefMdAsgn;
        case Opr::RefM: return Opr::RefMAsgn;
        case Opr::Diag: return Opr::DiagAsgn;
        case Opr::DiagM: return Opr::DiagMAsgn;
        case Opr::ListEntry: return Opr::ListAsgn;
        case Opr::Field: return fieldAssignment(node);
        case Opr::ForcedField:
        case Opr::ForcedType: return Opr::ForcedFieldAsgn;
        case Opr::HashEntry: return Opr::HashAsgn;
        case Opr::DfltHashEntry: return Opr::DfltHashAsgn;
        case Opr::TargetList: return Opr::MultiVarAsgn;
        default: syntaxError(node->line, "invalid lvalue16 '%s'", opr2str(node->kind));
    }
}

void setAsgnOpr(PcNode *node) {
    assert(!node->isConstant() && node->ncub == 2);
    setOpr(node, assignmentOf(node));
    if (lv_has_par(node)) ctscope->usesparent = true;
}

}  // namespace vesko

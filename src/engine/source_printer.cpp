// Source text of a node, as the tree tells it: what messages quote. Operators stand without blanks, and
// brackets that only grouped are gone, for the tree does not know them.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "builtins/bfunc.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "engine/node.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "values/elements.h"

namespace vesko {

namespace {

// The text under construction. What does not fit is dropped: a message shows far less.
struct SourceText {
    char text[4096];
    uint32_t length = 0;

    void add(const char *s, size_t n) {
        n = std::min(n, sizeof text - length);
        memcpy(text + length, s, n);
        length += n;
    }
    void add(const char *s) { add(s, strlen(s)); }
    void add(char c) { add(&c, 1); }
    bool full() const { return length == sizeof text; }
};

void printNode(SourceText &out, const PcNode *node);

// ---- Constants, as a user writes them

constexpr uint32_t longest_printed_matrix = 64;

void printReal(SourceText &out, double x) {
    char digits[32];
    snprintf(digits, sizeof digits, "%.15g", x);
    if (!std::isnan(x) && strtod(digits, nullptr) != x) snprintf(digits, sizeof digits, "%.17g", x);
    out.add(digits);
}

void printWhole(SourceText &out, int32_t n, char suffix) {
    char digits[16];
    snprintf(digits, sizeof digits, "%d%c", n, suffix);
    out.add(digits);
}

void printComplex(SourceText &out, double re, double im) {
    if (re != 0) {
        printReal(out, re);
        if (!std::signbit(im)) out.add('+');
    }
    printReal(out, im);
    out.add('i');
}

void printElement(SourceText &out, const Matrix *m, uint32_t i) {
    switch (m->l2type) {
        case L2::IM:
        case L2::IS: return printWhole(out, m->ints()[i], 'Z');
        case L2::BY:
        case L2::BI: return printWhole(out, m->bytes()[i], 'B');
        case L2::CS: return printComplex(out, m->re()->rdata[i], m->im()->rdata[i]);
        case L2::CM:
            if (m->im()->rdata[i] == 0) return printReal(out, m->re()->rdata[i]);
            return printComplex(out, m->re()->rdata[i], m->im()->rdata[i]);
        default: return printReal(out, elementOf(m, i));
    }
}

void printRange(SourceText &out, const Matrix *m) {
    printReal(out, m->first());
    out.add(':');
    if (m->step() != 1) {
        printReal(out, m->step());
        out.add(':');
    }
    printReal(out, m->first() + (m->length - 1) * m->step());
}

// A large matrix was computed at parse time and has no written form.
void printNumeric(SourceText &out, const Matrix *m) {
    if (m->length == 1) return printElement(out, m, 0);
    if (m->l2type == L2::RNG && m->nrows == 1) return printRange(out, m);
    if (m->length > longest_printed_matrix) return out.add(opr2str(NodeKind::Constant));
    out.add('[');
    for (uint32_t i = 0; i < m->length; i++) {
        if (i) out.add(i % m->ncols ? ',' : ';');
        printElement(out, m, i);
    }
    out.add(']');
}

void printBuiltinName(SourceText &out, const Matrix *m) { out.add(getSymbolName(m->builtin()->name)); }

void printConstant(SourceText &out, const Matrix *m) {
    if (hasPlainElements(m->l2type) || isComplex(m->l2type)) return printNumeric(out, m);
    switch (m->l2type) {
        case L2::TX:
            out.add('"');
            out.add(m->text(), m->length);
            return out.add('"');
        case L2::BF: return printBuiltinName(out, m);
        case L2::RNG0: return out.add(':');
        case L2::COMPLETE: return out.add("_ALL");
        case L2::NUL: return out.add(opr2str(NodeKind::Constant));
        default: return out.add(getdatatypestr(m->l2type));
    }
}

// ---- Names

void printVariable(SourceText &out, int32_t k) {
    out.add(progstkdepth ? getSymbolName(getCtVar(k)->symbol) : getVarName(k));
}

void printGlobal(SourceText &out, int32_t k) { out.add(getSymbolName(getGlobalVariable(k)->name)); }

void printBuiltin(SourceText &out, int32_t k) {
    const Matrix *m = getBf(k);
    if (m->l2type == L2::BF)
        printBuiltinName(out, m);
    else
        out.add(get_num_bf_name(k));
}

void printParameter(SourceText &out, int32_t k) {
    out.add("this.");
    const Vector *parms = progstkdepth ? ctscope->parms : nullptr;
    const sfield *field = parms ? parms->at<sfield>(k) : getParameter(k);
    out.add(getFieldName(field->index));
}

// ---- Lists and operators

void printChild(SourceText &out, const PcNode *node, uint32_t k) {
    if (k < node->ncub && node->cub[k]) printNode(out, node->cub[k]);
}

void printJoined(SourceText &out, const PcNode *node, const char *separator) {
    for (uint32_t k = 0; k < node->ncub && !out.full(); k++) {
        if (k) out.add(separator);
        printChild(out, node, k);
    }
}

void print_node_list(SourceText &out, const PcNode *node, char open, char close, char separator) {
    const char between[] = {separator, '\0'};
    out.add(open);
    printJoined(out, node, between);
    out.add(close);
}

bool isSequence(const PcNode *node) {
    return node->kind == NodeKind::Sequence || node->kind == NodeKind::List || node->kind == NodeKind::VList;
}

void printLabel(SourceText &out, const PcNode *node) { out.add(opr2str(node->kind)); }

void printOperator(SourceText &out, const PcNode *node) { printJoined(out, node, opr2str(node->kind)); }

void printPrefix(SourceText &out, const PcNode *node) {
    printLabel(out, node);
    printChild(out, node, 0);
}

void printPostfix(SourceText &out, const PcNode *node) {
    printChild(out, node, 0);
    printLabel(out, node);
}

// Words need blanks around them.
void printWordOperator(SourceText &out, const PcNode *node) {
    printChild(out, node, 0);
    out.add(' ');
    printLabel(out, node);
    out.add(' ');
    printChild(out, node, 1);
}

void printOnlyChild(SourceText &out, const PcNode *node) { printChild(out, node, 0); }

template <char Open, char Close>
void printBracketed(SourceText &out, const PcNode *node) {
    print_node_list(out, node, Open, Close, ',');
}

// The last child of a literal stands for its `~`.
void printGrowingList(SourceText &out, const PcNode *node) {
    out.add('(');
    for (uint32_t k = 0; k < node->ncub; k++) {
        if (k) out.add(',');
        const bool mark = k + 1 == node->ncub && node->child(k)->kind == NodeKind::Atom;
        mark ? out.add('~') : printChild(out, node, k);
    }
    out.add(')');
}

void printMatrixRows(SourceText &out, const PcNode *node) {
    out.add('[');
    for (uint32_t k = 0; k < node->ncub && !out.full(); k++) {
        if (k) out.add(';');
        const PcNode *row = node->child(k);
        row->kind == NodeKind::MatRow ? printJoined(out, row, ",") : printNode(out, row);
    }
    out.add(']');
}

// ---- Variables and their steps

void printVariableNode(SourceText &out, const PcNode *node) { printVariable(out, node->value); }

void printVariableStore(SourceText &out, const PcNode *node) {
    printVariable(out, node->value);
    printPrefix(out, node);
}

void printVariablePrefix(SourceText &out, const PcNode *node) {
    printLabel(out, node);
    printVariable(out, node->value);
}

void printVariablePostfix(SourceText &out, const PcNode *node) {
    printVariable(out, node->value);
    printLabel(out, node);
}

void printLink(SourceText &out, const PcNode *node) {
    out.add(">>");
    printVariable(out, node->value);
}

// x++ of a target that is no plain variable: the child assigns its sum or difference with 1.
void printPostStep(SourceText &out, const PcNode *node) {
    const PcNode *store = node->ncub ? node->child(0) : nullptr;
    if (!store || store->ncub < 2) return printLabel(out, node);
    printChild(out, store, 0);
    out.add(store->child(1)->kind == NodeKind::Sum ? "++" : "--");
}

void printStore(SourceText &out, const PcNode *node) { printJoined(out, node, "="); }

void printGlobalNode(SourceText &out, const PcNode *node) { printGlobal(out, node->value); }
void printBuiltinNode(SourceText &out, const PcNode *node) { printBuiltin(out, node->value); }
void printParameterNode(SourceText &out, const PcNode *node) { printParameter(out, node->value); }
void printConstantNode(SourceText &out, const PcNode *node) { printConstant(out, node->constant); }

// ---- Indices, fields and intervals

void printIndexed(SourceText &out, const PcNode *node) {
    printChild(out, node, 0);
    out.add('[');
    const PcNode *index = node->ncub > 1 ? node->child(1) : nullptr;
    if (index && isSequence(index))
        printJoined(out, index, node->kind == NodeKind::RefM ? ";" : ",");
    else
        printChild(out, node, 1);
    out.add(']');
}

// The functions of missing indices; a hole was replaced by the whole range.
void printEntryFunction(SourceText &out, const PcNode *node) {
    const PcNode *index = node->ncub > 1 ? node->child(1) : node;
    printChild(out, node, 0);
    if (node->kind == NodeKind::EntryFun1) return out.add("[.]");
    out.add('[');
    node->kind == NodeKind::EntryFunCols ? printChild(out, index, 0) : out.add('.');
    out.add(',');
    node->kind == NodeKind::EntryFunRows ? printChild(out, index, 1) : out.add('.');
    out.add(']');
}

void printDiagonal(SourceText &out, const PcNode *node) {
    printChild(out, node, 0);
    out.add("[\\");
    if (node->kind == NodeKind::DiagM && node->ncub > 1) {
        const PcNode *index = node->child(1);
        out.add(',');
        isSequence(index) ? printChild(out, index, index->ncub - 1) : printNode(out, index);
    }
    out.add(']');
}

void printField(SourceText &out, const PcNode *node) {
    printChild(out, node, 0);
    out.add('.');
    out.add(getFieldName(node->value));
}

void printDefaultEntry(SourceText &out, const PcNode *node) {
    printChild(out, node, 0);
    out.add("@default");
}

// The value says which bounds belong to the interval: bit 1 the lower, bit 0 the upper.
void printInterval(SourceText &out, const PcNode *node) {
    print_node_list(out, node, node->value & 2 ? '[' : '(', node->value & 1 ? ']' : ')', ',');
}

// ---- Items of braces

template <const char *(*nameOf)(uint32_t)>
void printNamedItem(SourceText &out, const PcNode *node) {
    out.add(nameOf(node->value));
    out.add('=');
    printChild(out, node, 0);
}

void printHashItem(SourceText &out, const PcNode *node) { printJoined(out, node, "=>"); }

// As an item of a table it has the value alone, as a store the target too.
void printDefaultStore(SourceText &out, const PcNode *node) {
    if (node->ncub > 1) return printStore(out, node);
    out.add("default=>");
    printChild(out, node, 0);
}

// ---- Calls

void printVariableCall(SourceText &out, const PcNode *node) {
    printVariable(out, node->value);
    print_node_list(out, node, '(', ')', ',');
}

void printGlobalCall(SourceText &out, const PcNode *node) {
    printGlobal(out, node->value);
    print_node_list(out, node, '(', ')', ',');
}

void printBuiltinCall(SourceText &out, const PcNode *node) {
    printBuiltin(out, node->value);
    print_node_list(out, node, '(', ')', ',');
}

// The last child is the list of arguments.
void printArguments(SourceText &out, const PcNode *node) {
    const PcNode *args = node->ncub ? node->child(node->ncub - 1) : nullptr;
    if (args && isSequence(args)) return print_node_list(out, args, '(', ')', ',');
    print_node_list(out, node, '(', ')', ',');
}

void printSelfCall(SourceText &out, const PcNode *node) {
    out.add(opr2str(NodeKind::This));
    printArguments(out, node);
}

void printPortCall(SourceText &out, const PcNode *node) {
    printLabel(out, node);
    printArguments(out, node);
}

void printCallOfChild(SourceText &out, const PcNode *node) {
    printChild(out, node, 0);
    print_node_list(out, node->child(1), '(', ')', ',');
}

// The items name symbols here, not fields.
void printNamedCall(SourceText &out, const PcNode *node) {
    const PcNode *items = node->child(1);
    printChild(out, node, 0);
    out.add('{');
    for (uint32_t k = 0; k < items->ncub; k++) {
        if (k) out.add(',');
        printNamedItem<getSymbolName>(out, items->child(k));
    }
    out.add('}');
}

void printSysCommand(SourceText &out, const PcNode *node) {
    out.add(getSyscmdName(static_cast<uint32_t>(node->value)));
    for (uint32_t k = 0; k < node->ncub; k++) {
        out.add(' ');
        printChild(out, node, k);
    }
}

template <char C>
void printSign(SourceText &out, const PcNode *) {
    out.add(C);
}

// ---- Any node

using Printer = void (*)(SourceText &, const PcNode *);

// Kinds first .. last print alike; kinds without a row print their label. The first row that fits counts.
struct PrinterRow {
    NodeKind first, last;
    Printer print;
};
using enum NodeKind;
constexpr PrinterRow printers[] = {
    {Constant, Constant, printConstantNode},
    {Variable, Variable, printVariableNode},
    {CopyVar, CopyVar, printVariableNode},
    {GlobalVar, GlobalVar, printGlobalNode},
    {Builtin, Builtin, printBuiltinNode},
    {Parameter, Parameter, printParameterNode},
    {Atom, Atom, printSign<'.'>},
    {MaxIndex, MaxDiag, printSign<'$'>},
    {DfltArg, DfltArg, printSign<'*'>},

    {VarAsgn, DvdAsgn, printVariableStore},
    {RefAsgn, RefMdAsgn, printStore},
    {PtrAsgn, PtrAsgn, printStore},
    {ListAsgn, HashAsgn, printStore},
    {DfltHashAsgn, DfltHashAsgn, printDefaultStore},
    {MultiVarAsgn, MultiVarAsgn, printStore},
    {ParmAsgn, ParmAsgn, printStore},
    {GlobalAsgn, GlobalAsgn, printStore},
    {PreInc, PreDec, printVariablePrefix},
    {PostInc, PostDec, printVariablePostfix},
    {PostIncDec, PostIncDec, printPostStep},

    {Link, Link, printLink},
    {Deref, Deref, printPostfix},
    {Transpose, Transpose, printPostfix},
    {Not, Not, printPrefix},
    {Negative, Negative, printPrefix},
    {ListLength, ListLength, printPrefix},
    {Or, DotPow, printOperator},
    {FuncMul, StrictSuperset, printOperator},
    {Intersection, Union, printOperator},
    {ListJoin, ListJoin, printOperator},
    {Connect, Connect2Way, printOperator},
    {ForcedType, ForcedType, printOperator},
    {Colon1, Colon2, printOperator},
    {In, In, printWordOperator},
    {Interval, Interval, printInterval},

    {Ref, RefMd, printIndexed},
    {RefM, RefM, printIndexed},
    {EntryFun1, EntryFunCols, printEntryFunction},
    {Diag, DiagM, printDiagonal},
    {ListEntry, ListEntry, printOperator},
    {HashEntry, HashEntry, printOperator},
    {DfltHashEntry, DfltHashEntry, printDefaultEntry},
    {Field, ParField, printField},

    {MatRows, MatRows, printMatrixRows},
    {MatRow, MatRow, printBracketed<'[', ']'>},
    {Sequence, Sequence, printBracketed<'(', ')'>},
    {List, List, printBracketed<'(', ')'>},
    {VList, VList, printGrowingList},
    {TargetList, TargetList, printBracketed<'(', ')'>},
    {Struct, Set, printBracketed<'{', '}'>},
    {FieldItem, FieldItem, printNamedItem<getFieldName>},
    {HashItem, HashItem, printHashItem},

    {VarCall0, VarCall7, printVariableCall},
    {BuiltinCall, BuiltinCall, printBuiltinCall},
    {GlobalCall0, GlobalCall7, printGlobalCall},
    {MemberCall0, MemberCall7, printCallOfChild},
    {PartialCall, PartialCall, printCallOfChild},
    {MemberCallNp, MemberCallNp, printNamedCall},
    {NamedCall, NamedCall, printNamedCall},
    {SelfCall0, SelfCall7, printSelfCall},
    {ProcGet, ProcPut, printPortCall},

    {SysCommand, SysCommand, printSysCommand},
    {SetAns, ThrowValue, printOnlyChild},
};

void printNode(SourceText &out, const PcNode *node) {
    if (out.full()) return;
    if (stackLow()) return out.add("...");
    for (const PrinterRow &row : printers)
        if (row.first <= node->kind && node->kind <= row.last) return row.print(out, node);
    printLabel(out, node);
}

}  // namespace

Matrix *pcnode2str(PcNode *node) {
    SourceText out;
    printNode(out, node);
    return newStrMatCopyN(out.text, out.length);
}

}  // namespace vesko

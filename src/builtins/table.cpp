// The tables of built-ins and named constants, their registration, and calls that are folded at parse time.
#include "builtins/bfunc.h"

#include <cassert>
#include <initializer_list>
#include <limits>

#include "builtins/domain_family.h"
#include "builtins/regexp_match.h"
#include "builtins/sort.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/node.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "multiprec/precision.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

Matrix *Class_R, *Class_Z, *Class_C, *Class_D, *Class_I, *Class_B, *Class_L, *Class_M;

// ---- Look-up

constexpr uint32_t n_bf_buckets = 1023;

struct BfNode {
    uint32_t symbol;
    uint32_t k;
    BfNode *next;
};

static Vector *bfvec;  // a Variable each
static BfNode *BfTable[n_bf_buckets];
static uint32_t first_constant;

// The newest registration of a name wins.
uint32_t addBf(uint32_t symbol, Matrix *value) {
    const uint32_t k = addElement(bfvec, newVar(symbol, value));
    BfNode *&bucket = BfTable[getHashCode(getSymbolName(symbol))];
    BfNode *node = newBlock<BfNode>();
    *node = {symbol, k, bucket};
    bucket = node;
    return k;
}

uint32_t findBuiltin(uint32_t symbol) {
    const BfNode *node = BfTable[getHashCode(getSymbolName(symbol))];
    while (node && node->symbol != symbol) node = node->next;
    return node ? node->k : not_found;
}

uint32_t findBf(uint32_t symbol) {
    const uint32_t k = findGv(symbol);
    if (k == not_found) return not_found;
    const Matrix *m = getGv(k);
    return m->l2type == L2::BF && m->builtin()->name == symbol ? k : not_found;
}

static const Variable *entry(uint32_t k) { return bfvec->at<Variable>(k); }

Matrix *getBf(uint32_t k) { return entry(k)->value; }

Matrix *getBuiltinF(PcNode *node) { return getBf(static_cast<uint32_t>(node->value)); }

const char *get_num_bf_name(uint32_t k) {
    if (k < first_constant || k >= bfvec->size) return "?";
    return getSymbolName(static_cast<uint32_t>(entry(k)->name));
}

// ---- Folding

static bool isFoldable(const Bfunc *bf, const PcNode *args) {
    if (bf->nparms || bf->noFold) return false;
    if (args->ncub == 1 && args->child(0)->kind == Opr::Atom) return true;
    for (uint32_t i = 0; i < args->ncub; i++) {
        const PcNode *arg = args->child(i);
        if (!arg->isConstant() || !isNumeric(arg->constant->l2type)) return false;
    }
    return true;
}

PcNode *getBFCallNode(uint32_t k, PcNode *args, uint32_t line) {
    args->value = static_cast<int32_t>(k);
    setOpr(args, Opr::BuiltinCall);
    if (!isFoldable(getGv(k)->builtin(), args)) return args;
    return newMatPcNode(args->exec(args), line);
}

// ---- Registration

static const BfRow rows[] = {
#define BF(text, function, input_names, ...) \
    BfRow{.name = text, .worker = function, .inputs = input_names __VA_OPT__(, ) __VA_ARGS__},
#define BF_LATER(text, input_names, room)                               \
    BfRow{.name = text,                                                 \
          .worker = [](Matrix *, Matrix **, PcNode *node) -> Matrix * { \
              error_not_built(node, "'" text "' (" room ")");           \
          },                                                            \
          .inputs = input_names,                                        \
          .noFold = true,                                               \
          .later = true},
#define DOMAIN_SHAPES DOMAIN_ROWS
#include "builtins/builtins.def"
#undef BF
};

static Matrix *newBuiltin(const BfRow &row) { return newBfMat(make_bf(row)); }

// Every built-in is a global and an entry of the table under one number, as long as no other global
// exists.
static void addBuiltins() {
    for (const BfRow &row : rows) {
        Matrix *m = newBuiltin(row);
        const uint32_t symbol = m->builtin()->name;
        const uint32_t global = addGv(symbol, m);
        const uint32_t k = addBf(symbol, m);
        assert(global == k);
        (void)global, (void)k;
    }
}

static void addSettings() {
    constexpr double digits = 6;
    Matrix *format = newStrMatCopy("g"), *ndigits = newRealScalarMat(digits);
    struct Setting {
        const char *name;
        Matrix *value;
        BfRow domain;
    };
    static const Setting settings[] = {
        {"mpf_ndigits", newIntScalarMat(max_mantissa_nbits), {"_mpf_ndig_domain", mpf_ndig_domain_bf, "x"}},
        {"disp_format", format, {"_disp_format_domain", disp_format_domain_bf, "x"}},
        {"disp_format_scalar", format, {"_disp_format_scalar_domain", disp_format_scalar_domain_bf, "x"}},
        {"disp_ndigits", ndigits, {"_disp_ndigits_domain", disp_ndigits_domain_bf, "x"}},
        {"disp_ndigits_scalar", ndigits, {"_disp_ndigits_scalar_domain", disp_ndigits_scalar_domain_bf, "x"}},
    };
    for (const Setting &s : settings) addGvWithDomain(findSymbolIndex(s.name), s.value, newBuiltin(s.domain));
}

static void addConstant(const char *name, Matrix *value) { addBf(findSymbolIndex(name), value); }

static void addConstants() {
    using Real = std::numeric_limits<double>;
    using Integer = std::numeric_limits<int32_t>;
    first_constant = bfvec->size;
    addConstant("pi", newRealScalarMat(0x1.921fb54442d18p1));
    addConstant("e", newRealScalarMat(0x1.5bf0a8b145769p1));
    addConstant("inf", newRealScalarMat(Real::infinity()));
    addConstant("nan", newRealScalarMat(Real::quiet_NaN()));
    addConstant("eps", newRealScalarMat(Real::epsilon()));
    addConstant("realmin", newRealScalarMat(Real::min()));
    addConstant("realmax", newRealScalarMat(Real::max()));
    addConstant("intmin", newIntScalarMat(Integer::min()));
    addConstant("intmax", newIntScalarMat(Integer::max()));
    addConstant("true", theTrueMat());
    addConstant("false", theFalseMat());
    addConstant("null", theEmptyMat());
    addConstant("_ALL", theCompleteMat());
    Matrix *imaginary_unit = newCompScalarMat(0, 1);
    for (const char *name : {"i", "j", "I", "J"}) addConstant(name, imaginary_unit);
}

static void setClasses() {
    struct Place {
        const char *name;
        Matrix *&value;
    };
    const Place places[] = {
        {"_R", Class_R}, {"_Z", Class_Z}, {"_C", Class_C}, {"_D", Class_D},
        {"_I", Class_I}, {"_B", Class_B}, {"_L", Class_L}, {"_M", Class_M},
    };
    for (const Place &p : places) p.value = getBf(findBuiltin(findSymbolIndex(p.name)));
}

// ---- The audit of links

static void auditBfunc(const Matrix *m) {
    const Bfunc *bf = m->builtin();
    const uint32_t n = bf->parmValues ? bf->parmValues->size : 0;
    for (uint32_t i = 0; i < n; i++) auditLink(bf->parmValues->matAt(i));
    if (!bf->inputs || !auditFirst(bf->inputs)) return;
    for (const BfInput *input = bf->inputs; input; input = input->next) auditLink(input->dflt);
}

static void auditTable() {
    for (uint32_t k = 0; k < bfvec->size; k++) auditVariable(entry(k));
}

void setBfunc() {
    constexpr uint32_t room = 512;
    setPayloadFree(L2::BF, [](Matrix *m) { freeBfunc(m->builtin()); });
    setPayloadWalk(L2::BF, auditBfunc);
    addHolderWalk("table of built-ins", auditTable);
    initPatterns();
    bfvec = newVector(room);
    addBuiltins();
    addSettings();
    addConstants();
    setClasses();
}

}  // namespace vesko

// The table of methods, and the protocol of a call: what it works on, and how a change is made and kept.
#include "members/methods.h"

#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "numerics/dense.h"
#include "values/convert.h"

namespace vesko {

namespace {

// ---- The table

struct Method {
    FieldIndex field;
    KindSet owners;
    uint32_t least, most;
    MethodFn worker;
    bool changes = true, evaluated = true;
};

constexpr Method methods[] = {
#define METHOD(f, o, lo, hi, w, ...) \
    Method{.field = FIELD_INDEX_##f, \
           .owners = o,              \
           .least = lo,              \
           .most = hi,               \
           .worker = w __VA_OPT__(, ) __VA_ARGS__},
#include "members/methods.def"
#undef METHOD
};
constexpr unsigned n_methods = sizeof methods / sizeof *methods;
constexpr uint8_t no_method = UINT8_MAX;
static_assert(n_methods < no_method);

constexpr uint32_t first_method_field = N_AUTO_FIELDS;
constexpr uint32_t n_method_fields = n_fixed_fields - first_method_field;

struct MethodTable {
    uint8_t rows[n_kinds][n_method_fields];

    constexpr MethodTable() : rows{} {
        for (auto &fields : rows)
            for (uint8_t &row : fields) row = no_method;
        for (unsigned k = 0; k < n_methods; k++) enter(methods[k], k);
    }
    // What throws here does not compile.
    constexpr void enter(const Method &method, unsigned k) {
        if (method.changes && !method.evaluated) throw "a change comes behind the arguments";
        for (unsigned kind = 0; kind < n_kinds; kind++) {
            if (!method.owners.has(static_cast<L2>(kind))) continue;
            uint8_t &row = rows[kind][method.field - first_method_field];
            if (row != no_method) throw "two rows for one kind and field";
            row = k;
        }
    }
};
constexpr MethodTable table;

const Method *findMethod(const Matrix *owner, uint32_t field) {
    if (field < first_method_field || field >= n_fixed_fields) return nullptr;
    const uint8_t row = table.rows[index(owner->l2type)][field - first_method_field];
    return row == no_method ? nullptr : &methods[row];
}

const Method &demandMethod(const Matrix *owner, PcNode *node, uint32_t nargs) {
    const uint32_t field = static_cast<uint32_t>(node->child(0)->value);
    const Method *method = findMethod(owner, field);
    if (!method || nargs < method->least || nargs > method->most) error_dne(node, getFieldName(field));
    return *method;
}

}  // namespace

// ---- One call

// On a target, the owner is read again behind the arguments, which may have given the place another value.
MethodCall::MethodCall(PcNode *node, Matrix *owner, bool changes, bool evaluated)
    : node(node), owner(owner), args(theEmptyMat()), nargs(node->child(1)->ncub), first_pin(pinCount()) {
    PcNode *place = node->child(0)->child(0);
    on_target = changes && isTarget(place);
    if (on_target) {
        releaseMat(owner);
        target = openTarget(place);
    } else {
        owner_pin = pinCount();
        pinMat(owner);
    }
    if (evaluated && nargs) args = pinMat(evalArgVec(node->child(1)));
    if (on_target) this->owner = peekTarget(target, judged);
}

int32_t MethodCall::integerArg(uint32_t k, int32_t least, int32_t most, const char *name) const {
    int32_t n;
    if (!extract_integer(arg(k), n) || n < least || n > most)
        error_bf_argk_domain(node, name, static_cast<int32_t>(k + 1));
    return n;
}

double MethodCall::realArg(uint32_t k, const char *name) const {
    double x;
    if (!extract_RS(arg(k), x)) error_bf_argk_domain(node, name, static_cast<int32_t>(k + 1));
    return x;
}

// The statement of this call is about to give `ans` its result, as a rule the owner. So an `ans` that still
// holds the owner from the statement before need not make it a shared one: in a loop of such statements each
// would copy it.
void MethodCall::leaveAns() {
    if (node->value == no_value || judged || owner->nlinks() != 2) return;
    Variable *ans = getVar(static_cast<uint32_t>(node->value));
    if (ans->value == owner && target.slot != &ans->value && !ans->domain)
        replaceMat(ans->value, theEmptyMat());
}

Matrix *MethodCall::change() {
    if (on_target) {
        leaveAns();
        owner = uniquelize(target);
        if (target.hash) replace(cloneMatrix(getDfltHashVal(target.hash->table())));
    } else if (owner->nlinks() > 1) {
        owner_pin = pinCount();
        owner = pinMat(cloneMatrix(owner));
    }
    changed = true;
    if (kinds::real_matrices.has(owner->l2type) && owner->l2type != L2::RM) strip_pm(owner);
    return owner;
}

Matrix *&MethodCall::place() { return on_target ? *target.slot : pinned[owner_pin]; }

Matrix *MethodCall::replace(Matrix *m) { return owner = replaceMat(place(), m); }

Matrix *MethodCall::close(Matrix *result) {
    if (on_target && changed) return closeTarget(target, result, node);
    keepResult(result);
    releasePins(first_pin);
    return passResult(result);
}

// The row is looked up twice: for what the owner was before the arguments were evaluated, and after.
Matrix *callMethod(Matrix *owner, PcNode *node) {
    const uint32_t nargs = node->child(1)->ncub;
    const Method &method = demandMethod(owner, node, nargs);
    MethodCall call(node, owner, method.changes, method.evaluated);
    return call.close(demandMethod(call.owner, node, nargs).worker(call));
}

}  // namespace vesko

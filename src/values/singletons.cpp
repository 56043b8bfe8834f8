// The constant singletons. They belong to no pool, and no program can bring their count down to that of a
// temporary.
#include <limits>

#include "values/matrix.h"

namespace vesko {

static Matrix bareSingleton(L2 t, uint32_t ncols) {
    Matrix m = {};
    m.l1type = L1::PF;
    m.l2type = t;
    m.status = status_singleton;
    m.ncols = ncols;
    return m;
}

static Matrix scalarSingleton(double *value) {
    Matrix m = bareSingleton(L2::RS, 1);
    m.l1type = L1::RS;
    m.nrows = m.length = m.cap = 1;
    m.rdata = value;
    return m;
}

static char no_text[] = "";

static Matrix textSingleton() {
    Matrix m = bareSingleton(L2::TX, 1);
    m.nrows = m.cap = 1;
    m.vdata = no_text;
    return m;
}

namespace detail {

static double one = 1, zero = 0, minus_one = -1, e = 0x1.5bf0a8b145769p1;
static double nan = -std::numeric_limits<double>::quiet_NaN();  // the sign that -0.0 / 0.0 has
static double inf = std::numeric_limits<double>::infinity(), minus_inf = -inf;

#define SINGLETON(name, record)        \
    static Matrix name##_rec = record; \
    Matrix *const name = &name##_rec;

SINGLETON(empmat, bareSingleton(L2::NUL, 1))
SINGLETON(nullmat, bareSingleton(L2::NUL, 1))
SINGLETON(dnemat, bareSingleton(L2::DNE, 1))
SINGLETON(truemat, scalarSingleton(&one))
SINGLETON(falsemat, scalarSingleton(&zero))
SINGLETON(negonemat, scalarSingleton(&minus_one))
SINGLETON(nlogbasemat, scalarSingleton(&e))
SINGLETON(nanmat, scalarSingleton(&nan))
SINGLETON(infmat, scalarSingleton(&inf))
SINGLETON(ninfmat, scalarSingleton(&minus_inf))
SINGLETON(completemat, bareSingleton(L2::COMPLETE, 1))
SINGLETON(rng0mat, bareSingleton(L2::RNG0, 0))
SINGLETON(empstrmat, textSingleton())

}  // namespace detail

// ---- Display names

static const char *const kind_names[n_kinds] = {
    "integer matrix",
    "even spaced vector",
    "integer scalar",
    "real matrix",
    "real scalar",
    "byte matrix",
    "binary matrix",
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    "sparse matrix",
    nullptr,
    "arbitrary precision integer",
    "multiprecision floating point number",
    "complex scalar",
    "complex matrix",
    "list",
    nullptr,
    "user-defined function",
    "built-in or system generated function",
    "object of user-defined class",
    "real multidimensional matrix",
    "complex multidimensional matrix",
    "string",
    "interval",
    "pointer",
    "finite set",
    nullptr,
    "null",
    "set",
    "class",
    "regular expression",
    "automaton",
    "stack",
    "queue",
    "hash table",
    "conditional class",
    "local variable address",
    "DNE",
    "pointer set",
    "file",
};

const char *getdatatypestr(unsigned l2type) {
    const char *name = l2type < n_kinds ? kind_names[l2type] : nullptr;
    return name ? name : "unknown";
}

}  // namespace vesko

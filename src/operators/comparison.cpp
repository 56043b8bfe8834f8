// Comparisons of the plain families. Each answers one truth: whether the relation holds for all elements.
#include "engine/errors.h"
#include "operators/families.h"
#include "operators/plain.h"

namespace vesko {

struct Equ {
    template <class T>
    static bool holds(T a, T b) {
        return a == b;
    }
};
struct Les {
    template <class T>
    static bool holds(T a, T b) {
        return a < b;
    }
};
struct Leq {
    template <class T>
    static bool holds(T a, T b) {
        return a <= b;
    }
};

// Different shapes are unequal, and have no order.
template <class Relation, L1 L, L1 R>
static bool compare(const Matrix *a, const Matrix *b, PcNode *node) {
    using C = Common<Element<L>, Element<R>>;
    const auto *x = elementsOf<Element<L>>(a);
    const auto *y = elementsOf<Element<R>>(b);
    if constexpr (!is_scalar<L> && !is_scalar<R>)
        if (!sameShape(a, b)) {
            if constexpr (std::is_same_v<Relation, Equ>) return false;
            error_size_nomatch(node);
        }
    const size_t n = is_scalar<L> ? b->length : a->length;
    for (size_t i = 0; i < n; i++)
        if (!Relation::holds(static_cast<C>(x[is_scalar<L> ? 0 : i]),
                             static_cast<C>(y[is_scalar<R> ? 0 : i])))
            return false;
    return true;
}

#define BIND(op, Relation, L, R)                                   \
    bool op##L##_##R(Matrix *left, Matrix *right, PcNode *node) {  \
        return compare<Relation, L1::L, L1::R>(left, right, node); \
    }
#define ORDERS(L, R) BIND(les, Les, L, R) BIND(leq, Leq, L, R)
VESKO_PLAIN_PAIRS(ORDERS)
#define EQUALITY(L, R) BIND(equ, Equ, L, R)
EQUALITY(RS, RM)
EQUALITY(RS, IS)
EQUALITY(RS, IM)
EQUALITY(RM, RS)
EQUALITY(RM, RM)
EQUALITY(RM, IS)
EQUALITY(RM, IM)
EQUALITY(IS, RS)
EQUALITY(IS, RM)
EQUALITY(IS, IS)
EQUALITY(IS, IM)
EQUALITY(IM, RS)
EQUALITY(IM, RM)
EQUALITY(IM, IS)
EQUALITY(IM, IM)

// Two real scalars alone count NaN as equal to NaN; inside matrices it is unequal to everything.
bool equRS_RS(Matrix *left, Matrix *right, PcNode *) {
    const double a = *left->rdata, b = *right->rdata;
    return a == b || (a != a && b != b);
}

bool are_equal(const Matrix *a, const Matrix *b) {
    return a == b || equfun[pairIndex(a, b)](const_cast<Matrix *>(a), const_cast<Matrix *>(b), nullptr);
}

}  // namespace vesko

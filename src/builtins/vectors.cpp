// Products of vectors, differences of neighbours, and the trace. Integers among themselves stay integers, and
// wrap; bytes count as integers here. Complex values go by their parts.
#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "operators/elementwise.h"
#include "operators/index_source.h"
#include "values/elements.h"

namespace vesko {

namespace {

bool isInteger(const Matrix *m) { return (kinds::integers | kinds::bits).has(m->l2type); }

// The real part is 0, the imaginary one 1: a real value has none.
const Matrix *partOf(const Matrix *m, unsigned part) {
    if (isComplex(m->l2type)) return m->entries()[part];
    return part ? nullptr : m;
}

struct Pair {
    Matrix *a, *b;
    bool complex() const { return isComplex(a->l2type) || isComplex(b->l2type); }
    bool integer() const { return isInteger(a) && isInteger(b); }
};

Pair readPair(Matrix *args, PcNode *node, const char *name) {
    demandCount(args, 2, node, name);
    const Pair pair{args->entries()[0], args->entries()[1]};
    demandKinds(pair.a, kinds::dense, node, name);
    demandKinds(pair.b, kinds::dense, node, name);
    demandEqualLengths(pair.a, pair.b, node, name);
    return pair;
}

// f(x, y) on the elements of two values of one length, read as T; not called when either is missing.
template <class T, class F>
void withElements(const Matrix *a, const Matrix *b, F f) {
    if (!a || !b) return;
    Source<T> x, y;
    openSource(x, a);
    openSource(y, b);
    f(x, y);
    closeSource(x);
    closeSource(y);
}

// ---- dot

template <class T>
T dotOf(const Matrix *a, const Matrix *b) {
    T sum = 0;
    withElements<T>(a, b, [&sum, n = a ? a->length : 0](const Source<T> &x, const Source<T> &y) {
        for (uint32_t i = 0; i < n; i++) sum = Sum::apply(sum, Mpy::apply(x(i), y(i)));
    });
    return sum;
}

// ---- cross

constexpr uint32_t space = 3;  // dimensions

// r += sign * a x b
template <class T>
void addCross(const Matrix *a, const Matrix *b, T sign, T *r) {
    withElements<T>(a, b, [sign, r](const Source<T> &x, const Source<T> &y) {
        for (uint32_t i = 0; i < space; i++) {
            const uint32_t j = (i + 1) % space, k = (i + 2) % space;
            const T minor = Sub::apply(Mpy::apply(x(j), y(k)), Mpy::apply(x(k), y(j)));
            r[i] = Sum::apply(r[i], Mpy::apply(sign, minor));
        }
    });
}

template <class T>
Matrix *zeroVector(const Matrix *shape) {
    Matrix *r = newPlainMat<T>(shape->nrows, shape->ncols);
    std::fill_n(elementsOf<T>(r), r->length, T{0});
    return r;
}

// ---- diff

template <class T>
Matrix *differencesOf(const Matrix *m) {
    const bool along_row = m->nrows == 1;
    const uint32_t rows = along_row ? 1 : m->nrows - 1, cols = along_row ? m->ncols - 1 : m->ncols;
    const uint32_t step = along_row ? 1 : m->ncols;
    Matrix *r = newPlainMat<T>(rows, cols);
    withElements<T>(m, m, [&](const Source<T> &x, const Source<T> &) {
        T *to = elementsOf<T>(r);
        for (uint32_t i = 0; i < r->length; i++) to[i] = Sub::apply(x(i + step), x(i));
    });
    return r;
}

// ---- trace

template <class T>
T traceOf(const Matrix *m) {
    T sum = 0;
    withElements<T>(m, m, [&sum, n = m->nrows](const Source<T> &x, const Source<T> &) {
        for (uint32_t i = 0; i < n; i++) sum = Sum::apply(sum, x(i * (n + 1)));
    });
    return sum;
}

}  // namespace

// The first factor is conjugated, so that dot(z, z) is the square of a length.
Matrix *dot_bf(Matrix *args, Matrix **, PcNode *node) {
    const Pair p = readPair(args, node, "dot");
    if (p.integer()) return newIntScalarMat(dotOf<int32_t>(p.a, p.b));
    const Matrix *re = partOf(p.a, 0), *im = partOf(p.a, 1);
    const double real = dotOf<double>(re, partOf(p.b, 0)) + dotOf<double>(im, partOf(p.b, 1));
    if (!p.complex()) return newRealScalarMat(real);
    return newCompScalarMat(real, dotOf<double>(re, partOf(p.b, 1)) - dotOf<double>(im, partOf(p.b, 0)));
}

Matrix *cross_bf(Matrix *args, Matrix **, PcNode *node) {
    const Pair p = readPair(args, node, "cross");
    if (p.a->length != space) error_bf_argk_domain(node, "cross", 0);
    if (p.integer()) {
        Matrix *r = zeroVector<int32_t>(p.a);
        addCross<int32_t>(p.a, p.b, 1, r->ints());
        return r;
    }
    const Matrix *re = partOf(p.a, 0), *im = partOf(p.a, 1);
    Matrix *real = zeroVector<double>(p.a);
    addCross(re, partOf(p.b, 0), 1.0, real->rdata);
    if (!p.complex()) return real;
    addCross(im, partOf(p.b, 1), -1.0, real->rdata);
    Matrix *imaginary = zeroVector<double>(p.a);
    addCross(re, partOf(p.b, 1), 1.0, imaginary->rdata);
    addCross(im, partOf(p.b, 0), 1.0, imaginary->rdata);
    return newCompMat(real, imaginary);
}

// Of a row the differences of neighbours, of all else those of rows; one element has none.
Matrix *diff_bf(Matrix *args, Matrix **, PcNode *node) {
    demandKinds(args, kinds::dense, node, "diff");
    if (args->length == 1) return theEmptyMat();
    if (isInteger(args)) return differencesOf<int32_t>(args);
    if (!isComplex(args->l2type)) return differencesOf<double>(args);
    Matrix *re = differencesOf<double>(args->re());
    return newCompMat(re, differencesOf<double>(args->im()));
}

Matrix *trace_bf(Matrix *args, Matrix **, PcNode *node) {
    demandKinds(args, kinds::dense, node, "trace");
    if (!args->isSquare()) refuseArgument(node, "trace");
    if (isInteger(args)) return newIntScalarMat(traceOf<int32_t>(args));
    const double re = traceOf<double>(partOf(args, 0));
    if (!isComplex(args->l2type)) return newRealScalarMat(re);
    return newCompScalarMat(re, traceOf<double>(args->im()));
}

}  // namespace vesko

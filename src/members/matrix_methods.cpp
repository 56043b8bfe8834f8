// Methods of matrices: exchange, scaling and sums of rows and columns, and other dimensions for the same
// elements.
#include <algorithm>

#include "engine/errors.h"
#include "engine/pins.h"
#include "members/methods.h"
#include "members/shape.h"
#include "operators/index.h"
#include "operators/index_walk.h"
#include "values/convert.h"

namespace vesko {

namespace {

// ---- Rows and columns, both called lines here

struct Rows {
    static uint32_t count(const Matrix *m) { return m->nrows; }
    static uint32_t width(const Matrix *m) { return m->ncols; }
    static size_t start(const Matrix *m, uint32_t i) { return size_t{i} * m->ncols; }
    static size_t stride(const Matrix *) { return 1; }
};
struct Columns {
    static uint32_t count(const Matrix *m) { return m->ncols; }
    static uint32_t width(const Matrix *m) { return m->nrows; }
    static size_t start(const Matrix *, uint32_t j) { return j; }
    static size_t stride(const Matrix *m) { return m->ncols; }
};

// Argument k as the number of a line, from 0.
template <class Line>
uint32_t lineArg(const MethodCall &call, uint32_t k, const char *name) {
    const auto last = static_cast<int32_t>(Line::count(call.owner));
    return static_cast<uint32_t>(call.integerArg(k, 1, last, name) - 1);
}

// Argument k, which may be left out, selects entries of the lines.
template <class Line>
IndexRun entriesArg(const MethodCall &call, uint32_t k) {
    const uint32_t width = Line::width(call.owner);
    if (call.nargs <= k) return IndexRun::spaced(width, 1, 1);
    uint32_t max;
    return indexRun(pinMat(chkIndxMat(call.arg(k), width, max, call.node->child(1)->child(k))));
}

// f(x) for the elements of a real matrix, or of each part of a complex one.
template <class F>
void eachPart(Matrix *m, F f) {
    if (!kinds::complexes.has(m->l2type)) return f(m->rdata);
    for (unsigned part = 0; part < 2; part++) f(unshare(m->entries()[part])->rdata);
}

// f(x, y) for the entries of line i beside those of line j, on the private copy of the owner.
template <class Line, class F>
Matrix *changeLines(MethodCall &call, uint32_t i, uint32_t j, const IndexRun &entries, F f) {
    Matrix *m = call.change();
    const size_t a = Line::start(m, i), b = Line::start(m, j), stride = Line::stride(m);
    eachPart(m, [&](double *x) {
        entries.visit([&, n = entries.length](auto at) {
            for (uint32_t k = 0; k < n; k++) f(x[a + at(k) * stride], x[b + at(k) * stride]);
        });
    });
    return m;
}

template <class Line>
Matrix *swapLines(MethodCall &call, const char *name) {
    const uint32_t i = lineArg<Line>(call, 0, name), j = lineArg<Line>(call, 1, name);
    const IndexRun entries = entriesArg<Line>(call, 2);
    if (i == j) return call.owner;
    return changeLines<Line>(call, i, j, entries, [](double &x, double &y) { std::swap(x, y); });
}

template <class Line>
Matrix *scaleLine(MethodCall &call, const char *name) {
    const uint32_t i = lineArg<Line>(call, 0, name);
    const double factor = call.realArg(1, name);
    const IndexRun entries = entriesArg<Line>(call, 2);
    if (factor == 1) return call.owner;
    return changeLines<Line>(call, i, i, entries, [factor](double &x, double &) { x *= factor; });
}

template <class Line>
Matrix *addLines(MethodCall &call, const char *name) {
    const uint32_t from = lineArg<Line>(call, 0, name), to = lineArg<Line>(call, 1, name);
    const double factor = call.realArg(2, name);
    const IndexRun entries = entriesArg<Line>(call, 3);
    if (factor == 0) return call.owner;
    return changeLines<Line>(call, from, to, entries, [factor](double &x, double &y) { y += factor * x; });
}

}  // namespace

// The fields stand without the s that the messages have.
Matrix *method_swaprows(MethodCall &call) { return swapLines<Rows>(call, "swaprows"); }
Matrix *method_swapcolumns(MethodCall &call) { return swapLines<Columns>(call, "swapcolumns"); }
Matrix *method_scalerow(MethodCall &call) { return scaleLine<Rows>(call, "scalerows"); }
Matrix *method_scalecolumn(MethodCall &call) { return scaleLine<Columns>(call, "scalecolumns"); }
Matrix *method_addrows(MethodCall &call) { return addLines<Rows>(call, "addrows"); }
Matrix *method_addcolumns(MethodCall &call) { return addLines<Columns>(call, "addcolumns"); }

Matrix *method_reshape(MethodCall &call) {
    const Shape shape = readShape(call.args->entries(), call.nargs, call.owner->length, call.node);
    Matrix *m = call.change();
    setShape(m, shape);
    return m;
}

}  // namespace vesko

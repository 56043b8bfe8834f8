// Sums, means, variances and extremes of a value, or of its rows or columns, as built-ins and as automatic
// fields. Row forms answer a column, column forms a row.
#include <type_traits>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "members/auto_fields.h"
#include "numerics/reduce.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

static Matrix *zero() { return newRealScalarMat(0); }
static bool acceptsTruth(const Matrix *m) {
    double x;
    return extract_RS(m, x);
}
const BfParm reduction_parms[1] = {{"skipnan", zero, acceptsTruth}};

namespace {

enum class Lines : uint8_t { Whole, Rows, Columns };

// What is reduced, and how: one call.
struct Reduction {
    Matrix *m;
    Lines lines;
    bool skipnan;
    const char *name;
    PcNode *node;

    [[noreturn]] void refuse() const { refuseArgument(node, name); }
};

template <class Op>
constexpr bool is_moment = std::is_same_v<Op, Var> || std::is_same_v<Op, Stddev>;
template <class Op>
constexpr bool is_additive = std::is_same_v<Op, Sum> || std::is_same_v<Op, Mean>;
template <class Op>
constexpr bool is_range = std::is_same_v<Op, Range>;

// ---- Results: by rows and columns of lines, `width` values a line

template <class T>
Matrix *newResults(uint32_t rows, uint32_t cols, bool bits) {
    if constexpr (std::is_same_v<T, double>)
        return allocRealMat(checkedLength(rows, cols), rows, cols);
    else if constexpr (std::is_same_v<T, int32_t>)
        return newIntMat(rows, cols);
    else
        return bits ? newBinaryMat(rows, cols) : newByteMat(rows, cols);
}

template <class T>
T *resultsOf(Matrix *m) {
    return static_cast<T *>(m->rdata ? static_cast<void *>(m->rdata) : m->vdata);
}

template <class Op, class Source>
Matrix *reduceLines(const Reduction &r, const Source &source) {
    using T = typename Op::template Result<typename Source::Element>;
    constexpr unsigned width = Op::width;
    const uint32_t rows = r.m->nrows, cols = r.m->ncols;
    const bool bits = r.m->l2type == L2::BI;
    if (r.lines == Lines::Whole) {
        Matrix *result = newResults<T>(1, width, bits);
        Op::apply(Line<Source>{source, 0, 1, r.m->length}, r.skipnan, resultsOf<T>(result));
        return result;
    }
    const bool by_rows = r.lines == Lines::Rows;
    const uint32_t n = by_rows ? rows : cols;
    Matrix *result = by_rows ? newResults<T>(n, width, bits) : newResults<T>(width, n, bits);
    T *to = resultsOf<T>(result);
    for (uint32_t i = 0; i < n; i++) {
        T values[width];
        const Line<Source> line =
            by_rows ? Line<Source>{source, size_t{i} * cols, 1, cols} : Line<Source>{source, i, cols, rows};
        Op::apply(line, r.skipnan, values);
        for (unsigned w = 0; w < width; w++)
            to[by_rows ? size_t{i} * width + w : size_t{w} * n + i] = values[w];
    }
    return result;
}

// ---- Complex values: sums and means go by parts, and the variance is the sum of those of the parts

Matrix *addVariances(Matrix *re, Matrix *im, bool root) {
    for (uint32_t i = 0; i < re->length; i++) {
        re->rdata[i] += im->rdata[i];
        if (root) re->rdata[i] = std::sqrt(re->rdata[i]);
    }
    releaseMat(im);
    return re;
}

template <class Op>
Matrix *reduceComplex(const Reduction &r, const double *re, const double *im) {
    const ComplexPart real{re, im}, imaginary{im, re};
    if constexpr (is_additive<Op>) {
        Matrix *part = reduceLines<Op>(r, real);
        return newCompMat(part, reduceLines<Op>(r, imaginary));
    } else if constexpr (is_moment<Op>) {
        Matrix *part = reduceLines<Var>(r, real);
        return addVariances(part, reduceLines<Var>(r, imaginary), std::is_same_v<Op, Stddev>);
    } else {
        r.refuse();
    }
}

// ---- Lists of real scalars. NaN is skipped in the search for extremes.

template <class Op>
Matrix *reduceList(const Reduction &r) {
    if (is_moment<Op> || r.lines != Lines::Whole) r.refuse();
    const uint32_t n = r.m->length;
    if (n == 0) {
        if (!std::is_same_v<Op, Sum>) r.refuse();
        return newRealScalarMat(0);
    }
    Reduction of_values = r;
    of_values.m = allocRealMat(n, 1, n);
    for (uint32_t k = 0; k < n; k++)
        if (!extract_RS(r.m->entries()[k], of_values.m->rdata[k])) error_bf_argk_domain(r.node, r.name, 0);
    of_values.skipnan |= !is_additive<Op>;
    Matrix *result = reduceLines<Op>(of_values, Dense<double>{of_values.m->rdata});
    releaseMat(of_values.m);
    return result;
}

// ---- Any value. A scalar is its own sum, mean and extreme, and varies by nothing.

template <class Op>
Matrix *reduce(const Reduction &r) {
    Matrix *m = r.m;
    switch (m->l2type) {
        case L2::IS:
            if constexpr (is_moment<Op>) return theFalseMat();
            if constexpr (!is_range<Op>) return m;
            [[fallthrough]];
        case L2::IM: return reduceLines<Op>(r, Dense<int32_t>{m->ints()});
        case L2::RS:
            if constexpr (is_moment<Op>) return theFalseMat();
            if constexpr (!is_range<Op>) return m;
            [[fallthrough]];
        case L2::RM:
        case L2::UPPER:
        case L2::LOWER:
        case L2::SYMM:
        case L2::PM: return reduceLines<Op>(r, Dense<double>{m->rdata});
        case L2::RNG: return reduceLines<Op>(r, Spaced{m->first(), m->step()});
        case L2::BY:
        case L2::BI: return reduceLines<Op>(r, Dense<uint8_t>{m->bytes()});
        case L2::CS:
            if constexpr (is_moment<Op>) return theFalseMat();
            if constexpr (is_additive<Op>) return m;
            [[fallthrough]];
        case L2::CM: return reduceComplex<Op>(r, m->re()->rdata, m->im()->rdata);
        case L2::LS:
        case L2::VL: return reduceList<Op>(r);
        case L2::RMDM:
            if (r.lines != Lines::Whole) r.refuse();
            return reduceLines<Op>(r, Dense<double>{m->rdata});
        case L2::CMDM:
            if (r.lines != Lines::Whole) r.refuse();
            return reduceComplex<Op>(r, m->rdata, m->rdata + m->length);
        case L2::BAND:
        case L2::SPARSE: error_not_built(r.node, "a reduction of a band or sparse matrix");
        case L2::BIGINT:
        case L2::MPF: error_not_built(r.node, "a reduction of extended precision");
        case L2::NUL:
            if (std::is_same_v<Op, Sum> && r.lines == Lines::Whole) return newRealScalarMat(0);
            r.refuse();
        default: r.refuse();
    }
}

}  // namespace

#define REDUCTION(name, kernel, lines)                                                    \
    Matrix *name##_bf(Matrix *args, Matrix **parms, PcNode *node) {                       \
        return reduce<kernel>({args, Lines::lines, getMatLogVal(parms[0]), #name, node}); \
    }                                                                                     \
    Matrix *mat_field_##name(Matrix *m, PcNode *node) {                                   \
        return reduce<kernel>({m, Lines::lines, false, #name, node});                     \
    }
#include "builtins/reductions.def"
#undef REDUCTION

}  // namespace vesko

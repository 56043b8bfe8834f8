// Complex arithmetic on the two real parts. A real-like operand has no imaginary part, which is not the same
// as one of zeros: the other part goes through as it stands.
#include <algorithm>

#include "engine/errors.h"
#include "numerics/complex_scalar.h"
#include "operators/ladder.h"
#include "values/convert.h"

namespace vesko {

namespace {

struct Parts {
    Matrix *re;
    Matrix *im;    // null for a real operand
    Matrix *made;  // what re was converted to, or null

    Complex at(size_t k) const { return {re->rdata[k], im ? im->rdata[k] : 0}; }
};

Parts partsOf(Matrix *m) {
    if (isComplex(m->l2type)) return {m->re(), m->im(), nullptr};
    if (isDenseReal(m->l2type) && m->l1type != L1::PF) return {m, nullptr, nullptr};
    Matrix *real = convToDb(m);
    return {real, nullptr, real};
}

void releaseParts(const Parts &x, const Parts &y) {
    if (x.made) releaseMat(x.made);
    if (y.made) releaseMat(y.made);
}

Matrix *finished(Matrix *result, const Parts &x, const Parts &y) {
    releaseParts(x, y);
    return result;
}

Matrix *applyAndRelease(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    Matrix *result = apply(op, a, b, node);
    releaseMat(a);
    releaseMat(b);
    return result;
}

template <class F>
Matrix *eachComplex(const Parts &x, const Parts &y, PcNode *node, F f) {
    Pairing p;
    if (!pairUp(x.re, y.re, p)) error_size_nomatch(node);
    Matrix *result = allocCompMat(checkedLength(p.rows, p.cols), p.rows, p.cols);
    double *re = result->re()->rdata, *im = result->im()->rdata;
    eachPair(p, [&](size_t k, size_t i, size_t j) {
        const Complex z = f(x.at(i), y.at(j));
        re[k] = z.re;
        im[k] = z.im;
    });
    return result;
}

// The imaginary part of a sum or difference in which only one operand has one. If the shapes differ it is
// spread by adding the zeros of the other.
Matrix *loneImaginary(Arith op, const Parts &x, const Parts &y, PcNode *node) {
    const bool spread = !sameShape(x.re, y.re);
    if (!spread && x.im) return x.im;
    if (!spread) return op == Arith::Sum ? y.im : getMatNeg(y.im, node);
    const Matrix *bare = x.im ? y.re : x.re;
    Matrix *zeros = newZerosMat(bare->nrows, bare->ncols);
    Matrix *im = x.im ? apply(op, x.im, zeros, node) : apply(op, zeros, y.im, node);
    releaseMat(zeros);
    return im;
}

Complex powerOf(Complex a, Complex b) {
    Complex z;
    if (a.im == 0 && b.im == 0)
        real_real_pow(a.re, b.re, z.re, z.im);
    else
        cmpl_cmpl_pow(a.re, a.im, b.re, b.im, z.re, z.im);
    return z;
}

// Of two matrices, by the matrix product of the parts.
Matrix *matrixProduct(const Parts &x, const Parts &y, PcNode *node) {
    auto product = [node](Matrix *a, Matrix *b) { return getMatProduct(a, b, node); };
    if (!y.im) {
        Matrix *re = product(x.re, y.re);
        return newCompMat(re, product(x.im, y.re));
    }
    if (!x.im) {
        Matrix *re = product(x.re, y.re);
        return newCompMat(re, product(x.re, y.im));
    }
    Matrix *rr = product(x.re, y.re), *ii = product(x.im, y.im);
    Matrix *re = applyAndRelease(Arith::Sub, rr, ii, node);
    Matrix *ri = product(x.re, y.im), *ir = product(x.im, y.re);
    return newCompMat(re, applyAndRelease(Arith::Sum, ri, ir, node));
}

bool isScalarPair(const Parts &x, const Parts &y) { return x.re->length == 1 || y.re->length == 1; }

Complex multiply(Complex a, Complex b) { return a * b; }
Complex scale(Complex a, Complex b) { return {a.re * b.re, a.im * b.re}; }
Complex scaleBy(Complex a, Complex b) { return {a.re * b.re, a.re * b.im}; }
Complex divide(Complex a, Complex b) { return a / b; }

// A real factor scales both parts, so that it does not bring NaNs of infinities times zero.
Matrix *elementProduct(const Parts &x, const Parts &y, PcNode *node) {
    return eachComplex(x, y, node, x.im && y.im ? multiply : x.im ? scale : scaleBy);
}

}  // namespace

Matrix *complexSum(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const Parts x = partsOf(a), y = partsOf(b);
    Matrix *re = apply(op, x.re, y.re, node);
    Matrix *im = x.im && y.im ? apply(op, x.im, y.im, node) : loneImaginary(op, x, y, node);
    return finished(newCompMat(re, im), x, y);
}

Matrix *complexProduct(Arith, Matrix *a, Matrix *b, PcNode *node) {
    const Parts x = partsOf(a), y = partsOf(b);
    Matrix *result = isScalarPair(x, y) ? elementProduct(x, y, node) : matrixProduct(x, y, node);
    return finished(result, x, y);
}

// A quotient of matrices solves a linear system; a real divisor solves one for each part. The dotted quotient
// and quotients with a scalar go element by element.
Matrix *complexQuotient(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const Parts x = partsOf(a), y = partsOf(b);
    if (op == Arith::Ddv || isScalarPair(x, y)) return finished(eachComplex(x, y, node, divide), x, y);
    if (y.im) error_not_built(node, "complex linear systems");
    Matrix *re = apply(op, x.re, y.re, node);
    return finished(newCompMat(re, apply(op, x.im, y.re, node)), x, y);
}

Matrix *complexElements(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const Parts x = partsOf(a), y = partsOf(b);
    if (op == Arith::Dmu) return finished(elementProduct(x, y, node), x, y);
    if (!isScalarPair(x, y) && !sameShape(x.re, y.re)) error_size_nomatch(node);
    return finished(eachComplex(x, y, node, powerOf), x, y);
}

}  // namespace vesko

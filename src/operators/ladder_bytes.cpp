// Byte and binary arithmetic: unsigned 8 bits, and modulo 2.
#include "engine/errors.h"
#include "operators/ladder.h"
#include "values/convert.h"

namespace vesko {

// With an integer bytes are integers, with a real they are real.
Matrix *byteNumber(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const bool byte_left = a->l1type == L1::PF;
    const L1 family = (byte_left ? b : a)->l1type;
    if (family != L1::IS && family != L1::IM) return asReals(op, a, b, node);
    Matrix *x = byte_left ? convToIntMat(a) : a;
    Matrix *y = byte_left ? b : convToIntMat(b);
    return applyMade(op, x, y, a, b, node);
}

static bool bothBits(const Matrix *a, const Matrix *b) { return a->l2type == L2::BI && b->l2type == L2::BI; }

static Matrix *newBytesFor(const Matrix *a, const Matrix *b, uint32_t rows, uint32_t cols) {
    return bothBits(a, b) ? newBinaryMat(rows, cols) : newByteMat(rows, cols);
}

static void keepLowBits(Matrix *m) {
    if (m->l2type != L2::BI) return;
    for (uint32_t k = 0; k < m->length; k++) m->bytes()[k] &= 1;
}

template <class Op>
static Matrix *byteLoop(const Matrix *a, const Matrix *b, const Pairing &p, PcNode *node) {
    if constexpr (divides<Op>) refuseZeroDivisor(b->bytes(), b->length, node);
    Matrix *result = newBytesFor(a, b, p.rows, p.cols);
    const uint8_t *x = a->bytes(), *y = b->bytes();
    uint8_t *z = result->bytes();
    eachPair(p, [=](size_t k, size_t i, size_t j) {
        z[k] = static_cast<uint8_t>(Op::apply(static_cast<int32_t>(x[i]), static_cast<int32_t>(y[j])));
    });
    keepLowBits(result);
    return result;
}

static Matrix *byteLoopFor(Arith op, const Matrix *a, const Matrix *b, const Pairing &p, PcNode *node) {
    switch (op) {
        case Arith::Sum: return byteLoop<Sum>(a, b, p, node);
        case Arith::Sub: return byteLoop<Sub>(a, b, p, node);
        case Arith::Mod: return byteLoop<Mod>(a, b, p, node);
        case Arith::Mpy:
        case Arith::Dmu: return byteLoop<Mpy>(a, b, p, node);
        default: return byteLoop<Dvd>(a, b, p, node);
    }
}

static bool oneAlone(const Matrix *a, const Matrix *b) { return a->length == 1 || b->length == 1; }

// Bits of different shapes become real, so that the shape rule has a real result for them.
Matrix *byteElements(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const bool plain = sameShape(a, b) || oneAlone(a, b);
    if (bothBits(a, b) && !plain) return asReals(op, a, b, node);
    Pairing p;
    if (!pairUp(a, b, p) || (op == Arith::Mod && !plain)) error_size_nomatch(node);
    return byteLoopFor(op, a, b, p, node);
}

static Matrix *byteMatrixProduct(const Matrix *a, const Matrix *b) {
    Matrix *result = newBytesFor(a, b, a->nrows, b->ncols);
    const uint8_t *x = a->bytes(), *y = b->bytes();
    uint8_t *z = result->bytes();
    const size_t rows = a->nrows, inner = a->ncols, cols = b->ncols;
    std::fill(z, z + rows * cols, uint8_t{0});
    for (size_t i = 0; i < rows; i++)
        for (size_t k = 0; k < inner; k++)
            for (size_t j = 0; j < cols; j++)
                z[i * cols + j] = static_cast<uint8_t>(z[i * cols + j] + x[i * inner + k] * y[k * cols + j]);
    keepLowBits(result);
    return result;
}

// A binary 1 leaves a held binary factor as it is.
static Matrix *unchangedFactor(Matrix *a, Matrix *b) {
    if (!bothBits(a, b)) return nullptr;
    if (a->length == 1 && a->bytes()[0] == 1 && !b->isTemp()) return b;
    if (b->length == 1 && b->bytes()[0] == 1 && !a->isTemp()) return a;
    return nullptr;
}

Matrix *byteProduct(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    if (Matrix *factor = unchangedFactor(a, b)) return factor;
    if (a->ncols == b->nrows) return byteMatrixProduct(a, b);
    Pairing p;
    if (!oneAlone(a, b) || !pairUp(a, b, p)) error_size_nomatch(node);
    return byteLoopFor(op, a, b, p, node);
}

// Two matrices of one shape are divided as reals.
Matrix *byteQuotient(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    Pairing p;
    if (!oneAlone(a, b)) {
        if (!sameShape(a, b)) error_size_nomatch(node);
        return asReals(op, a, b, node);
    }
    pairUp(a, b, p);
    return byteLoopFor(op, a, b, p, node);
}

}  // namespace vesko

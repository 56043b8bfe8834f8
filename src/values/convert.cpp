// Conversion from one kind to another, by the kind of the result.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "engine/errors.h"
#include "values/elements.h"

namespace vesko {

int32_t truncToInt(double x) {
    if (std::isnan(x)) return 0;
    if (x <= INT32_MIN) return INT32_MIN;
    if (x >= INT32_MAX) return INT32_MAX;
    return static_cast<int32_t>(x);
}

[[noreturn]] static void errorUnbuiltKind(const Matrix *m) {
    switch (m->l2type) {
        case L2::BAND: error_not_built(nullptr, "band matrices");
        case L2::SPARSE: error_not_built(nullptr, "sparse matrices");
        case L2::BIGINT: error_not_built(nullptr, "big integers");
        default: error_not_built(nullptr, "multi-precision floats");
    }
}

// ---- To numbers

Matrix *convToDb(const Matrix *m) {
    if (m->l2type == L2::TX) {
        double x;
        if (sscanf(m->text(), "%lf", &x) != 1) error_convert(nullptr, m, L2::RM);
        return newRealScalarMat(x);
    }
    if (!isRealLike(m->l2type)) error_convert(nullptr, m, L2::RM);
    if (!hasPlainElements(m->l2type)) errorUnbuiltKind(m);
    Matrix *real = allocRealMat(m->length, m->nrows, m->ncols);
    copyElements(real->rdata, m, 0, m->length);
    return real;
}

static Matrix *intFromText(const Matrix *m) {
    long n;
    if (sscanf(m->text(), "%ld", &n) != 1) error_convert(nullptr, m, L2::IM);
    return newIntScalarMat(truncToInt(static_cast<double>(n)));
}

Matrix *convToIntMat(const Matrix *m) {
    switch (m->l2type) {
        case L2::IM:
        case L2::IS:
        case L2::RNG:
        case L2::RM:
        case L2::RS:
        case L2::BY:
        case L2::BI: {
            Matrix *ints = newIntMat(m->nrows, m->ncols);
            copyElements(ints->ints(), m, 0, m->length);
            return ints;
        }
        case L2::BIGINT:
        case L2::MPF: errorUnbuiltKind(m);
        case L2::TX: return intFromText(m);
        default: error_convert(nullptr, m, L2::IM);
    }
}

// Bytes and bits are made from reals and from the characters of a string only.
template <class Element>
static Matrix *bytesFrom(const Matrix *m, L2 target, Matrix *(*make)(uint32_t, uint32_t)) {
    switch (m->l2type) {
        case L2::RNG:
        case L2::RM:
        case L2::RS: {
            Matrix *bytes = make(m->nrows, m->ncols);
            copyElements(static_cast<Element *>(bytes->vdata), m, 0, m->length);
            return bytes;
        }
        case L2::TX: {
            Matrix *bytes = make(1, m->length);
            convertRun(static_cast<Element *>(bytes->vdata), m->bytes(), m->length);
            return bytes;
        }
        default: error_convert(nullptr, m, target);
    }
}

Matrix *convToByteMat(const Matrix *m) { return bytesFrom<uint8_t>(m, L2::BY, newByteMat); }
Matrix *convToBinaryMat(const Matrix *m) { return bytesFrom<Bit>(m, L2::BI, newBinaryMat); }

void by_to_bi(Matrix *m) {
    for (uint32_t i = 0; i < m->length; i++) m->bytes()[i] &= 1;
    m->l2type = L2::BI;
}

Matrix *convToCM(const Matrix *m) {
    if (!isRealLike(m->l2type)) error_convert(nullptr, m, L2::CM);
    Matrix *re = convToDb(m);
    return newCompMat(re, newZerosMat(m->nrows, m->ncols));
}

// ---- To text

static Matrix *textOfBytes(const Matrix *m) {
    const uint8_t base = m->l2type == L2::BI ? '0' : 0;
    Matrix *s = newStrMat(m->length + 1);
    for (uint32_t i = 0; i < m->length; i++) s->text()[i] = static_cast<char>(m->bytes()[i] + base);
    s->text()[m->length] = '\0';
    return s;
}

// A string of one character, which is NUL: what a value without a text yields.
static Matrix *textOfNothing() {
    Matrix *s = newStrMat(2);
    s->text()[0] = s->text()[1] = '\0';
    return s;
}

Matrix *convToString(Matrix *m) {
    const bool vector = m->nrows == 1 || m->ncols == 1;
    if (isByteKind(m->l2type) && vector) return textOfBytes(m);
    if (m->l2type == L2::TX) return m;
    if (m->length != 1) return textOfNothing();
    char digits[32];
    switch (m->l2type) {
        case L2::IS: snprintf(digits, sizeof digits, "%d", m->ints()[0]); break;
        case L2::RS: snprintf(digits, sizeof digits, "%g", m->rdata[0]); break;
        case L2::BIGINT:
        case L2::MPF: errorUnbuiltKind(m);
        default: return theEmptyMat();
    }
    return newStrMatCopy(digits);
}

Matrix *catstrings(const Matrix *list) {
    uint64_t size = 1;
    for (uint32_t i = 0; i < list->length; i++) size += list->entries()[i]->length;
    Matrix *s = newStrMat(checkedLength(size, 1));
    char *to = s->text();
    for (uint32_t i = 0; i < list->length; i++) {
        const Matrix *part = list->entries()[i];
        memcpy(to, part->text(), part->length);
        to += part->length;
    }
    *to = '\0';
    return s;
}

}  // namespace vesko

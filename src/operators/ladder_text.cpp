// Strings as operands: character arithmetic, concatenation, repetition, position.
#include <cstring>

#include "engine/errors.h"
#include "operators/ladder.h"
#include "values/convert.h"

namespace vesko {

// Characters undefined. A length that does not fit a record ends the command.
static Matrix *newText(uint64_t length) {
    Matrix *s = newStrMat(checkedLength(1, length + 1));
    s->text()[length] = '\0';
    return s;
}

// ---- Characters plus or minus numbers, in 8 bits

// Stride of the numbers: one for all characters, or one each.
static uint32_t numberStride(const Matrix *text, const Matrix *numbers, PcNode *node) {
    if (numbers->length == 1) return 0;
    if (numbers->length != text->length) error_size_nomatch(node);
    return 1;
}

template <class F>
static void refuseZeroCharacter(uint32_t length, F character, PcNode *node) {
    for (uint32_t k = 0; k < length; k++)
        if (character(k) == 0) error_zero_string_character(node);
}

// The operands stand in their order; one of them is the string, the other integers. Nothing is written before
// all characters have been tested.
template <class Op>
static Matrix *shifted(const Matrix *text, const Matrix *numbers, bool text_left, PcNode *node) {
    const uint32_t stride = numberStride(text, numbers, node);
    auto character = [=](uint32_t k) {
        const int32_t c = text->bytes()[k], n = numbers->ints()[k * stride];
        return static_cast<uint8_t>(text_left ? Op::apply(c, n) : Op::apply(n, c));
    };
    refuseZeroCharacter(text->length, character, node);
    Matrix *result = newText(text->length);
    for (uint32_t k = 0; k < text->length; k++) result->bytes()[k] = character(k);
    return result;
}

Matrix *shiftText(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const bool text_left = a->l2type == L2::TX;
    Matrix *text = text_left ? a : b, *other = text_left ? b : a;
    const bool converts = other->l1type != L1::IS && other->l1type != L1::IM;
    Matrix *numbers = converts ? convToIntMat(other) : other;
    Matrix *result = op == Arith::Sum ? shifted<Sum>(text, numbers, text_left, node)
                                      : shifted<Sub>(text, numbers, text_left, node);
    if (converts) releaseMat(numbers);
    return result;
}

// ---- Two strings

Matrix *joinTexts(Arith, Matrix *a, Matrix *b, PcNode *) {
    Matrix *s = newText(uint64_t{a->length} + b->length);
    memcpy(s->text(), a->text(), a->length);
    memcpy(s->text() + a->length, b->text(), b->length);
    return s;
}

// The differences of the character codes, a string of one character going with every character of the other.
Matrix *subtractTexts(Arith, Matrix *a, Matrix *b, PcNode *node) {
    const uint32_t n = a->length == 1 ? b->length : a->length;
    if (b->length != n && b->length != 1) error_size_nomatch(node);
    if (n == 0) return theEmptyMat();
    const uint32_t left = a->length == 1 ? 0 : 1, right = b->length == 1 ? 0 : 1;
    Matrix *codes = newIntMat(1, n);
    for (uint32_t k = 0; k < n; k++) codes->ints()[k] = a->bytes()[k * left] - b->bytes()[k * right];
    return codes;
}

// The position of the first string within the second, from 1; false if it does not occur.
Matrix *findText(Arith, Matrix *a, Matrix *b, PcNode *) {
    const void *place = memmem(b->text(), b->length, a->text(), a->length);
    if (!place) return theFalseMat();
    return newRealScalarMat(static_cast<double>(static_cast<const char *>(place) - b->text() + 1));
}

// ---- A number times a string

// A real scalar is truncated, one beyond the integers counts as none; other kinds must hold one whole number.
static int32_t repetitions(const Matrix *m) {
    int32_t n = 0;
    if (m->l1type == L1::RS) return m->rdata[0] < 0x1p31 ? truncToInt(m->rdata[0]) : 0;
    return oneWholeNumber(m, n) ? n : 0;
}

Matrix *repeatText(Arith, Matrix *a, Matrix *b, PcNode *node) {
    const bool text_left = a->l2type == L2::TX;
    const Matrix *text = text_left ? a : b;
    const int32_t n = repetitions(text_left ? b : a);
    if (n < 1) error_undef_opr2(node);
    Matrix *result = newText(uint64_t{text->length} * static_cast<uint32_t>(n));
    for (uint32_t at = 0; at < result->length; at += text->length)
        memcpy(result->text() + at, text->text(), text->length);
    return result;
}

}  // namespace vesko

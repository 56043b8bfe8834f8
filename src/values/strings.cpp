// Strings that grow, and their concatenation.
#include "values/strings.h"

#include <cassert>
#include <cstring>

#include "engine/interrupt.h"
#include "values/memory.h"

namespace vesko {

static uint32_t sizeOfString(uint64_t size) { return checkedLength(1, size); }

static void setTextLength(Matrix *m, uint32_t length) {
    m->nrows = 1;
    m->ncols = length + 1;
    m->length = length;
    m->text()[length] = '\0';
}

// The characters of m in a new string with room for `size` bytes. Records of the big class grow by doubling.
static Matrix *roomierText(Matrix *m, uint32_t size) {
    constexpr uint8_t big_class = 10;
    Matrix *fresh = m->libidx < big_class ? newStrMat(size) : realloc_big_gmat(m, size);
    if (fresh == m) return m;
    fresh->l1type = L1::PF;
    fresh->l2type = L2::TX;
    memcpy(fresh->text(), m->text(), m->length);
    setTextLength(fresh, m->length);
    return fresh;
}

Matrix *txmAddLen(Matrix *&slot, Matrix *m, uint64_t n) {
    assert(slot == m && m->nlinks() > 0 && n >= m->length);
    const uint32_t size = sizeOfString(n + 1), old_length = m->length;
    if (m->nlinks() > 1) {
        Matrix *fresh = newStrMat(size);
        memcpy(fresh->text(), m->text(), old_length);
        setTextLength(fresh, old_length);
        m = replaceMat(slot, fresh);
    } else if (size > m->cap) {
        Matrix *fresh = roomierText(m, size);
        if (fresh != m) m = replaceMat(slot, fresh);
    }
    holdInterrupt();
    memset(m->text() + old_length, ' ', size - 1 - old_length);
    setTextLength(m, size - 1);
    freeInterrupt();
    return m;
}

Matrix *strmat_extend_cap(Matrix *m, uint64_t size) {
    const uint32_t bytes = sizeOfString(size);
    if (bytes <= m->cap) return m;
    Matrix *fresh = roomierText(m, bytes);
    if (fresh != m) releaseMat(m);
    return fresh;
}

Matrix *textJoin(const Matrix *a, const Matrix *b) {
    Matrix *s = newStrMat(sizeOfString(uint64_t{a->length} + b->length + 1));
    memcpy(s->text(), a->text(), a->length);
    memcpy(s->text() + a->length, b->text(), b->length);
    s->text()[s->length] = '\0';
    return s;
}

}  // namespace vesko

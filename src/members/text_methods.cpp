// Methods of texts: characters reversed, removed and put in.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/errors.h"
#include "members/methods.h"
#include "operators/growth.h"
#include "values/convert.h"

namespace vesko {

Matrix *method_reverse_text(MethodCall &call) {
    char *text = call.change()->text();
    std::reverse(text, text + call.owner->length);
    return call.owner;
}

// Positions count from 1. One past the end deletes nothing.
Matrix *method_delete_text(MethodCall &call) {
    const uint32_t length = call.owner->length;
    const auto at = static_cast<uint32_t>(call.integerArg(0, 1, INT32_MAX, "delete"));
    if (at > length) return call.owner;
    Matrix *string = call.change();
    std::memmove(string->text() + at - 1, string->text() + at, length - at + 1);
    string->length--;
    string->ncols--;
    return string;
}

// Opens the text behind its first k characters. What is no text, or an empty one, is not inserted, and the
// answer is empty.
Matrix *method_insert_text(MethodCall &call) {
    double k = -1;
    extract_RS(call.arg(0), k);
    const uint32_t length = call.owner->length;
    if (!(k >= 0 && k <= length) || k != std::floor(k)) error_list_insert_bound(call.node, truncToInt(k));
    const Matrix *piece = call.arg(1);
    if (piece->l2type != L2::TX || piece->length == 0) return theEmptyMat();
    const uint32_t at = static_cast<uint32_t>(k), end = checkedLength(1, uint64_t{length} + piece->length);
    call.change();
    Matrix *string = txmAddLen(call.place(), end);
    char *gap = string->text() + at;
    std::memmove(gap + piece->length, gap, length - at);
    std::memcpy(gap, piece->text(), piece->length);
    return string;
}

}  // namespace vesko

// Methods of lists of variable length: entries added, removed and taken out.
#include <algorithm>

#include "engine/errors.h"
#include "engine/interrupt.h"
#include "members/methods.h"
#include "operators/dispatch.h"
#include "operators/growth.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

namespace {

// The value becomes entry `at`, from 0. Interrupts wait while the entries move with their links.
Matrix *insertEntry(MethodCall &call, uint32_t at, Matrix *value) {
    const uint32_t n = call.change()->length;
    holdInterrupt();
    Matrix *list = vlGetNewLen(call.place(), n + 1);
    Matrix **entries = list->entries();
    replaceMat(entries[n], value);
    std::rotate(entries + at, entries + n, entries + n + 1);
    freeInterrupt();
    return list;
}

// Takes out entry k, from 0, and closes the gap.
Matrix *takeEntry(Matrix *list, uint32_t k) {
    Matrix **entries = list->entries(), *value = entries[k];
    holdInterrupt();
    std::copy(entries + k + 1, entries + list->length, entries + k);
    list->length--;
    detachMat(value);
    freeInterrupt();
    return value;
}

bool holdsEqual(const Matrix *list, const Matrix *value) {
    return std::any_of(list->entries(), list->entries() + list->length,
                       [value](const Matrix *entry) { return are_equal(entry, value); });
}

}  // namespace

Matrix *method_append(MethodCall &call) { return insertEntry(call, call.owner->length, call.arg(0)); }

Matrix *method_prepend(MethodCall &call) { return insertEntry(call, 0, call.arg(0)); }

// One place past the end appends.
Matrix *method_insert(MethodCall &call) {
    const int32_t k = call.integerArg(0, 1, INT32_MAX, "insert");
    if (static_cast<uint32_t>(k) > call.owner->length + 1) error_list_insert_bound(call.node, k);
    return insertEntry(call, static_cast<uint32_t>(k - 1), call.arg(1));
}

// A position past the end deletes nothing.
Matrix *method_delete(MethodCall &call) {
    const uint32_t k = static_cast<uint32_t>(call.integerArg(0, 1, INT32_MAX, "delete"));
    if (k > call.owner->length) return call.owner;
    releaseMat(takeEntry(call.change(), k - 1));
    return call.owner;
}

// The first of equal entries stays.
Matrix *method_unique(MethodCall &call) {
    const Matrix *list = call.owner;
    Matrix *kept = newVListMat(list->length);
    for (uint32_t i = 0; i < list->length; i++)
        if (!holdsEqual(kept, list->entries()[i])) addListEntry(kept, list->entries()[i]);
    if (kept->length == list->length) return call.owner;
    call.change();
    return call.replace(kept);
}

// An empty list yields the empty value.
Matrix *method_pop(MethodCall &call) {
    const uint32_t n = call.owner->length;
    return n ? takeEntry(call.change(), n - 1) : theEmptyMat();
}

Matrix *method_left_pop(MethodCall &call) {
    return call.owner->length ? takeEntry(call.change(), 0) : theEmptyMat();
}

}  // namespace vesko

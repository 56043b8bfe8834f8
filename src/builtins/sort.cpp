// sort, rowsort and columnsort: of arrays, of lists, and of what a pointer points to.
//
// User functions that compare may fail, and may change any variable. So what they sort is a copy of the
// entries, which takes the place of the entries when the last comparison is done.
#include "builtins/sort.h"

#include "builtins/arguments.h"
#include "builtins/sort_kernels.h"
#include "builtins/value_order.h"
#include "builtins/workers.h"
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "members/auto_fields.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "operators/families.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/elements.h"
#include "values/memory.h"

namespace vesko {

namespace {

// ---- What is asked for

struct Sorting {
    const char *builtin;
    PcNode *node;
    bool increasing;
    int32_t by;        // one of compare_by, or a field
    Matrix *function;  // that compares, or gives the key; pinned
    Wise wise;
};

Sorting readSorting(const char *builtin, Matrix **parms, PcNode *node) {
    return {builtin,
            node,
            parms[parm_order_option]->ints()[0] == '<',
            parms[parm_compare_option]->ints()[0],
            parms[parm_compare],
            static_cast<Wise>(parms[parm_wise_option]->ints()[0])};
}

// ---- Lists: one routine over the sources of comparison

struct NaturalOrder {
    const Sorting &s;
    int32_t operator()(Matrix *a, Matrix *b) const { return mat_compare(a, b, s.builtin, s.node); }
};

struct ComparatorOrder {
    const Sorting &s;
    int32_t operator()(Matrix *a, Matrix *b) const {
        return compare_mats_by_uf(s.function->func(), a, b, s.node);
    }
};

struct BuiltinOrder {
    const Sorting &s;
    int32_t operator()(Matrix *a, Matrix *b) const {
        return compare_mats_by_bf(s.function->builtin(), a, b, s.node);
    }
};

// Each comparison asks for both keys.
template <Matrix *(*key)(const Sorting &s, Matrix *m)>
struct KeyOrder {
    const Sorting &s;
    int32_t operator()(Matrix *a, Matrix *b) const {
        Matrix *x = pinMat(key(s, a)), *y = pinMat(key(s, b));
        const int32_t order = mat_compare(x, y, s.builtin, s.node);
        releaseMat(unpinMat());
        releaseMat(unpinMat());
        return order;
    }
};

Matrix *keyOfFunction(const Sorting &s, Matrix *m) { return callUfByMat(s.function->func(), m, s.node); }
Matrix *keyOfBuiltin(const Sorting &s, Matrix *m) { return callBf(s.function->builtin(), m, s.node); }
Matrix *keyOfField(const Sorting &s, Matrix *m) {
    const uint32_t name = static_cast<uint32_t>(s.by);
    Matrix *value = m->l2type == L2::OBJ ? readObjField(m, name, s.node) : readAutoField(m, name, s.node);
    if (!value) error_dne(s.node, getFieldName(name));
    return value;
}

// Only what is positive counts, so that `a > b` is a comparator, too.
template <class Order>
Matrix **sort_ml(Matrix **a, uint32_t n, bool increasing, Order order) {
    if (increasing) return merge_sort(a, a + n, n, [&](Matrix *x, Matrix *y) { return order(y, x) > 0; });
    return merge_sort(a, a + n, n, [&](Matrix *x, Matrix *y) { return order(x, y) > 0; });
}

// With room for another n entries behind the n of a.
Matrix **sortPointers(Matrix **a, uint32_t n, const Sorting &s) {
    switch (s.by) {
        case compare_by::nature: return sort_ml(a, n, s.increasing, NaturalOrder{s});
        case compare_by::comparator: return sort_ml(a, n, s.increasing, ComparatorOrder{s});
        case compare_by::key: return sort_ml(a, n, s.increasing, KeyOrder<keyOfFunction>{s});
        case compare_by::builtin_comparator: return sort_ml(a, n, s.increasing, BuiltinOrder{s});
        case compare_by::builtin_key: return sort_ml(a, n, s.increasing, KeyOrder<keyOfBuiltin>{s});
        default: return sort_ml(a, n, s.increasing, KeyOrder<keyOfField>{s});
    }
}

// The list is pinned, and nobody else's.
void sortEntries(Matrix *list, const Sorting &s) {
    const uint32_t n = list->length;
    if (n < 2) return;
    Matrix *scratch = pinMat(allocGMat(2 * size_t{n} * sizeof(Matrix *)));
    std::copy_n(list->entries(), n, scratch->entries());
    Matrix **sorted = sortPointers(scratch->entries(), n, s);
    holdInterrupt();
    std::copy_n(sorted, n, list->entries());
    freeInterrupt();
    releaseMat(unpinMat());
}

Matrix *sortList(Matrix *list, const Sorting &s) {
    Matrix *copy = pinMat(list->nlinks() ? cloneMatrix(list) : list);
    sortEntries(copy, s);
    return unpinMat();
}

// ---- Arrays

template <class T>
Matrix *newElement(T x, L2 kind) {
    if constexpr (!std::is_same_v<T, uint8_t>) return newScalar(x);
    return kind == L2::BI ? newBinaryScalarMat(x) : newByteScalarMat(x);
}

// The elements as a list of values, for a function to compare.
template <class T>
void sortByFunction(T *a, uint32_t n, L2 kind, const Sorting &s) {
    Matrix *list = pinMat(newListMat(n));
    for (uint32_t k = 0; k < n; k++) addListEntry(list, newElement(a[k], kind));
    sortEntries(list, s);
    for (uint32_t k = 0; k < n; k++) copyElements(a + k, list->entries()[k], 0, 1);
    releaseMat(unpinMat());
}

template <class T>
void sortRun(T *a, uint32_t n, L2 kind, const Sorting &s) {
    if (n < 2) return;
    if (s.by == compare_by::nature)
        quick_sort(a, n, s.increasing);
    else
        sortByFunction(a, n, kind, s);
}

template <class T>
void sortStridedRun(T *a, Run run, T *scratch, L2 kind, const Sorting &s) {
    for (uint32_t k = 0; k < run.count; k++) scratch[k] = a[run.at(k)];
    sortRun(scratch, run.count, kind, s);
    for (uint32_t k = 0; k < run.count; k++) a[run.at(k)] = scratch[k];
}

// m is pinned, and nobody else's.
template <class T>
void sortElements(Matrix *m, const Sorting &s) {
    T *a = elementsOf<T>(m);
    const bool strided = s.wise == Wise::Column && m->ncols > 1;
    Matrix *scratch = pinMat(allocGMat(strided ? m->nrows * sizeof(T) : sizeof(T)));
    eachRun(m, s.wise, [&](Run run) {
        if (strided)
            sortStridedRun(a, run, static_cast<T *>(scratch->vdata), m->l2type, s);
        else
            sortRun(a + run.start, run.count, m->l2type, s);
    });
    releaseMat(unpinMat());
}

// Structured matrices lose their structure.
Matrix *ownCopy(Matrix *m) {
    if (m->l1type == L1::PF && !isByteKind(m->l2type)) return convToDb(m);
    return m->nlinks() ? cloneMatrix(m) : m;
}

Matrix *sortArray(Matrix *m, const Sorting &s) {
    Matrix *copy = pinMat(ownCopy(m));
    switch (copy->l2type) {
        case L2::IM: sortElements<int32_t>(copy, s); break;
        case L2::BY:
        case L2::BI: sortElements<uint8_t>(copy, s); break;
        default: sortElements<double>(copy, s); break;
    }
    return unpinMat();
}

// Sorted by its nature, a range stays one.
Matrix *sortRange(Matrix *m, const Sorting &s) {
    if (s.by != compare_by::nature) return sortArray(m, s);
    const bool along_rows = s.wise == Wise::Row, along_columns = s.wise == Wise::Column;
    if ((along_rows && m->ncols == 1) || (along_columns && m->nrows == 1)) return m;
    if ((along_rows && m->nrows > 1) || (along_columns && m->ncols > 1)) return sortArray(m, s);
    if ((m->step() > 0) == s.increasing) return m;
    return newRngMat(m->nrows, m->ncols, m->first() + (m->length - 1) * m->step(), -m->step());
}

// The value itself if there is nothing to sort, or sorted where it lies if nobody holds it; else a copy.
Matrix *sorted(Matrix *m, const Sorting &s) {
    if (m->l2type == L2::NUL) return m;
    if (isList(m->l2type)) return sortList(m, s);
    if (s.by >= 0 || !hasPlainElements(m->l2type)) refuseArgument(s.node, s.builtin);
    if (m->length == 1) return m;
    return m->l2type == L2::RNG ? sortRange(m, s) : sortArray(m, s);
}

// ---- What a pointer points to is sorted in its place

struct Place {
    Matrix **slot;
    Matrix *domain;  // null if there is none
};

Place placeOf(Matrix *pointer, PcNode *node) {
    if (pointer->l2type == L2::PTR) return {reinterpret_cast<Matrix **>(&pointer->vdata), nullptr};
    const auto *address = static_cast<VarAddr *>(pointer->vdata);
    if (!(*address->cell & 1)) error_ptr_asgn_pointer_gone(node);
    return {&address->var->value, address->var->domain};
}

Matrix *sortTarget(Matrix *pointer, const Sorting &s) {
    pinMat(pointer);
    Matrix *result = pinMat(sorted(*placeOf(pointer, s.node).slot, s));
    const Place place = placeOf(pointer, s.node);
    if (place.domain && !memberOfSet(result, place.domain, s.node)) error_asgn_justify(s.node);
    replaceMat(*place.slot, result);
    unpinMat();
    unpinMat();
    return result;
}

Matrix *sortBy(const char *builtin, Matrix *x, Matrix **parms, PcNode *node) {
    const Sorting s = readSorting(builtin, parms, node);
    pinMat(s.function);
    const bool pointer = x->l2type == L2::PTR || x->l2type == L2::VARADDR;
    Matrix *result = pointer ? sortTarget(x, s) : sorted(x, s);
    unpinMat();
    return result;
}

}  // namespace

Matrix *sortNaturally(const char *builtin, Matrix *m, Wise wise, PcNode *node) {
    return sorted(m, {builtin, node, true, compare_by::nature, theEmptyStrMat(), wise});
}

Matrix *sort_bf(Matrix *x, Matrix **parms, PcNode *node) { return sortBy("sort", x, parms, node); }
Matrix *rowsort_bf(Matrix *x, Matrix **parms, PcNode *node) { return sortBy("rowsort", x, parms, node); }
Matrix *columnsort_bf(Matrix *x, Matrix **parms, PcNode *node) {
    return sortBy("columnsort", x, parms, node);
}

}  // namespace vesko

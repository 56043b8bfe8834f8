// find, findall, substitute and to_set.
#include "builtins/search.h"

#include <cstring>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "engine/pins.h"
#include "values/containers.h"
#include "values/payload.h"

namespace vesko {

namespace {

// The first argument, pinned: the value that is searched.
Matrix *pinElements(const char *builtin, Matrix *x, PcNode *node) {
    if (x->l2type != L2::NUL && !hasElements(x)) refuseArgument(node, builtin);
    return pinMat(x);
}

bool isEmpty(const Matrix *x) { return x->l2type == L2::NUL; }

}  // namespace

// ---- Positions, from 1

// One argument that is no list of two: the first element that is true.
Matrix *find_bf(Matrix *args, Matrix **, PcNode *node) {
    uint32_t position = 0;
    const auto found = [&position](uint32_t k) {
        position = k + 1;
        return false;
    };
    const bool pair = isList(args->l2type);
    if (pair) demandCount(args, 2, node, "find");
    Matrix *x = pinElements("find", pair ? args->entries()[0] : args, node);
    Matrix *sought = pinMat(pair ? args->entries()[1] : args);
    if (!isEmpty(x))
        withElements(x, [&](const auto &elements) {
            if (pair)
                search(elements, sought, node, found);
            else
                searchTrue(elements, found);
        });
    unpinMat();
    unpinMat();
    return position ? newIntScalarMat(static_cast<int32_t>(position)) : theEmptyMat();
}

Matrix *findall_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 2, node, "findall");
    Matrix *x = pinElements("findall", args->entries()[0], node);
    Matrix *sought = pinMat(args->entries()[1]);
    Matrix *positions = pinMat(newIntMat(isEmpty(x) ? 0 : x->length, 1));
    uint32_t n = 0;
    if (positions->length)
        withElements(x, [&](const auto &elements) {
            search(elements, sought, node, [&](uint32_t k) {
                positions->ints()[n++] = static_cast<int32_t>(k + 1);
                return true;
            });
        });
    Matrix *result = newIntMat(n, 1);
    if (n) std::memcpy(result->vdata, positions->vdata, n * sizeof(int32_t));
    releaseMat(unpinMat());
    unpinMat();
    unpinMat();
    return result;
}

// ---- Substitution: a function that puts the new value into element k of a copy

namespace {

[[noreturn]] void refuseNew(PcNode *node) { error_bf_argk_domain(node, "substitute", 2); }

template <class Store>
void substituteInto(const Matrix *x, Matrix *old, PcNode *node, Store store) {
    withElements(x, [&](const auto &elements) {
        search(elements, old, node, [&](uint32_t k) {
            store(k);
            return true;
        });
    });
}

Matrix *substituteReals(Matrix *x, Matrix *old, const Matrix *value, PcNode *node) {
    double number;
    if (!extract_RS(value, number)) refuseNew(node);
    Matrix *copy = pinMat(convToDb(x));
    substituteInto(x, old, node, [=](uint32_t k) { copy->rdata[k] = number; });
    return unpinMat();
}

Matrix *substituteIntegers(Matrix *x, Matrix *old, const Matrix *value, PcNode *node) {
    int32_t number;
    if (!extract_integer(value, number)) refuseNew(node);
    Matrix *copy = pinMat(cloneMatrix(x));
    substituteInto(x, old, node, [=](uint32_t k) { copy->ints()[k] = number; });
    return unpinMat();
}

Matrix *substituteComplex(Matrix *x, Matrix *old, const Matrix *value, PcNode *node) {
    Number number;
    if (!extract_CS(value, number.re, number.im)) refuseNew(node);
    Matrix *copy = pinMat(cloneMatrix(x));
    substituteInto(x, old, node, [=](uint32_t k) {
        copy->re()->rdata[k] = number.re;
        copy->im()->rdata[k] = number.im;
    });
    return unpinMat();
}

Matrix *substituteEntries(Matrix *x, Matrix *old, Matrix *value, PcNode *node) {
    Matrix *copy = pinMat(cloneMatrix(x));
    substituteInto(x, old, node, [=](uint32_t k) { replaceMat(copy->entries()[k], value); });
    return unpinMat();
}

}  // namespace

Matrix *substituteElements(Matrix *x, Matrix *old, Matrix *value, PcNode *node) {
    switch (x->l2type) {
        case L2::NUL: return x;
        case L2::IS:
        case L2::IM: return substituteIntegers(x, old, value, node);
        case L2::CS:
        case L2::CM: return substituteComplex(x, old, value, node);
        case L2::LS:
        case L2::VL: return substituteEntries(x, old, value, node);
        case L2::BY:
        case L2::BI: refuseArgument(node, "substitute");
        default: break;
    }
    if (!hasPlainElements(x->l2type)) refuseArgument(node, "substitute");
    return substituteReals(x, old, value, node);
}

Matrix *subs_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 3, node, "substitute");
    pinMat(args);
    Matrix *const *entries = args->entries();
    Matrix *result = substituteElements(entries[0], entries[1], entries[2], node);
    unpinMat();
    return result;
}

// ---- Sets

Matrix *to_set_bf(Matrix *x, Matrix **, PcNode *node) {
    const bool numeric = x->l2type != L2::NUL && !isList(x->l2type) && hasElements(x);
    if (!numeric) refuseArgument(node, "to_set");
    Matrix *set = newSetMat();
    withElements(x, [&](const auto &elements) {
        for (uint32_t k = 0; k < x->length; k++) {
            Matrix *member = elements.value(k);
            addSetMember(set->table(), member);
            releaseMat(member);
        }
    });
    return set;
}

}  // namespace vesko

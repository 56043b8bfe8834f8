// Reading arguments: counts, pairs of numbers, and the sizes of new matrices.
#include "builtins/arguments.h"

#include <cassert>
#include <cmath>
#include <cstring>

#include "engine/errors.h"
#include "frontend/symbols.h"
#include "operators/ladder.h"
#include "values/containers.h"
#include "values/elements.h"

namespace vesko {

uint32_t argCount(const Matrix *args) {
    if (isList(args->l2type)) return args->length;
    return args->l2type == L2::NUL ? 0 : 1;
}

Matrix *argAt(Matrix *args, uint32_t k) {
    assert(k < argCount(args));
    return isList(args->l2type) ? args->entries()[k] : args;
}

// ---- Demands

void refuseArgument(PcNode *node, const char *builtin) {
    error_bf_arg_domain(node, node ? pcnode2str(node)->text() : builtin, builtin);
}

void demandCount(const Matrix *args, uint32_t n, PcNode *node, const char *builtin) {
    const uint32_t given = argCount(args);
    if (given != n) error_bf_nargs(node, builtin, static_cast<int32_t>(given), static_cast<int32_t>(n));
}

void demandCount(const Matrix *args, uint32_t least, uint32_t most, PcNode *node, const char *builtin) {
    const uint32_t given = argCount(args);
    if (given < least || given > most)
        error_bf_nargs_range(node, builtin, static_cast<int32_t>(given), static_cast<int32_t>(least),
                             static_cast<int32_t>(most));
}

void demandKind(Matrix *args, uint32_t k, L2 kind, PcNode *node, const char *builtin) {
    if (argAt(args, k)->l2type != kind) error_bf_argk_domain(node, builtin, static_cast<int32_t>(k));
}

double realArg(Matrix *args, uint32_t k, PcNode *node, const char *builtin) {
    double x;
    if (!extract_RS(argAt(args, k), x)) error_bf_argk_domain(node, builtin, static_cast<int32_t>(k));
    return x;
}

void demandKinds(const Matrix *m, KindSet known, PcNode *node, const char *builtin) {
    if ((kinds::structured | kinds::extended).has(m->l2type)) error_kind_not_built(node, m->l2type);
    if (!known.has(m->l2type)) refuseArgument(node, builtin);
}

void demandEqualLengths(const Matrix *a, const Matrix *b, PcNode *node, const char *builtin) {
    if (a->length != b->length)
        error_bf_args_len_nomatch(node, builtin, static_cast<int32_t>(a->length),
                                  static_cast<int32_t>(b->length));
}

// ---- Pairs

static bool isWholeKind(L2 t) { return (kinds::integers | kinds::bits).has(t); }

RealPair pairOfReals(Matrix *args, PcNode *node, const char *builtin) {
    RealPair pair;
    if (hasPlainElements(args->l2type) && args->length == 2) {
        extract_2_reals(args, pair.first, pair.second);
        pair.integers = isWholeKind(args->l2type);
        return pair;
    }
    demandCount(args, 2, node, builtin);
    pair.first = realArg(args, 0, node, builtin);
    pair.second = realArg(args, 1, node, builtin);
    pair.integers = isWholeKind(argAt(args, 0)->l2type) && isWholeKind(argAt(args, 1)->l2type);
    return pair;
}

// ---- Sizes

char get_mat_val_domain_type(const Matrix *bf) {
    static const char *const names[] = {"_Z", "_B", "_M", "_D", "_L", "_S", "_C", "_T"};
    const char *given = getSymbolName(bf->builtin()->name);
    for (const char *name : names)
        if (std::strcmp(given, name) == 0) return name[1];
    return '0';
}

namespace {

// Sizes as they were given: entries of a list, or elements of one numeric value.
struct Sizes {
    Matrix *given;
    uint32_t count;

    bool listed() const { return isList(given->l2type); }

    // 0 is no size, and a size fits a record.
    bool read(uint32_t k, uint32_t &size) const {
        const Matrix *m = listed() ? given->entries()[k] : given;
        double x = 0;
        if (!hasPlainElements(m->l2type) || (listed() && m->length != 1)) return false;
        x = elementOf(m, listed() ? 0 : k);
        if (!(x >= 1 && x <= UINT32_MAX) || x != std::floor(x)) return false;
        size = static_cast<uint32_t>(x);
        return true;
    }

    // One size as a value of its own, for a message.
    Matrix *at(uint32_t k) const {
        if (listed()) return given->entries()[k];
        if (!hasPlainElements(given->l2type)) return given;
        return given->l2type == L2::IM ? newIntScalarMat(given->ints()[k])
                                       : newRealScalarMat(elementOf(given, k));
    }
};

// Takes the domain off the end; a lone value in front of it counts as the sizes themselves.
Sizes openSizes(Matrix *dims, char &domain_code) {
    domain_code = 'D';
    Sizes sizes = {dims, dims->length};
    if (sizes.listed() && dims->length > 1 && dims->entries()[dims->length - 1]->l2type == L2::BF) {
        domain_code = get_mat_val_domain_type(dims->entries()[dims->length - 1]);
        sizes.count--;
        if (sizes.count == 1) sizes = {dims->entries()[0], dims->entries()[0]->length};
    }
    if (!sizes.listed() && !hasPlainElements(sizes.given->l2type)) sizes.count = 1;
    return sizes;
}

}  // namespace

bool extractMatDims(Matrix *dims, uint32_t &rows, uint32_t &columns, bool allow_vector, PcNode *node,
                    char &domain_code) {
    const Sizes sizes = openSizes(dims, domain_code);
    switch (sizes.count) {
        case 0: error_dim_val(node, dims);
        case 1:
            if (!sizes.read(0, rows)) error_dim_val(node, sizes.at(0));
            columns = 1;
            return true;
        case 2:
            if (!sizes.read(0, rows) || !sizes.read(1, columns))
                error_dim_RC_val(node, sizes.at(0), sizes.at(1));
            return true;
        default:
            if (!allow_vector) error_dim_vec(node, getdatatypestr(sizes.given->l2type));
            return false;
    }
}

Vector *extract_dim_vec(Matrix *dims, uint32_t &length, PcNode *node) {
    char domain_code;
    const Sizes sizes = openSizes(dims, domain_code);
    uint32_t size = 0;
    length = 1;
    for (uint32_t k = 0; k < sizes.count; k++) {
        if (!sizes.read(k, size)) error_dim_val(node, sizes.at(k));
        length = checkedLength(length, size);
    }
    Vector *extents = newVector(sizes.count);
    for (uint32_t k = 0; k < sizes.count; k++) {
        sizes.read(k, size);
        addElement(extents, asEntry(size));
    }
    return extents;
}

Matrix *allocateNumericalMat(Matrix *dims, PcNode *node) {
    uint32_t rows, columns;
    char domain_code;
    if (extractMatDims(dims, rows, columns, true, node, domain_code))
        return allocRealMat(checkedLength(rows, columns), rows, columns);
    Vector *extents = extract_dim_vec(dims, rows, node);
    return newRMDM_Mat(rows, extents);
}

}  // namespace vesko

// The parameters of sort and its row and column forms: what they accept, and the working entries that the
// workers read, which follow the first three.
#include "builtins/sort.h"

#include <cstring>

#include "builtins/value_order.h"
#include "builtins/workers.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "frontend/symbols.h"

namespace vesko {

namespace {

constexpr uint32_t n_given = parm_order_option;  // the parameters that a spawn may give

bool isText(const Matrix *m, const char *text) {
    return m->l2type == L2::TX && std::strcmp(m->text(), text) == 0;
}

// ---- Values to options; false for a value that is refused

bool orderOption(const Matrix *m, int32_t &option) {
    option = isText(m, "<") ? '<' : '>';
    return option == '<' || isText(m, ">");
}

bool optionByInputs(uint32_t nargs, int32_t comparator, int32_t key, int32_t &option) {
    option = nargs == 2 ? comparator : key;
    return nargs == 1 || nargs == 2;
}

bool compareOption(const Matrix *m, int32_t &option) {
    switch (m->l2type) {
        case L2::TX: {
            const bool natural = m->length == 0;
            option = natural ? compare_by::nature : static_cast<int32_t>(rtFindFieldIndexByStr(m->text()));
            return natural || static_cast<uint32_t>(option) != not_found;
        }
        case L2::UF: {
            const FuncRecData *data = m->func()->data;
            return data->nret() == 1 &&
                   optionByInputs(data->nargs, compare_by::comparator, compare_by::key, option);
        }
        case L2::BF:
            return optionByInputs(m->builtin()->nargs, compare_by::builtin_comparator,
                                  compare_by::builtin_key, option);
        default: return false;
    }
}

bool wiseOption(const Matrix *m, Wise &option) {
    option = isText(m, "row") ? Wise::Row : isText(m, "column") ? Wise::Column : Wise::Whole;
    return option != Wise::Whole || isText(m, "");
}

// Row and column forms have their direction for good.
bool optionOf(const Bfunc *bf, uint32_t parm, const Matrix *m, int32_t &option) {
    switch (parm) {
        case parm_order: return orderOption(m, option);
        case parm_compare: return compareOption(m, option);
        case parm_wise: {
            Wise wise;
            const bool known = wiseOption(m, wise);
            option = static_cast<int32_t>(wise);
            const bool fixed = bf->func != sort_bf;
            return known && (!fixed || option == bf->parmValues->matAt(parm_wise_option)->ints()[0]);
        }
        default: return false;
    }
}

// ---- Operations

Bfunc *create(const char *name, BfWorker worker, BfMaintainer maintainer, const char *wise) {
    Bfunc *bf = make_Ni0p_bf(name, "x", worker, maintainer);
    bf->nparms = n_given;
    bf->parmNames = newVector(2 * n_given);
    bf->parmValues = newVector(2 * n_given);
    for (const char *parm : {"order", "compare", "wise", "order_option", "compare_option", "wise_option"})
        addElement(bf->parmNames, asEntry(findFieldIndexByStr(parm)));
    Wise option;
    Matrix *wise_text = newStrMatCopy(wise);
    wiseOption(wise_text, option);
    for (Matrix *value : {newStrMatCopy("<"), newStrMatCopy(""), wise_text, newIntScalarMat('<'),
                          newIntScalarMat(compare_by::nature), newIntScalarMat(static_cast<int32_t>(option))})
        appendMatVecEntry(bf->parmValues, value);
    return bf;
}

// Values that are left out are those of the record that is spawned.
Bfunc *spawn(const Bfunc *bf, Vector *values) {
    int32_t options[n_given];
    for (uint32_t k = 0; k < n_given; k++) options[k] = bf->parmValues->matAt(n_given + k)->ints()[0];
    for (uint32_t k = 0; k < values->size; k++)
        if (!optionOf(bf, k, values->matAt(k), options[k])) return nullptr;
    for (uint32_t k = values->size; k < n_given; k++) appendMatVecEntry(values, bf->parmValues->matAt(k));
    for (int32_t option : options) appendMatVecEntry(values, newIntScalarMat(option));
    return copy_bf(bf, values);
}

Bfunc *reset(Bfunc *bf, Matrix *value, uint32_t field) {
    uint32_t k = 0;
    while (k < n_given && bf->parmNames->numberAt(k) != field) k++;
    int32_t option;
    if (!optionOf(bf, k, value, option)) return nullptr;
    Matrix *m = newIntScalarMat(option);
    holdInterrupt();
    updateMatVecEntry(bf->parmValues, k, value);
    updateMatVecEntry(bf->parmValues, n_given + k, m);
    freeInterrupt();
    return bf;
}

Bfunc *maintain(BfOperation op, Bfunc *bf, Vector *values, Matrix *value, uint32_t field) {
    return op == BfOperation::Spawn ? spawn(bf, values) : reset(bf, value, field);
}

}  // namespace

#define MAINTAINER(name, wise)                                                                              \
    Bfunc *name##_bf_maintainer(BfOperation op, Bfunc *bf, Vector *values, Matrix *value, uint32_t field) { \
        if (op == BfOperation::Create) return create(#name, name##_bf, name##_bf_maintainer, wise);         \
        return maintain(op, bf, values, value, field);                                                      \
    }
MAINTAINER(sort, "")
MAINTAINER(rowsort, "row")
MAINTAINER(columnsort, "column")
#undef MAINTAINER

}  // namespace vesko

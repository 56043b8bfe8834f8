// The table of automatic fields, by kind and field.
#include "members/auto_fields.h"

#include "engine/errors.h"
#include "frontend/symbols.h"
#include "members/kinds.h"

namespace vesko {

namespace {

struct AutoField {
    FieldIndex field;
    KindSet owners;
    AutoFieldFn function;
};

constexpr AutoField auto_fields[] = {
#define AUTO_FIELD(field, owners, function) AutoField{FIELD_INDEX_##field, owners, function},
#include "members/auto_fields.def"
#undef AUTO_FIELD
};

struct AutoFieldTable {
    AutoFieldFn functions[n_kinds][N_AUTO_FIELDS];

    constexpr AutoFieldTable() : functions{} {
        for (const AutoField &row : auto_fields)
            for (unsigned kind = 0; kind < n_kinds; kind++)
                if (row.owners.has(static_cast<L2>(kind))) enter(functions[kind][row.field], row.function);
    }
    // Two rows for one kind and field do not compile.
    constexpr void enter(AutoFieldFn &place, AutoFieldFn function) {
        place = place ? throw "two rows" : function;
    }
};
constexpr AutoFieldTable matfieldfunc;

}  // namespace

Matrix *readAutoField(Matrix *m, uint32_t field, PcNode *node) {
    const AutoFieldFn function =
        field < N_AUTO_FIELDS ? matfieldfunc.functions[index(m->l2type)][field] : nullptr;
    return function ? function(m, node) : nullptr;
}

}  // namespace vesko

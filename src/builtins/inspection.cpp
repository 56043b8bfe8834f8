// What values are, and values of one kind made from those of another.
#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/ladder.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

// Answers its parameter, whatever it is asked.
const BfParm trivial_parms[1] = {{"p", theTrueMat, [](const Matrix *) { return true; }}};
Matrix *trivial_bf(Matrix *, Matrix **parms, PcNode *) { return parms[0]; }

Matrix *type_bf(Matrix *x, Matrix **, PcNode *) { return newStrMatCopy(getdatatypestr(x->l2type)); }

// Kind, rows, columns, and how many hold the value.
Matrix *matinfo_bf(Matrix *x, Matrix **, PcNode *) {
    Matrix *const info[] = {newStrMatCopy(getdatatypestr(x->l2type)), newCount(x->nrows), newCount(x->ncols),
                            newCount(x->nlinks())};
    Matrix *list = newListMat(std::size(info));
    for (Matrix *m : info) addListEntry(list, m);
    return list;
}

// ---- Names

static bool isVariable(uint32_t symbol) {
    if (inTopLevel()) return findVarIndex(symbol) != not_found;
    const Vector *vars = top->func ? top->func->data->ctvars : nullptr;
    const uint32_t n = vars ? vars->size : 0;
    for (uint32_t k = 0; k < n; k++)
        if (vars->at<CtVar>(k)->symbol == symbol) return true;
    return false;
}

static bool isGlobal(uint32_t symbol) {
    const uint32_t k = findGv(symbol);
    return k != not_found && getGv(k)->l2type != L2::GV;
}

// Whether the name is that of a variable of the running function, of a global or of a built-in.
Matrix *exist_bf(Matrix *name, Matrix **, PcNode *node) {
    if (name->l2type != L2::TX) refuseArgument(node, "exist");
    const uint32_t symbol = findSymbolIndex(name->text());
    return truthMat(isVariable(symbol) || isGlobal(symbol) || findBuiltin(symbol) != not_found);
}

// ---- Objects

// Fields that the class of an object gives it, and fields of its own; of a class, the fields alone.
Matrix *objsizes_bf(Matrix *x, Matrix **, PcNode *node) {
    if (x->l2type == L2::CLASS || x->l2type == L2::COND) return newCount(classOf(x)->fields->size);
    if (x->l2type != L2::OBJ) refuseArgument(node, "objsizes");
    const Xobject *object = objectOf(x);
    return newCounts({object->xfields ? object->xfields->size : 0, countFields(object->vlfields)});
}

// ---- Conversion

// To the kind that a domain names. Without one, sparse where that pays.
Matrix *convert_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 1, 2, node, "convert");
    const Matrix *domain = argCount(args) == 2 ? argAt(args, 1) : theEmptyMat();
    Matrix *x = argAt(args, 0);
    if (ISEMPTY(domain)) error_kind_not_built(node, L2::SPARSE);
    if (domain->l2type != L2::BF) error_bf_argk_domain(node, "convert", 1);
    switch (get_mat_val_domain_type(domain)) {
        case 'D': return convToDb(x);
        case 'Z': return convToIntMat(x);
        case 'B': return convToByteMat(x);
        case 'C': return isComplex(x->l2type) ? x : convToCM(x);
        case 'L': error_kind_not_built(node, L2::BIGINT);
        case 'M': error_kind_not_built(node, L2::MPF);
        default: break;
    }
    if (domain->builtin()->name == findSymbolIndex("_sparse")) error_kind_not_built(node, L2::SPARSE);
    error_bf_argk_domain(node, "convert", 1);
}

}  // namespace vesko

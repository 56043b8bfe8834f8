// Function objects: making, copying and freeing them, and the code record that copies share.
#include "engine/frame.h"
#include "engine/node.h"
#include "frontend/symbols.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

FuncRec *newFuncRec(FuncRecData *data) {
    FuncRec *f = newBlock<FuncRec>();
    *f = {};
    f->data = data;
    return f;
}

static Vector *copyParms(const Vector *parms) {
    if (!parms) return nullptr;
    Vector *copy = newVector(parms->size);
    for (uint32_t k = 0; k < parms->size; k++) {
        const sfield *parm = parms->at<sfield>(k);
        sfield *field = newSfield(parm->index, parm->value, parm->domain);
        field->flag = parm->flag;
        addElement(copy, field);
    }
    return copy;
}

FuncRec *copyFuncRec(const FuncRec *f) {
    Vector *parms = copyParms(f->parms);
    FuncRec *copy = newFuncRec(f->data);
    f->data->nshares++;
    copy->npublic = f->npublic;
    copy->parms = parms;
    copy->is_member = f->is_member;
    copy->owner = f->owner;
    return copy;
}

Matrix *copyUf(Matrix *m) { return newUfMat(copyFuncRec(m->func())); }

static void freeFuncRecData(FuncRecData *data) {
    ucReleaseMat(data->srcfile);
    freeVector(data->ctvars, freeCtVar);
    recyclePcLib(data->pclib);
    recycleSMPcLib(data->smpclib);
    freemempod = mergeMemPods(data->mempod, freemempod);
    m_free(data, sizeof(FuncRecData));
}

void freeFuncRec(FuncRec *f) {
    if (f->nholds != 0) {
        f->dropped = true;
        return;
    }
    FuncRecData *data = f->data;
    freeVector(f->parms, freeSfield);
    recycleBlock(f);
    if (--data->nshares == 0) freeFuncRecData(data);
}

static void auditCode(const FuncRecData *data) {
    auditLink(data->srcfile);
    auditCtVars(data->ctvars);
    auditNodes(data->pclib);
    auditNodes(data->smpclib);
}

void auditFuncRec(const FuncRec *f) {
    auditFields(f->parms);
    if (auditFirst(f->data)) auditCode(f->data);
}

}  // namespace vesko

// Every node handler: those of the table in node_kinds.def, then the specialised ones that the parser stores
// in a node whose operands it knows. Each is defined in the room its name belongs to.
#pragma once

#include "engine/node.h"

namespace vesko {

#define OP(number, name, handler, label, priority) Matrix *handler(PcNode *node);
#include "engine/node_kinds.def"
#undef OP

// ---- Specialised handlers.
Matrix *doVarAsgnChkDomain(PcNode *node);
Matrix *initVarDomain_CC(PcNode *node);
Matrix *initVarDomain_CV(PcNode *node);
Matrix *initVarDomain_VC(PcNode *node);
Matrix *initVarDomain_VV(PcNode *node);
Matrix *doMultiVarAsgn_rhs_list(PcNode *node);
Matrix *addAsgnBefore(PcNode *node);           // x = e + x
Matrix *doMatRefPreIncNoOutput(PcNode *node);  // ++m[i] as a statement
Matrix *doMatRefPreIncOutput(PcNode *node);    // with the new element as value
Matrix *doMatRefPreDecNoOutput(PcNode *node);
Matrix *doMatRefPreDecOutput(PcNode *node);
Matrix *getTreeStepUp(PcNode *node);  // of ++ and -- on a place that is no plain variable
Matrix *getTreeStepDown(PcNode *node);
Matrix *addAsgn_DD(PcNode *node);
Matrix *subAsgn_DD(PcNode *node);
Matrix *mulAsgn_DD(PcNode *node);
Matrix *dvdAsgn_DD(PcNode *node);
Matrix *addAsgn_DS(PcNode *node);
Matrix *subAsgn_DS(PcNode *node);
Matrix *mulAsgn_DS(PcNode *node);
Matrix *dvdAsgn_DS(PcNode *node);
Matrix *doVarPreInc_D(PcNode *node);
Matrix *doVarPreDec_D(PcNode *node);
Matrix *doVarPostInc_D(PcNode *node);
Matrix *doVarPostDec_D(PcNode *node);
Matrix *getTreeQSum(PcNode *node);
Matrix *getTreeQSub(PcNode *node);
Matrix *getTreeQProd(PcNode *node);
Matrix *getTreeSum_VDS_VDS(PcNode *node);
Matrix *getTreeSum_VDS_MDS(PcNode *node);
Matrix *getTreeSum_MDS_VDS(PcNode *node);
Matrix *getTreeSub_VDS_VDS(PcNode *node);
Matrix *getTreeSub_VDS_MDS(PcNode *node);
Matrix *getTreeSub_MDS_VDS(PcNode *node);
Matrix *getTreeProduct_VDS_VDS(PcNode *node);
Matrix *getTreeProduct_VDS_MDS(PcNode *node);
Matrix *getTreeProduct_MDS_VDS(PcNode *node);
Matrix *getTreeSlash_VDS_VDS(PcNode *node);
Matrix *getTreeSlash_VDS_MDS(PcNode *node);
Matrix *getTreeSlash_MDS_VDS(PcNode *node);
Matrix *getMatRef_v_vrs(PcNode *node);
Matrix *getMatRef2_v_vrs(PcNode *node);
Matrix *doBuiltFCall(PcNode *node);

}  // namespace vesko

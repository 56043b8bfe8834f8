// The workers of the list of built-ins, and the parameters that some of them have.
#pragma once

#include "builtins/regexp.h"

namespace vesko {

#define BF(name, worker, inputs, ...) Matrix *worker(Matrix *args, Matrix **parms, PcNode *node);
#include "builtins/builtins.def"
#undef BF

bool R_has(double x, Matrix *const *parms);
bool Z_has(double x, Matrix *const *parms);
bool C_has(double x, Matrix *const *parms);
bool D_has(double x, Matrix *const *parms);

extern const BfParm interval_parms[1];
extern const BfParm length_parms[2];
extern const BfParm log_parms[1];
extern const BfParm trivial_parms[1];
extern const BfParm strcmp_parms[1];
extern const BfParm reduction_parms[1];

// Domains of the settings: what they accept, they apply.
Matrix *mpf_ndig_domain_bf(Matrix *args, Matrix **parms, PcNode *node);
Matrix *disp_format_domain_bf(Matrix *args, Matrix **parms, PcNode *node);
Matrix *disp_format_scalar_domain_bf(Matrix *args, Matrix **parms, PcNode *node);
Matrix *disp_ndigits_domain_bf(Matrix *args, Matrix **parms, PcNode *node);
Matrix *disp_ndigits_scalar_domain_bf(Matrix *args, Matrix **parms, PcNode *node);

}  // namespace vesko

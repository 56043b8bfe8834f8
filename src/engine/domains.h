// Domains: what values may be declared to lie in. The test itself is memberOfSet of operators/dispatch.h.
#pragma once

#include "values/matrix.h"

namespace vesko {

// Whether the domain has the real scalar, told at once and without code of the user's. False where
// memberOfSet must decide.
bool hasRealQuickly(const Matrix *domain, double x);

// Text of a numbered domain in the messages of built-in functions.
const char *domain_name_to_str(unsigned number);

// The letter of the kind that a domain built-in names ('Z', 'B', 'M', 'D', 'L', 'S', 'C', 'T'), or '0'.
char get_mat_val_domain_type(const Bfunc *bf);

}  // namespace vesko

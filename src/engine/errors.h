// Run-time errors. None of these functions returns: the message is saved and control leaves by xAbort, so no
// caller may own anything but pool records. The node gives the prefix of the message and may be null.
#pragma once

#include <cstdint>

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

// Prefix of a message, a temporary string: file, line and source of the node, or "Error: ".
Matrix *leadingErrorMsg(PcNode *node);

#define ERROR(function, parameters, ...) [[noreturn]] void function parameters;
#include "engine/errors.def"
#undef ERROR

// ---- Errors that choose among several texts.
[[noreturn]] void error_undef_opr(PcNode *node, const Matrix *value, NodeKind kind);  // value may be null
[[noreturn]] void error_undef_opr2(PcNode *node);
[[noreturn]] void error_mat_no_square(PcNode *node, PcNode *matrix);
[[noreturn]] void error_convert(PcNode *node, const Matrix *value, L2 target);
[[noreturn]] void error_index_bound(PcNode *node, const Matrix *index_value, int32_t i, uint32_t limit);
[[noreturn]] void error_index(PcNode *node, const Matrix *index_value, double i);
[[noreturn]] void error_match_pairs(PcNode *node, uint32_t rows, uint32_t columns);
[[noreturn]] void error_match_nargs(PcNode *node, uint32_t given, uint32_t expected);
[[noreturn]] void error_colon1(PcNode *node, const Matrix *first, const Matrix *last);
[[noreturn]] void error_colon2(PcNode *node, const Matrix *first, const Matrix *last, const Matrix *step);
[[noreturn]] void error_colon_stepsize(PcNode *node, const Matrix *step);
[[noreturn]] void error_interval_limit(PcNode *node, const Matrix *lower, const Matrix *upper);
[[noreturn]] void error_for_loop_counter(PcNode *node, const Matrix *count);
[[noreturn]] void error_multi_asgn(PcNode *node, int32_t code);
[[noreturn]] void error_forced_field_asgn(PcNode *node, int32_t code, const Matrix *object);
[[noreturn]] void error_sparse_reshape(PcNode *node, bool rows);
[[noreturn]] void error_ref3asgn(PcNode *node, bool not_numerical);
[[noreturn]] void error_refMasgn(PcNode *node, bool not_numerical);
[[noreturn]] void error_gvar_assign(PcNode *node, const char *name, bool resets_domain);
[[noreturn]] void error_dim_val(PcNode *node, const Matrix *dim);
[[noreturn]] void error_dim_RC_val(PcNode *node, const Matrix *rows, const Matrix *columns);

// What belongs to rooms that are not built yet: "<what> is not built yet".
[[noreturn]] void error_not_built(PcNode *node, const char *what);

}  // namespace vesko

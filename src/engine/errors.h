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

// ---- Errors that choose among several texts. The value that is reported may be null where it says so.
[[noreturn]] void error_undef_opr(PcNode *node, const Matrix *value, NodeKind kind);  // value may be null
[[noreturn]] void error_undef_opr2(PcNode *node);
[[noreturn]] void error_mat_no_square(PcNode *node, PcNode *matrix);
[[noreturn]] void error_convert(PcNode *node, const Matrix *value, L2 target);
// An index value may be null: then i alone is reported.
[[noreturn]] void error_index_bound(PcNode *node, const Matrix *index_value, int32_t i, uint32_t limit);
[[noreturn]] void error_index(PcNode *node, const Matrix *index_value, double i);
[[noreturn]] void error_match_pairs(PcNode *node, uint32_t rows, uint32_t columns);
[[noreturn]] void error_match_nargs(PcNode *node, uint32_t given, uint32_t expected);
// These report the first operand that is no finite scalar.
[[noreturn]] void error_colon1(PcNode *node, const Matrix *first, const Matrix *last);
[[noreturn]] void error_colon2(PcNode *node, const Matrix *first, const Matrix *last, const Matrix *step);
[[noreturn]] void error_colon_stepsize(PcNode *node, const Matrix *step);
[[noreturn]] void error_interval_limit(PcNode *node, const Matrix *lower, const Matrix *upper);
[[noreturn]] void error_for_loop_counter(PcNode *node, const Matrix *count);
[[noreturn]] void error_dim_val(PcNode *node, const Matrix *dim);
[[noreturn]] void error_dim_RC_val(PcNode *node, const Matrix *rows, const Matrix *columns);

[[noreturn]] void error_multi_asgn(PcNode *node, int32_t code);
[[noreturn]] void error_forced_field_asgn(PcNode *node, int32_t code, const Matrix *object);
[[noreturn]] void error_sparse_reshape(PcNode *node, bool rows);
[[noreturn]] void error_ref3asgn(PcNode *node, bool not_numerical);
[[noreturn]] void error_refMasgn(PcNode *node, bool not_numerical);
[[noreturn]] void error_gvar_assign(PcNode *node, const char *name, bool resets_domain);
[[noreturn]] void error_uf_parm_domain(PcNode *node, const char *name);  // without a prefix
[[noreturn]] void error_ode_dydx_eval(PcNode *node, bool jacobian);

// ---- Classes. An auto field takes no input and has one output: the first count that is wrong is reported.
[[noreturn]] void error_auto_nargs(PcNode *node, const char *field, uint32_t inputs, uint32_t outputs);
enum class FieldReset { NotPublic, OutOfDomain, Unknown };
[[noreturn]] void error_obj_field_reset(PcNode *node, FieldReset fault, const char *field);
[[noreturn]] void error_membership_apply(PcNode *node, bool left);
enum class EntryFault { Inputs, Invalid, NotFunction };
[[noreturn]] void error_build_conditional(PcNode *node, uint32_t entry, EntryFault fault);  // entries 2 to 4

// ---- Files.
enum class FileFault { NotOpen, WrongMode, Failed };
[[noreturn]] void error_file_read(PcNode *node, FileFault fault, const char *file);
[[noreturn]] void error_file_write(PcNode *node, FileFault fault, const char *file);
enum class OpenFault { NameNotString, Failed, FailedWithMode, ModeNotString };
[[noreturn]] void error_file_open(PcNode *node, OpenFault fault, const char *file, const char *mode);
[[noreturn]] void error_file_seek(PcNode *node, bool position, const char *file);
[[noreturn]] void error_file_writeline(PcNode *node, bool file, const char *source);

}  // namespace vesko

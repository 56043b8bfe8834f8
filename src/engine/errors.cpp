// The run-time errors: the prefix of their messages, and every function that reports one.
#include "engine/errors.h"

#include <cmath>
#include <cstdio>
#include <type_traits>

#include "console/command.h"
#include "console/message.h"
#include "engine/interrupt.h"
#include "values/convert.h"

namespace vesko {

Matrix *leadingErrorMsg(PcNode *node) {
    if (!node) return newStrMatCopy("Error: ");
    Matrix *source = pcnode2str(node);
    const char *text = source->text();
    int line = static_cast<int>(node->line);
    bool named = node->file->l2type == L2::TX;
    uint32_t room = source->length + (named ? node->file->length : 0) + 32;
    Matrix *prefix = newStrMat(room);
    int n = named
                ? std::snprintf(prefix->text(), room, "Error %s %d \"%s\": ", node->file->text(), line, text)
                : std::snprintf(prefix->text(), room, "Error %d \"%s\": ", line, text);
    prefix->length = static_cast<uint32_t>(n);
    prefix->ncols = prefix->length + 1;
    releaseMat(source);
    return prefix;
}

// Saves the message, with the prefix as first argument of the text, and leaves.
#define REPORT(node_, format_, ...)                                         \
    do {                                                                    \
        Matrix *prefix_ = leadingErrorMsg(node_);                           \
        saveErrorMesg(format_, prefix_->text() __VA_OPT__(, ) __VA_ARGS__); \
        releaseMat(prefix_);                                                \
        xAbort(nullptr);                                                    \
    } while (false)

#define ERROR(function, parameters, ...) \
    void function parameters { REPORT(node, __VA_ARGS__); }
#include "engine/errors.def"
#undef ERROR

void error_recursion_too_deep() {
    saveErrorMesg("Error: recursion depth is too deep");
    xAbort(nullptr);
}

void error_uf_parm_domain(PcNode *, const char *name) {
    saveErrorMesg("spawning function '%s' failed -- parameter value not in domain", name);
    xAbort(nullptr);
}

// ---- Operations without a meaning

void error_undef_opr(PcNode *node, const Matrix *value, NodeKind kind) {
    const char *type = value ? getdatatypestr(value->l2type) : "data of type ???";
    switch (kind) {
        case NodeKind::Transpose: REPORT(node, "%s(%s)' undefined", type);
        case NodeKind::Negative: REPORT(node, "%s-(%s) undefined", type);
        case NodeKind::PreInc: REPORT(node, "%s++(%s) undefined", type);
        case NodeKind::PreDec: REPORT(node, "%s--(%s) undefined", type);
        case NodeKind::Ref:
        case NodeKind::Ref2:
        case NodeKind::RefMd:
        case NodeKind::RefM:
        case NodeKind::EntryFun1:
        case NodeKind::EntryFun2:
        case NodeKind::EntryFunRows:
        case NodeKind::EntryFunCols: REPORT(node, "%s(%s)[] undefined", type);
        case NodeKind::MemberCallNp:
        case NodeKind::NamedCall: REPORT(node, "%s(%s){} undefined", type);
        case NodeKind::PartialCall: REPORT(node, "%s(%s)() undefined", type);
        case NodeKind::UpdState: REPORT(node, "%s(%s) 'automaton state update' undefined", type);
        case NodeKind::DfltArg: REPORT(node, "%s(%s)(*) 'function default arg value' undefined", type);
        case NodeKind::Deref: REPORT(node, "%s, dereferencing non-pointer");
        case NodeKind::ProcGet: REPORT(node, "%s(%s).get undefined", type);
        case NodeKind::ProcPut: REPORT(node, "%s(%s).put undefined", type);
        // The first %s of this text is the whole prefix.
        default: REPORT(node, "undefined operation between %s and %s", type);
    }
}

// What an indexed node, or the store into one, indexes.
static PcNode *operandOf(PcNode *node) {
    PcNode *child = node->child(0);
    return node->kind < NodeKind::PreInc ? child->child(0) : child;
}

void error_undef_opr2(PcNode *node) {
    const char *text = opr2str(node ? node->kind : NodeKind::None);
    switch (node ? node->kind : NodeKind::None) {
        case NodeKind::HashEntry:
        case NodeKind::DfltHashEntry:
        case NodeKind::HashAsgn:
        case NodeKind::DfltHashAsgn:
            REPORT(node, "%s\"%s\" not a hash table", pcnode2str(node->child(0))->text());
        case NodeKind::Field:
        case NodeKind::ForcedField:
        case NodeKind::ParField:
        case NodeKind::FieldAsgn:
            REPORT(node, "%s\"%s\" not a structure", pcnode2str(node->child(0))->text());
        case NodeKind::Ref:
        case NodeKind::Ref2:
        case NodeKind::Ref3:
        case NodeKind::RefMd:
        case NodeKind::RefM:
        case NodeKind::RefAsgn:
        case NodeKind::Ref2Asgn:
        case NodeKind::RefMAsgn:
        case NodeKind::Ref3Asgn:
        case NodeKind::RefMdAsgn: REPORT(node, "%s\"%s\" not a matrix", pcnode2str(operandOf(node))->text());
        default: REPORT(node, "%s'%s' cannot be evaluated", text);
    }
}

void error_mat_no_square(PcNode *node, PcNode *matrix) {
    REPORT(node, "%s, '%s' not a square matrix", pcnode2str(matrix)->text());
}

void error_convert(PcNode *node, const Matrix *value, L2 target) {
    REPORT(node, "%sfailed to convert %s to %s", getdatatypestr(value->l2type), getdatatypestr(target));
}

// ---- Indices and ranges

static bool isScalarIndex(const Matrix *m) {
    if (m->l2type == L2::RS || m->l2type == L2::IS) return true;
    return (m->l2type == L2::BY || m->l2type == L2::BI) && m->length == 1;
}

void error_index_bound(PcNode *node, const Matrix *index_value, int32_t i, uint32_t limit) {
    int last = static_cast<int>(limit);
    if (!index_value) REPORT(node, "%sindex value %d out of bound 1-%d -- xxvv", i, last);
    double x;
    if (!isScalarIndex(index_value) || !extract_RS(index_value, x)) REPORT(node, "%sinvalid index value");
    if (!(x >= 1)) REPORT(node, "%sinvalid index %g", x);
    REPORT(node, "%sindex value %d out of bound 1-%d", i, last);
}

void error_index(PcNode *node, const Matrix *index_value, double i) {
    if (index_value) REPORT(node, "%sinvalid index value");
    REPORT(node, "%sinvalid index %g", i);
}

void error_match_pairs(PcNode *node, uint32_t rows, uint32_t columns) {
    REPORT(
        node,
        "%sin matching pair indexing expression, row index length %d and column index length %d don't match",
        static_cast<int>(rows), static_cast<int>(columns));
}

void error_match_nargs(PcNode *node, uint32_t given, uint32_t expected) {
    REPORT(node, "%sin function call,  number of arguments = %d, not matching expected value %d",
           static_cast<int>(given), static_cast<int>(expected));
}

// What is wrong with the end of a range: a kind that is no scalar, or a number that is not finite.
namespace {
struct RangeEnd {
    explicit RangeEnd(const Matrix *m)
        : type(getdatatypestr(m->l2type)), number(0), scalar(extract_RS(m, number)) {}
    bool isBad() const { return !scalar || !std::isfinite(number); }
    const char *type;
    double number;
    bool scalar;
};
}  // namespace

static_assert(std::is_trivially_destructible_v<RangeEnd>);

void error_colon1(PcNode *node, const Matrix *first, const Matrix *last) {
    RangeEnd a(first), b(last);
    if (a.isBad() && a.scalar) REPORT(node, "%sinvalid range starting value %g", a.number);
    if (a.isBad()) REPORT(node, "%sinvalid range starting value type %s, scalar expected", a.type);
    if (b.scalar) REPORT(node, "%sinvalid range ending value %g", b.number);
    REPORT(node, "%sinvalid range end value type %s, scalar expected", b.type);
}

void error_colon2(PcNode *node, const Matrix *first, const Matrix *last, const Matrix *step) {
    RangeEnd a(first), b(last);
    if (a.isBad() && a.scalar) REPORT(node, "%sinvalid range starting value %g", a.number);
    if (a.isBad()) REPORT(node, "%sinvalid range starting value type %s, scalar expected", a.type);
    if (b.isBad() && b.scalar) REPORT(node, "%siniiiiiivalid range ending value %g", b.number);
    if (b.isBad()) REPORT(node, "%sinvalid range ending value type %s, scalar expected", b.type);
    error_colon_stepsize(node, step);
}

void error_colon_stepsize(PcNode *node, const Matrix *step) {
    RangeEnd s(step);
    if (s.scalar) REPORT(node, "%sinvalid range step value %g", s.number);
    REPORT(node, "%sinvalid range step value type %s, scalar expected", s.type);
}

void error_interval_limit(PcNode *node, const Matrix *lower, const Matrix *upper) {
    RangeEnd a(lower), b(upper);
    if (!a.scalar) REPORT(node, "%sinvalid interval limit value type %s", a.type);
    if (!b.scalar) REPORT(node, "%sinvalid interval limit value type %s", b.type);
    if (std::isnan(a.number) || std::isnan(b.number)) REPORT(node, "%sinterval limit not a number");
    REPORT(node, "%sinterval left limit %g greater than right limit %g", a.number, b.number);
}

void error_for_loop_counter(PcNode *node, const Matrix *count) {
    bool accepted = count->l2type == L2::RS ||
                    ((count->l2type == L2::IM || count->l2type == L2::BY) && count->length == 1);
    if (accepted) REPORT(node, "%sloop counter is not a positive number");
    REPORT(node, "%sloop counter is supposed to be a number, but a %s given", getdatatypestr(count->l2type));
}

void error_dim_val(PcNode *node, const Matrix *dim) {
    RangeEnd d(dim);
    if (d.scalar) REPORT(node, "%sinvalid matrix dimension value %g", d.number);
    REPORT(node, "%sinvalid matrix dimension value type '%s'", d.type);
}

void error_dim_RC_val(PcNode *node, const Matrix *rows, const Matrix *columns) {
    if (rows->l2type == L2::IS && columns->l2type == L2::IS)
        REPORT(node, "%sinvalid matrix dimension values rows = %d, columns = %d", rows->ints()[0],
               columns->ints()[0]);
    RangeEnd r(rows), c(columns);
    if (r.scalar && c.scalar)
        REPORT(node, "%sinvalid matrix dimension values rows = %g, columns = %g", r.number, c.number);
    REPORT(node, "%sinvalid matrix dimension values type '%s'", r.scalar ? c.type : r.type);
}

// ---- Assignment

void error_multi_asgn(PcNode *node, int32_t code) {
    constexpr int32_t object = 21;
    if (code != object) REPORT(node, "%s in simimultaneous assignment, lhs is not a class member");
    NodeKind rhs = node->child(1)->kind;
    if (rhs == NodeKind::List || rhs == NodeKind::VList)
        REPORT(node, "%s lvalue has %d items, while rhs has %d items", static_cast<int>(node->child(0)->ncub),
               static_cast<int>(node->child(1)->ncub));
    REPORT(node, "%s in simimultaneous assignment, rhs is not a list");
}

void error_forced_field_asgn(PcNode *node, int32_t code, const Matrix *object) {
    switch (code) {
        case 101: REPORT(node, "%sleft of 'as' is not a member of the right");
        case 102: REPORT(node, "%sresetting member attribute failed -- no permission");
        default: break;
    }
    if (object->l2type != L2::OBJ) REPORT(node, "%sleft of 'as' is not an object");
    REPORT(node, "%sright of 'as' is not a class");
}

void error_sparse_reshape(PcNode *node, bool rows) {
    REPORT(node, "%scannot add %s to sparse matrix", rows ? "rows" : "columns");
}

void error_ref3asgn(PcNode *node, bool not_numerical) {
    if (not_numerical) REPORT(node, "%sassigned value is not numerical");
    REPORT(node, "%sdata is not multi-dimensional matrix");
}

void error_refMasgn(PcNode *node, bool not_numerical) { error_ref3asgn(node, not_numerical); }

void error_gvar_assign(PcNode *node, const char *name, bool resets_domain) {
    if (resets_domain)
        REPORT(node, "%sassignment to global variable \"%s\": reseting domain not allowed", name);
    REPORT(node, "%sassignment to global variable \"%s\": value out of domain", name);
}

void error_ode_dydx_eval(PcNode *node, bool jacobian) {
    if (jacobian) REPORT(node, "%sode Jacobian function didn't return a matrix of matching dimension");
    REPORT(node, "%sode function didn't return a vector of same dimension");
}

// ---- Classes

void error_auto_nargs(PcNode *node, const char *field, uint32_t inputs, uint32_t outputs) {
    if (inputs != 0) REPORT(node, "%sauto attribute '%s' should not have input arguments", field);
    REPORT(node, "%sauto attribute '%s' has %d arguments, one expected", field, static_cast<int>(outputs));
}

void error_obj_field_reset(PcNode *node, FieldReset fault, const char *field) {
    switch (fault) {
        case FieldReset::NotPublic: REPORT(node, "%s trying to reset non-public field '%s'", field);
        case FieldReset::OutOfDomain:
            REPORT(node, "%s reseting public field '%s', value out of domain", field);
        default: REPORT(node, "%s reseting non-existent field '%s'", field);
    }
}

void error_membership_apply(PcNode *node, bool left) {
    if (left) REPORT(node, "%sleft argument of 'apply_for' operator is not an object");
    REPORT(node, "%sright argument of 'apply_for' operator is not a conditional class");
}

void error_build_conditional(PcNode *node, uint32_t entry, EntryFault fault) {
    const char *field = entry == 2 ? "join" : entry == 3 ? "validate" : "withdraw";
    if (fault == EntryFault::Inputs) REPORT(node, "%sclass field '%s' should have one input argument", field);
    if (entry == 3) field = "validator";
    if (fault == EntryFault::Invalid) REPORT(node, "%sinvalid class field '%s'", field);
    REPORT(node, "%sclass field '%s' not a function", field);
}

// ---- Files

void error_file_read(PcNode *node, FileFault fault, const char *file) {
    switch (fault) {
        case FileFault::NotOpen: REPORT(node, "%sfile '%s' not open", file);
        case FileFault::WrongMode: REPORT(node, "%sfile '%s' not in read mode", file);
        default: REPORT(node, "%sfile '%s' reading failed", file);
    }
}

void error_file_write(PcNode *node, FileFault fault, const char *file) {
    switch (fault) {
        case FileFault::NotOpen: REPORT(node, "%sfile '%s' not open", file);
        case FileFault::WrongMode: REPORT(node, "%sfile '%s' not in writing mode", file);
        default: REPORT(node, "%sfile '%s' writing failed", file);
    }
}

void error_file_open(PcNode *node, OpenFault fault, const char *file, const char *mode) {
    switch (fault) {
        case OpenFault::NameNotString: REPORT(node, "%sfile name '%s' not a string", file);
        case OpenFault::Failed: REPORT(node, "%sopening file '%s' failed", file);
        case OpenFault::FailedWithMode: REPORT(node, "%sopening file '%s' with mode '%s' failed", file, mode);
        default: REPORT(node, "%sopening file '%s', mode '%s' is not a string", file, mode);
    }
}

void error_file_seek(PcNode *node, bool position, const char *file) {
    if (position) REPORT(node, "%sfile seeking '%s', position is not a number", file);
    REPORT(node, "%sfile seeking '%s', invalid seeking base option", file);
}

void error_file_writeline(PcNode *node, bool file, const char *source) {
    if (file) REPORT(node, "%s'%s' not a file", source);
    REPORT(node, "%s'%s' not a string", source);
}

}  // namespace vesko

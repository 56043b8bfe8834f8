// The Matrix record: the one value of the language, its two tags, the law of links, and every
// constructor. This header includes nothing of the project.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vesko {

struct Vector;
struct FuncRec;
struct Bfunc;
struct hashtable;
struct PcNode;

// Coarse tag: row and column of the five-by-five operator tables.
enum class L1 : uint8_t { RS, RM, IS, IM, PF };
constexpr unsigned n_families = 5;

// Detailed tag. Kinds below LS are numeric; the numbers are fixed.
enum class L2 : uint8_t {
    IM,
    RNG,
    IS,
    RM,
    RS,
    BY,
    BI,
    UPPER,
    LOWER,
    SYMM,
    BAND,
    SPARSE,
    PM,
    BIGINT,
    MPF,
    CS,
    CM,
    LS,
    VL,
    UF,
    BF,
    OBJ,
    RMDM,
    CMDM,
    TX,
    ITV,
    PTR,
    FSET,
    RNG0,
    NUL,
    COMPLETE,
    CLASS,
    REGEXP,
    AUTOMATON,
    STACK,
    QUEUE,
    HASH,
    COND,
    VARADDR,
    DNE,
    PTRSET,
    FILEH,
    GV,
    ODE
};
constexpr unsigned n_kinds = 44;

constexpr unsigned index(L1 t) { return static_cast<unsigned>(t); }
constexpr unsigned index(L2 t) { return static_cast<unsigned>(t); }

// Numeric kinds, the ones that a matrix literal or a fold accepts: everything up to the complex matrix.
constexpr bool isNumeric(L2 t) { return t <= L2::CM; }
// Real-like kinds, those with one value an element that converts to a double.
constexpr bool isRealLike(L2 t) { return t <= L2::MPF; }
constexpr bool isList(L2 t) { return t == L2::LS || t == L2::VL; }
constexpr bool isFunction(L2 t) { return t == L2::UF || t == L2::BF; }

// `status` is 2 * nlinks + 1 for a live record and 0 for a free one. Singletons start from a count that
// no program can reach, so that releaseMat never frees them.
constexpr uint32_t status_free = 0;
constexpr uint32_t status_temporary = 1;
constexpr uint32_t status_singleton = 1073741823;

// Element (i, j), from 0, of a dense kind lies at i * ncols + j. What rdata and vdata hold is told by
// l2type; the accessors below name the payloads that many files read.
struct Matrix {
    L1 l1type;
    L2 l2type;
    uint8_t libidx;  // class of the pool the record belongs to
    uint32_t status;
    int32_t depth;  // depth of the call stack when the record was handed out
    uint32_t nrows, ncols, length;
    uint32_t cap;    // doubles in the real pool, bytes in the general pool
    uint32_t epoch;  // sweep in whose log the record stands
#ifdef VESKO_CHECK
    uint32_t audit_links;  // links that the audit has found
#endif
    double *rdata;
    void *vdata;

    int32_t *ints() const { return static_cast<int32_t *>(vdata); }
    uint8_t *bytes() const { return static_cast<uint8_t *>(vdata); }
    char *text() const { return static_cast<char *>(vdata); }
    Matrix **entries() const { return static_cast<Matrix **>(vdata); }  // LS, VL
    Matrix *re() const { return static_cast<Matrix **>(vdata)[0]; }     // CS, CM
    Matrix *im() const { return static_cast<Matrix **>(vdata)[1]; }
    double first() const { return rdata[0]; }  // RNG
    double step() const { return rdata[1]; }
    hashtable *table() const { return static_cast<hashtable *>(vdata); }  // HASH, FSET
    FuncRec *func() const { return static_cast<FuncRec *>(vdata); }       // UF
    Bfunc *builtin() const { return static_cast<Bfunc *>(vdata); }        // BF
    Matrix *target() const { return static_cast<Matrix *>(vdata); }       // PTR, PTRSET

    uint32_t nlinks() const { return status >> 1; }
    bool isTemp() const { return status < 2; }
    bool isSquare() const { return nrows == ncols; }
};

// ---- The law of links --------------------------------------------------------------------------
//
// 1. A handler or worker returns a borrowed Matrix: a temporary (no links) or a value that somebody holds.
// 2. Whoever is finished with a value he does not hold calls releaseMat: it frees temporaries only.
// 3. Whoever keeps a value calls linkMat; whoever drops a kept value calls ucReleaseMat.
//    Link the new value before the old one is dropped, and store before releasing, so that x = x and an
//    interrupt between two steps are safe.
// 4. A value taken out of its holder and passed on uncopied goes through detachMat: the link is given
//    back without a free, and the value is a temporary if nobody else holds it.
// 5. An operation may return one of its operands. A caller that then releases the operands brackets them
//    with keepResult / passResult.
// 6. Nothing is released on an error path: the sweep at the head of the next command does it.

// An interrupt may jump out between any two stores. What stands on both sides of this stays in its order.
inline void orderStores() { __atomic_signal_fence(__ATOMIC_SEQ_CST); }

inline void linkMat(Matrix *m) {
    m->status += 2;
    orderStores();  // linked before it is stored
}

void disposeMat(Matrix *m);  // frees a temporary: returns the record and its payload to their pools
inline void releaseMat(Matrix *m) {
    if (m->status == status_temporary) disposeMat(m);
}

// Gives a link back; frees the value when it was the last. A value without links is an internal fault,
// reported by xMesg.
void dropLastLink(Matrix *m);
inline void ucReleaseMat(Matrix *m) {
    orderStores();  // out of its holder before the link goes
    if (m->nlinks() > 1)
        m->status -= 2;
    else
        dropLastLink(m);
}

// The sweep knows every temporary: a value that becomes one is noted, once between two sweeps.
extern uint32_t sweep_epoch;
void noteTemporary(Matrix *m);

// Gives a link back without a free. The value is a temporary if nobody else holds it.
inline Matrix *detachMat(Matrix *m) {
    orderStores();
    m->status -= 2;
    if (m->status == status_temporary && m->epoch != sweep_epoch) noteTemporary(m);
    return m;
}

// Brackets the release of operands that may include the result itself.
inline Matrix *keepResult(Matrix *m) {
    m->status += 2;
    return m;
}
inline Matrix *passResult(Matrix *m) { return detachMat(m); }

// Puts `m` in a holder's slot: links it, stores it, drops what the slot held. Returns m.
inline Matrix *replaceMat(Matrix *&slot, Matrix *m) {
    Matrix *old = slot;
    linkMat(m);
    slot = m;
    ucReleaseMat(old);
    return m;
}

// ---- Constructors ------------------------------------------------------------------------------
// Each returns a temporary. Sizes are element counts; bytes only in allocGMat. A product of sizes that does
// not fit a record, or memory that is refused, ends the command.

Matrix *allocRealMat(uint32_t length, uint32_t rows, uint32_t cols);  // elements undefined; length 0 is fatal
Matrix *allocRealMat_ini(uint32_t length, uint32_t rows, uint32_t cols);  // elements 0.0
Matrix *newZerosMat(uint32_t rows, uint32_t cols);
Matrix *newRealScalarMat(double x);
Matrix *allocCompMat(uint32_t length, uint32_t rows, uint32_t cols);  // parts undefined, each linked once
Matrix *newCompMat(Matrix *re, Matrix *im);  // takes both parts: expands a scalar part, clones linked ones
Matrix *newCompScalarMat(double re, double im);
// Of the general pool, vdata of at least that size; tagged as empty bytes, tags and sizes are the caller's.
Matrix *allocGMat(size_t bytes);
Matrix *newStrMat(uint32_t size_with_nul);
Matrix *newStrMatCopy(const char *text);
Matrix *newStrMatCopyN(const char *text, uint32_t length);
Matrix *newListMat(uint32_t capacity);
Matrix *newVListMat(uint32_t capacity);
Matrix *newIntMat(uint32_t rows, uint32_t cols);
Matrix *newIntScalarMat(int32_t x);
Matrix *newByteMat(uint32_t rows, uint32_t cols);
Matrix *newBinaryMat(uint32_t rows, uint32_t cols);
Matrix *newByteScalarMat(uint8_t x);
Matrix *newBinaryScalarMat(uint8_t x);
Matrix *newRngMat(uint32_t rows, uint32_t cols, double first, double step);
Matrix *allocItvMat(uint32_t n);
Matrix *newItvMat(double lower, double upper, double lower_flag, double upper_flag);
Matrix *newRMDM_Mat(uint32_t length, Vector *extents);  // takes the Vector over
Matrix *newCMDM_Mat(uint32_t length, Vector *extents);
Matrix *dupRMDM(const Matrix *m);  // same extents, elements undefined
Matrix *dupCMDM(const Matrix *m);
Matrix *RS_TO_RM(const Matrix *scalar, const Matrix *shape);
Matrix *RS_TO_RM_NEG(const Matrix *scalar, const Matrix *shape);
Matrix *newUpperMat(uint32_t n);
Matrix *newLowerMat(uint32_t n);
Matrix *newSymmMat(uint32_t n);
Matrix *newUfMat(FuncRec *f);
Matrix *newBfMat(Bfunc *f);
// Bare record without payload, tagged GV: l2type, sizes and pointers are the caller's, the payload before the
// tag.
Matrix *newPfMat();
Matrix *newGvMat(uint32_t global_index);

// Length of rows * cols in 64 bits; ends the command when it does not fit a record.
uint32_t checkedLength(uint64_t rows, uint64_t cols);

// ---- Singletons --------------------------------------------------------------------------------

namespace detail {
extern Matrix *const empmat;
extern Matrix *const nullmat;
extern Matrix *const dnemat;
extern Matrix *const truemat;
extern Matrix *const falsemat;
extern Matrix *const negonemat;
extern Matrix *const nlogbasemat;
extern Matrix *const nanmat;
extern Matrix *const infmat;
extern Matrix *const ninfmat;
extern Matrix *const completemat;
extern Matrix *const rng0mat;
extern Matrix *const empstrmat;
}  // namespace detail
inline Matrix *theEmptyMat() { return detail::empmat; }
inline Matrix *theDummyMat() { return detail::empmat; }
inline Matrix *theNullMat() { return detail::nullmat; }  // result of what has no result: never shown
inline Matrix *theDneMat() { return detail::dnemat; }
inline Matrix *theTrueMat() { return detail::truemat; }
inline Matrix *theFalseMat() { return detail::falsemat; }
inline Matrix *theNegOneMat() { return detail::negonemat; }
inline Matrix *theNlogBaseMat() { return detail::nlogbasemat; }
inline Matrix *theNanMat() { return detail::nanmat; }
inline Matrix *theInfMat() { return detail::infmat; }
inline Matrix *theNinfMat() { return detail::ninfmat; }
inline Matrix *theCompleteMat() { return detail::completemat; }
inline Matrix *theRng0Mat() { return detail::rng0mat; }
inline Matrix *theEmptyStrMat() { return detail::empstrmat; }
inline Matrix *truthMat(bool t) { return t ? theTrueMat() : theFalseMat(); }

inline bool ISEMPTY(const Matrix *m) { return m == detail::empmat || m == detail::nullmat; }

// Display name of a kind; "unknown" for the kinds that have none.
const char *getdatatypestr(unsigned l2type);
inline const char *getdatatypestr(L2 t) { return getdatatypestr(index(t)); }

}  // namespace vesko

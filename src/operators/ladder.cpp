// The ladders of the value operators, as data: what a pair of kinds means, and what each operator does about
// it.
#include "operators/ladder.h"

#include <array>

#include "operators/ladders.h"

namespace vesko {

namespace {

enum class Pair : uint8_t {
    Undefined,
    Reals,
    Ranges,
    RangeNumber,
    ByteNumber,
    Bytes,
    Dense,
    Unbuilt,
    Complex,
    Lists,
    FunctionList,
    Function,
    Multidim,
    TextNumber,
    Texts,
    IntervalNumber,
    Intervals,
    Object,
};
constexpr unsigned n_meanings = 18;

// ---- Two PF operands: the meaning of the pair codes, in runs.
struct CodeRun {
    uint8_t first, last;
    Pair meaning;
};
constexpr CodeRun code_runs[] = {
    {0, 0, Pair::Ranges},            // RNG, RNG
    {1, 2, Pair::Reals},             // kinds without a common exact form
    {3, 4, Pair::Multidim},          // BY, BI, BIGINT, MPF with RMDM, CMDM
    {5, 5, Pair::Reals},             // structured with RNG, BY, BI, BIGINT
    {6, 7, Pair::Unbuilt},           // with BIGINT, with MPF
    {8, 9, Pair::Complex},           // real-like with CS, CM
    {10, 10, Pair::Lists},           // anything with a list
    {11, 11, Pair::TextNumber},      // RNG, BIGINT, MPF with TX
    {12, 12, Pair::Bytes},           // BY with BY, BI
    {13, 13, Pair::TextNumber},      // BY, BI with TX
    {14, 14, Pair::Bytes},           // BI, BI
    {15, 17, Pair::Dense},           // UPPER with UPPER, LOWER, SYMM
    {18, 19, Pair::Unbuilt},         // UPPER with BAND, SPARSE
    {20, 23, Pair::Dense},           // UPPER with PM; LOWER with UPPER, LOWER, SYMM
    {24, 25, Pair::Unbuilt},         // LOWER with BAND, SPARSE
    {26, 29, Pair::Dense},           // LOWER with PM; SYMM with UPPER, LOWER, SYMM
    {30, 31, Pair::Unbuilt},         // SYMM with BAND, SPARSE
    {32, 35, Pair::Dense},           // SYMM with PM; PM with UPPER, LOWER, SYMM
    {36, 37, Pair::Unbuilt},         // PM with BAND, SPARSE
    {38, 38, Pair::Dense},           // PM, PM
    {39, 54, Pair::Unbuilt},         // BAND, SPARSE, BIGINT, MPF with real-like kinds
    {55, 57, Pair::Complex},         // CS with real-like and complex kinds
    {58, 59, Pair::Multidim},        // CS with RMDM, CMDM
    {60, 62, Pair::Complex},         // CM with real-like and complex kinds
    {63, 64, Pair::Lists},           // a list with anything
    {65, 65, Pair::FunctionList},    // UF with a list
    {66, 66, Pair::Function},        // UF with a value
    {67, 67, Pair::FunctionList},    // BF with a list
    {68, 68, Pair::Function},        // BF with a value
    {69, 69, Pair::Object},          // OBJ with anything
    {70, 77, Pair::Multidim},        // RMDM, CMDM with numbers, CS and each other
    {78, 78, Pair::TextNumber},      // TX with RNG, BY, BI, BIGINT, MPF
    {79, 79, Pair::Texts},           // TX, TX
    {82, 82, Pair::Intervals},       // ITV, ITV
    {83, 84, Pair::IntervalNumber},  // ITV with BY, BI, BIGINT, MPF; and the mirror
    {85, 85, Pair::Function},        // anything with a function
    {no_match, no_match, Pair::Undefined},
};

constexpr auto meaning_of_code = [] {
    std::array<Pair, no_match + 1> table{};
    for (const CodeRun &run : code_runs)
        for (unsigned code = run.first; code <= run.last; code++) table[code] = run.meaning;
    return table;
}();

// ---- One PF operand of the kind, the other of a plain family.
struct KindMeaning {
    L2 kind;
    Pair meaning;
};
constexpr KindMeaning kind_meanings[] = {
    {L2::RNG, Pair::RangeNumber},    {L2::BY, Pair::ByteNumber},  {L2::BI, Pair::ByteNumber},
    {L2::UPPER, Pair::Dense},        {L2::LOWER, Pair::Dense},    {L2::SYMM, Pair::Dense},
    {L2::BAND, Pair::Unbuilt},       {L2::SPARSE, Pair::Unbuilt}, {L2::PM, Pair::Dense},
    {L2::BIGINT, Pair::Unbuilt},     {L2::MPF, Pair::Unbuilt},    {L2::CS, Pair::Complex},
    {L2::CM, Pair::Complex},         {L2::LS, Pair::Lists},       {L2::VL, Pair::Lists},
    {L2::UF, Pair::Function},        {L2::BF, Pair::Function},    {L2::OBJ, Pair::Object},
    {L2::RMDM, Pair::Multidim},      {L2::CMDM, Pair::Multidim},  {L2::TX, Pair::TextNumber},
    {L2::ITV, Pair::IntervalNumber},
};

constexpr auto meaning_of_kind = [] {
    std::array<Pair, n_kinds> table{};
    for (const KindMeaning &entry : kind_meanings) table[index(entry.kind)] = entry.meaning;
    return table;
}();

Pair meaningOf(const Matrix *a, const Matrix *b) {
    if (a->l1type != L1::PF) return meaning_of_kind[index(b->l2type)];
    if (b->l1type != L1::PF) return meaning_of_kind[index(a->l2type)];
    return meaning_of_code[matchCode(a, b)];
}

// ---- What the operators do: a row for each meaning, in the order of Pair; columns in the order of Arith.
constexpr Step none = undefined, noquo = noQuotient, reals = asReals, prod = productOfRest;
constexpr Step csum = complexSum, cquo = complexQuotient, celt = complexElements, mdim = multidimPair;
constexpr Step fsum = functionSum, fmul = functionProduct, fquo = functionQuotient, lists = overLists,
               range = rangePair;
constexpr Step rnum = rangeNumber, bnum = byteNumber, belt = byteElements, wait = notBuilt;
constexpr Step cmul = complexProduct, bmul = byteProduct, bquo = byteQuotient, obj = objectOperator;

// clang-format off
constexpr Step steps[n_meanings][n_ariths - 1] = {
    // Sum           Sub            Mpy           Dvd    Dmu    Ddv    Bsl    Dpw    Mod
    {none,          none,          prod,         noquo, none,  none,  none,  none,  none},   // Undefined
    {reals,         reals,         reals,        reals, reals, reals, reals, reals, reals},  // Reals
    {range,         range,         reals,        reals, range, range, reals, reals, reals},  // Ranges
    {rnum,          rnum,          rnum,         reals, reals, reals, reals, reals, reals},  // RangeNumber
    {bnum,          bnum,          bnum,         bnum,  bnum,  bnum,  bnum,  bnum,  bnum},   // ByteNumber
    {belt,          belt,          bmul,         bquo,  belt,  belt,  reals, reals, belt},   // Bytes
    {dense,         dense,         dense,        dense, dense, dense, dense, dense, dense},  // Dense
    {wait,          wait,          wait,         wait,  wait,  wait,  wait,  wait,  wait},   // Unbuilt
    {csum,          csum,          cmul,         cquo,  celt,  cquo,  cquo,  celt,  none},   // Complex
    {lists,         lists,         lists,        lists, lists, lists, lists, lists, lists},  // Lists
    {lists,         lists,         fmul,         lists, lists, lists, lists, lists, lists},  // FunctionList
    {fsum,          fsum,          fmul,         fquo,  none,  none,  fquo,  none,  none},   // Function
    {mdim,          mdim,          mdim,         mdim,  mdim,  mdim,  mdim,  mdim,  mdim},   // Multidim
    {shiftText,     shiftText,     repeatText,   noquo, none,  none,  none,  none,  none},   // TextNumber
    {joinTexts,     subtractTexts, findText,     noquo, none,  none,  none,  none,  none},   // Texts
    {shiftInterval, shiftInterval, prod,         noquo, none,  none,  none,  none,  none},   // IntervalNumber
    {intervalPair,  intervalPair,  intervalPair, noquo, none,  none,  none,  none,  none},   // Intervals
    {obj,           obj,           obj,          obj,   obj,   obj,   obj,   none,  none},   // Object
};
// clang-format on

Matrix *ladder(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    return steps[static_cast<unsigned>(meaningOf(a, b))][index(op)](op, a, b, node);
}

constexpr Arith sum = Arith::Sum, sub = Arith::Sub, mpy = Arith::Mpy, dvd = Arith::Dvd, dmu = Arith::Dmu,
                ddv = Arith::Ddv, bsl = Arith::Bsl, dpw = Arith::Dpw, mod = Arith::Mod;

}  // namespace

#define X(op, L, R) \
    Matrix *op##L##_##R(Matrix *left, Matrix *right, PcNode *node) { return ladder(op, left, right, node); }
PF_PAIRS(X, sum)
PF_PAIRS(X, sub)
PF_PAIRS(X, mpy)
PF_PAIRS(X, dvd)
PF_PAIRS(X, dpw)
PF_PAIRS(X, mod)
PF_DENSE_PAIRS(X, dmu)
PF_DENSE_PAIRS(X, ddv)
PF_DENSE_PAIRS(X, bsl)
#undef X

}  // namespace vesko

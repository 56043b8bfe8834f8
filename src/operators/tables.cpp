// The dispatch tables: one function for each pair of families, index left * 5 + right in the order RS, RM,
// IS, IM, PF.
#include "operators/dispatch.h"
#include "operators/ladders.h"
#include "operators/plain.h"

namespace vesko {

#define ROW(op, L) op##L##_RS, op##L##_RM, op##L##_IS, op##L##_IM, op##L##_PF
#define FULL_TABLE(op) \
    { ROW(op, RS), ROW(op, RM), ROW(op, IS), ROW(op, IM), ROW(op, PF) }

const BinaryFn sumfun[n_pairs] = FULL_TABLE(sum);
const BinaryFn subfun[n_pairs] = FULL_TABLE(sub);
const BinaryFn mpyfun[n_pairs] = FULL_TABLE(mpy);
const BinaryFn dvdfun[n_pairs] = FULL_TABLE(dvd);
const BinaryFn powfun[n_pairs] = FULL_TABLE(pow);
const BinaryFn modfun[n_pairs] = FULL_TABLE(mod);

// Element by element where both sides can be matrices, the scalar form of * or / elsewhere.
#define DENSE_ROW(op, scalar, L) scalar##L##_RS, op##L##_RM, scalar##L##_IS, op##L##_IM, op##L##_PF
#define DENSE_TABLE(op, scalar)                                                                 \
    {                                                                                           \
        ROW(scalar, RS), DENSE_ROW(op, scalar, RM), ROW(scalar, IS), DENSE_ROW(op, scalar, IM), \
            DENSE_ROW(op, scalar, PF)                                                           \
    }

const BinaryFn dmufun[n_pairs] = DENSE_TABLE(dmu, mpy);
const BinaryFn ddvfun[n_pairs] = DENSE_TABLE(ddv, dvd);
const BinaryFn bslfun[n_pairs] = DENSE_TABLE(bsl, dvd);

#define SCALAR_POWER_ROW(L) pow##L##_RS, dpw##L##_RM, pow##L##_IS, dpw##L##_IM, dpw##L##_PF
const BinaryFn dpwfun[n_pairs] = {SCALAR_POWER_ROW(RS), ROW(dpw, RM), SCALAR_POWER_ROW(IS), ROW(dpw, IM),
                                  ROW(dpw, PF)};

const BinaryFn qsumfun[n_pairs] = {
    qsumRS_RS,    qsumRS_RM, qsumRS_IS, sumRS_IM,  sumRS_PF,  //
    qsumRM_RS,    qsumRM_RM, qsumRM_IS, qsumRM_IM, sumRM_PF,  //
    sumIS_RS,     sumIS_RM,  qsumIS_IS, qsumIS_IM, sumIS_PF,  //
    sumIM_RS,     sumIM_RM,  qsumIM_IS, qsumIM_IM, sumIM_PF,  //
    ROW(sum, PF),
};
const BinaryFn qsubfun[n_pairs] = {
    qsubRS_RS,    qsubRS_RM, subRS_IS,  subRS_IM,  subRS_PF,  //
    qsubRM_RS,    qsubRM_RM, subRM_IS,  subRM_IM,  subRM_PF,  //
    subIS_RS,     subIS_RM,  qsubIS_IS, subIS_IM,  subIS_PF,  //
    subIM_RS,     subIM_RM,  qsubIM_IS, qsubIM_IM, subIM_PF,  //
    ROW(sub, PF),
};
const BinaryFn qmpyfun[n_pairs] = {
    qmpyRS_RS,    qmpyRS_RM, mpyRS_IS,  mpyRS_IM, mpyRS_PF,  //
    qmpyRM_RS,    qmpyRM_RM, mpyRM_IS,  mpyRM_IM, mpyRM_PF,  //
    mpyIS_RS,     mpyIS_RM,  qmpyIS_IS, mpyIS_IM, mpyIS_PF,  //
    mpyIM_RS,     mpyIM_RM,  qmpyIM_IS, mpyIM_IM, mpyIM_PF,  //
    ROW(mpy, PF),
};

const UnaryFn trsfun[n_families] = {trsRS, trsRM, trsIS, trsIM, trsPF};
const UnaryFn negfun[n_families] = {negRS, negRM, negIS, negIM, negPF};

// In place: a target IS uses the row of IM, and for /= a target RS that of RM.
const InPlaceFn addfun[n_pairs] = {ROW(add, RS), ROW(add, RM), ROW(add, IM), ROW(add, IM), ROW(add, PF)};
const InPlaceFn dedfun[n_pairs] = {dedRS_RS,     dedRS_RM,     dedRS_IM,     dedRS_IM,    dedRS_PF,
                                   ROW(ded, RM), ROW(ded, IM), ROW(ded, IM), ROW(ded, PF)};
const InPlaceFn mulfun[n_pairs] = {ROW(mul, RS), ROW(mul, RM), ROW(mul, IM), ROW(mul, IM), ROW(mul, PF)};
const InPlaceFn divfun[n_pairs] = {ROW(div, RM), ROW(div, RM), ROW(div, IM), ROW(div, IM), ROW(div, PF)};

const TruthFn equfun[n_pairs] = FULL_TABLE(equ);
const TruthFn lesfun[n_pairs] = FULL_TABLE(les);
const TruthFn leqfun[n_pairs] = FULL_TABLE(leq);

}  // namespace vesko

// Conversion and cloning of values, and numbers read out of values. Converters and clones return new
// temporaries and leave the operand alone, unless told otherwise.
#pragma once

#include "values/matrix.h"

namespace vesko {

// ---- Cloning
Matrix *cloneMatrix(Matrix *m);  // deep copy; kinds that are immutable or shared come back as they are
Matrix *cloneRM(const Matrix *m);
Matrix *cloneRM_rowreverse(const Matrix *m);
Matrix *cloneStrMat(const Matrix *m);
Matrix *cloneListMat(const Matrix *m);
Matrix *cloneVListMat(const Matrix *m);
Matrix *cloneSetMat(const Matrix *m);
void copyMat(Matrix *dst, const Matrix *src);
void copyRealMat(Matrix *dst, const Matrix *src);  // src into the top left corner of a larger dst
void copyIM(Matrix *dst, const Matrix *src);
void copyBM(Matrix *dst, const Matrix *src);
void copyCompMat(Matrix *dst, const Matrix *src);
Matrix *theEleMat(uint32_t n);  // the identity as a real matrix
bool sameDims(const Matrix *a, const Matrix *b);

// ---- Conversion. A kind that cannot be converted ends the command with error_convert.
Matrix *convToDb(const Matrix *m);
Matrix *convToIntMat(const Matrix *m);
Matrix *convToString(Matrix *m);  // a string comes back as it is
Matrix *convToByteMat(const Matrix *m);
Matrix *convToBinaryMat(const Matrix *m);
Matrix *convToCM(const Matrix *m);
void by_to_bi(Matrix *m);                // in place
Matrix *catstrings(const Matrix *list);  // the strings of a list, joined

// ---- Numbers out of values: true on success; `m` is neither released nor changed.
bool extract_RS(const Matrix *m, double &x);
bool extract_CS(const Matrix *m, double &re, double &im);
bool extract_integer(const Matrix *m, int32_t &n);  // refuses a fraction
bool extract_2_reals(const Matrix *m, double &a, double &b);
bool isIntMat(const Matrix *m);

// Truncation of a double to a 32-bit integer, toward zero; out of range saturates, NaN gives 0.
int32_t truncToInt(double x);

// ---- Whole-matrix arithmetic
Matrix *negateMat(Matrix *m, PcNode *node);
// Whole power of a square matrix by repeated products from the left; the names are those of the kinds.
Matrix *matpow_generic(Matrix *m, int32_t n, PcNode *node);
constexpr auto matpow_d = matpow_generic, matpow_i = matpow_generic, matpow_b = matpow_generic,
               matpow_n = matpow_generic, matpow_c = matpow_generic;

}  // namespace vesko

// Small dense systems by elimination, and the factors that a matrix keeps. None of the routines reports a
// singular matrix: its solutions hold infinities and NaNs.
#pragma once

#include <cstdint>

namespace vesko {

struct Matrix;
struct PcNode;

// ---- Elimination with implicit scaled partial pivoting on raw row-major arrays: a (n by n) is destroyed, b
// becomes the solution. Both answer the number of row swaps.
uint32_t gaussElim(uint32_t n, double *a, double *b);
uint32_t gmElim(uint32_t n, uint32_t nrhs, double *a, double *b);

// gaussElim or gmElim by the columns of b. Both are real matrices of one height; a is square.
uint32_t eliminate(Matrix *a, Matrix *b);

// Zeros before the first other entry of each row, and behind the last, summed over the rows.
void row_zeros_count(const Matrix *a, uint64_t &leading, uint64_t &trailing);
void reverseRows(double *a, uint32_t rows, uint32_t cols);     // the order of the rows
void reverseColumns(double *a, uint32_t rows, uint32_t cols);  // the entries of each row

double findDet(const Matrix *m);     // of a square real matrix
Matrix *inverseRM(const Matrix *m);  // of a square real matrix: a new one

// ---- Crout elimination with partial pivoting, L with the pivots on its diagonal and U with ones. rows[i] is
// the row of the given matrix that stands at place i. Answers the last column whose pivot was exactly 0, or
// n.
uint32_t ludcmp(uint32_t n, double *a, int32_t *rows);
double get_permutation_sign(const int32_t *rows, uint32_t n);

// ---- Cached factors. The record hangs on vdata of a processed, triangular or symmetric matrix; each entry
// holds a link.
struct ProcessedMatrix {
    uintptr_t posdef;  // 1 once a Cholesky factorisation has succeeded
    Matrix *lu, *pivots;
    Matrix *qr, *tau;
    Matrix *u, *s, *v;
};
void initFactors();  // at start: tells the pools how they are freed
ProcessedMatrix *newProcessedMatrix();
void freeProcessedMatrix(ProcessedMatrix *p);  // with its entries; null-safe
void reset_pm(Matrix *m);                      // drops the factors, keeps the tags
void strip_pm(Matrix *m);                      // drops the factors and makes the matrix plain real again

// Makes sure that the square matrix m, plain real or processed, carries its LU factors; a plain one becomes a
// processed one in place.
void lu_rm(Matrix *m);
Matrix *alusolve(const Matrix *a, const Matrix *b);       // X of A X = B; a carries its LU factors
Matrix *plusolve_xAEb(const Matrix *a, const Matrix *b);  // X of X A = B

}  // namespace vesko

#pragma once

/// Solves A X = B for a symmetric indefinite matrix with error bounds: LAPACK's routine dsysvx with its own
/// argument list, all by pointer. Matrices are column-major.
///
/// E. Anderson et al., "LAPACK Users' Guide", third edition, 1999.
void f77_dsysvx(const char* fact, const char* uplo, const int* n, const int* nrhs, const double* a,
                const int* lda, double* af, const int* ldaf, int* ipiv, const double* b, const int* ldb,
                double* x, const int* ldx, double* rcond, double* ferr, double* berr, double* work,
                const int* lwork, int* iwork, int* info);

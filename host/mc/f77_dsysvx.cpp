#include "mc/f77_dsysvx.h"

#include <cstddef>

// Fortran passes the lengths of its character arguments behind all others.
extern "C" void dsysvx_(const char*, const char*, const int*, const int*, const double*, const int*, double*,
                        const int*, int*, const double*, const int*, double*, const int*, double*, double*,
                        double*, double*, const int*, int*, int*, std::size_t, std::size_t);

void f77_dsysvx(const char* fact, const char* uplo, const int* n, const int* nrhs, const double* a,
                const int* lda, double* af, const int* ldaf, int* ipiv, const double* b, const int* ldb,
                double* x, const int* ldx, double* rcond, double* ferr, double* berr, double* work,
                const int* lwork, int* iwork, int* info)
{
    dsysvx_(fact, uplo, n, nrhs, a, lda, af, ldaf, ipiv, b, ldb, x, ldx, rcond, ferr, berr, work, lwork,
            iwork, info, 1, 1);
}

#include "mc/f77_dsysvx.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

struct Solution
{
    std::vector<double> x;
    double rcond = -1;
    int info = -1;
};

Solution solve(const std::vector<double>& a, const std::vector<double>& b)
{
    const int n = int(b.size());
    const int one = 1, lwork = 6 * n;
    Solution s;
    s.x.resize(n);
    std::vector<double> factor(n * n), work(lwork);
    std::vector<int> pivots(n), iwork(n);
    double ferr = 0, berr = 0;
    f77_dsysvx("n", "u", &n, &one, a.data(), &n, factor.data(), &n, pivots.data(), b.data(), &n, s.x.data(),
               &n, &s.rcond, &ferr, &berr, work.data(), &lwork, iwork.data(), &s.info);
    return s;
}

} // namespace

TEST(Dsysvx, SolvesSymmetricIndefiniteSystems)
{
    std::mt19937 random(71);
    std::uniform_real_distribution<double> value(-1, 1);
    for (int n : {1, 2, 5, 40, 200}) {
        std::vector<double> a(n * n), b(n);
        for (int j = 0; j < n; j++) {
            b[j] = value(random);
            for (int i = 0; i <= j; i++) a[i + n * j] = a[j + n * i] = value(random);
        }
        if (n > 1) a[0] = 0; // no pivot on the diagonal
        // Only the upper triangle may count.
        std::vector<double> upper = a;
        for (int j = 0; j < n; j++)
            for (int i = j + 1; i < n; i++) upper[i + n * j] = NAN;
        const Solution s = solve(upper, b);
        ASSERT_TRUE(s.info == 0) << n;
        EXPECT_GT(s.rcond, 0);
        for (int i = 0; i < n; i++) {
            double residual = -b[i];
            for (int j = 0; j < n; j++) residual += a[i + n * j] * s.x[j];
            ASSERT_NEAR(residual, 0, 1e-9);
        }
    }
}

TEST(Dsysvx, TellsSingularAndIllConditionedMatrices)
{
    const std::vector<double> singular{1, 0, 0, 0};
    EXPECT_EQ(solve(singular, {1, 1}).info, 2);
    const std::vector<double> nearlySingular{1, 0, 0, 1e-20};
    const Solution s = solve(nearlySingular, {1, 1e-20});
    EXPECT_EQ(s.info, 3) << "solved, but ill-conditioned";
    EXPECT_LT(s.rcond, 1e-16);
}

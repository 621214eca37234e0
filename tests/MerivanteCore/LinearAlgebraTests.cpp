#include <gtest/gtest.h>

#include <cmath>

#include "MerivanteCore/Statistics/LinearAlgebra.h"

namespace LA = merivante::LinearAlgebra;

namespace {

std::vector<double> multiply(const std::vector<double>& a, const std::vector<double>& b, std::size_t n) {
    std::vector<double> product(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = 0; k < n; ++k) product[i * n + j] += a[i * n + k] * b[k * n + j];
        }
    }
    return product;
}

void expectNear(const std::vector<double>& actual, const std::vector<double>& expected, double tolerance = 1e-12) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "at " << i;
}

const std::vector<double> kSymmetric{4, 1, 2, 0.5, 1, 3, 0, 1, 2, 0, 5, -1, 0.5, 1, -1, 2};

} // namespace

TEST(LinearAlgebraTests, InverseTimesMatrixIsTheIdentityUnlessAPivotIsTooSmall) {
    const auto inverse = LA::invert(kSymmetric, 4);
    ASSERT_TRUE(inverse);
    expectNear(multiply(kSymmetric, *inverse, 4), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    // Mathematically invertible, but the pivot is below the threshold.
    EXPECT_FALSE(LA::invert({1e-13, 0, 0, 1}, 2));
    EXPECT_FALSE(LA::invert({1, 2, 2, 4}, 2));
    EXPECT_FALSE(LA::invert({1, 2, 3}, 2));
    EXPECT_FALSE(LA::invert({}, 0));
}

TEST(LinearAlgebraTests, EigenpairsComeLargestFirstWithAFixedSign) {
    const auto diagonal = LA::symmetricEigen({1, 0, 0, 0, 3, 0, 0, 0, 2}, 3);
    ASSERT_TRUE(diagonal);
    EXPECT_EQ(diagonal->values, (std::vector<double>{3, 2, 1}));
    EXPECT_EQ(diagonal->vectors[0], (std::vector<double>{0, 1, 0}));

    const auto pair = LA::symmetricEigen({2, 1, 1, 2}, 2);
    ASSERT_TRUE(pair);
    expectNear(pair->values, {3, 1});
    const double h = std::sqrt(0.5);
    expectNear(pair->vectors[0], {h, h});
    // Of two equal magnitudes the first is made positive.
    expectNear(pair->vectors[1], {h, -h});

    const auto general = LA::symmetricEigen(kSymmetric, 4);
    ASSERT_TRUE(general);
    for (std::size_t k = 0; k < 4; ++k) {
        for (std::size_t i = 0; i < 4; ++i) {
            double row = 0;
            for (std::size_t j = 0; j < 4; ++j) row += kSymmetric[i * 4 + j] * general->vectors[k][j];
            EXPECT_NEAR(row, general->values[k] * general->vectors[k][i], 1e-10);
        }
    }
    EXPECT_EQ(LA::symmetricEigen({7}, 1)->vectors, std::vector<std::vector<double>>{{1}});
    EXPECT_FALSE(LA::symmetricEigen({1, 2}, 2));
}

TEST(LinearAlgebraTests, LeastSquaresThroughQR) {
    // y = 1 + 2x exactly, with an intercept column.
    const std::vector<double> design{1, 0, 1, 1, 1, 2, 1, 3, 1, 4};
    const auto qr = LA::qrDecompose(design, 5, 2);
    ASSERT_TRUE(qr);
    const auto qty = qr->qtb({1, 3, 5, 7, 9});
    const auto beta = LA::solveUpperTriangular(qr->R, 2, {qty[0], qty[1]});
    ASSERT_TRUE(beta);
    expectNear(*beta, {1, 2});
    // (R'R)^-1 is (X'X)^-1.
    expectNear(*LA::covarianceFactorFromR(qr->R, 2), *LA::invert(*LA::gramMatrix(design, 5, 2), 2));
    EXPECT_TRUE(qr->qtb({1, 2}).empty());

    EXPECT_FALSE(LA::qrDecompose({1, 1, 2, 2, 3, 3}, 3, 2)) << "two identical columns";
    EXPECT_FALSE(LA::qrDecompose({1, 2}, 1, 2)) << "fewer rows than columns";
    EXPECT_FALSE(LA::solveUpperTriangular({1, 1, 0, 0}, 2, {1, 1}));
    EXPECT_FALSE(LA::gramMatrix({1, 2, 3}, 2, 2));
}

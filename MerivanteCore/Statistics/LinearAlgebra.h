#pragma once

#include <cstddef>
#include <optional>
#include <vector>

// Dense matrices as flat row-major arrays, with their dimensions beside them. An array
// whose length disagrees with the dimensions gives absent.
namespace merivante::LinearAlgebra {

// Householder reflectors and the upper-triangular factor of a `rows` by `cols` matrix.
struct QRFactorization {
    std::vector<std::vector<double>> reflectors; // v of each column, from its diagonal down
    std::vector<double> betas;                   // 2 / (v v)
    std::vector<double> R;                       // cols by cols, row-major
    std::size_t rows = 0;
    std::size_t cols = 0;

    // Q transposed times b (b of length `rows`); empty for a b of another length.
    std::vector<double> qtb(std::vector<double> b) const;
};

struct SymmetricEigen {
    std::vector<double> values;               // largest first
    std::vector<std::vector<double>> vectors; // unit length, each in step with its value
};

std::optional<std::vector<double>> invert(const std::vector<double>& a, std::size_t n);
std::optional<std::vector<double>> gramMatrix(const std::vector<double>& x, std::size_t rows, std::size_t cols);
std::optional<SymmetricEigen> symmetricEigen(const std::vector<double>& a, std::size_t n);
std::optional<QRFactorization> qrDecompose(const std::vector<double>& x, std::size_t rows, std::size_t cols);
std::optional<std::vector<double>> solveUpperTriangular(const std::vector<double>& r, std::size_t n,
                                                        const std::vector<double>& b);
// (R transposed R) inverse, the covariance factor of a least-squares fit.
std::optional<std::vector<double>> covarianceFactorFromR(const std::vector<double>& r, std::size_t n);

} // namespace merivante::LinearAlgebra

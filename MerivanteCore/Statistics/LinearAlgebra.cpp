#include "MerivanteCore/Statistics/LinearAlgebra.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace merivante::LinearAlgebra {
namespace {

bool isSquare(const std::vector<double>& a, std::size_t n) { return n >= 1 && a.size() == n * n; }

double offDiagonalSquares(const std::vector<double>& a, std::size_t n) {
    double sum = 0;
    for (std::size_t p = 0; p < n; ++p) {
        for (std::size_t q = p + 1; q < n; ++q) sum += a[p * n + q] * a[p * n + q];
    }
    return sum;
}

// A' = P^T A P and V' = V P for the rotation in the (p, q) plane that zeroes a_pq.
void rotate(std::vector<double>& a, std::vector<double>& v, std::size_t n, std::size_t p, std::size_t q) {
    const double apq = a[p * n + q];
    if (std::fabs(apq) < 1e-300) return;
    const double theta = (a[q * n + q] - a[p * n + p]) / (2.0 * apq);
    const double root = std::sqrt(theta * theta + 1.0);
    const double t = theta >= 0 ? 1.0 / (theta + root) : -1.0 / (root - theta);
    const double c = 1.0 / std::sqrt(t * t + 1.0), s = t * c;
    const auto turn = [c, s](double& first, double& second) {
        const double x = first, y = second;
        first = c * x - s * y;
        second = s * x + c * y;
    };
    for (std::size_t k = 0; k < n; ++k) turn(a[k * n + p], a[k * n + q]);
    for (std::size_t k = 0; k < n; ++k) turn(a[p * n + k], a[q * n + k]);
    for (std::size_t k = 0; k < n; ++k) turn(v[k * n + p], v[k * n + q]);
}

// Unit length, and the first component of largest magnitude positive.
std::vector<double> normalised(std::vector<double> vector) {
    const double norm = std::sqrt(std::inner_product(vector.begin(), vector.end(), vector.begin(), 0.0));
    if (norm > 0) {
        for (double& x : vector) x /= norm;
    }
    const auto largest = std::max_element(vector.begin(), vector.end(),
                                          [](double x, double y) { return std::fabs(x) < std::fabs(y); });
    if (largest != vector.end() && *largest < 0) {
        for (double& x : vector) x = -x;
    }
    return vector;
}

} // namespace

std::optional<std::vector<double>> invert(const std::vector<double>& matrix, std::size_t n) {
    if (!isSquare(matrix, n)) return std::nullopt;
    std::vector<double> a = matrix, inverse(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i) inverse[i * n + i] = 1;
    for (std::size_t column = 0; column < n; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < n; ++row) {
            if (std::fabs(a[row * n + column]) > std::fabs(a[pivot * n + column])) pivot = row;
        }
        const double value = a[pivot * n + column];
        if (!(std::fabs(value) > 1e-12)) return std::nullopt;
        for (std::size_t k = 0; k < n; ++k) {
            std::swap(a[pivot * n + k], a[column * n + k]);
            std::swap(inverse[pivot * n + k], inverse[column * n + k]);
        }
        for (std::size_t k = 0; k < n; ++k) {
            a[column * n + k] /= value;
            inverse[column * n + k] /= value;
        }
        for (std::size_t row = 0; row < n; ++row) {
            const double factor = a[row * n + column];
            if (row == column || factor == 0) continue;
            for (std::size_t k = 0; k < n; ++k) {
                a[row * n + k] -= factor * a[column * n + k];
                inverse[row * n + k] -= factor * inverse[column * n + k];
            }
        }
    }
    return inverse;
}

std::optional<std::vector<double>> gramMatrix(const std::vector<double>& x, std::size_t rows, std::size_t cols) {
    if (x.size() != rows * cols) return std::nullopt;
    std::vector<double> gram(cols * cols, 0.0);
    for (std::size_t r = 0; r < rows; ++r) {
        for (std::size_t i = 0; i < cols; ++i) {
            for (std::size_t j = 0; j < cols; ++j) gram[i * cols + j] += x[r * cols + i] * x[r * cols + j];
        }
    }
    return gram;
}

std::optional<SymmetricEigen> symmetricEigen(const std::vector<double>& matrix, std::size_t n) {
    if (!isSquare(matrix, n)) return std::nullopt;
    if (n == 1) return SymmetricEigen{{matrix[0]}, {{1.0}}};
    std::vector<double> a = matrix, v(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i) v[i * n + i] = 1;
    for (int sweep = 0; sweep < 100 && offDiagonalSquares(a, n) >= 1e-30; ++sweep) {
        for (std::size_t p = 0; p < n; ++p) {
            for (std::size_t q = p + 1; q < n; ++q) rotate(a, v, n, p, q);
        }
    }
    if (!(offDiagonalSquares(a, n) < 1e-18)) return std::nullopt;
    std::vector<std::pair<double, std::vector<double>>> pairs;
    for (std::size_t j = 0; j < n; ++j) {
        std::vector<double> column(n);
        for (std::size_t i = 0; i < n; ++i) column[i] = v[i * n + j];
        pairs.emplace_back(a[j * n + j], normalised(std::move(column)));
    }
    std::stable_sort(pairs.begin(), pairs.end(), [](const auto& x, const auto& y) { return x.first > y.first; });
    SymmetricEigen result;
    for (auto& [value, vector] : pairs) {
        result.values.push_back(value);
        result.vectors.push_back(std::move(vector));
    }
    return result;
}

std::optional<QRFactorization> qrDecompose(const std::vector<double>& matrix, std::size_t rows, std::size_t cols) {
    if (cols < 1 || rows < cols || matrix.size() != rows * cols) return std::nullopt;
    std::vector<double> x = matrix;
    QRFactorization qr{.rows = rows, .cols = cols};
    double largestNorm = 0;
    for (std::size_t j = 0; j < cols; ++j) {
        double squares = 0;
        for (std::size_t i = j; i < rows; ++i) squares += x[i * cols + j] * x[i * cols + j];
        const double norm = std::sqrt(squares);
        largestNorm = std::max(largestNorm, norm);
        // A column this small beside the others is a combination of them.
        if (norm < std::max(largestNorm * static_cast<double>(rows) * 1e-12, 1e-300)) return std::nullopt;
        const double alpha = x[j * cols + j] >= 0 ? -norm : norm;
        std::vector<double> v(rows - j);
        for (std::size_t i = j; i < rows; ++i) v[i - j] = x[i * cols + j];
        v[0] -= alpha;
        const double vv = std::inner_product(v.begin(), v.end(), v.begin(), 0.0);
        if (vv == 0) return std::nullopt;
        const double beta = 2.0 / vv;
        for (std::size_t c = j; c < cols; ++c) {
            double dot = 0;
            for (std::size_t i = j; i < rows; ++i) dot += v[i - j] * x[i * cols + c];
            for (std::size_t i = j; i < rows; ++i) x[i * cols + c] -= beta * dot * v[i - j];
        }
        qr.reflectors.push_back(std::move(v));
        qr.betas.push_back(beta);
    }
    qr.R.assign(cols * cols, 0.0);
    for (std::size_t i = 0; i < cols; ++i) {
        for (std::size_t j = i; j < cols; ++j) qr.R[i * cols + j] = x[i * cols + j];
    }
    return qr;
}

std::vector<double> QRFactorization::qtb(std::vector<double> b) const {
    if (b.size() != rows) return {};
    for (std::size_t j = 0; j < reflectors.size(); ++j) {
        const std::vector<double>& v = reflectors[j];
        double dot = 0;
        for (std::size_t i = 0; i < v.size(); ++i) dot += v[i] * b[j + i];
        for (std::size_t i = 0; i < v.size(); ++i) b[j + i] -= betas[j] * dot * v[i];
    }
    return b;
}

std::optional<std::vector<double>> solveUpperTriangular(const std::vector<double>& r, std::size_t n,
                                                        const std::vector<double>& b) {
    if (!isSquare(r, n) || b.size() != n) return std::nullopt;
    std::vector<double> x(n, 0.0);
    for (std::size_t k = n; k-- > 0;) {
        const double diagonal = r[k * n + k];
        if (!(std::fabs(diagonal) > 1e-300)) return std::nullopt;
        double sum = b[k];
        for (std::size_t j = k + 1; j < n; ++j) sum -= r[k * n + j] * x[j];
        x[k] = sum / diagonal;
    }
    return x;
}

std::optional<std::vector<double>> covarianceFactorFromR(const std::vector<double>& r, std::size_t n) {
    if (!isSquare(r, n)) return std::nullopt;
    std::vector<double> inverse(n * n, 0.0); // R^-1, column by column
    for (std::size_t i = 0; i < n; ++i) {
        std::vector<double> unit(n, 0.0);
        unit[i] = 1;
        const auto column = solveUpperTriangular(r, n, unit);
        if (!column) return std::nullopt;
        for (std::size_t k = 0; k < n; ++k) inverse[k * n + i] = (*column)[k];
    }
    std::vector<double> product(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = 0; k < n; ++k) product[i * n + j] += inverse[i * n + k] * inverse[j * n + k];
        }
    }
    return product;
}

} // namespace merivante::LinearAlgebra

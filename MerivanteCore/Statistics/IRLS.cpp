#include "MerivanteCore/Statistics/IRLS.h"

#include <algorithm>
#include <cmath>

#include "MerivanteCore/Statistics/LinearAlgebra.h"

namespace merivante::IRLS {
namespace {

bool allFinite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(), [](double x) { return std::isfinite(x); });
}

OptimizerResult ending(std::vector<double> beta, std::int64_t iterations, OptimizerStatus status) {
    return {std::move(beta), iterations, status == OptimizerStatus::converged, status};
}

} // namespace

GLMLink GLMLink::logistic() {
    const auto mean = [](double eta) { return 1.0 / (std::exp(-eta) + 1.0); };
    return {mean, [mean](double eta) { return mean(eta) * (1.0 - mean(eta)); }};
}

GLMLink GLMLink::poisson() {
    return {[](double eta) { return std::exp(eta); }, [](double eta) { return std::exp(eta); }};
}

OptimizerResult newton(std::size_t cols, const std::optional<std::vector<double>>& initial, std::int64_t maxIterations,
                       double tolerance, const VectorFunction& gradient, const VectorFunction& negativeHessian) {
    if (cols < 1 || (initial && initial->size() != cols)) return ending(initial.value_or(std::vector<double>()), 0, OptimizerStatus::invalidValues);
    std::vector<double> beta = initial.value_or(std::vector<double>(cols, 0.0));
    for (std::int64_t round = 1; round <= maxIterations; ++round) {
        const std::vector<double> g = gradient(beta);
        const std::vector<double> h = negativeHessian(beta);
        if (g.size() != cols || h.size() != cols * cols || !allFinite(g) || !allFinite(h)) {
            return ending(beta, round, OptimizerStatus::invalidValues);
        }
        const auto inverse = LinearAlgebra::invert(h, cols);
        if (!inverse) return ending(beta, round, OptimizerStatus::singularHessian);
        double largestStep = 0;
        for (std::size_t i = 0; i < cols; ++i) {
            double step = 0;
            for (std::size_t j = 0; j < cols; ++j) step += (*inverse)[i * cols + j] * g[j];
            if (!std::isfinite(step)) return ending(beta, round, OptimizerStatus::invalidValues);
            beta[i] += step;
            largestStep = std::max(largestStep, std::fabs(step));
        }
        if (!allFinite(beta)) return ending(beta, round, OptimizerStatus::invalidValues);
        if (largestStep < tolerance) return ending(beta, round, OptimizerStatus::converged);
    }
    return ending(beta, std::max<std::int64_t>(maxIterations, 0), OptimizerStatus::iterationLimit);
}

OptimizerResult fit(const std::vector<double>& x, std::size_t rows, std::size_t cols,
                    const std::vector<double>& response, const GLMLink& link, std::int64_t maxIterations,
                    double tolerance) {
    if (x.size() != rows * cols || response.size() != rows) return ending({}, 0, OptimizerStatus::invalidValues);
    const auto predictor = [&x, rows, cols](const std::vector<double>& beta) {
        std::vector<double> eta(rows, 0.0);
        for (std::size_t r = 0; r < rows; ++r) {
            for (std::size_t c = 0; c < cols; ++c) eta[r] += x[r * cols + c] * beta[c];
        }
        return eta;
    };
    const auto gradient = [&](const std::vector<double>& beta) {
        const std::vector<double> eta = predictor(beta);
        std::vector<double> g(cols, 0.0);
        for (std::size_t r = 0; r < rows; ++r) {
            const double residual = response[r] - link.mean(eta[r]);
            for (std::size_t c = 0; c < cols; ++c) g[c] += x[r * cols + c] * residual;
        }
        return g;
    };
    const auto negativeHessian = [&](const std::vector<double>& beta) {
        const std::vector<double> eta = predictor(beta);
        std::vector<double> h(cols * cols, 0.0);
        for (std::size_t r = 0; r < rows; ++r) {
            const double w = link.weight(eta[r]);
            for (std::size_t i = 0; i < cols; ++i) {
                for (std::size_t j = 0; j < cols; ++j) h[i * cols + j] += x[r * cols + i] * w * x[r * cols + j];
            }
        }
        return h;
    };
    return newton(cols, std::nullopt, maxIterations, tolerance, gradient, negativeHessian);
}

} // namespace merivante::IRLS

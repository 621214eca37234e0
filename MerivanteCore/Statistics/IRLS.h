#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "MerivanteCore/Statistics/OptimizerResult.h"

// Newton iterations on a supplied gradient and negative Hessian, and the generalised linear
// models fitted by them. There is no step halving.
namespace merivante::IRLS {

// The mean and the weight of a linear predictor.
struct GLMLink {
    std::function<double(double)> mean;
    std::function<double(double)> weight;

    static GLMLink logistic();
    static GLMLink poisson();
};

using VectorFunction = std::function<std::vector<double>(const std::vector<double>&)>;

OptimizerResult newton(std::size_t cols, const std::optional<std::vector<double>>& initial, std::int64_t maxIterations,
                       double tolerance, const VectorFunction& gradient, const VectorFunction& negativeHessian);

OptimizerResult fit(const std::vector<double>& designMatrix, std::size_t rows, std::size_t cols,
                    const std::vector<double>& response, const GLMLink& link, std::int64_t maxIterations,
                    double tolerance);

} // namespace merivante::IRLS

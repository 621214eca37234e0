#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

// Quasi-Newton minimisation with numerical gradients and a backtracking line search.
namespace merivante::BFGSMinimizer {

struct Result {
    std::vector<double> x;
    double value = 0;
    std::int64_t iterations = 0;
    bool converged = false;
};

using Objective = std::function<double(const std::vector<double>&)>;

// Central differences with a step of max(|x_i| 1e-6, 1e-6).
std::vector<double> gradient(const Objective& objective, const std::vector<double>& at);
std::vector<double> identity(std::size_t n);

// Converged when the gradient's norm falls below `gradientTolerance`; a run stopped by the
// line search, by a tiny step or by the last round still counts as converged within 100,
// 50 and 50 times that band.
Result minimize(std::vector<double> start, const Objective& objective, std::int64_t maxIterations,
                double gradientTolerance);

} // namespace merivante::BFGSMinimizer

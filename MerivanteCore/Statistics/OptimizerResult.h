#pragma once

#include <cstdint>
#include <vector>

namespace merivante {

enum class OptimizerStatus { converged, iterationLimit, singularHessian, invalidValues };

struct OptimizerResult {
    std::vector<double> beta; // the final parameters
    std::int64_t iterations = 0;
    bool converged = false;
    OptimizerStatus status = OptimizerStatus::invalidValues;
};

} // namespace merivante

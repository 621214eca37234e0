#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include <cmath>

#include "MerivanteCore/Statistics/BFGSMinimizer.h"
#include "MerivanteCore/Statistics/IRLS.h"
#include "Platform/Files/FileSystem.h"

using merivante::OptimizerStatus;
namespace IRLS = merivante::IRLS;
namespace BFGS = merivante::BFGSMinimizer;

namespace {

std::vector<double> numbers(const rapidjson::Value& array) {
    std::vector<double> values;
    for (const auto& value : array.GetArray()) values.push_back(value.GetDouble());
    return values;
}

} // namespace

TEST(OptimizerTests, GeneralisedLinearModelsMatchR) {
    rapidjson::Document document;
    document.Parse(platform::files::readFile(std::string(MIBREL_STATISTICS_FIXTURES) + "/models.json").c_str());
    ASSERT_FALSE(document.HasParseError());
    const auto x1 = numbers(document["x1"]), x2 = numbers(document["x2"]);
    std::vector<double> logisticDesign, poissonDesign;
    for (std::size_t r = 0; r < x1.size(); ++r) {
        logisticDesign.insert(logisticDesign.end(), {1, x1[r], x2[r]});
        poissonDesign.insert(poissonDesign.end(), {1, x1[r]});
    }
    const auto logistic = IRLS::fit(logisticDesign, x1.size(), 3, numbers(document["y"]), IRLS::GLMLink::logistic(),
                                    100, 1e-10);
    EXPECT_EQ(logistic.status, OptimizerStatus::converged);
    const auto poisson = IRLS::fit(poissonDesign, x1.size(), 2, numbers(document["counts"]),
                                   IRLS::GLMLink::poisson(), 100, 1e-10);
    EXPECT_TRUE(poisson.converged);
    const auto expectedLogistic = numbers(document["logistic"]), expectedPoisson = numbers(document["poisson"]);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(logistic.beta[i], expectedLogistic[i], 1e-6);
    for (std::size_t i = 0; i < 2; ++i) EXPECT_NEAR(poisson.beta[i], expectedPoisson[i], 1e-6);
}

TEST(OptimizerTests, NewtonSaysWhyItStopped) {
    const auto gradient = [](const std::vector<double>& b) { return std::vector<double>{4 - b[0]}; };
    const auto hessian = [](const std::vector<double>&) { return std::vector<double>{1}; };
    const auto solved = IRLS::newton(1, std::nullopt, 10, 1e-10, gradient, hessian);
    EXPECT_EQ(solved.status, OptimizerStatus::converged);
    EXPECT_EQ(solved.beta, std::vector<double>{4});
    EXPECT_EQ(solved.iterations, 2);

    EXPECT_EQ(IRLS::newton(1, std::nullopt, 1, 1e-10, gradient, hessian).status, OptimizerStatus::iterationLimit);
    EXPECT_EQ(IRLS::newton(1, std::vector<double>{1, 2}, 10, 1e-10, gradient, hessian).status,
              OptimizerStatus::invalidValues);
    const auto flat = [](const std::vector<double>&) { return std::vector<double>{0}; };
    EXPECT_EQ(IRLS::newton(1, std::nullopt, 10, 1e-10, gradient, flat).status, OptimizerStatus::singularHessian);
    const auto infinite = [](const std::vector<double>&) { return std::vector<double>{INFINITY}; };
    EXPECT_EQ(IRLS::newton(1, std::nullopt, 10, 1e-10, infinite, hessian).status, OptimizerStatus::invalidValues);
    // Two identical columns leave the Hessian singular.
    EXPECT_EQ(IRLS::fit({1, 1, 1, 1, 1, 1}, 3, 2, {0, 1, 0}, IRLS::GLMLink::logistic(), 100, 1e-10).status,
              OptimizerStatus::singularHessian);
}

TEST(OptimizerTests, BFGSFindsTheMinimumOrSaysItDidNot) {
    const auto rosenbrock = [](const std::vector<double>& x) {
        return 100 * std::pow(x[1] - x[0] * x[0], 2) + std::pow(1 - x[0], 2);
    };
    const auto result = BFGS::minimize({-1.2, 1}, rosenbrock, 500, 1e-6);
    EXPECT_TRUE(result.converged);
    EXPECT_NEAR(result.x[0], 1, 1e-4);
    EXPECT_NEAR(result.x[1], 1, 1e-4);

    EXPECT_FALSE(BFGS::minimize({-1.2, 1}, rosenbrock, 0, 1e-6).converged);
    const auto stopped = BFGS::minimize({-1.2, 1}, rosenbrock, 3, 1e-6);
    EXPECT_EQ(stopped.iterations, 3);
    EXPECT_FALSE(stopped.converged);
    const auto nothing = BFGS::minimize({}, [](const std::vector<double>&) { return 7.0; }, 10, 1e-6);
    EXPECT_TRUE(nothing.converged);
    EXPECT_EQ(nothing.value, 7);
    // Outside x > 0 the objective is undefined; the search steps back inside.
    const auto bounded = BFGS::minimize({3}, [](const std::vector<double>& x) { return x[0] - std::log(x[0]); },
                                        100, 1e-8);
    EXPECT_NEAR(bounded.x[0], 1, 1e-5);
}

#include "MerivanteCore/Statistics/BFGSMinimizer.h"

#include <cmath>
#include <numeric>
#include <optional>

namespace merivante::BFGSMinimizer {
namespace {

double dot(const std::vector<double>& a, const std::vector<double>& b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

double norm(const std::vector<double>& a) { return std::sqrt(dot(a, a)); }

std::vector<double> descent(const std::vector<double>& h, const std::vector<double>& g) {
    const std::size_t n = g.size();
    std::vector<double> d(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) d[i] -= h[i * n + j] * g[j];
    }
    return d;
}

// H+ = (I - rho s y') H (I - rho y s') + rho s s'.
void updateInverse(std::vector<double>& h, const std::vector<double>& s, const std::vector<double>& y) {
    const std::size_t n = s.size();
    const double rho = 1.0 / dot(s, y);
    std::vector<double> hy(n, 0.0), yh(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            hy[i] += h[i * n + j] * y[j];
            yh[j] += y[i] * h[i * n + j];
        }
    }
    const double yhy = dot(y, hy);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            h[i * n + j] += -rho * (s[i] * yh[j] + hy[i] * s[j]) + (rho * rho * yhy + rho) * s[i] * s[j];
        }
    }
}

struct Step {
    std::vector<double> x;
    double value = 0;
};

// Halving from a full step, 60 attempts; a non-finite objective is never accepted.
std::optional<Step> lineSearch(const Objective& objective, const std::vector<double>& x, double value,
                               const std::vector<double>& d, double slope) {
    double t = 1;
    for (int attempt = 0; attempt < 60; ++attempt, t /= 2) {
        std::vector<double> candidate = x;
        for (std::size_t i = 0; i < x.size(); ++i) candidate[i] += t * d[i];
        const double f = objective(candidate);
        if (std::isfinite(f) && f <= value + 1e-4 * t * slope) return Step{std::move(candidate), f};
    }
    return std::nullopt;
}

} // namespace

std::vector<double> gradient(const Objective& objective, const std::vector<double>& at) {
    std::vector<double> g(at.size());
    std::vector<double> x = at;
    for (std::size_t i = 0; i < at.size(); ++i) {
        const double h = std::max(std::fabs(at[i]) * 1e-6, 1e-6);
        x[i] = at[i] + h;
        const double up = objective(x);
        x[i] = at[i] - h;
        const double down = objective(x);
        x[i] = at[i];
        g[i] = (up - down) / (2 * h);
    }
    return g;
}

std::vector<double> identity(std::size_t n) {
    std::vector<double> h(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i) h[i * n + i] = 1;
    return h;
}

Result minimize(std::vector<double> x, const Objective& objective, std::int64_t maxIterations,
                double gradientTolerance) {
    if (x.empty()) return {x, objective(x), 0, true};
    std::vector<double> h = identity(x.size());
    double value = objective(x);
    std::vector<double> g = gradient(objective, x);
    if (maxIterations <= 0) return {x, value, 0, false};
    for (std::int64_t round = 1;; ++round) {
        std::vector<double> d = descent(h, g);
        double slope = dot(g, d);
        if (slope >= 0) {
            h = identity(x.size());
            d = descent(h, g);
            slope = dot(g, d);
        }
        auto step = lineSearch(objective, x, value, d, slope);
        if (!step) return {x, value, round, norm(g) < 100 * gradientTolerance};
        std::vector<double> next = gradient(objective, step->x);
        std::vector<double> s(x.size()), y(x.size());
        for (std::size_t i = 0; i < x.size(); ++i) {
            s[i] = step->x[i] - x[i];
            y[i] = next[i] - g[i];
        }
        if (dot(s, y) > 1e-12) updateInverse(h, s, y);
        x = std::move(step->x);
        value = step->value;
        g = std::move(next);
        if (norm(g) < gradientTolerance) return {x, value, round, true};
        if (norm(s) < 1e-10 || round >= maxIterations) return {x, value, round, norm(g) < 50 * gradientTolerance};
    }
}

} // namespace merivante::BFGSMinimizer

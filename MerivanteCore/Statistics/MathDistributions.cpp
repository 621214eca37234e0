#include "MerivanteCore/Statistics/MathDistributions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace merivante::MathDistributions {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kPi = 3.141592653589793;
constexpr double kTiny = 1e-300;
constexpr double kHuge = 9.999999999999999e299; // 1 / kTiny
constexpr double kEpsilon = 3e-14;
constexpr int kMaxTerms = 200;

constexpr std::array<double, 4> kNodes{0.1834346424956498, 0.525532409916329, 0.7966664774136267, 0.9602898564975363};
constexpr std::array<double, 4> kWeights{0.362683783378362, 0.3137066458778873, 0.2223810344533745,
                                         0.1012285362903763};

double clamp01(double value) { return std::clamp(value, 0.0, 1.0); }

// 1 / d, with a vanishing d standing for the smallest magnitude allowed.
double guardedInverse(double d) { return std::fabs(d) < kTiny ? kHuge : 1.0 / d; }
double guarded(double c) { return std::fabs(c) < kTiny ? kTiny : c; }

double normalCDF(double z) { return 0.5 * (1.0 + std::erf(z / 1.4142135623730951)); }
double normalDensity(double z) { return std::exp(-z * z / 2.0) / 2.5066282746310002; }

// Eight-point Gauss-Legendre over `panels` panels of `width` from `start`.
template <typename Integrand>
double integrate(double start, double width, int panels, Integrand f) {
    double sum = 0;
    const double half = width / 2.0;
    for (int panel = 0; panel < panels; ++panel) {
        const double middle = start + (panel + 0.5) * width;
        for (std::size_t i = 0; i < kNodes.size(); ++i) {
            sum += kWeights[i] * half * (f(middle - half * kNodes[i]) + f(middle + half * kNodes[i]));
        }
    }
    return sum;
}

// The range integral samples the same points for every range and group count, so their
// normal density and distribution function are worked out once: it runs inside the
// studentized range's own integral and the bisection of its quantile.
struct RangeNode {
    double z;
    double density;
    double cdf;
};
constexpr int kRangePanels = 16;
constexpr double kRangeStart = -8.5;
constexpr double kRangePanelWidth = 1.0625;

const std::array<RangeNode, kRangePanels * 2 * kNodes.size()>& rangeNodes() {
    static const auto nodes = [] {
        std::array<RangeNode, kRangePanels * 2 * kNodes.size()> table{};
        const double half = kRangePanelWidth / 2.0;
        std::size_t next = 0;
        for (int panel = 0; panel < kRangePanels; ++panel) {
            const double middle = kRangeStart + (panel + 0.5) * kRangePanelWidth;
            for (double node : kNodes) {
                for (double z : {middle - half * node, middle + half * node})
                    table[next++] = {z, normalDensity(z), normalCDF(z)};
            }
        }
        return table;
    }();
    return nodes;
}

double bisect(double low, double high, int rounds, double target, auto cdf) {
    for (int round = 0; round < rounds; ++round) {
        const double middle = (low + high) / 2.0;
        if (cdf(middle) < target) low = middle;
        else high = middle;
    }
    return (low + high) / 2.0;
}

} // namespace

double logGamma(double x) {
    if (x < 0.5) return 1.1447298858494002 - std::log(std::sin(kPi * x)) - logGamma(1.0 - x);
    static constexpr std::array<double, 8> c{676.5203681218851,     -1259.1392167224028,  771.3234287776531,
                                             -176.6150291621406,    12.507343278686905,   -0.13857109526572012,
                                             9.984369578019572e-6, 1.5056327351493116e-7};
    const double z = x - 1.0;
    double sum = 0.9999999999998099;
    for (std::size_t i = 0; i < c.size(); ++i) sum += c[i] / (z + static_cast<double>(i + 1));
    const double t = z + 7.5;
    return 0.9189385332046727 + (z + 0.5) * std::log(t) - t + std::log(sum);
}

double gammaSeriesP(double a, double x) {
    double term = 1.0 / a;
    double sum = term;
    double ap = a;
    for (int n = 0; n < kMaxTerms; ++n) {
        ap += 1.0;
        term *= x / ap;
        sum += term;
        if (std::fabs(term) < std::fabs(sum) * kEpsilon) break;
    }
    return sum * std::exp(a * std::log(x) - x - logGamma(a));
}

double gammaContinuedFractionQ(double a, double x) {
    double b = x + 1.0 - a;
    double c = kHuge;
    double d = 1.0 / b;
    double h = d;
    for (int i = 1; i <= kMaxTerms; ++i) {
        const double an = -i * (i - a);
        b += 2.0;
        d = guardedInverse(an * d + b);
        c = guarded(b + an / c);
        const double delta = d * c;
        h *= delta;
        if (std::fabs(delta - 1.0) < kEpsilon) break;
    }
    return h * std::exp(a * std::log(x) - x - logGamma(a));
}

double betaContinuedFraction(double a, double b, double x) {
    const double qab = a + b, qap = a + 1.0, qam = a - 1.0;
    double c = 1.0;
    double d = guardedInverse(1.0 - qab * x / qap);
    double h = d;
    for (int m = 1; m <= kMaxTerms; ++m) {
        const double m2 = 2.0 * m;
        double aa = m * (b - m) * x / ((qam + m2) * (a + m2));
        d = guardedInverse(1.0 + aa * d);
        c = guarded(1.0 + aa / c);
        h *= d * c;
        aa = -(a + m) * (qab + m) * x / ((a + m2) * (qap + m2));
        d = guardedInverse(1.0 + aa * d);
        c = guarded(1.0 + aa / c);
        const double delta = d * c;
        h *= delta;
        if (std::fabs(delta - 1.0) < kEpsilon) break;
    }
    return h;
}

double regularizedIncompleteBeta(double a, double b, double x) {
    if (x <= 0) return 0;
    if (x >= 1) return 1;
    const double front =
        std::exp(logGamma(a + b) - logGamma(a) - logGamma(b) + a * std::log(x) + b * std::log(1.0 - x));
    if (x < (a + 1.0) / (a + b + 2.0)) return front * betaContinuedFraction(a, b, x) / a;
    return 1.0 - front * betaContinuedFraction(b, a, 1.0 - x) / b;
}

double chiSquareRightTailPValue(double x, double df) {
    if (!(x >= 0) || !(df > 0)) return kNaN;
    if (x == 0) return 1;
    const double a = df / 2.0, h = x / 2.0;
    const double p = h < a + 1.0 ? gammaSeriesP(a, h) : 1.0 - gammaContinuedFractionQ(a, h);
    return clamp01(1.0 - p);
}

double fRightTailPValue(double f, double df1, double df2) {
    if (!(df1 > 0) || !(df2 > 0) || !(f >= 0)) return kNaN;
    if (std::isinf(f)) return 0;
    if (!std::isfinite(df2)) return chiSquareRightTailPValue(f * df1, df1);
    const double x = f * df1 / (f * df1 + df2);
    return clamp01(1.0 - regularizedIncompleteBeta(df1 / 2.0, df2 / 2.0, x));
}

double studentTCDF(double t, double df) {
    if (t == 0) return 0.5;
    const double x = df / (df + t * t), a = df / 2.0;
    double ibeta;
    if (x <= 0) {
        ibeta = 0;
    } else if (x >= 1) {
        ibeta = 1;
    } else {
        const double front = std::exp(logGamma(a + 0.5) - logGamma(a) - 0.5723649429246995 + a * std::log(x) +
                                      0.5 * std::log(1.0 - x));
        ibeta = x < (a + 1.0) / (a + 2.5) ? front * betaContinuedFraction(a, 0.5, x) / a
                                          : 1.0 - 2.0 * front * betaContinuedFraction(0.5, a, 1.0 - x);
    }
    return t > 0 ? 1.0 - ibeta / 2.0 : ibeta / 2.0;
}

double studentTPValue(double t, double df) {
    if (!(df > 0) || std::isnan(t)) return kNaN;
    if (std::isinf(t)) return 0;
    if (!std::isfinite(df)) return clamp01(2.0 * (1.0 - normalCDF(std::fabs(t))));
    return clamp01(2.0 * (1.0 - studentTCDF(std::fabs(t), df)));
}

double studentTCritical(double alpha, double df) {
    if (!(alpha > 0 && alpha < 1) || !(df > 0)) return kNaN;
    return bisect(0, 100, 120, 1.0 - alpha / 2.0, [df](double t) { return studentTCDF(t, df); });
}

double standardRangeCDF(int k, double w) {
    if (k < 2) return w > 0 ? 1 : 0;
    if (!(w > 0)) return 0;
    // The same sum as integrate() over 16 panels of 1.0625 from -8.5, on the stored nodes.
    const auto& nodes = rangeNodes();
    const double half = kRangePanelWidth / 2.0;
    auto f = [k, w](const RangeNode& node) {
        return node.density * std::pow(std::max(node.cdf - normalCDF(node.z - w), 0.0), k - 1);
    };
    double integral = 0;
    for (std::size_t node = 0; node < nodes.size(); node += 2)
        integral += kWeights[node / 2 % kNodes.size()] * half * (f(nodes[node]) + f(nodes[node + 1]));
    return clamp01(k * integral);
}

double studentizedRangeCDF(double q, int k, double df) {
    if (k < 2 || !(df >= 2)) return kNaN;
    if (q <= 0) return 0;
    if (!std::isfinite(q)) return 1;
    if (df > 25000) return standardRangeCDF(k, q);
    const double constant =
        df / 2.0 * std::log(df) + std::log(2.0) - df / 2.0 * std::log(2.0) - std::lgamma(df / 2.0);
    const double width = (1.0 + 18.0 / std::sqrt(std::max(df, 1.0))) / 20.0;
    const double sum = integrate(0, width, 20, [=](double s) {
        if (!(s > 0)) return 0.0;
        const double density = std::exp(constant + (df - 1.0) * std::log(s) - df * s * s / 2.0);
        return density * std::min(standardRangeCDF(k, q * s), 1.0);
    });
    return clamp01(sum);
}

double studentizedRangeQuantile(double p, int k, double df) {
    if (!(p > 0 && p < 1) || k < 2 || !(df >= 2)) return kNaN;
    return bisect(0.5, 15, 26, p, [k, df](double q) { return studentizedRangeCDF(q, k, df); });
}

} // namespace merivante::MathDistributions

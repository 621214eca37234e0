#pragma once

// Distribution functions computed from first principles, so that every analysis gives the
// same figures on every machine. Each returns NaN for arguments outside its domain.
namespace merivante::MathDistributions {

double chiSquareRightTailPValue(double x, double df);
double fRightTailPValue(double f, double df1, double df2);
// Two-sided.
double studentTPValue(double t, double df);
double studentTCDF(double t, double df);
// By bisection on [0, 100]: a larger critical value comes back as 100.
double studentTCritical(double twoTailedAlpha, double df);

double regularizedIncompleteBeta(double a, double b, double x);
double logGamma(double x);
double gammaSeriesP(double a, double x);
double gammaContinuedFractionQ(double a, double x);
double betaContinuedFraction(double a, double b, double x);

// The range of `k` standard normals.
double standardRangeCDF(int k, double w);
double studentizedRangeCDF(double q, int k, double df);
// By bisection on [0.5, 15]: quantiles outside it are out of reach.
double studentizedRangeQuantile(double p, int k, double df);

} // namespace merivante::MathDistributions

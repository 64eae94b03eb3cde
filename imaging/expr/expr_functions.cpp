// The functions every context starts with, registered in this order.

#include "imaging/expr/expr_internal.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace {

double maxOf(int count, const double* values) {
    double result = -std::numeric_limits<double>::infinity();
    for (int i = 0; i < count; ++i)
        if (values[i] > result) result = values[i];
    return result;
}

double minOf(int count, const double* values) {
    double result = std::numeric_limits<double>::infinity();
    for (int i = 0; i < count; ++i)
        if (values[i] < result) result = values[i];
    return result;
}

double hypotOf(int count, const double* values) {
    double result = 0.0;
    for (int i = 0; i < count; ++i)
        result = std::sqrt(values[i] * values[i] + result * result);
    return result;
}

double truncate(double x) {
    return std::trunc(x);
}

// Halves round away from zero.
double roundHalfAway(double x) {
    return x >= 0 ? std::floor(x + 0.5) : -std::floor(0.5 - x);
}

double log2Of(double x) {
    return std::log(x) / std::log(2.0);
}

// frexp gives the exact binary exponent, so a power of two maps to itself
// where ln(x)/ln(2) can land a hair above the integer (2^29 does).
double ceilPow2(double x) {
    if (!(x > 0) || std::isinf(x)) return std::pow(2.0, std::ceil(log2Of(x)));
    int exponent = 0;
    double mantissa = std::frexp(x, &exponent); // x = mantissa * 2^exponent, mantissa in [0.5, 1)
    return std::ldexp(1.0, mantissa == 0.5 ? exponent - 1 : exponent);
}

double floorPow2(double x) {
    if (!(x > 0) || std::isinf(x)) return std::pow(2.0, std::floor(log2Of(x)));
    int exponent = 0;
    std::frexp(x, &exponent);
    return std::ldexp(1.0, exponent - 1);
}

uint64_t timeStamp() {
#if defined(__x86_64__) || defined(__i386__)
    return __builtin_ia32_rdtsc();
#else
    return static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
#endif
}

// rand() scaled to 0..x; 0 asks for the full 32-bit range. The generator is
// seeded once, on first use, from the time-stamp counter.
double randomTo(double x) {
    static bool seeded = false;
    if (!seeded) {
        srand(static_cast<unsigned>(timeStamp()));
        seeded = true;
    }
    if (x == 0) x = 4294967295.0;
    return static_cast<double>(rand() & 0x7FFF) * x / 32767.0;
}

double byteSwap(double x) {
    auto low = static_cast<uint32_t>(static_cast<uint64_t>(exprToInt64(x)));
    uint32_t swapped =
        (low >> 24) | ((low >> 8) & 0xFF00u) | ((low << 8) & 0xFF0000u) | (low << 24);
    return static_cast<double>(swapped);
}

template <typename F> bool add1(ExprContext* context, const char* name, F f) {
    return exprRegisterFunction(context, name, static_cast<ExprFunction1>(f)) == 1;
}

} // namespace

bool exprRegisterBuiltins(ExprContext* context) {
    bool ok = exprRegisterFunction(context, "max", maxOf) == 1 &&
              exprRegisterFunction(context, "min", minOf) == 1 &&
              exprRegisterFunction(context, "hypot", hypotOf) == 1 &&
              add1(context, "int", truncate) && add1(context, "round", roundHalfAway) &&
              add1(context, "log2", log2Of) && add1(context, "ceilpow2", ceilPow2) &&
              add1(context, "floorpow2", floorPow2) && add1(context, "rand", randomTo) &&
              add1(context, "bswap", byteSwap) &&
              add1(context, "sqrt", [](double x) { return std::sqrt(x); }) &&
              add1(context, "floor", [](double x) { return std::floor(x); }) &&
              add1(context, "ceil", [](double x) { return std::ceil(x); }) &&
              add1(context, "sin", [](double x) { return std::sin(x); }) &&
              add1(context, "cos", [](double x) { return std::cos(x); }) &&
              add1(context, "tan", [](double x) { return std::tan(x); }) &&
              add1(context, "asin", [](double x) { return std::asin(x); }) &&
              add1(context, "acos", [](double x) { return std::acos(x); }) &&
              add1(context, "atan", [](double x) { return std::atan(x); }) &&
              add1(context, "exp", [](double x) { return std::exp(x); }) &&
              add1(context, "log", [](double x) { return std::log(x); }) &&
              add1(context, "log10", [](double x) { return std::log10(x); });
    ExprFunction2 power = [](double a, double b) { return std::pow(a, b); };
    return ok && exprRegisterFunction(context, "pow", power) == 1;
}

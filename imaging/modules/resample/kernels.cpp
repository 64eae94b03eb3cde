#include "imaging/modules/resample/kernels.h"

#include <cmath>

namespace resample {

namespace {

constexpr float kPi = 3.1415927f;
constexpr float kThird = 0.33333334f;

float lanczos3(float x) {
    float t = std::fabs(x);
    if (t == 0.0f) return 1.0f;
    if (t >= 3.0f) return 0.0f;
    float p = kPi * t;
    return 3.0f * std::sin(p) * std::sin(p / 3.0f) / (p * p);
}

// The Mitchell-Netravali cubic in its general form with B = C = 1/3; the
// coefficients are folded in float, as the running code would compute them.
constexpr float kB = kThird;
constexpr float kC = kThird;
constexpr float kNear3 = 12.0f - 9.0f * kB - 6.0f * kC;
constexpr float kNear2 = -18.0f + 12.0f * kB + 6.0f * kC;
constexpr float kNear0 = 6.0f - 2.0f * kB;
constexpr float kFar3 = -kB - 6.0f * kC;
constexpr float kFar2 = 6.0f * kB + 30.0f * kC;
constexpr float kFar1 = -12.0f * kB - 48.0f * kC;
constexpr float kFar0 = 8.0f * kB + 24.0f * kC;

float mitchell(float x) {
    float t = std::fabs(x);
    float tt = t * t;
    if (t < 1.0f) return (kNear3 * tt * t + kNear2 * tt + kNear0) / 6.0f;
    if (t < 2.0f) return (kFar3 * tt * t + kFar2 * tt + kFar1 * t + kFar0) / 6.0f;
    return 0.0f;
}

float cubic(float x) {
    float t = std::fabs(x);
    if (t < 1.0f) return (2.0f * t - 3.0f) * (t * t) + 1.0f;
    return 0.0f;
}

float linear(float x) {
    float t = std::fabs(x);
    return t < 1.0f ? 1.0f - t : 0.0f;
}

// Open at -0.5 and closed at +0.5, so a sample exactly half-way between two
// source pixels is taken from one of them only.
float point(float x) {
    return (x > -0.5f && x <= 0.5f) ? 1.0f : 0.0f;
}

float bell(float x) {
    float t = std::fabs(x);
    if (t < 0.5f) return 0.75f - t * t;
    if (t < 1.5f) {
        float u = t - 1.5f;
        return 0.5f * u * u;
    }
    return 0.0f;
}

float bspline(float x) {
    float t = std::fabs(x);
    if (t < 1.0f) {
        float tt = t * t;
        return 0.5f * tt * t - tt + 2.0f / 3.0f;
    }
    if (t < 2.0f) {
        float u = 2.0f - t;
        return u * u * u / 6.0f;
    }
    return 0.0f;
}

float quadratic(float x) {
    float t = std::fabs(x);
    if (t <= 0.5f) return 0.9f - 1.6f * t * t;
    if (t <= 1.5f) return 0.8f * t * t - 2.1f * t + 1.35f;
    return 0.0f;
}

constexpr Kernel kKernels[] = {
    {lanczos3, 3.0f}, {mitchell, 2.0f}, {cubic, 1.0f},   {linear, 1.0f},
    {point, 0.5f},    {bell, 1.5f},     {bspline, 2.0f}, {quadratic, 1.5f},
};

} // namespace

Kernel kernel(int32_t filter) {
    if (filter < 0 || filter >= static_cast<int32_t>(sizeof kKernels / sizeof kKernels[0]))
        return kKernels[kLanczos3];
    return kKernels[filter];
}

} // namespace resample

// Psnr ("Psnr"): measures how close a second image is to the first, as the
// peak signal-to-noise ratio in decibels, 10 x log10(255^2 / mean squared
// error), for each of red, green, blue and alpha and for red, green and
// blue together; identical images measure "inf". The result is printed
// through the library's print hook, e.g.
//   Psnr - 44 x 44: R 38.12 G 39.40 B 37.02 A inf RGB 38.11 dB
// The result image is a copy of the first image. Images of different
// sizes are compared over the part they share. With one image only, the
// module copies it and says that there is nothing to compare with.
// Indexed images are compared through their palettes. No values.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/filter/colour.h"
#include "imaging/modules/filter/plane.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <cmath>

namespace {

// Two images: the second is the one measured against the first.
constexpr ModuleDecl kDecl = {.magic = "PSNR",
                              .name = "Psnr",
                              .description = "Psnr",
                              .version = "1.27",
                              .images = 2,
                              .secondCount = 2};

double decibels(double squaredError, double count) {
    if (squaredError <= 0.0) return INFINITY;
    return 10.0 * std::log10(255.0 * 255.0 * count / squaredError);
}

// Prints the ratios between two images; false when memory is short.
bool report(const ImageEntry& first, const ImageEntry& second) {
    filter::Plane a, b;
    bool ok = filter::plane_load_colours(first, &a) && filter::plane_load_colours(second, &b);
    if (ok) {
        int32_t width = std::min(a.width, b.width), height = std::min(a.height, b.height);
        double error[4] = {};
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                for (int c = 0; c < 4; ++c) {
                    double d = static_cast<double>(filter::channel(a.at(x, y), c)) -
                               filter::channel(b.at(x, y), c);
                    error[c] += d * d;
                }
            }
        }
        double n = static_cast<double>(width) * height;
        gprintf("Psnr - %d x %d: R %.2f G %.2f B %.2f A %.2f RGB %.2f dB\n", width, height,
                decibels(error[2], n), decibels(error[1], n), decibels(error[0], n),
                decibels(error[3], n), decibels(error[0] + error[1] + error[2], 3.0 * n));
    }
    filter::plane_free(&a);
    filter::plane_free(&b);
    return ok;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    return module_copy_info(instance->images[0].info);
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    bool paired = instance->imageCount >= 2 && instance->images[1].pixels;
    if (!paired)
        gprintf("Psnr - no second image to compare with\n");
    else if (!report(in, instance->images[1]))
        return 0;
    filter::copy_rows(in, pixels, rowbytes);
    return 1;
}

} // namespace

constexpr ModuleEntry mod_psnr = module_entry<kDecl>(query, process);

// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// One plain soft shadow with libvips, PNG to PNG in one process: the layer's alpha, moved, blurred and made fainter, is
// the shadow below the layer. Eight bits, as libvips keeps an image of 8 bits. Its command line needs
// eight processes for the same.
//
// Usage: vips_peer LAYER.png OUTPUT.png LEFT TOP WIDTH HEIGHT X Y DEVIATION OPACITY AMPLITUDE; LEFT, TOP, WIDTH and
// HEIGHT are the output's rectangle in the layer's coordinates. The blur is cut off where its bell falls below
// AMPLITUDE.

#include <cmath>
#include <cstdlib>

// The functions in use, declared here: the package of the headers would bring 90 others.
extern "C" {
struct VipsImage;
int vips_init(const char* program);
[[noreturn]] void vips_error_exit(const char* format, ...);
VipsImage* vips_image_new_from_file(const char* file, ...);
int vips_black(VipsImage** out, int width, int height, ...);
int vips_extract_band(VipsImage* in, VipsImage** out, int band, ...);
int vips_embed(VipsImage* in, VipsImage** out, int x, int y, int width, int height, ...);
int vips_gaussblur(VipsImage* in, VipsImage** out, double deviation, ...);
int vips_linear1(VipsImage* in, VipsImage** out, double factor, double term, ...);
int vips_bandjoin2(VipsImage* first, VipsImage* second, VipsImage** out, ...);
int vips_copy(VipsImage* in, VipsImage** out, ...);
int vips_composite2(VipsImage* below, VipsImage* above, VipsImage** out, int mode, ...);
int vips_pngsave(VipsImage* in, const char* file, ...);
}

namespace {

constexpr int kSrgb = 22;
constexpr int kOver = 2;
// zlib's quickest level.
constexpr int kQuickest = 1;
constexpr char* kEnd = nullptr;

void Check(int result) {
    if (result != 0) vips_error_exit(nullptr);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 12 || vips_init(argv[0]) != 0) return 1;
    const int left = std::atoi(argv[3]);
    const int top = std::atoi(argv[4]);
    const int width = std::atoi(argv[5]);
    const int height = std::atoi(argv[6]);
    const int x = static_cast<int>(std::lround(std::atof(argv[7]))) - left;
    const int y = static_cast<int>(std::lround(std::atof(argv[8]))) - top;

    VipsImage* layer = vips_image_new_from_file(argv[1], kEnd);
    if (layer == nullptr) Check(1);
    VipsImage *alpha, *moved, *blurred, *faint, *black, *joined, *shadow, *result;
    Check(vips_extract_band(layer, &alpha, 3, kEnd));
    Check(vips_embed(alpha, &moved, x, y, width, height, kEnd));
    Check(vips_gaussblur(moved, &blurred, std::atof(argv[9]), "min_ampl", std::atof(argv[11]), kEnd));
    Check(vips_linear1(blurred, &faint, std::atof(argv[10]), 0.0, "uchar", 1, kEnd));
    Check(vips_black(&black, width, height, "bands", 3, kEnd));
    Check(vips_bandjoin2(black, faint, &joined, kEnd));
    Check(vips_copy(joined, &shadow, "interpretation", kSrgb, kEnd));
    Check(vips_composite2(shadow, layer, &result, kOver, "x", -left, "y", -top, kEnd));
    Check(vips_pngsave(result, argv[2], "compression", kQuickest, kEnd));
}

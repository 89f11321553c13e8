// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Draws the shadow of a red disc from memory to memory, and writes it to shadow.pam.

#include <umbrant/effect.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>

int main() try {
    const int side = 128;
    std::vector<std::uint8_t> disc(std::size_t{4} * side * side);
    for (int i = 0; i < side * side; ++i) {
        const int x = i % side - side / 2, y = i / side - side / 2;
        std::uint8_t* pixel = disc.data() + std::ptrdiff_t{4} * i;
        if (x * x + y * y < 1600) pixel[0] = pixel[3] = 255;  // red, opaque
    }
    umbrant::Effect effect;
    effect.Set("style/distance", 80);
    const umbrant::Image shadow = effect.Render({disc.data(), side, side});
    std::cout << shadow.Width() << " x " << shadow.Height() << ", the layer at " << -shadow.Place().left << ","
              << -shadow.Place().top << "\n";
    std::ofstream("shadow.pam") << "P7\nWIDTH " << shadow.Width() << "\nHEIGHT " << shadow.Height()
                                << "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n"
                                << std::string_view(reinterpret_cast<const char*>(shadow.Bytes()),
                                                    4 * shadow.PixelCount());
} catch (const umbrant::Error& error) {
    std::cerr << error.what() << "\n";
    return static_cast<int>(error.Code());
}

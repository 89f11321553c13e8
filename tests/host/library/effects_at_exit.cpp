// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A program that ends, or forks, with effects of the library in some state. Usage: effects_at_exit MODULE CASE. Ends
// with 0 when all went well.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <umbrant/effect.h>

namespace {

constexpr int kSide = 24;

std::unique_ptr<umbrant::Effect> lasting;

umbrant::Effect EffectOf(const std::string& module, umbrant::Renderer renderer) {
    return umbrant::Effect({module, renderer, false, {}});
}

bool Draws(const umbrant::Effect& effect) {
    const std::vector<std::uint8_t> pixels(4 * kSide * kSide, 200);
    return effect.Render({pixels.data(), kSide, kSide}).PixelCount() > 0;
}

/// What the child of a fork returned as true; it ends without the parent's exit functions.
template <typename Work>
bool InChild(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work() ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int Run(const std::string& module, std::string_view name) {
    const auto byGl = [&] { return EffectOf(module, umbrant::Renderer::kOpenGL); };
    if (name == "static" || name == "exit-on-a-thread") {
        lasting = std::make_unique<umbrant::Effect>(byGl());
        if (!Draws(*lasting)) return 2;
        if (name == "static") return 0;
        std::thread([] { std::exit(0); }).join();
    }
    if (name == "leaked") {
        // Where the checker of leaks sees it, which would report it otherwise.
        static const umbrant::Effect* kept = nullptr;
        kept = new umbrant::Effect(byGl());
        return Draws(*kept) ? 0 : 2;
    }
    if (name == "fork-first") {
        if (!InChild([&] { return Draws(byGl()); })) return 3;
        return Draws(byGl()) ? 0 : 2;
    }
    if (name == "fork-before-the-first-frame") {
        const umbrant::Effect effect = EffectOf(module, umbrant::Renderer::kProcessor);
        if (!InChild([&] { return Draws(effect) && Draws(byGl()); })) return 3;
        return Draws(effect) && Draws(byGl()) ? 0 : 2;
    }
    return 4;
}

}  // namespace

int main(int count, char** arguments) {
    return count == 3 ? Run(arguments[1], arguments[2]) : 4;
}

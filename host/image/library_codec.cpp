// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <fmt/format.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <future>
#include <iterator>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "host/compositing/memory_shortage.h"
#include "host/image/codec.h"
#include "host/loading/own_objects.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

using Loaded = std::variant<const Codec*, std::string>;

/// What libraries behind the image library start while they are loaded, and one for its own work. Where the system
/// refuses one of them, they end the process.
constexpr int kThreads = 5;

std::ptrdiff_t ThreadsOfThisProcess() {
    std::error_code error;
    return std::distance(fs::directory_iterator("/proc/self/task", error), fs::directory_iterator());
}

/// Whether the system gives so many threads at once. All have ended, also for the system, when this returns.
bool CanHaveThreads(int count) {
    const std::ptrdiff_t before = ThreadsOfThisProcess();
    std::promise<void> counted;
    const std::shared_future<void> end = counted.get_future().share();
    std::vector<std::jthread> threads = StartThreads(count, [end](int) { end.wait(); });
    const bool areAll = static_cast<int>(threads.size()) == count;
    counted.set_value();
    threads.clear();
    // Other threads may have started meanwhile; then this waits a moment without effect.
    for (int i = 0; i < 100 && ThreadsOfThisProcess() > before; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return areAll;
}

/// The address space that the library takes when it is loaded, with the stacks and heaps of its threads. Where less is
/// left, one of its 235 libraries fails, or ends the process.
constexpr std::uint64_t kMemory = std::uint64_t{480} << 20;

Loaded Load() {
    if (!CanHaveMemory(kMemory)) return "not enough memory for the library for this format";
    if (!CanHaveThreads(kThreads)) {
        return fmt::format("the library for this format needs {} threads, and the system refuses them: {}", kThreads,
                           std::generic_category().message(EAGAIN));
    }
    const auto opened = OpenOwnObject(kImagesObject);
    if (const auto* reason = std::get_if<std::string>(&opened)) return *reason;
    return reinterpret_cast<const Codec* (*)()>(std::get<void*>(opened))();
}

}  // namespace

Loaded LibraryCodec() {
    static std::mutex mutex;
    static const Codec* codec = nullptr;
    const std::lock_guard lock(mutex);
    if (codec) return codec;
    // What is short now may be there for the next image.
    Loaded loaded = Load();
    if (const auto* const* found = std::get_if<const Codec*>(&loaded)) codec = *found;
    return loaded;
}

}  // namespace umbrant::host

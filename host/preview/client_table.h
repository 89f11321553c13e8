// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The pages that are connected, what each waits for and gets, and the work that follows from it. It joins the server's
// threads with the one that draws. Any thread.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/compositing/world.h"
#include "host/preview/draw_request.h"
#include "hostapi/pixels.h"

namespace umbrant::host {

/// How many pages may be connected at once. A browser has no more than six connections to a server; each page keeps
/// one.
constexpr std::size_t kMostClients = 5;

/// A drawn frame that a page may fetch.
struct KeptFrame {
    std::int64_t number = 0;
    std::shared_ptr<const std::string> pixels;  ///< rows of red, green, blue, alpha; straight
    std::shared_ptr<const World> exact;         ///< the same in float; null where the frame has 8 bits
};

class ClientTable {
 public:
    using Task = std::function<void()>;
    /// A task, a frame to draw, or the end.
    using Work = std::variant<std::monostate, Task, DrawRequest>;

    /// A new page's number; nothing when there are too many.
    std::optional<int> Add();
    void Remove(int client);
    /// A page's request replaces its earlier one that is not being drawn yet. False for an unknown page.
    bool Submit(DrawRequest request);
    /// Has `task` called by the thread that draws; dropped, and destroyed, at the end.
    void Post(Task task);

    /// Waits for work: tasks first, then the page that has waited longest. The end comes with Stop, or when no page
    /// has been connected for `idle`.
    Work Next(const std::optional<std::chrono::milliseconds>& idle);

    /// Sends an event to a page. An earlier one of the same kind that was not sent yet is replaced.
    void Send(int client, const std::string& kind, const std::string& data);
    /// Waits, at most a second, for events of a page, as a part of an event stream. False at the end.
    bool TakeEvents(int client, std::string& part);

    /// Keeps a frame for its page, which has the last few.
    void Keep(int client, KeptFrame frame);
    std::optional<KeptFrame> FrameOf(int client, std::int64_t number) const;

    void Stop();

 private:
    struct Client {
        std::optional<DrawRequest> waiting;
        std::int64_t since = 0;  ///< when it began to wait, in requests
        std::vector<std::pair<std::string, std::string>> events;
        std::deque<KeptFrame> frames;
    };

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::map<int, Client> clients_;
    std::deque<Task> tasks_;
    std::chrono::steady_clock::time_point lonely_ = std::chrono::steady_clock::now();
    std::int64_t requests_ = 0;
    int last_ = 0;
    bool isStopped_ = false;
};

}  // namespace umbrant::host

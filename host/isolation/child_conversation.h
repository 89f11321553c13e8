// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The socket's end in a module's process: requests come in, answers go out, and while one is served, the program is
// asked for what it has (values, layers, memory).

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>

#include "host/compositing/world.h"
#include "host/process/channel.h"
#include "host/process/shared_memory.h"

namespace umbrant::host {

/// With the program that started this process. When the program is gone, this process ends.
class ChildConversation {
 public:
    explicit ChildConversation(int socket) : channel_(socket) {}

    /// The next request, once there is one.
    nlohmann::json Receive();
    void Send(const nlohmann::json& answer);

    /// Asks the program something in the middle of a request. From any thread: an effect may ask from its own.
    nlohmann::json Ask(const nlohmann::json& question);
    /// The shared memory of this id; null for one that was not sent. From any thread.
    std::shared_ptr<SharedMemory> Block(std::uint64_t id);
    /// The world that a message describes, put into `worlds`. Throws std::bad_alloc when there is none.
    const World* WorldFrom(const nlohmann::json& message, std::list<World>& worlds);

    /// The world that a frame is drawn into: memory that the program has. Null when it has none.
    World MakeOutput(int width, int height, Depth depth);
    /// The block of the last such world.
    std::uint64_t OutputBlock() const { return outputBlock_; }
    /// A frame begins, which has no output yet.
    void ForgetOutput() { outputBlock_ = 0; }

 private:
    void TakeBlocks(const Message& message);

    Channel channel_;
    std::mutex askMutex_;
    std::mutex blocksMutex_;
    std::map<std::uint64_t, std::shared_ptr<SharedMemory>> blocks_;
    std::uint64_t outputBlock_ = 0;
};

/// Ends this process at once, before anything is torn down that a module's threads may still use.
[[noreturn]] void EndChild(int status);

}  // namespace umbrant::host

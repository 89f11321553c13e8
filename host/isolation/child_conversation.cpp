// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/child_conversation.h"

#include <unistd.h>

#include <cstdio>
#include <new>
#include <utility>

#include "host/isolation/module_messages.h"

namespace umbrant::host {

using nlohmann::json;

json ChildConversation::Receive() {
    Message message;
    if (channel_.Receive(message, {}) != Received::kMessage) EndChild(0);
    TakeBlocks(message);
    return std::move(message.content);
}

void ChildConversation::Send(const json& answer) {
    if (!channel_.Send(answer)) EndChild(0);
}

World ChildConversation::MakeOutput(int width, int height, Depth depth) {
    const auto size = World::BytesOf(width, height, depth);
    if (!size) return {};
    if (*size == 0) return World::Create(width, height, depth, false);
    const json answer = Ask({{"ask", "memory"}, {"size", *size}});
    outputBlock_ = answer.at("block");
    const auto block = Block(answer.at("block"));
    if (!block) return {};
    World world = World::CreateOver(GuardedBytes::Over(block->Data(), block->Size(), block), width, height, depth);
    if (!world.IsNull()) world.FillUnwritten();
    return world;
}

json ChildConversation::Ask(const json& question) {
    const std::lock_guard lock(askMutex_);
    Message message;
    if (!channel_.Send(question) || channel_.Receive(message, {}) != Received::kMessage) EndChild(0);
    TakeBlocks(message);
    return std::move(message.content);
}

void ChildConversation::TakeBlocks(const Message& message) {
    std::size_t next = 0;
    const std::lock_guard lock(blocksMutex_);
    if (message.content.contains("forget")) {
        for (const json& id : message.content.at("forget")) blocks_.erase(id.get<std::uint64_t>());
    }
    if (!message.content.contains("blocks")) return;
    for (const json& id : message.content.at("blocks")) {
        if (next == message.descriptors.size()) break;
        blocks_[id.get<std::uint64_t>()] = SharedMemory::Open(message.descriptors[next++]);
    }
}

std::shared_ptr<SharedMemory> ChildConversation::Block(std::uint64_t id) {
    const std::lock_guard lock(blocksMutex_);
    const auto found = blocks_.find(id);
    return found == blocks_.end() ? nullptr : found->second;
}

const World* ChildConversation::WorldFrom(const json& message, std::list<World>& worlds) {
    const auto facts = RecordOf<WorldFacts>(message);
    const auto depth = static_cast<Depth>(facts.depth);
    World world;
    if (facts.block == 0) {
        world = World::Create(facts.width, facts.height, depth);
    } else if (const auto block = Block(facts.block)) {
        world = World::CreateOver(GuardedBytes::Over(block->Data(), block->Size(), block), facts.width, facts.height,
                                  depth);
    }
    if (world.IsNull()) throw std::bad_alloc();
    return &worlds.emplace_back(std::move(world));
}

void EndChild(int status) {
    std::fflush(nullptr);
    _exit(status);
}

}  // namespace umbrant::host

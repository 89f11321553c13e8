// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/client_table.h"

#include <fmt/format.h>

#include <algorithm>

namespace umbrant::host {

namespace {

/// How many frames of a page are kept: the one that it shows, and those that are on their way.
constexpr std::size_t kKeptFrames = 3;

}  // namespace

std::optional<int> ClientTable::Add() {
    const std::lock_guard lock(mutex_);
    if (clients_.size() >= kMostClients || isStopped_) return std::nullopt;
    clients_.emplace(++last_, Client{});
    changed_.notify_all();
    return last_;
}

void ClientTable::Remove(int client) {
    const std::lock_guard lock(mutex_);
    clients_.erase(client);
    if (clients_.empty()) lonely_ = std::chrono::steady_clock::now();
    changed_.notify_all();
}

bool ClientTable::Submit(DrawRequest request) {
    const std::lock_guard lock(mutex_);
    const auto client = clients_.find(request.client);
    if (client == clients_.end()) return false;
    if (!client->second.waiting) client->second.since = ++requests_;
    client->second.waiting = std::move(request);
    changed_.notify_all();
    return true;
}

void ClientTable::Post(Task task) {
    const std::lock_guard lock(mutex_);
    if (isStopped_) return;
    tasks_.push_back(std::move(task));
    changed_.notify_all();
}

ClientTable::Work ClientTable::Next(const std::optional<std::chrono::milliseconds>& idle) {
    std::unique_lock lock(mutex_);
    for (;;) {
        if (isStopped_) return std::monostate();
        if (!tasks_.empty()) {
            Task task = std::move(tasks_.front());
            tasks_.pop_front();
            return task;
        }
        Client* next = nullptr;
        for (auto& [number, client] : clients_) {
            if (client.waiting && (!next || client.since < next->since)) next = &client;
        }
        if (next) {
            DrawRequest request = std::move(*next->waiting);
            next->waiting.reset();
            return request;
        }
        if (!idle || !clients_.empty()) {
            changed_.wait(lock);
        } else if (changed_.wait_until(lock, lonely_ + *idle) == std::cv_status::timeout && clients_.empty()) {
            return std::monostate();
        }
    }
}

void ClientTable::Send(int client, const std::string& kind, const std::string& data) {
    const std::lock_guard lock(mutex_);
    const auto found = clients_.find(client);
    if (found == clients_.end()) return;
    auto& events = found->second.events;
    std::erase_if(events, [&](const auto& event) { return event.first == kind; });
    events.emplace_back(kind, data);
    changed_.notify_all();
}

bool ClientTable::TakeEvents(int client, std::string& part) {
    std::unique_lock lock(mutex_);
    const auto events = [&]() -> std::vector<std::pair<std::string, std::string>>* {
        const auto found = clients_.find(client);
        return found == clients_.end() ? nullptr : &found->second.events;
    };
    changed_.wait_for(lock, std::chrono::seconds(1), [&] { return isStopped_ || !events() || !events()->empty(); });
    if (isStopped_ || !events()) return false;
    // A comment, by whose failure the server learns that the page is gone.
    part = events()->empty() ? ":\n\n" : "";
    for (const auto& [kind, data] : *events()) part += fmt::format("event: {}\ndata: {}\n\n", kind, data);
    events()->clear();
    return true;
}

void ClientTable::Keep(int client, KeptFrame frame) {
    const std::lock_guard lock(mutex_);
    const auto found = clients_.find(client);
    if (found == clients_.end()) return;
    auto& frames = found->second.frames;
    frames.push_back(std::move(frame));
    if (frames.size() > kKeptFrames) frames.pop_front();
}

std::optional<KeptFrame> ClientTable::FrameOf(int client, std::int64_t number) const {
    const std::lock_guard lock(mutex_);
    const auto found = clients_.find(client);
    if (found == clients_.end()) return std::nullopt;
    for (const KeptFrame& frame : found->second.frames) {
        if (frame.number == number) return frame;
    }
    return std::nullopt;
}

void ClientTable::Stop() {
    std::deque<Task> dropped;
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    dropped.swap(tasks_);
    changed_.notify_all();
}

}  // namespace umbrant::host

// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The program's end of the socket to a module's process: requests go out, and while one is served, the questions of the
// process (values, layers, memory) are answered.

#include <filesystem>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "host/isolation/module_end.h"
#include "host/isolation/module_messages.h"
#include "host/isolation/pixel_blocks.h"
#include "host/isolation/session_records.h"
#include "host/process/child_program.h"
#include "host/process/shared_memory.h"

namespace umbrant::host {

/// With one process at a time; `Now` may be called from any thread, everything else from one at a time. What fails
/// because of the process ends it, and the failure is the sentence of ModuleProcess.
class ModuleConversation {
 public:
    /// `records` takes what the answers report about the session; it outlives the conversation.
    ModuleConversation(std::filesystem::path module, SessionRecords& records)
        : module_(std::move(module)), records_(records) {}

    /// Starts the program as the module's process and opens the session there. Gives the answer.
    Result<nlohmann::json> Begin(const std::filesystem::path& program, const SessionOptions& session);
    /// Whether there is a process.
    bool IsOpen() const { return child_ != nullptr; }
    /// The process's number; 0 when there is none.
    int Process() const { return child_ ? child_->Child().Process() : 0; }
    /// Waits a while for a process whose session has ended, and forgets it.
    void WaitForEnd();

    /// Sends a request and answers the questions of the process until it answers. `request` is the frame that is drawn,
    /// null outside of frames.
    Result<nlohmann::json> Exchange(Parcel parcel, const FrameRequest* request);
    /// Names the layers of a frame in a message. Fails with `ErrorKind::kInternal`.
    Result<Done> FillLayers(const World* layer, const World* texture, Parcel& parcel);
    /// A frame begins, which has no output yet.
    void ForgetOutput() { output_ = nullptr; }
    /// The world that an answer says was drawn.
    Result<World> TakeOutput(const nlohmann::json& answer);
    /// The command under way, from the status page.
    std::optional<Activity> Now() const;

    /// Runs what reads a message of the process: one that cannot be read ends it.
    template <typename Read>
    auto Guarded(Read read) -> decltype(read());

 private:
    Failure GiveUp(Failure failure);
    /// The process is gone, or soon will be.
    Failure Ended();
    bool Send(Parcel& parcel);
    Result<Parcel> Answer(const nlohmann::json& question, const FrameRequest* request);
    Result<Done> FillLayers(const Result<MomentLayers>& layers, Parcel& parcel);

    const std::filesystem::path module_;
    SessionRecords& records_;
    std::unique_ptr<ChildProgram> child_;  ///< null when it has ended
    PixelBlocks blocks_;
    std::shared_ptr<SharedMemory> output_;

    mutable std::mutex statusMutex_;
    std::shared_ptr<SharedMemory> page_;
    ModuleStatus* status_ = nullptr;
};

template <typename Read>
auto ModuleConversation::Guarded(Read read) -> decltype(read()) {
    try {
        return read();
    } catch (const nlohmann::json::exception&) {
        return GiveUp(WrongMessage(module_));
    } catch (...) {
        // It waits for an answer that will not come.
        child_.reset();
        throw;
    }
}

}  // namespace umbrant::host

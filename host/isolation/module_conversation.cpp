// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/module_conversation.h"

#include <chrono>
#include <new>
#include <utility>

#include "host/isolation/module_child.h"
#include "host/process/channel.h"

namespace umbrant::host {

namespace {

using nlohmann::json;

/// How long a process may take to end after its session has.
constexpr std::chrono::seconds kEndsIn{5};

}  // namespace

Result<json> ModuleConversation::Begin(const std::filesystem::path& program, const SessionOptions& session) {
    blocks_.ForgetAll();
    auto child = TRY(ChildProgram::Start(program, {kModuleProcessArgument}));
    const auto page = SharedMemory::Create(sizeof(ModuleStatus));
    if (!page) return NoPixelMemory(sizeof(ModuleStatus));
    {
        const std::lock_guard lock(statusMutex_);
        page_ = page;
        status_ = new (page->Data()) ModuleStatus;
        status_->command = -1;
    }
    child_ = std::move(child);
    Parcel parcel;
    parcel.content = {
        {"do", "open"}, {"module", module_.string()}, {"options", OptionsJson(session)}, {"status", page->Id()}};
    blocks_.Attach(parcel, page);
    auto answer = Exchange(std::move(parcel), nullptr);
    if (!answer) return GiveUp(answer.error());
    return answer;
}

void ModuleConversation::WaitForEnd() {
    child_->Child().WaitFor(kEndsIn);
    child_.reset();
}

std::optional<Activity> ModuleConversation::Now() const {
    const std::lock_guard lock(statusMutex_);
    if (!status_ || status_->phase != ModuleStatus::kInCommand) return std::nullopt;
    const auto begin = std::chrono::nanoseconds(status_->begin);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now().time_since_epoch() - begin;
    return Activity{status_->command, static_cast<RenderStage>(status_->stage.load()), taken.count()};
}

Failure ModuleConversation::GiveUp(Failure failure) {
    child_.reset();
    return failure;
}

Failure ModuleConversation::Ended() {
    // Its socket may close a moment before the process has an end that can be read.
    const auto ended = child_->Child().WaitFor(kEndsIn);
    return GiveUp(ExplainEnd(ended ? *ended : child_->Child().Kill(), module_, *status_));
}

bool ModuleConversation::Send(Parcel& parcel) {
    blocks_.NameDropped(parcel);
    return Channel(child_->Socket()).Send(parcel.content, parcel.descriptors);
}

Result<json> ModuleConversation::Exchange(Parcel parcel, const FrameRequest* request) {
    if (!Send(parcel)) return Ended();
    Channel channel(child_->Socket());
    std::vector<std::shared_ptr<SharedMemory>> keptBlocks;
    for (;;) {
        Message message;
        switch (channel.Receive(message, [this] { return child_->Child().HasEnded(); })) {
            case Received::kMessage:
                break;
            case Received::kClosed:
                return Ended();
            case Received::kWrong:
                return GiveUp(WrongMessage(module_));
        }
        if (!message.content.contains("ask")) {
            if (!message.content.contains("failure")) return std::move(message.content);
            return Guarded([&]() -> Result<json> {
                records_.TakeRecords(message.content);
                return ReadFailure(message.content.at("failure"));
            });
        }
        auto answer = Guarded([&] { return Answer(message.content, request); });
        if (!answer) return answer.error();
        if (!Send(*answer)) return Ended();
        for (auto& block : answer->blocks) keptBlocks.push_back(std::move(block));
    }
}

Result<Parcel> ModuleConversation::Answer(const json& question, const FrameRequest* request) {
    Parcel answer;
    const auto about = question.at("ask").get<std::string>();
    if (about == "memory") {
        const auto size = question.at("size").get<std::size_t>();
        output_ = size > 0 ? blocks_.Take(size) : nullptr;
        answer.content = {{"block", output_ ? output_->Id() : 0}};
        if (output_) blocks_.Attach(answer, output_);
        return answer;
    }
    const auto moment = RecordOf<Moment>(question.at("moment"));
    if (about == "values" && request && request->valuesAt) {
        answer.content = {{"values", ValuesJson(request->valuesAt(moment))}};
        return answer;
    }
    if (about != "layers" || !request || !request->layersAt) return GiveUp(WrongMessage(module_));
    if (auto filled = FillLayers(request->layersAt(moment), answer); !filled) {
        answer.content = {{"failure", FailureJson(filled.error())}};
    }
    return answer;
}

Result<Done> ModuleConversation::FillLayers(const Result<MomentLayers>& layers, Parcel& parcel) {
    if (!layers) return layers.error();
    parcel.content["width"] = layers->layerWidth;
    parcel.content["height"] = layers->layerHeight;
    return FillLayers(layers->layer, layers->texture, parcel);
}

Result<Done> ModuleConversation::FillLayers(const World* layer, const World* texture, Parcel& parcel) {
    if (auto put = blocks_.Put(*layer, "layer", parcel); !put || !texture) return put;
    return blocks_.Put(*texture, "texture", parcel);
}

Result<World> ModuleConversation::TakeOutput(const json& answer) {
    const auto facts = RecordOf<WorldFacts>(answer.at("output"));
    if (!IsUsable(facts)) return GiveUp(WrongMessage(module_));
    const auto depth = static_cast<Depth>(facts.depth);
    const auto block = std::exchange(output_, nullptr);
    World world;
    if (facts.width == 0 || facts.height == 0) {
        world = World::Create(facts.width, facts.height, depth);
    } else if (block && block->Id() == facts.block) {
        world = World::CreateOver(GuardedBytes::Over(block->Data(), block->Size(), block), facts.width, facts.height,
                                  depth);
    } else {
        return GiveUp(WrongMessage(module_));
    }
    if (world.IsNull()) return GiveUp(WrongMessage(module_));
    return world;
}

}  // namespace umbrant::host

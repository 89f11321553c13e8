// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/module_process.h"

#include <fmt/format.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <new>
#include <set>
#include <utility>

#include "host/isolation/module_child.h"
#include "host/isolation/module_end.h"
#include "host/isolation/module_messages.h"
#include "host/isolation/pixel_blocks.h"
#include "host/process/channel.h"
#include "host/process/child_program.h"
#include "host/process/shared_memory.h"

namespace umbrant::host {

namespace {

using nlohmann::json;

/// How long a process may take to end after its session has.
constexpr std::chrono::seconds kEndsIn{5};

class Proxy final : public ModuleProcess {
 public:
    explicit Proxy(ModuleProcessOptions options) : options_(std::move(options)), renderer_(options_.session.renderer) {
        if (options_.program.empty()) options_.program = ProgramForChildren();
    }

    ~Proxy() override {
        if (child_) (void)End();
    }

    /// Starts a process and sets the session up in it. The values, and what the panel shows, stay those of before.
    Result<Done> Begin() {
        blocks_.ForgetAll();
        auto child = ChildProgram::Start(options_.program, {kModuleProcessArgument});
        if (!child) return child.Error();
        const auto page = SharedMemory::Create(sizeof(ModuleStatus));
        if (!page) return NoPixelMemory(sizeof(ModuleStatus));
        {
            const std::lock_guard lock(statusMutex_);
            page_ = page;
            status_ = new (page->Data()) ModuleStatus;
            status_->command = -1;
        }
        child_ = std::move(*child);
        Parcel parcel;
        parcel.content = {{"do", "open"},
                          {"module", options_.module.string()},
                          {"options", OptionsJson(options_.session)},
                          {"status", page->Id()}};
        blocks_.Attach(parcel, page);
        const auto answer = Exchange(std::move(parcel), nullptr);
        if (!answer) return GiveUp(answer.Error());
        return Guarded([&]() -> Result<Done> {
            TakeDeclaration(*answer);
            TakeRecords(*answer);
            return Done{};
        });
    }

    const Registration& Effect() const override { return effect_; }
    int Process() const override { return child_ ? child_->Child().Process() : 0; }

    Result<std::unique_ptr<RemoteSession>> StartInstance(const std::optional<SessionOptions>& options) override {
        ModuleProcessOptions same = options_;
        if (options) same.session = *options;
        auto another = std::make_unique<Proxy>(std::move(same));
        if (auto begun = another->Begin(); !begun) return begun.Error();
        another->renderer_ = renderer_.load();
        if (another->params_.Count() == params_.Count()) another->params_ = params_;
        return std::unique_ptr<RemoteSession>(std::move(another));
    }

    Result<Done> End() override {
        if (!child_) return Done{};
        const auto answer = Do({{"do", "end"}});
        if (!child_) return answer.Error();
        // The effect has said all it had to say: how it leaves its process changes nothing.
        child_->Child().WaitFor(kEndsIn);
        child_.reset();
        if (!answer) return answer.Error();
        return Done{};
    }

    Result<std::string> About() override {
        const auto answer = Do({{"do", "about"}});
        if (!answer) return answer.Error();
        return answer->value("about", "");
    }

    Result<Done> UpdateParamsUI() override {
        panelIsUpdated_ = true;
        return DoPanelCommand({{"do", "update panel"}});
    }

    Result<Done> UserChangedParam(int index) override {
        return DoPanelCommand({{"do", "user changed"}, {"row", index}});
    }

    bool SetTwirl(int index, bool collapsed) override {
        (void)Do({{"do", "twirl"}, {"row", index}, {"collapsed", collapsed}});
        return panel_.SetCollapsed(index, collapsed);
    }

    void SetRenderer(UMBRANT_Renderer renderer) override { renderer_ = renderer; }

    Result<PreRendered> PreRender(const FrameRequest& request) override {
        const auto answer = DoFrame("pre-render", request);
        if (!answer) return answer.Error();
        return Guarded([&]() -> Result<PreRendered> {
            return PreRendered{RecordOf<PF_LRect>(answer->at("resultRect")), RecordOf<PF_LRect>(answer->at("maxRect")),
                               answer->at("solid").get<PF_Boolean>(), answer->at("flags").get<PF_RenderOutputFlags>(),
                               CommandsOf(answer->at("frameCommands"))};
        });
    }

    Result<Frame> Render(const FrameRequest& request) override {
        const auto answer = DoFrame("render", request);
        if (!answer) return answer.Error();
        return Guarded([&]() -> Result<Frame> {
            auto output = TakeOutput(*answer);
            if (!output) return output.Error();
            Frame frame;
            frame.output = std::move(*output);
            frame.rect = RecordOf<PF_LRect>(answer->at("resultRect"));
            frame.maxRect = RecordOf<PF_LRect>(answer->at("maxRect"));
            frame.output.Def().origin_x = frame.rect.left;
            frame.output.Def().origin_y = frame.rect.top;
            frame.message = answer->at("message").get<std::string>();
            frame.messageIsError = answer->at("messageIsError").get<bool>();
            frame.commands = CommandsOf(answer->at("frameCommands"));
            frame.suites = answer->at("suites").get<std::vector<std::string>>();
            return frame;
        });
    }

    Result<World> DrawPanel(const RemotePanelOptions& options) override {
        const auto answer = Do({{"do", "draw panel"},
                                {"width", options.width},
                                {"scale", options.scale},
                                {"light", options.light},
                                {"effectName", options.effectName}});
        if (!answer) return answer.Error();
        return Guarded([&]() { return TakeOutput(*answer); });
    }

    ParamSet& Params() override { return params_; }
    const PanelState& Panel() const override { return panel_; }
    LayerGeometry PanelGeometry() const override {
        return {options_.session.layerWidth, options_.session.layerHeight, {1, 1}, {1, 1}};
    }
    PF_OutFlags OutFlags() const override { return outFlags_; }
    PF_OutFlags2 OutFlags2() const override { return outFlags2_; }
    A_u_long EffectVersion() const override { return version_; }
    Balance Open() const override { return open_; }
    std::vector<std::string> Misbehaviour() const override { return misbehaviour_; }
    std::vector<std::string> AcquiredSuites() const override { return {acquired_.begin(), acquired_.end()}; }
    std::vector<std::string> RefusedSuites() const override { return {refused_.begin(), refused_.end()}; }
    std::vector<CommandRecord> Commands() const override { return commands_; }

    std::optional<Activity> Now() const override {
        const std::lock_guard lock(statusMutex_);
        if (!status_ || status_->phase != ModuleStatus::kInCommand) return std::nullopt;
        const auto begin = std::chrono::nanoseconds(status_->begin);
        const std::chrono::duration<double, std::milli> taken =
            std::chrono::steady_clock::now().time_since_epoch() - begin;
        return Activity{status_->command, static_cast<RenderStage>(status_->stage.load()), taken.count()};
    }

 private:
    /// What reads a message of the process: one that cannot be read ends it.
    template <typename Read>
    auto Guarded(Read read) -> decltype(read()) {
        try {
            return read();
        } catch (const json::exception&) {
            return GiveUp(WrongMessage(options_.module));
        } catch (...) {
            // It waits for an answer that will not come.
            child_.reset();
            throw;
        }
    }

    Failure GiveUp(Failure failure) {
        child_.reset();
        return failure;
    }

    /// The process is gone, or soon will be.
    Failure Ended() {
        // Its socket may close a moment before the process has an end that can be read.
        const auto ended = child_->Child().WaitFor(kEndsIn);
        return GiveUp(ExplainEnd(ended ? *ended : child_->Child().Kill(), options_.module, *status_));
    }

    bool Send(Parcel& parcel) {
        blocks_.NameDropped(parcel);
        return Channel(child_->Socket()).Send(parcel.content, parcel.descriptors);
    }

    /// Sends a request and answers the questions of the process until it answers. `request` is the frame that is drawn,
    /// null outside of frames.
    Result<json> Exchange(Parcel parcel, const FrameRequest* request) {
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
                    return GiveUp(WrongMessage(options_.module));
            }
            if (!message.content.contains("ask")) {
                if (!message.content.contains("failure")) return std::move(message.content);
                return Guarded([&]() -> Result<json> {
                    TakeRecords(message.content);
                    return ReadFailure(message.content.at("failure"));
                });
            }
            auto answer = Guarded([&] { return Answer(message.content, request); });
            if (!answer) return answer.Error();
            if (!Send(*answer)) return Ended();
            for (auto& block : answer->blocks) keptBlocks.push_back(std::move(block));
        }
    }

    Result<Parcel> Answer(const json& question, const FrameRequest* request) {
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
        if (about != "layers" || !request || !request->layersAt) return GiveUp(WrongMessage(options_.module));
        if (auto filled = FillLayers(request->layersAt(moment), answer); !filled) {
            answer.content = {{"failure", FailureJson(filled.Error())}};
        }
        return answer;
    }

    Result<Done> FillLayers(const Result<MomentLayers>& layers, Parcel& parcel) {
        if (!layers) return layers.Error();
        parcel.content["width"] = layers->layerWidth;
        parcel.content["height"] = layers->layerHeight;
        return FillLayers(layers->layer, layers->texture, parcel);
    }

    Result<Done> FillLayers(const World* layer, const World* texture, Parcel& parcel) {
        if (auto put = blocks_.Put(*layer, "layer", parcel); !put || !texture) return put;
        return blocks_.Put(*texture, "texture", parcel);
    }

    Result<World> TakeOutput(const json& answer) {
        const auto facts = RecordOf<WorldFacts>(answer.at("output"));
        if (!IsUsable(facts)) return GiveUp(WrongMessage(options_.module));
        const auto depth = static_cast<Depth>(facts.depth);
        const auto block = std::exchange(output_, nullptr);
        World world;
        if (facts.width == 0 || facts.height == 0) {
            world = World::Create(facts.width, facts.height, depth);
        } else if (block && block->Id() == facts.block) {
            world = World::CreateOver(GuardedBytes::Over(block->Data(), block->Size(), block), facts.width,
                                      facts.height, depth);
        } else {
            return GiveUp(WrongMessage(options_.module));
        }
        if (world.IsNull()) return GiveUp(WrongMessage(options_.module));
        return world;
    }

    Result<json> Do(json request) {
        if (!child_) return Failure{ExitCode::kEffectFailed, "the module's process has ended"};
        Parcel parcel;
        request["values"] = ValuesJson(params_);
        parcel.content = std::move(request);
        auto answer = Exchange(std::move(parcel), nullptr);
        if (!answer) return answer;
        return Guarded([&]() -> Result<json> {
            TakeRecords(*answer);
            return std::move(*answer);
        });
    }

    Result<Done> DoPanelCommand(json request) {
        const auto answer = Do(std::move(request));
        if (!answer) return answer.Error();
        return Guarded([&]() -> Result<Done> {
            SetValues(answer->at("values"), params_);
            return Done{};
        });
    }

    Result<json> DoFrame(const char* what, const FrameRequest& request) {
        if (!request.layer || request.layer->IsNull()) {
            return Failure{ExitCode::kInternal, "a frame was requested without a layer"};
        }
        if (auto ready = BeginAgain(); !ready) return ready.Error();
        output_ = nullptr;
        Parcel parcel;
        parcel.content = {{"do", what},
                          {"request", RequestJson(request)},
                          {"values", ValuesJson(params_)},
                          {"frameValues", ValuesJson(request.params ? *request.params : params_)},
                          {"asksValues", request.valuesAt != nullptr},
                          {"asksLayers", request.layersAt != nullptr}};
        parcel.content["renderer"] = renderer_.load();
        if (auto filled = FillLayers(request.layer, request.texture, parcel); !filled) return filled.Error();
        auto answer = Exchange(std::move(parcel), &request);
        if (!answer) return answer;
        return Guarded([&]() -> Result<json> {
            TakeRecords(*answer);
            return std::move(*answer);
        });
    }

    /// A new process where the last one has ended.
    Result<Done> BeginAgain() {
        if (child_) return Done{};
        if (auto begun = Begin(); !begun) return begun;
        return panelIsUpdated_ ? UpdateParamsUI() : Result<Done>(Done{});
    }

    void TakeDeclaration(const json& answer) {
        effect_ = RegistrationOf(answer.at("effect"));
        outFlags_ = answer.at("outFlags");
        outFlags2_ = answer.at("outFlags2");
        version_ = answer.at("version");
        ParamSet declared = DeclarationOf(answer.at("declaration"));
        SetValues(answer.at("values"), declared);
        // The values of a process that has ended are still those that were asked for.
        if (params_.Count() == 1) params_ = std::move(declared);
    }

    void TakeRecords(const json& answer) {
        if (!answer.contains("misbehaviour")) return;
        const auto add = [](auto& all, const json& more) {
            for (const json& each : more) all.insert(all.end(), each.get<std::string>());
        };
        add(misbehaviour_, answer.at("misbehaviour"));
        add(acquired_, answer.at("acquired"));
        add(refused_, answer.at("refused"));
        open_ = RecordOf<Balance>(answer.at("open"));
        commands_ = CommandsOf(answer.at("commands"));
        panel_.Reset(PanelOf(answer.at("panel")));
        panel_.SetOptionsButton(answer.at("optionsButton"));
    }

    ModuleProcessOptions options_;
    std::atomic<UMBRANT_Renderer> renderer_;
    std::unique_ptr<ChildProgram> child_;  ///< null when it has ended
    PixelBlocks blocks_;
    std::shared_ptr<SharedMemory> output_;
    bool panelIsUpdated_ = false;

    mutable std::mutex statusMutex_;
    std::shared_ptr<SharedMemory> page_;
    ModuleStatus* status_ = nullptr;

    Registration effect_;
    ParamSet params_;
    PanelState panel_;
    PF_OutFlags outFlags_ = PF_OutFlag_NONE;
    PF_OutFlags2 outFlags2_ = PF_OutFlag2_NONE;
    A_u_long version_ = 0;
    Balance open_;
    std::vector<std::string> misbehaviour_;
    std::set<std::string> acquired_;
    std::set<std::string> refused_;
    std::vector<CommandRecord> commands_;
};

}  // namespace

Result<std::unique_ptr<ModuleProcess>> ModuleProcess::Start(const ModuleProcessOptions& options) {
    auto proxy = std::make_unique<Proxy>(options);
    if (auto begun = proxy->Begin(); !begun) return begun.Error();
    return std::unique_ptr<ModuleProcess>(std::move(proxy));
}

}  // namespace umbrant::host

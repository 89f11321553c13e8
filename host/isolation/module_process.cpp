// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/module_process.h"

#include <atomic>
#include <utility>

#include "host/isolation/module_conversation.h"
#include "host/isolation/module_messages.h"
#include "host/isolation/pixel_blocks.h"
#include "host/isolation/session_records.h"
#include "host/process/channel.h"
#include "host/process/child_program.h"

namespace umbrant::host {

namespace {

using nlohmann::json;

class Proxy final : public ModuleProcess {
 public:
    explicit Proxy(ModuleProcessOptions options) : options_(std::move(options)), renderer_(options_.session.renderer) {
        if (options_.program.empty()) options_.program = ProgramForChildren();
    }

    ~Proxy() override {
        if (conversation_.IsOpen()) (void)End();
    }

    /// Starts a process and sets the session up in it. The values, and what the panel shows, stay those of before.
    Result<Done> Begin() {
        const auto answer = TRY(conversation_.Begin(options_.program, options_.session));
        return conversation_.Guarded([&]() -> Result<Done> {
            records_.TakeDeclaration(answer);
            records_.TakeRecords(answer);
            return Done{};
        });
    }

    const Registration& Effect() const override { return records_.effect; }
    int Process() const override { return conversation_.Process(); }

    Result<std::unique_ptr<RemoteSession>> StartInstance(const std::optional<SessionOptions>& options) override {
        ModuleProcessOptions same = options_;
        if (options) same.session = *options;
        auto another = std::make_unique<Proxy>(std::move(same));
        TRY(another->Begin());
        another->renderer_ = renderer_.load();
        if (another->records_.params.Count() == records_.params.Count()) another->records_.params = records_.params;
        return std::unique_ptr<RemoteSession>(std::move(another));
    }

    Result<Done> End() override {
        if (!conversation_.IsOpen()) return Done{};
        const auto answer = Do({{"do", "end"}});
        if (!conversation_.IsOpen()) return answer.error();
        // The effect has said all it had to say: how it leaves its process changes nothing.
        conversation_.WaitForEnd();
        if (!answer) return answer.error();
        return Done{};
    }

    Result<std::string> About() override {
        const auto answer = TRY(Do({{"do", "about"}}));
        return answer.value("about", "");
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
        return records_.panel.SetCollapsed(index, collapsed);
    }

    void SetRenderer(UMBRANT_Renderer renderer) override { renderer_ = renderer; }

    Result<PreRendered> PreRender(const FrameRequest& request) override {
        const auto answer = TRY(DoFrame("pre-render", request));
        return conversation_.Guarded([&]() -> Result<PreRendered> {
            return PreRendered{RecordOf<PF_LRect>(answer.at("resultRect")), RecordOf<PF_LRect>(answer.at("maxRect")),
                               answer.at("solid").get<PF_Boolean>(), answer.at("flags").get<PF_RenderOutputFlags>(),
                               CommandsOf(answer.at("frameCommands"))};
        });
    }

    Result<Frame> Render(const FrameRequest& request) override {
        const auto answer = TRY(DoFrame("render", request));
        return conversation_.Guarded([&]() -> Result<Frame> {
            auto output = TRY(conversation_.TakeOutput(answer));
            Frame frame;
            frame.output = std::move(output);
            frame.rect = RecordOf<PF_LRect>(answer.at("resultRect"));
            frame.maxRect = RecordOf<PF_LRect>(answer.at("maxRect"));
            frame.output.Def().origin_x = frame.rect.left;
            frame.output.Def().origin_y = frame.rect.top;
            frame.message = answer.at("message").get<std::string>();
            frame.messageIsError = answer.at("messageIsError").get<bool>();
            frame.commands = CommandsOf(answer.at("frameCommands"));
            frame.suites = answer.at("suites").get<std::vector<std::string>>();
            return frame;
        });
    }

    Result<World> DrawPanel(const RemotePanelOptions& options) override {
        const auto answer = TRY(Do({{"do", "draw panel"},
                                    {"width", options.width},
                                    {"scale", options.scale},
                                    {"light", options.light},
                                    {"effectName", options.effectName}}));
        return conversation_.Guarded([&]() { return conversation_.TakeOutput(answer); });
    }

    ParamSet& Params() override { return records_.params; }
    const PanelState& Panel() const override { return records_.panel; }
    LayerGeometry PanelGeometry() const override {
        return {options_.session.layerWidth, options_.session.layerHeight, {1, 1}, {1, 1}};
    }
    PF_OutFlags OutFlags() const override { return records_.outFlags; }
    PF_OutFlags2 OutFlags2() const override { return records_.outFlags2; }
    A_u_long EffectVersion() const override { return records_.version; }
    Balance Open() const override { return records_.open; }
    std::vector<std::string> Misbehaviour() const override { return records_.misbehaviour; }
    std::vector<std::string> AcquiredSuites() const override {
        return {records_.acquired.begin(), records_.acquired.end()};
    }
    std::vector<std::string> RefusedSuites() const override {
        return {records_.refused.begin(), records_.refused.end()};
    }
    std::vector<CommandRecord> Commands() const override { return records_.commands; }

    std::optional<Activity> Now() const override { return conversation_.Now(); }

 private:
    Result<json> Do(json request) {
        if (!conversation_.IsOpen()) return Failure{ErrorKind::kEffect, "the module's process has ended"};
        Parcel parcel;
        request["values"] = ValuesJson(records_.params);
        parcel.content = std::move(request);
        auto answer = conversation_.Exchange(std::move(parcel), nullptr);
        if (!answer) return answer;
        return conversation_.Guarded([&]() -> Result<json> {
            records_.TakeRecords(*answer);
            return std::move(*answer);
        });
    }

    Result<Done> DoPanelCommand(json request) {
        const auto answer = TRY(Do(std::move(request)));
        return conversation_.Guarded([&]() -> Result<Done> {
            SetValues(answer.at("values"), records_.params);
            return Done{};
        });
    }

    Result<json> DoFrame(const char* what, const FrameRequest& request) {
        if (!request.layer || request.layer->IsNull()) {
            return Failure{ErrorKind::kInternal, "a frame was requested without a layer"};
        }
        TRY(BeginAgain());
        conversation_.ForgetOutput();
        Parcel parcel;
        parcel.content = {{"do", what},
                          {"request", RequestJson(request)},
                          {"values", ValuesJson(records_.params)},
                          {"frameValues", ValuesJson(request.params ? *request.params : records_.params)},
                          {"asksValues", request.valuesAt != nullptr},
                          {"asksLayers", request.layersAt != nullptr}};
        parcel.content["renderer"] = renderer_.load();
        TRY(conversation_.FillLayers(request.layer, request.texture, parcel));
        auto answer = conversation_.Exchange(std::move(parcel), &request);
        if (!answer) return answer;
        return conversation_.Guarded([&]() -> Result<json> {
            records_.TakeRecords(*answer);
            return std::move(*answer);
        });
    }

    /// A new process where the last one has ended.
    Result<Done> BeginAgain() {
        if (conversation_.IsOpen()) return Done{};
        if (auto begun = Begin(); !begun) return begun;
        return panelIsUpdated_ ? UpdateParamsUI() : Result<Done>(Done{});
    }

    ModuleProcessOptions options_;
    std::atomic<UMBRANT_Renderer> renderer_;
    bool panelIsUpdated_ = false;
    SessionRecords records_;
    ModuleConversation conversation_{options_.module, records_};
};

}  // namespace

Result<std::unique_ptr<ModuleProcess>> ModuleProcess::Start(const ModuleProcessOptions& options) {
    auto proxy = std::make_unique<Proxy>(options);
    TRY(proxy->Begin());
    return std::unique_ptr<ModuleProcess>(std::move(proxy));
}

}  // namespace umbrant::host

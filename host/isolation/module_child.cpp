// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// One request at a time, on the thread on which the module was loaded. Whatever the module does to this process, the
// program hears of it by the socket's end, and reads from the status page where it happened.

#include "host/isolation/module_child.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <list>
#include <mutex>
#include <new>
#include <string_view>
#include <utility>

#include "host/compositing/copy_world.h"
#include "host/compositing/memory_shortage.h"
#include "host/isolation/child_conversation.h"
#include "host/isolation/module_messages.h"
#include "host/panel/panel_picture.h"
#include "host/process/channel.h"
#include "host/process/child_program.h"
#include "host/process/shared_memory.h"

namespace umbrant::host {

namespace {

using nlohmann::json;

/// What the thread that watches the parent reads.
struct Watched {
    std::mutex mutex;
    const EffectSession* session = nullptr;
    ModuleStatus* status = nullptr;
};
// Kept: never destroyed, as the thread runs until the process ends.
Watched& TheWatched() {
    static Watched* watched = new Watched;
    return *watched;
}

void NoteStage() {
    Watched& watched = TheWatched();
    const std::lock_guard lock(watched.mutex);
    if (!watched.session || !watched.status) return;
    if (const auto activity = watched.session->Now()) watched.status->stage = static_cast<int>(activity->stage);
}

/// A module that calls exit ends here.
void EndAtOnce(int status, void*) {
    EndChild(status);
}

class ModuleServer {
 public:
    explicit ModuleServer(int socket) : program_(socket) {}

    /// Answers requests until the session ends or the other end is gone.
    void Run() {
        for (;;) {
            const json request = program_.Receive();
            json answer;
            try {
                answer = Serve(request);
            } catch (const std::bad_alloc&) {
                answer = Refused(NotEnoughMemory("the module's process"));
            } catch (const std::exception& problem) {
                answer = Refused({ErrorKind::kInternal, std::string("the module's process failed: ") + problem.what()});
            }
            program_.Send(answer);
            if (ended_) EndChild(0);
        }
    }

 private:
    static json Refused(const Failure& failure) { return {{"failure", FailureJson(failure)}}; }

    json Serve(const json& request) {
        const auto what = request.at("do").get<std::string>();
        if (what == "open") return Open(request);
        if (!session_) return Refused({ErrorKind::kInternal, "the module's process has no session"});
        if (request.contains("values")) SetValues(request.at("values"), session_->Params());
        if (what == "render") return Render(request);
        if (what == "pre-render") return PreRender(request);
        if (what == "twirl") {
            return WithRecords({{"done", session_->SetTwirl(request.at("row"), request.at("collapsed"))}});
        }
        if (what == "about") {
            const auto about = session_->About();
            return about ? WithRecords({{"about", *about}}) : Refused(about.error());
        }
        if (what == "draw panel") return DrawPanel(request);
        if (what == "update panel") return AfterPanelCommand(session_->UpdateParamsUI());
        if (what == "user changed") return AfterPanelCommand(session_->UserChangedParam(request.at("row")));
        if (what == "end") return EndSession();
        return Refused({ErrorKind::kInternal, "the module's process got the unknown request '" + what + "'"});
    }

    json Open(const json& request) {
        statusBlock_ = program_.Block(request.at("status"));
        if (!statusBlock_ || statusBlock_->Size() < sizeof(ModuleStatus)) {
            return Refused({ErrorKind::kInternal, "the module's process has no status page"});
        }
        status_ = reinterpret_cast<ModuleStatus*>(statusBlock_->Data());
        on_exit(EndAtOnce, nullptr);
        auto module = Module::Load(request.at("module").get<std::string>());
        // Once more, as what is registered last is called first, and the module may have registered something.
        on_exit(EndAtOnce, nullptr);
        if (!module) return Refused(module.error());
        module_ = std::make_unique<Module>(std::move(*module));
        status_->phase = ModuleStatus::kBetween;

        SessionOptions options = OptionsOf(request.at("options"));
        options.beforeCommand = [this](const CommandArguments& arguments) {
            status_->command = arguments.command;
            status_->stage = static_cast<int>(RenderStage::kUpload);
            status_->begin = std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
            status_->phase = ModuleStatus::kInCommand;
        };
        options.afterCommand = [this](const CommandArguments&, PF_Err) { status_->phase = ModuleStatus::kBetween; };
        options.makeOutput = [this](int width, int height, Depth depth) {
            return program_.MakeOutput(width, height, depth);
        };
        auto session = EffectSession::Start(*module_, std::move(options));
        if (!session) return Refused(session.error());
        session_.emplace(std::move(*session));
        Watch(&*session_);
        return WithRecords({{"effect", RegistrationJson(module_->Effect())},
                            {"declaration", DeclarationJson(session_->Params())},
                            {"values", ValuesJson(session_->Params())},
                            {"outFlags", session_->OutFlags()},
                            {"outFlags2", session_->OutFlags2()},
                            {"version", session_->EffectVersion()}});
    }

    void Watch(const EffectSession* session) {
        Watched& watched = TheWatched();
        const std::lock_guard lock(watched.mutex);
        watched.session = session;
        watched.status = status_;
    }

    json EndSession() {
        Watch(nullptr);
        const auto ended = session_->End();
        json answer = ended ? json::object() : Refused(ended.error());
        answer = WithRecords(std::move(answer));
        session_.reset();
        status_->phase = ModuleStatus::kUnloads;
        module_.reset();
        ended_ = true;
        return answer;
    }

    json AfterPanelCommand(const Result<Done>& done) {
        if (!done) return WithRecords(Refused(done.error()));
        return WithRecords({{"values", ValuesJson(session_->Params())}});
    }

    /// What the session knows besides, as the program sees it after every request.
    json WithRecords(json answer) {
        if (!session_) return answer;
        const std::vector<std::string> sentences = session_->Misbehaviour();
        answer["misbehaviour"] =
            std::vector<std::string>(sentences.begin() + static_cast<std::ptrdiff_t>(sentencesSent_), sentences.end());
        sentencesSent_ = sentences.size();
        answer["acquired"] = session_->AcquiredSuites();
        answer["refused"] = session_->RefusedSuites();
        answer["open"] = BytesOf(session_->Open());
        answer["commands"] = CommandsJson(session_->Commands());
        answer["panel"] = PanelJson(session_->Panel().Rows());
        answer["optionsButton"] = session_->Panel().OptionsButton();
        return answer;
    }

    // Frames.

    /// A request with the worlds and answers that it needs for its length.
    struct Asked {
        FrameRequest request;
        std::list<World> worlds;
        std::optional<ParamSet> params;
    };

    void Fill(Asked& asked, const json& message) {
        session_->SetRenderer(message.at("renderer").get<UMBRANT_Renderer>());
        asked.request = RequestOf(message.at("request"));
        asked.request.layer = program_.WorldFrom(message.at("layer"), asked.worlds);
        if (message.contains("texture"))
            asked.request.texture = program_.WorldFrom(message.at("texture"), asked.worlds);
        asked.params = session_->Params();
        SetValues(message.at("frameValues"), *asked.params);
        asked.request.params = &*asked.params;
        if (message.at("asksValues")) {
            asked.request.valuesAt = [this, &asked](const Moment& moment) {
                ParamSet values = *asked.params;
                SetValues(program_.Ask({{"ask", "values"}, {"moment", BytesOf(moment)}}).at("values"), values);
                return values;
            };
        }
        if (message.at("asksLayers")) {
            asked.request.layersAt = [this, &asked](const Moment& moment) { return LayersAt(moment, asked.worlds); };
        }
    }

    Result<MomentLayers> LayersAt(const Moment& moment, std::list<World>& worlds) {
        const json answer = program_.Ask({{"ask", "layers"}, {"moment", BytesOf(moment)}});
        if (answer.contains("failure")) return ReadFailure(answer.at("failure"));
        MomentLayers layers;
        layers.layer = program_.WorldFrom(answer.at("layer"), worlds);
        layers.layerWidth = answer.at("width");
        layers.layerHeight = answer.at("height");
        if (answer.contains("texture")) layers.texture = program_.WorldFrom(answer.at("texture"), worlds);
        return layers;
    }

    json PreRender(const json& message) {
        Asked asked;
        Fill(asked, message);
        const auto answer = session_->PreRender(asked.request);
        if (!answer) return WithRecords(Refused(answer.error()));
        return WithRecords({{"resultRect", BytesOf(answer->resultRect)},
                            {"maxRect", BytesOf(answer->maxRect)},
                            {"solid", answer->solid},
                            {"flags", answer->flags},
                            {"frameCommands", CommandsJson(answer->commands)}});
    }

    json Render(const json& message) {
        Asked asked;
        Fill(asked, message);
        program_.ForgetOutput();
        auto frame = session_->Render(asked.request);
        if (!frame) return WithRecords(Refused(frame.error()));
        return WithRecords({{"output", BytesOf(FactsOf(frame->output, program_.OutputBlock()))},
                            {"resultRect", BytesOf(frame->rect)},
                            {"maxRect", BytesOf(frame->maxRect)},
                            {"message", frame->message},
                            {"messageIsError", frame->messageIsError},
                            {"frameCommands", CommandsJson(frame->commands)},
                            {"suites", frame->suites}});
    }

    json DrawPanel(const json& message) {
        PanelPictureOptions options;
        options.width = message.at("width");
        options.scale = message.at("scale");
        options.theme = message.at("light") ? &kLightTheme : &kDarkTheme;
        options.effectName = message.at("effectName");
        const auto picture = host::DrawPanel(*session_, options);
        if (!picture) return WithRecords(Refused(picture.error()));
        const World& pixels = picture->pixels;
        World shared = program_.MakeOutput(pixels.Width(), pixels.Height(), pixels.PixelDepth());
        if (shared.IsNull()) {
            return Refused(NotEnoughMemory("an image of the panel", pixels.Width(), pixels.Height(), Depth::k8));
        }
        CopyWorld(&pixels.Def(), &shared.Def(), nullptr, nullptr);
        return WithRecords({{"output", BytesOf(FactsOf(shared, program_.OutputBlock()))}});
    }

    ChildConversation program_;
    std::shared_ptr<SharedMemory> statusBlock_;
    ModuleStatus* status_ = nullptr;
    std::unique_ptr<Module> module_;
    std::optional<EffectSession> session_;
    std::size_t sentencesSent_ = 0;
    bool ended_ = false;
};

}  // namespace

std::optional<int> RunModuleProcess(int argc, const char* const* argv) {
    if (argc != 2 || std::string_view(argv[1]) != kModuleProcessArgument) return std::nullopt;
    struct stat status {};
    if (fstat(kChildSocket, &status) != 0 || !S_ISSOCK(status.st_mode)) return std::nullopt;
    // Programs that the module starts are no part of the conversation.
    fcntl(kChildSocket, F_SETFD, FD_CLOEXEC);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    EndWithParent(kChildSocket, NoteStage);
    ModuleServer(kChildSocket).Run();
    return 0;
}

}  // namespace umbrant::host

// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/preview.h"

#include <fmt/format.h>

#include <charconv>
#include <filesystem>
#include <future>
#include <map>
#include <new>
#include <optional>
#include <thread>
#include <utility>

#include "host/http/new_http_server.h"
#include "host/preview/draw_request.h"
#include "host/preview/layer_json.h"
#include "host/preview/page_files.h"
#include "host/preview/panel_json.h"

namespace umbrant::host {

namespace {

/// The events of one page, which is connected while this lives.
class EventStream : public HttpStream {
 public:
    EventStream(std::shared_ptr<ClientTable> clients, int client, std::string preset)
        : clients_(std::move(clients)), client_(client), preset_(std::move(preset)), written_(Written()) {}
    ~EventStream() override { clients_->Remove(client_); }
    bool Next(std::string& part) override {
        if (const auto now = Written(); now != written_) {
            written_ = now;
            clients_->Send(client_, "preset", Bytes({{"name", preset_}}));
        }
        return clients_->TakeEvents(client_, part);
    }

 private:
    /// When the preset was written; an editor removes it for a moment.
    std::filesystem::file_time_type Written() const {
        std::error_code error;
        const auto written = std::filesystem::last_write_time(preset_, error);
        return error ? written_ : written;
    }

    const std::shared_ptr<ClientTable> clients_;
    const int client_;
    const std::string preset_;
    std::filesystem::file_time_type written_{};
};

/// A request's field as a number; nothing for anything else.
std::optional<int> NumberIn(const HttpRequest& request, const std::string& name) {
    const std::string& text = request.Field(name);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

HttpReply NoSuchPage() {
    return Refusal(404, "There is no such address in this preview.");
}

HttpReply Ending() {
    return Refusal(503, "The preview is ending.");
}

HttpReply RefusedByServer(int status) {
    if (status == 413) {
        return Refusal(
            413, fmt::format("The file is larger than {} MiB; `umbrant render` draws it.", kMostUploadBytes >> 20));
    }
    if (status == 503) return Refusal(503, "There is not enough memory for this.");
    return Refusal(status < 400 ? 400 : status, "The request is not one that the page sends.");
}

/// The name of a file that the page sends, for messages: without folders and control characters.
std::string ShownName(const std::string& name, const char* nameless = "image") {
    std::string shown = name.substr(name.find_last_of('/') + 1).substr(0, 200);
    for (char& letter : shown) {
        if (static_cast<unsigned char>(letter) < ' ') letter = '_';
    }
    return shown.empty() ? nameless : shown;
}

HttpReply LayerReply(const Result<std::shared_ptr<PreviewLayer>>& layer) {
    if (!layer) return Refusal(422, layer.error().sentence);
    return {200, "application/json", Bytes(LayerJson(**layer))};
}

}  // namespace

Result<std::unique_ptr<Preview>> Preview::Create(PreviewOptions options) {
    std::unique_ptr<Preview> preview(new Preview(std::move(options)));
    const ShotOptions& shot = preview->options_.shot;
    preview->layer_ = TRY(preview->FirstLayer(preview->options_.input, shot.inputMoves, false));
    preview->texture_ = TRY(preview->FirstLayer(preview->options_.texture, shot.textureMoves, true));
    HttpHandlers handlers;
    handlers.check = [self = preview.get()](const HttpRequest& request) { return self->access_->Check(request); };
    handlers.answer = [self = preview.get()](const HttpRequest& request) { return self->Answer(request); };
    handlers.refuse = RefusedByServer;
    handlers.headers = SafetyHeaders();
    handlers.mostBytes = kMostUploadBytes;
    preview->server_ = TRY(NewHttpServer(preview->options_.port, handlers));
    preview->access_.emplace(NewToken(), preview->server_->Port());
    return preview;
}

Preview::Preview(PreviewOptions options) : options_(std::move(options)) {}

Preview::~Preview() = default;

Result<std::shared_ptr<PreviewLayer>> Preview::FirstLayer(const std::string& path, bool isMoving, bool isTexture) {
    if (path.empty()) return std::shared_ptr<PreviewLayer>();
    if (!isMoving) return layers_.AddFile(path);
    auto first = TRY(engine_.FirstImage(isTexture));
    return layers_.AddMoving(path, std::move(first));
}

Result<Done> Preview::Run(const std::function<void()>& ready) {
    TRY(engine_.Begin(layer_.get(), texture_.get()));
    std::jthread serving([this] { server_->Serve(); });
    ready();
    for (;;) {
        ClientTable::Work work = clients_->Next(options_.idle);
        if (auto* task = std::get_if<ClientTable::Task>(&work)) {
            (*task)();
        } else if (const auto* request = std::get_if<DrawRequest>(&work)) {
            engine_.Draw(*request);
        } else {
            break;
        }
    }
    // Streams and waiting requests end first; the server waits for them.
    clients_->Stop();
    server_->Stop();
    serving.join();
    return engine_.End();
}

HttpReply Preview::Answer(const HttpRequest& request) {
    const std::string_view path = access_->PathOf(request);
    return request.method == "POST" ? Post(path, request) : Get(path, request);
}

HttpReply Preview::Get(std::string_view path, const HttpRequest& request) {
    if (path == "events") return Events();
    if (path == "frame") return Frame(request);
    if (path == "pixel") return Pixel(request);
    if (path == "panel") {
        return OnDrawingThread([this] { return engine_.Describe(); });
    }
    if (path == "original") {
        DrawRequest asked;
        asked.layer = NumberIn(request, "layer").value_or(0);
        asked.frames = request.Field("frames");
        asked.rate = request.Field("rate");
        asked.frame = NumberIn(request, "frame").value_or(0);
        return OnDrawingThread([this, asked] { return engine_.Original(asked); });
    }
    if (path == "row") {
        const int index = NumberIn(request, "index").value_or(0);
        const int scale = request.Field("scale") == "2" ? 2 : 1;
        const bool isLight = request.Field("theme") == "light";
        return OnDrawingThread([=, this] { return engine_.DrawRow(index, isLight, scale); });
    }
    if (path == "presets") return Presets();
    const PageFile* file = FindPageFile(path);
    if (!file) return NoSuchPage();
    return {200, std::string(file->type), std::string(file->bytes)};
}

HttpReply Preview::Post(std::string_view path, const HttpRequest& request) {
    if (path == "draw") return SubmitRequest(request);
    if (path == "layer") return TakeLayer(request);
    if (path == "example") return TakeExample(request.Field("name"));
    if (path == "restart") {
        engine_.EndModuleThatDraws();
        return OnDrawingThread([this] { return engine_.Restart(); });
    }
    if (path == "press") {
        const auto values = ReadDrawRequest(request.body);
        if (!values) return Refusal(400, values.error().sentence);
        return OnDrawingThread(
            [this, values = *values, button = request.Field("row")] { return engine_.Press(values, button); });
    }
    if (path == "load") {
        return OnDrawingThread([this, name = ShownName(request.Field("name"), "preset"), text = request.body] {
            return engine_.LoadPreset(name, text);
        });
    }
    if (path == "named") {
        return OnDrawingThread([this, name = request.Field("name")] { return engine_.LoadNamedPreset(name); });
    }
    if (path == "reload") {
        return OnDrawingThread([this] { return engine_.ReloadPreset(); });
    }
    return PostAboutRequest(path, request);
}

HttpReply Preview::PostAboutRequest(std::string_view path, const HttpRequest& request) {
    using Answering = HttpReply (PreviewEngine::*)(const DrawRequest&);
    static const std::map<std::string_view, Answering> answers = {
        {"timeline", &PreviewEngine::Timeline},  {"curves", &PreviewEngine::Curves},
        {"preset", &PreviewEngine::SavePreset},  {"render", &PreviewEngine::RenderFile},
        {"canvas", &PreviewEngine::CanvasOfAll}, {"covers", &PreviewEngine::CanvasOfOne},
    };
    const auto answer = answers.find(path);
    if (answer == answers.end()) return NoSuchPage();
    const auto asked = ReadDrawRequest(request.body);
    if (!asked) return Refusal(400, asked.error().sentence);
    return OnDrawingThread([this, asked = *asked, answer = answer->second] { return (engine_.*answer)(asked); });
}

HttpReply Preview::Presets() const {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    if (options_.presets) {
        const auto presets = options_.presets();
        if (!presets) return Refusal(500, presets.error().sentence);
        for (const OfferedPreset& preset : *presets)
            list.push_back({{"name", preset.name}, {"isYours", preset.isUsers}});
    }
    return {200, "application/json", Bytes({{"presets", list}})};
}

HttpReply Preview::Events() {
    const auto client = clients_->Add();
    if (!client) return Refusal(503, fmt::format("{} pages are open already; close one of them.", kMostClients));
    auto stream = std::make_shared<EventStream>(clients_, *client, options_.preset);
    clients_->Send(*client, "hello", Bytes({{"client", *client}}));
    return {200, "text/event-stream", "", nullptr, std::move(stream)};
}

HttpReply Preview::SubmitRequest(const HttpRequest& request) {
    auto drawn = ReadDrawRequest(request.body);
    if (!drawn) return Refusal(400, drawn.error().sentence);
    if (!clients_->Submit(std::move(*drawn))) return Refusal(409, "The page is not connected; load it again.");
    return {202, "application/json", "{}"};
}

HttpReply Preview::Frame(const HttpRequest& request) const {
    const auto frame =
        clients_->FrameOf(NumberIn(request, "client").value_or(0), NumberIn(request, "frame").value_or(0));
    if (!frame) return Refusal(410, "A newer frame has replaced this one.");
    return {200, "application/octet-stream", "", frame->pixels};
}

HttpReply Preview::Pixel(const HttpRequest& request) const {
    const auto frame =
        clients_->FrameOf(NumberIn(request, "client").value_or(0), NumberIn(request, "frame").value_or(0));
    if (!frame || !frame->exact) return Refusal(410, "A newer frame has replaced this one.");
    const World& world = *frame->exact;
    const int x = NumberIn(request, "x").value_or(-1);
    const int y = NumberIn(request, "y").value_or(-1);
    if (x < 0 || y < 0 || x >= world.Width() || y >= world.Height()) {
        return Refusal(400, "The pixel is outside of the frame.");
    }
    const auto& pixel = reinterpret_cast<const PF_PixelFloat*>(world.Row(y))[x];
    // JSON has no infinite numbers: texts have.
    nlohmann::ordered_json channels = nlohmann::ordered_json::array();
    for (const float channel : {pixel.red, pixel.green, pixel.blue, pixel.alpha}) {
        channels.push_back(fmt::format("{}", channel));
    }
    return {200, "application/json", Bytes({{"rgba", channels}})};
}

HttpReply Preview::TakeLayer(const HttpRequest& request) {
    return LayerReply(layers_.AddBytes(ShownName(request.Field("name")), request.body));
}

HttpReply Preview::TakeExample(const std::string& name) {
    const PageFile* file = FindPageFile(name);
    if (!file || file->type != "image/png") return NoSuchPage();
    return LayerReply(layers_.AddBytes(name, std::string(file->bytes)));
}

HttpReply Preview::OnDrawingThread(std::function<HttpReply()> step) {
    auto task = std::make_shared<std::packaged_task<HttpReply()>>(std::move(step));
    std::future<HttpReply> reply = task->get_future();
    clients_->Post([task] { (*task)(); });
    // Its queue alone is to own it, so that this does not wait for a task that was dropped.
    task.reset();
    try {
        return reply.get();
    } catch (const std::future_error&) {
        return Ending();
    }
}

}  // namespace umbrant::host

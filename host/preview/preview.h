// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A page in the browser that shows a layer with the effect, and the effect's panel. The server's threads take what the
// page sends; the thread that calls Run draws.

#include <memory>
#include <string>

#include "host/http/http_server.h"
#include "host/preview/access.h"
#include "host/preview/client_table.h"
#include "host/preview/engine/preview_engine.h"
#include "host/preview/layer_store.h"
#include "host/preview/preview_options.h"
#include "host/result.h"

namespace umbrant::host {

class Preview {
 public:
    /// Reads the layer and the texture and binds the port. Fails as ReadPicture and NewHttpServer do.
    static Result<std::unique_ptr<Preview>> Create(PreviewOptions options);
    ~Preview();
    Preview(const Preview&) = delete;
    Preview& operator=(const Preview&) = delete;

    /// What the browser is to open.
    std::string Address() const { return access_->Address(); }

    /// Sets the effect up and serves until Stop is called or nobody is there any more. Calls `ready` when pages can be
    /// loaded. Fails as the effect's set-up does, as long as that is not a page's matter.
    Result<Done> Run(const std::function<void()>& ready);
    /// From any thread.
    void Stop() { clients_->Stop(); }

 private:
    explicit Preview(PreviewOptions options);
    /// Null without a path. Fails as LayerStore and PreviewEngine::FirstImage do.
    Result<std::shared_ptr<PreviewLayer>> FirstLayer(const std::string& path, bool isMoving, bool isTexture);
    std::optional<HttpReply> Check(const HttpRequest& request) const;
    HttpReply Answer(const HttpRequest& request);
    HttpReply Get(std::string_view path, const HttpRequest& request);
    HttpReply Post(std::string_view path, const HttpRequest& request);
    HttpReply PostAboutRequest(std::string_view path, const HttpRequest& request);
    /// The names of the presets that can be loaded.
    HttpReply Presets() const;
    HttpReply Events();
    HttpReply SubmitRequest(const HttpRequest& request);
    HttpReply Frame(const HttpRequest& request) const;
    HttpReply Pixel(const HttpRequest& request) const;
    HttpReply TakeLayer(const HttpRequest& request);
    HttpReply TakeExample(const std::string& name);
    /// Has `step` called by the thread that draws, and waits for its reply.
    HttpReply OnDrawingThread(std::function<HttpReply()> step);

    const PreviewOptions options_;
    const std::shared_ptr<ClientTable> clients_ = std::make_shared<ClientTable>();
    LayerStore layers_;
    PreviewEngine engine_{options_, *clients_, layers_};
    std::shared_ptr<PreviewLayer> layer_;
    std::shared_ptr<PreviewLayer> texture_;
    std::unique_ptr<HttpServer> server_;
    std::optional<Access> access_;
};

}  // namespace umbrant::host

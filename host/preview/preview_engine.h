// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Draws what pages ask for, with one instance of the effect. Its values are those of a request and nothing else, so a
// frame does not depend on what was drawn before. One thread, except for EndModuleThatDraws.

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "host/http/http_server.h"
#include "host/preview/client_table.h"
#include "host/preview/draft_size.h"
#include "host/preview/layer_store.h"
#include "host/preview/preview_options.h"
#include "host/render/frame_pixels.h"

namespace umbrant::host {

class PreviewEngine {
 public:
    PreviewEngine(const PreviewOptions& options, ClientTable& clients, LayerStore& layers)
        : options_(options), clients_(clients), layers_(layers) {}

    /// Sets the effect up for the layer, and reads the values with which the page begins.
    Result<Done> Begin(const PreviewLayer* layer, const PreviewLayer* texture);
    /// Draws a frame and sends its page what became of it.
    void Draw(const DrawRequest& request);
    /// Ends the effect's session.
    Result<Done> End();

    /// What a page needs first: the effect, its rows, the values and layers to begin with.
    HttpReply Describe() const;
    /// The layer without the effect, in full size: rows of red, green, blue, alpha in 8 bits; straight.
    HttpReply Original(int number);
    /// The rows that the effect draws itself, as a PNG file: row `index` in the dark or light theme.
    HttpReply DrawRow(int index, bool isLight, int scale);
    /// Presses a button, with these values; the reply has the values that differ from the defaults then.
    HttpReply Press(const DrawRequest& values, const std::string& button);
    /// Ends the process of a module that draws at this moment, because it does not answer. Any thread.
    void EndModuleThatDraws();
    /// Sets an effect up again whose process has ended.
    HttpReply Restart();

 private:
    Result<Done> Open(int layerWidth, int layerHeight);
    Result<Done> SetValues(const DrawRequest& request);
    Result<Done> DrawFrame(const DrawRequest& request);
    Result<Drawn> Render(PreviewLayer& layer, PreviewLayer* texture, int downsample);
    void SendFrame(const DrawRequest& request, const PreviewLayer& layer, int downsample, Drawn drawn, double took);
    /// Notes which process may be ended from now on; 0 for none.
    void NoteProcess(int process);
    /// Forgets a session whose process has ended. Returns whether there is none.
    bool IsGone();

    const PreviewOptions& options_;
    ClientTable& clients_;
    LayerStore& layers_;
    std::optional<PreviewEffect> effect_;
    ParamSet defaults_;
    int layerWidth_ = 0;  ///< what the effect is set up for
    int layerHeight_ = 0;
    DraftSize draft_;
    std::string row_;  ///< the row whose value was refused last
    std::int64_t frames_ = 0;
    std::mutex processMutex_;
    int process_ = 0;
    std::atomic<bool> wasEnded_{false};  ///< by EndModuleThatDraws
    std::string first_;                  ///< the values and layers to begin with, as JSON
};

}  // namespace umbrant::host

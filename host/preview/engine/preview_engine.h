// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Draws what pages ask for, with one instance of the effect. Its values are those of a request and nothing else, so a
// frame does not depend on what was drawn before. One thread, except for EndModuleThatDraws.

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "host/http/http_server.h"
#include "host/preview/client_table.h"
#include "host/preview/draft_size.h"
#include "host/preview/layer_store.h"
#include "host/preview/preview_options.h"
#include "host/preview/time/shots.h"
#include "host/render/frame_pixels.h"
#include "host/render/frame_request.h"

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

    /// The first frame of the sequence or clip that the input or the texture is. Before Begin. Fails as Shots does.
    Result<Picture> FirstImage(bool isTexture);

    /// What a page needs first: the effect, its rows, the values and layers to begin with.
    HttpReply Describe() const;
    /// The layer of a request without the effect, in full size: rows of red, green, blue, alpha in 8 bits; straight.
    HttpReply Original(const DrawRequest& request);
    /// The rows that the effect draws itself, as a PNG file: row `index` in the dark or light theme.
    HttpReply DrawRow(int index, bool isLight, int scale);
    /// Presses a button, with these values; the reply has the values that differ from the defaults then.
    HttpReply Press(const DrawRequest& values, const std::string& button);
    /// The frames of a request's timeline, in rising order, and how many there are a second.
    HttpReply Timeline(const DrawRequest& request);
    /// The curves of what moves, over a request's timeline.
    HttpReply Curves(const DrawRequest& request);
    /// The values and keyframes of a request, as a preset's file.
    HttpReply SavePreset(const DrawRequest& request);
    /// What a preset's file has: values that differ from the defaults, keyframes, and their frames.
    HttpReply LoadPreset(const std::string& name, const std::string& text);
    /// The same of a preset that the page was offered.
    HttpReply LoadNamedPreset(const std::string& name);
    /// The same of the preset that the command line names, and the other values that it gives, read again.
    HttpReply ReloadPreset();
    /// A frame in full quality, as the bytes of the image file that `umbrant render` writes.
    HttpReply RenderFile(const DrawRequest& request);
    /// What the files of all frames cover in the full-size layer, as the request of each of them has it.
    HttpReply CanvasOfAll(const DrawRequest& request);
    /// What a single frame covers.
    HttpReply CanvasOfOne(const DrawRequest& request);
    /// Ends the process of a module that draws at this moment, because it does not answer. Any thread.
    void EndModuleThatDraws();
    /// Sets an effect up again whose process has ended.
    HttpReply Restart();

 private:
    /// What a frame is made of. The worlds of the layers stay until the next frame.
    struct Scene {
        std::shared_ptr<PreviewLayer> layer;  ///< of the request, then the frame's own; null for none
        std::shared_ptr<PreviewLayer> texture;
        ShotMoment moment{};  ///< nothing for a single image
        bool isMoving() const { return moment.plan != nullptr; }
    };

    Result<Done> Open(int layerWidth, int layerHeight);
    Result<const Animation*> AnimationOf(const DrawRequest& request);
    /// Sets the values of a request, as they are at a moment.
    Result<Done> SetValues(const DrawRequest& request, const ShotMoment& moment);
    AnimationClock ClockOf(const ShotMoment& moment) const;
    /// Finds the images and the frame of a request, and sets the effect up for them. Its values are not set yet.
    Result<Scene> SceneOf(const DrawRequest& request);
    /// Replaces a sequence by its image.
    Result<Done> ReadImages(Scene& scene);
    Result<Done> DrawFrame(const DrawRequest& request);
    Result<Drawn> Render(const Scene& scene, const CanvasChoice& canvas, int downsample);
    Result<CanvasChoice> CanvasFor(const DrawRequest& request) const;
    FrameSettings SettingsFor(const CanvasChoice& canvas, int downsample) const;
    void SendFrame(const DrawRequest& request, const PreviewLayer& layer, int downsample, Drawn drawn, double took);
    /// The values and keyframes of a request.
    Result<AnimatedParams> ParamsOf(const DrawRequest& request);
    /// What a file of this scene is drawn with, except for its canvas. Before ReadImages, which replaces names.
    Result<DrawnFile> FileOf(const DrawRequest& request, const Scene& scene);
    /// The rectangle that grows to contain the shadow: of this frame, or of all of the timeline.
    Result<CanvasChoice> GrownCanvas(const Scene& scene, const CanvasChoice& canvas, int downsample, bool ofAll);
    Result<HttpReply> MakeFile(const DrawRequest& request);
    Result<HttpReply> FindCanvas(const DrawRequest& request, bool ofAll);
    Result<nlohmann::ordered_json> BeginningValues();
    nlohmann::ordered_json ValuesJson(const AnimatedParams& params);
    /// Calls `step` as a command that may be ended while it takes; answers its failure.
    HttpReply Guarded(const std::function<Result<HttpReply>()>& step);
    /// Notes which process may be ended from now on; 0 for none.
    void NoteProcess(int process);
    /// Forgets a session whose process has ended. Returns whether there is none.
    bool IsGone();

    const PreviewOptions& options_;
    ClientTable& clients_;
    LayerStore& layers_;
    Shots shots_{options_.shot};
    std::optional<PreviewEffect> effect_;
    ParamSet defaults_;
    std::string keyframes_;  ///< what `animation_` was read from
    Animation animation_;
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

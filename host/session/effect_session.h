// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One instance of an effect from set-up to set-down, driven as a host drives it. Knows no command line and no files:
// worlds in, worlds out.
//
// Set-up, set-down and the panel commands belong on one thread. Render and PreRender may be called from several
// threads at once; each call has its own records.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/accounting/balance.h"
#include "host/accounting/stage_clock.h"
#include "host/compositing/world.h"
#include "host/module/module.h"
#include "host/parameters/param_set.h"
#include "host/result.h"
#include "host/suites/panel_state.h"
#include "host/suites/services.h"
#include "hostapi/aegp_types.h"
#include "hostapi/custom_ui.h"
#include "hostapi/smart_render.h"
#include "hostapi/suites/umbrant_host_suite.h"

namespace umbrant::host {

class RemoteSession;
struct SessionState;

/// What a command is sent with. A hook may change the pointers and what they lead to.
struct CommandArguments {
    PF_Cmd command = PF_Cmd_ABOUT;
    PF_InData* in = nullptr;
    PF_OutData* out = nullptr;
    PF_ParamDef** params = nullptr;
    PF_LayerDef* output = nullptr;
    void* extra = nullptr;
};

/// The identity that the host reports, and the mistakes that it makes on purpose.
struct SessionOptions {
    A_AppID appId = kAppID_AfterEffects;
    A_short apiMajor = 13;
    A_short apiMinor = 28;
    /// The flags that the layer suite answers with.
    AEGP_LayerFlags layerFlags = AEGP_LayerFlag_VIDEO_ACTIVE | AEGP_LayerFlag_EFFECTS_ACTIVE;
    /// The layer's full size, in pixels, that commands outside of frames are about.
    int layerWidth = 1920;
    int layerHeight = 1080;
    /// False hands the effect a null `pica_basicP`.
    bool offerSuites = true;
    /// What SetRenderer starts with: the effect asks for it at set-up already, and loads no driver for the processor.
    UMBRANT_Renderer renderer = UMBRANT_Renderer_ANY;
    /// Asked before every host call with "table.call" ("PF World Suite.PF_NewWorld", "utils.fill",
    /// "interact.checkout_param", "pre-render.checkout_layer", "smart-render.checkout_output") and before a suite is
    /// handed out with "AcquireSuite:name". A non-zero answer makes the call fail with it (a call that returns a
    /// pointer gives null). Called from every thread.
    std::function<PF_Err(std::string_view call)> fault{};
    /// Accounting: every command and host call is written there. Null for none. Outlives the session.
    EventLog* log = nullptr;
    /// Called around every command on the command's thread.
    std::function<void(CommandArguments&)> beforeCommand{};
    std::function<void(const CommandArguments&, PF_Err error)> afterCommand{};
    /// Called for every world that the effect gets or gives back. Called from every thread.
    WorldWatch worldWatch{};
    /// What the effect gives back can no longer be used: suites' tables are guarded, parameter definitions overwritten.
    bool strictLending = false;
    /// Makes the world that a frame is drawn into, its pixels of any value but zero; null when memory cannot be had.
    /// Without it the world is of this process's memory.
    std::function<World(int width, int height, Depth depth)> makeOutput{};
};

/// How much of the plane a frame shows.
enum class Canvas {
    kGrow,   ///< everything that the effect can draw: layer and shadow together
    kLayer,  ///< the layer's frame is what is asked for
};

/// A time of the layer: `value` units of 1/`scale` seconds. `scale` is not 0.
struct Moment {
    A_long value = 0;
    A_u_long scale = 1;
};

/// The pictures of a moment, at the depth and the downsampling of the frame that asks for them.
struct MomentLayers {
    const World* layer = nullptr;  ///< not null
    int layerWidth = 0;            ///< the layer's full size, pixels; 0 takes the world's size
    int layerHeight = 0;
    const World* texture = nullptr;  ///< null for none
};

/// One frame to draw. The worlds must stay as they are until the call returns.
struct FrameRequest {
    /// The layer's pixels, already downsampled; 8, 16 or 32 bits, which is also the frame's depth. Not null; may be
    /// empty (0 x 0).
    const World* layer = nullptr;
    int layerWidth = 0;  ///< the layer's full size, pixels; 0 takes the world's size
    int layerHeight = 0;
    PF_RationalScale downsampleX{1, 1};
    PF_RationalScale downsampleY{1, 1};
    PF_RationalScale pixelAspect{1, 1};  ///< a pixel's width over its height
    /// The picture that every layer parameter of the effect is set to, at the layer's depth; null for none.
    const World* texture = nullptr;
    PF_Point textureOrigin{};  ///< its top-left, in downsampled pixels of the layer
    Canvas canvas = Canvas::kGrow;
    std::optional<PF_LRect> region{};  ///< asks for exactly this rectangle instead, in downsampled pixels of the layer
    A_long time = 0;                   ///< in units of 1/timeScale seconds
    A_long timeStep = 1;
    A_long totalTime = 1;
    A_u_long timeScale = 24;  ///< not 0
    PF_Quality quality = PF_Quality_HI;
    PF_Field field = PF_Field_FRAME;
    const ParamSet* params = nullptr;  ///< values to draw with; null takes the session's
    /// What the effect is answered that asks about another time than `time`; without them every time is like it. Called
    /// during the frame, from any thread, once at a time; the worlds stay until it is drawn. A failure is the frame's.
    std::function<ParamSet(const Moment&)> valuesAt{};
    std::function<Result<MomentLayers>(const Moment&)> layersAt{};
};

/// One command that was sent.
struct CommandRecord {
    PF_Cmd command = PF_Cmd_ABOUT;
    PF_Err error = PF_Err_NONE;
    double milliseconds = 0;
    std::string message;          ///< what the effect left in the return message
    bool messageIsError = false;  ///< it asked for the message to be shown as an error
    Balance balance;              ///< what the command took and did not give back
    StageTimes stages;            ///< how much of `milliseconds` went into the host's own calls, and which
};

/// A command that is under way.
struct Activity {
    PF_Cmd command = PF_Cmd_ABOUT;
    RenderStage stage = RenderStage::kUpload;  ///< of a render
    double milliseconds = 0;                   ///< since it was sent
};

/// What pre-render answered.
struct PreRendered {
    PF_LRect resultRect{};  ///< what a render would deliver, clipped to the request unless extra pixels were announced
    PF_LRect maxRect{};     ///< everything that the effect could draw
    PF_Boolean solid = 0;
    PF_RenderOutputFlags flags = 0;
    std::vector<CommandRecord> commands;
};

/// A drawn frame.
struct Frame {
    World output;         ///< covers `rect`; empty (0 x 0) when there was nothing to draw. Never null
    PF_LRect rect{};      ///< the output's place, in downsampled pixels of the layer
    PF_LRect maxRect{};   ///< everything that the effect could draw
    std::string message;  ///< a message that the effect returned for the user; usually empty
    bool messageIsError = false;
    std::vector<CommandRecord> commands;  ///< in the order in which they were sent
    std::vector<std::string> suites;      ///< acquired for this frame, "name version", sorted
};

/// See the file's head. Move-only.
class EffectSession {
 public:
    /// Global set-up, parameter set-up, sequence set-up and the question for dynamic flags. Fails with
    /// `ErrorKind::kEffect` when the effect returns an error or cannot be driven by this host; what was set up is
    /// then set down again. `module` must outlive the session.
    static Result<EffectSession> Start(const Module& module, SessionOptions options = {});
    /// A session that has sent nothing yet, for who wants to see SetUp fail, or to send commands before it.
    static EffectSession Create(const Module& module, SessionOptions options = {});
    /// What Start does after Create. A session that was ended may be set up again.
    Result<Done> SetUp();
    /// Another instance of the effect that `first` has set up: the same global data, declaration and values, and a
    /// sequence set-up of its own; without `options` those of `first`, and its renderer in any case. `first` must
    /// outlive it, and end after it.
    static Result<EffectSession> StartInstance(const EffectSession& first, std::optional<SessionOptions> options = {});
    /// The session that another process holds; see RemoteSession. Its records are the other process's, as of the last
    /// call that returned. Send, SendEvent, SetUp and the hooks of SessionOptions are not for such a session.
    static EffectSession Over(std::unique_ptr<RemoteSession> remote);
    /// Ends the session when End was not called.
    ~EffectSession();
    EffectSession(EffectSession&&) noexcept;
    EffectSession& operator=(EffectSession&&) noexcept;

    /// Sequence and global set-down (of the first instance), once; later calls do nothing. No render may be under way.
    Result<Done> End();

    /// The effect's about text, as the effect wrote it.
    Result<std::string> About();
    /// Lets the effect bring its panel in line with the current values; see Panel.
    Result<Done> UpdateParamsUI();
    /// Informs the effect that the user changed, or pressed, a row.
    Result<Done> UserChangedParam(int index);
    /// Whether the effect has asked for events of the rows that it draws itself.
    bool WantsPanelEvents() const;
    /// Sends an event of a self-drawn row; the callbacks are filled in here. The effect's answer is in
    /// `event->evt_out_flags`.
    Result<Done> SendEvent(PF_EventExtra* event);
    /// Opens or closes a row's twirl, as the user does. False when there is no such row.
    bool SetTwirl(int index, bool collapsed);

    /// What the effect is to draw with, from its next frame on; an effect that does not ask is not affected. Any
    /// thread.
    void SetRenderer(UMBRANT_Renderer renderer);

    /// Sends any command with any arguments, as no host should need to. Its record is kept like any other's.
    CommandRecord Send(PF_Cmd command, PF_ParamDef* params[], PF_LayerDef* output, void* extra);

    /// Asks what a frame would cover, without drawing it.
    Result<PreRendered> PreRender(const FrameRequest& request);
    /// Draws a frame. With `Canvas::kGrow` the effect is asked about the layer's frame first and then for its whole
    /// max rectangle. Fails with `ErrorKind::kEffect` and the effect's own message and code.
    Result<Frame> Render(const FrameRequest& request);

    ParamSet& Params();
    const ParamSet& Params() const;
    const PanelState& Panel() const;
    /// The geometry in which panel commands see values.
    LayerGeometry PanelGeometry() const;
    PF_OutFlags OutFlags() const;
    PF_OutFlags2 OutFlags2() const;
    A_u_long EffectVersion() const;  ///< packed, as PF_VERSION packs it

    /// What the effect holds at this moment.
    Balance Open() const;
    /// Everything that the effect did wrong so far, one sentence each, in order.
    std::vector<std::string> Misbehaviour() const;
    /// Suites granted and refused so far, "name version", sorted.
    std::vector<std::string> AcquiredSuites() const;
    std::vector<std::string> RefusedSuites() const;
    /// What the effect is doing now; of several commands the one sent first. Nothing when none is under way. May be
    /// asked on any thread while the session lives.
    std::optional<Activity> Now() const;
    /// The commands outside of frames, in order; the last thousand of them.
    std::vector<CommandRecord> Commands() const;

    /// Null for a session of this process.
    RemoteSession* Remote() const { return remote_.get(); }

 private:
    explicit EffectSession(std::unique_ptr<SessionState> state);
    explicit EffectSession(std::unique_ptr<RemoteSession> remote);
    /// One of the two.
    std::unique_ptr<SessionState> state_;
    std::unique_ptr<RemoteSession> remote_;
};

}  // namespace umbrant::host

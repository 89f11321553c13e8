// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What is to be done for a set of frames, decided before the first of them is drawn: which files each is made of, where
// it goes, at which time it is, and which of them need not or cannot be drawn.

#include <optional>
#include <string>
#include <vector>

#include "host/render/frame_source.h"
#include "host/render/plan/frame_numbers.h"
#include "host/result.h"

namespace umbrant::host {

struct PlanRequest {
    std::string input;    ///< a picture or a pattern
    std::string texture;  ///< the same; empty for none
    std::string output;   ///< a picture or a pattern
    /// Frames of a clip that the input is, which are numbered from 0; nothing when it is none.
    std::optional<int> inputClip{};
    std::optional<int> textureClip{};     ///< the texture's
    bool outputIsClip = false;            ///< all frames go into one file
    bool writesNothing = false;           ///< `output` means nothing
    std::vector<std::string> alsoRead{};  ///< other files that are read, such as a preset
    /// The frames; without them all that the input has, or else the texture.
    std::optional<std::vector<FrameNumber>> frames{};
    int inputOffset = 0;    ///< frame f is drawn from the input's frame f + inputOffset
    int textureOffset = 0;  ///< and from the texture's frame f + textureOffset
    MissingFrames missing = MissingFrames::kError;
    bool keepGoing = false;     ///< a frame without a file is one that fails, and does not end everything
    bool skipExisting = false;  ///< a frame whose picture is there is left out
    Chunk chunk{};
    FrameRate rate{};
    int zeroFrame = 0;  ///< the frame at time 0
};

/// A single image at a moment. A path "-" is standard input or output.
struct ImageRequest {
    std::string input;
    std::string texture;  ///< empty for none
    std::string output;
    double seconds = 0;  ///< from -kLongestTime to kLongestTime
    FrameRate rate{};    ///< of the values that move
    int zeroFrame = 0;   ///< their frame at time 0
};

struct PlannedFrame {
    enum class State {
        kDraw,
        kMissing,  ///< `missing` is not there
        kSkipped,  ///< the same, and that is to be so
        kExists,   ///< its picture is there already
    };
    FrameNumber number;
    State state = State::kDraw;
    std::string input;
    std::string texture;  ///< empty for none
    std::string output;
    std::optional<int> inputClipFrame{};    ///< where the input is a clip: which of its frames
    std::optional<int> textureClipFrame{};  ///< the texture's
    std::string missing;                    ///< the file, or the frame of a clip, that is not there: "'in.0007.png'"
    std::string missingReason;              ///< "there is no such file"
    std::optional<int> heldInput{};         ///< the input's frame that replaces a missing one
    std::optional<int> heldTexture{};       ///< the texture's
    bool inputChanges = true;               ///< its input is its own; else others may share it, and it is worth keeping
    bool textureChanges = true;
    A_long time = 0;      ///< in units of 1/rate.scale seconds
    double position = 0;  ///< the frame that values which move are taken at: its number, or for a single image any
};

/// A frame of the whole set.
struct SetFrame {
    FrameNumber number;
    A_long time = 0;  ///< in units of 1/rate.scale seconds
};

struct FramePlan {
    std::vector<SetFrame> wholeSet;    ///< whatever the chunk, and whatever is there already
    bool leavesOutMissing = false;     ///< frames without a file are left out of the set
    std::vector<PlannedFrame> frames;  ///< of the chunk, in the order of drawing
    /// As it was asked for, in a unit that every frame is a whole number of: a set with quarters of frames at 24 frames
    /// a second has 96/4.
    FrameRate rate{};
    double framesPerSecond = 24;  ///< of the values that move
    int zeroFrame = 0;            ///< the frame at time 0
    bool isImage = false;         ///< a single image, which has no number
    A_long totalTime = 1;         ///< up to the end of the last frame of the whole set; at least one step
    std::string output{};         ///< as it was asked for: a picture, a pattern or a clip
    FrameSource input{};          ///< for times that are no frame's
    FrameSource texture{};
};

/// Whether the arguments mean a sequence: frames are given, or the input or the texture is a pattern and no file of
/// that very name exists. Fails with `ErrorKind::kUsage` on a wrong pattern.
Result<bool> MeansSequence(const PlanRequest& request);

/// Makes the plan. Fails with `ErrorKind::kUsage` when many frames would go into one file, when a frame would be
/// written over a file that is read, or when a time is too far off; with `ErrorKind::kFile` when files are missing or
/// the place of the output cannot be written.
Result<FramePlan> PlanFrames(const PlanRequest& request);

/// The plan of a single image: one frame, at the moment's step of 1/24000 second. Looks at no file.
FramePlan PlanImage(const ImageRequest& request);

/// All frames of the set, whatever the chunk, to be divided. Fails as PlanFrames does, except that files may
/// be missing, which may be made before they are needed.
Result<std::vector<FrameNumber>> WholeFrameSet(const PlanRequest& request);

}  // namespace umbrant::host

// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pictures in files. Whatever the file holds, in memory it is one world of straight-alpha pixels; whatever is written
// follows its format's convention. All file formats are known here and nowhere else.

#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "host/compositing/world.h"
#include "host/result.h"

namespace umbrant::host {

/// The metadata of a file: resolution, time code, owner, colour space, ... Defined in this folder only.
struct PictureMetadata;

/// A picture as read. The frame is what a layer made of it shows: from (0, 0) to its width and height.
struct Picture {
    World pixels;       ///< covers `window`; 8 bits when the file has 8 bits or fewer, otherwise float
    PF_LRect window{};  ///< the rectangle of the pixels; the frame itself except in formats with a data window
    int frameWidth = 0;
    int frameHeight = 0;
    PF_Point frameOrigin{};  ///< where the file has the frame's top-left corner; (0, 0) in most
    std::string format;      ///< "png", "tiff", "jpeg", "openexr", ...
    int bits = 8;            ///< bits of a channel in the file
    bool isHalf = false;     ///< the file's channels are 16-bit floats
    std::shared_ptr<const PictureMetadata> metadata;
    std::string note{};          ///< which of the file's parts and channels were left out without being asked for
    std::string metadataNote{};  ///< which of its metadata cannot be kept; both are sentences, empty for nothing
};

/// Which image of a file is read.
struct ReadOptions {
    std::string layer{};  ///< "diffuse" of the channels "diffuse.R", ..., or a channel; empty for the image itself
    std::string part{};   ///< a number from 0, or a name; empty for the first
};

/// Reads an image of a file, or of standard input for the file "-". 16-bit integers and halves become float. Grey
/// becomes three equal channels, a palette its colours; without an alpha channel every pixel is opaque. Premultiplied
/// files (EXR by definition, TIFF where it says so) are divided by their alpha; a pixel of alpha 0 keeps its colour as
/// it is. Values are the file's: no colour conversion. Fails with `ErrorKind::kFile`, also for a deep file, and for one
/// that claims more pixels than can be drawn, which is found out before memory is taken for them; with
/// `ErrorKind::kUsage` when the file has no such layer or part.
Result<Picture> ReadPicture(const std::filesystem::path& file, const ReadOptions& options = {});

/// The same without reading pixels: the picture has its sizes, format and depth, and neither pixels nor metadata. Fails
/// as ReadPicture does, except for what only the pixels show.
Result<Picture> ReadPictureHeader(const std::filesystem::path& file, const ReadOptions& options = {});

/// The same two of a file that is open, from its begin. Its kind is found from its bytes; `name` is for messages.
Result<Picture> ReadOpenPicture(int descriptor, const std::string& name);
Result<Picture> ReadOpenPictureHeader(int descriptor, const std::string& name);

/// Where a picture's pixels belong.
struct Placement {
    PF_LRect window{};   ///< the world's place in the frame
    int frameWidth = 0;  ///< the layer's frame, pixels
    int frameHeight = 0;
    PF_Point frameOrigin{};  ///< what the file is to call the frame's top-left corner
};

/// How a file stores its channels.
enum class FileDepth {
    kAuto,  ///< as the format stores the world's depth
    k8,
    k16,
    kHalf,
    kFloat,
};

/// The depth with that name in --output-depth: "8", "16", "half", "float"; kAuto for any other text.
FileDepth FileDepthNamed(const std::string& name);

/// What the numbers of the colours mean, in the words of files.
struct ColorWords {
    std::string space{};  ///< "sRGB", "Linear", "GammaCorrected"; empty for none of these
    float gamma = 0;      ///< of "GammaCorrected"
    /// x and y of red, green, blue and white; all 0 where nobody knows.
    std::array<float, 8> primaries{};
    bool operator==(const ColorWords&) const = default;
};

/// What a file contains besides the pixels.
struct WriteOptions {
    /// "zip", "piz", "lzw", "jpeg:90", ...; empty keeps the compression of the metadata where the format has it, and
    /// else takes the format's own: zip for EXR and TIFF, "jpeg:95" for JPEG.
    std::string compression{};
    bool half = false;  ///< EXR of a float world: 16-bit floats
    std::shared_ptr<const PictureMetadata> metadata{};
    FileDepth depth = FileDepth::kAuto;
    std::string format{};  ///< "png", "tif", "exr", "jpg": of an output without an extension, for EncodePicture
    std::string recipe{};  ///< in ASCII, at most kMostRecipeBytes; empty for none, also where the metadata has one
    std::optional<ColorWords> colors{};  ///< in place of those of the metadata, whose profile is then left out
};

/// What the output cannot keep of an input's colours, or what other programs take its numbers for, as a sentence; empty
/// for nothing. `colors` are the output's words where the colours are converted; `isConverted` says that they are, or
/// that the user has named their space. `output` and `format` are those of CheckFormat; a clip has no format.
std::string ColorNote(const PictureMetadata* metadata, const std::string& input, const std::string& output,
                      const std::string& format, bool isConverted, const std::optional<ColorWords>& colors);

/// Whether there is a format to write: the extension's or, for the file "-", which is standard output, the one of this
/// name. Fails with `ErrorKind::kFile` or, for a wrong name, `ErrorKind::kUsage`.
Result<Done> CheckFormat(const std::filesystem::path& file, const std::string& name = "");

/// Whether that format has this compression. Fails with `ErrorKind::kUsage` and what it has.
Result<Done> CheckCompression(const std::filesystem::path& file, const std::string& compression,
                              const std::string& name = "");

/// Whether that format can store channels in this depth. Fails with `ErrorKind::kUsage` and what it has.
Result<Done> CheckFileDepth(const std::filesystem::path& file, FileDepth depth, const std::string& name = "");

/// How a file of this name stores the channels of a world of this depth; never kAuto for a format that is known.
FileDepth DepthInFile(const std::filesystem::path& file, Depth depth, const WriteOptions& options);

/// The extensions that WritePicture knows, as a phrase: ".png, .tif, ...".
std::string WritableFormats();

/// Whether a picture could be written there: extension, folder, not a folder itself. For failing before the work is
/// done. Fails with `ErrorKind::kFile`.
Result<Done> CheckWritable(const std::filesystem::path& file);

/// The same without the extension, which may be of something else than a picture.
Result<Done> CheckPlace(const std::filesystem::path& file);

/// Writes a world, whose format is one of the host's, in the format that the extension names:
///   .png        straight; 8 bits, or 16 from a float world; `place` becomes the offset of the first pixel
///   .tif .tiff  straight; 8 bits, or float
///   .exr        premultiplied; half from an 8-bit world or on demand, else float; `place` becomes data and display
///   window .jpg .jpeg  8 bits; has no alpha, so the picture is laid on white, where a shadow shows
/// The file is never incomplete: it is written under a temporary name in its folder and then renamed. A
/// symbolic link stays, and the file that it leads to is replaced; a file that is replaced passes its mode on. The same
/// arguments give the same bytes at any time: the date is the metadata's, else SOURCE_DATE_EPOCH, else there is none.
/// Fails with `ErrorKind::kFile`, also for an empty world.
Result<Done> WritePicture(const std::filesystem::path& file, const World& world, const Placement& place,
                          const WriteOptions& options = {});

/// The same as the bytes of a file in the format that the options name.
Result<std::string> EncodePicture(const World& world, const Placement& place, const WriteOptions& options);

}  // namespace umbrant::host

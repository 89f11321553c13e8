// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What reads and writes one format of files, or many. Inside host/image and host/image_library only.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/image/encoded_file.h"
#include "host/image/image_layout.h"
#include "host/image/picture.h"
#include "host/image/picture_format.h"

namespace umbrant::host {

/// An open image file. No function throws anything but std::bad_alloc; on failure, functions return the reason.
class ImageReader {
 public:
    ImageReader() = default;
    ImageReader(const ImageReader&) = delete;
    ImageReader& operator=(const ImageReader&) = delete;
    virtual ~ImageReader() = default;

    /// "png", "tiff", "openexr", ...
    virtual std::string FormatName() const = 0;
    /// The part that is open; the first, until another is chosen.
    virtual const ImageLayout& Layout() const = 0;

    /// How many parts the file has, as far as that can be known.
    virtual int PartCount() { return 1; }
    /// The name of a part from 0 on; empty for none.
    virtual std::string PartName(int) { return ""; }
    /// Moves to another part; false when there is none.
    virtual bool OpenPart(int part) { return part == 0; }

    /// Whether reading takes so long that it is spread over all cores. Else it starts no thread, which may be the last
    /// that the system gives.
    virtual bool IsSpread() const { return false; }

    /// Reads the channels from `begin` to before `end` of all pixels, row by row from the top: as bytes with
    /// `asBytes`, where the file has them, else as floats. Returns why it could not.
    virtual std::optional<std::string> Read(int begin, int end, bool asBytes, void* values) = 0;
};

/// A file that was opened, or why it was not.
using OpenedImage = std::variant<std::unique_ptr<ImageReader>, std::string>;

/// A file that a codec is to open. The descriptor stays its owner's; the name is another way to the same file.
struct ImageFile {
    int descriptor = -1;
    std::string name;
    std::string format;  ///< detected from the first bytes if the name has no known extension; else empty
};

/// What is written. `values` puts the rows from `begin` to before `end` into a vector, with all channels, as floats.
struct ImageToWrite {
    const Format& format;
    const ImageLayout& layout;
    FileDepth depth;
    std::string compression;
    const World& world;
    std::function<void(int begin, int end, std::vector<float>& values)> values;
};

struct Codec {
    std::string_view name;  ///< of the Format that it writes; empty for all that no other codec writes
    /// Whether it reads this file.
    bool (*reads)(int descriptor);
    OpenedImage (*open)(const ImageFile& file);
    /// Puts the file's bytes into `encoded`. Returns why it could not.
    std::optional<std::string> (*encode)(const ImageToWrite& image, EncodedFile& encoded);
};

/// The codec that reads this file, or why there is none.
std::variant<const Codec*, std::string> CodecToRead(int descriptor);
/// The codec that writes this format, or why there is none.
std::variant<const Codec*, std::string> CodecToWrite(const Format& format);

/// All other formats, by the image library in a shared object of its own, which is loaded now if it is not yet. Or why
/// it cannot be loaded.
std::variant<const Codec*, std::string> LibraryCodec();

}  // namespace umbrant::host

// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// All formats that the image library knows, as the one codec of a shared object: its libraries take longer to load than
// most frames take to draw, so they are loaded with the first image that needs them.

#include "host/image_library/library_codec.h"

#include <OpenImageIO/imageio.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "host/image_library/attribute_conversion.h"
#include "host/image_library/encoded_proxy.h"
#include "host/image_library/library_threads.h"

namespace umbrant::host {

namespace {

/// The file's error message, or a generic reason if there is none.
std::string Message(const std::string& message) {
    return message.empty() ? "the contents are damaged" : message;
}

class LibraryReader : public ImageReader {
 public:
    explicit LibraryReader(std::unique_ptr<OIIO::ImageInput> input) : input_(std::move(input)) { TakeLayout(); }

    std::string FormatName() const override { return input_->format_name(); }
    const ImageLayout& Layout() const override { return layout_; }
    int PartCount() override { return input_->spec().get_int_attribute("oiio:subimages", 1); }
    std::string PartName(int index) override {
        if (input_->spec_dimensions(index).width <= 0) return "";
        return input_->seek_subimage(index, 0) ? input_->spec().get_string_attribute("oiio:subimagename") : "";
    }
    bool OpenPart(int part) override {
        const bool isThere = input_->seek_subimage(part, 0);
        (void)input_->geterror();
        TakeLayout();
        return isThere;
    }
    std::optional<std::string> Read(int begin, int end, bool asBytes, void* values) override {
        const bool read = input_->read_image(input_->current_subimage(), 0, begin, end,
                                             asBytes ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::FLOAT, values);
        // Some readers deliver what they have of a truncated file and only leave a message.
        const std::string message = input_->geterror();
        if (read && message.empty()) return std::nullopt;
        return Message(message);
    }

 private:
    void TakeLayout() { layout_ = LayoutFrom(input_->spec()); }

    std::unique_ptr<OIIO::ImageInput> input_;
    ImageLayout layout_;
};

bool ReadsAll(int) {
    return true;
}

OpenedImage Open(const ImageFile& file) {
    // Without this the library would hand over straight files premultiplied, and rounded.
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    std::unique_ptr<OIIO::ImageInput> input;
    if (file.format.empty()) {
        input = OIIO::ImageInput::open(file.name, &config);
    } else if ((input = OIIO::ImageInput::create(file.format))) {
        OIIO::ImageSpec layout;
        if (!input->open(file.name, layout, config)) return Message(input->geterror());
    }
    if (!input) return Message(OIIO::geterror());
    return std::make_unique<LibraryReader>(std::move(input));
}

/// Lets the library write the image, through `proxy` or, without one, to a file of that name. Returns why it could not.
std::optional<std::string> Encode(const ImageToWrite& image, const OIIO::ImageSpec& layout, const std::string& name,
                                  OIIO::Filesystem::IOProxy* proxy) {
    const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(std::string(image.format.name));
    if (!output) return OIIO::geterror();
    if (proxy && !output->set_ioproxy(proxy)) return output->geterror();
    if (!output->open(name, layout)) return output->geterror();
    // In bands, which take less memory than all values at once. Each is a multiple of every format's own.
    constexpr int kBand = 256;
    std::vector<float> values;
    bool whole = true;
    for (int begin = 0; whole && begin < layout.height; begin += kBand) {
        const int end = std::min(begin + kBand, layout.height);
        image.values(begin, end, values);
        whole = output->write_scanlines(layout.y + begin, layout.y + end, 0, OIIO::TypeDesc::FLOAT, values.data());
    }
    whole = output->close() && whole;
    return whole ? std::nullopt : std::optional(output->geterror());
}

/// The same for TIFF, whose metadata may have a directory of their own, for which the library reads what it wrote, and
/// never through a proxy. The image goes to a file without a place on a disk; where files may not grow, nothing is
/// begun that would not fit: after a failed write the library may not end.
std::optional<std::string> EncodeTiff(const ImageToWrite& image, const OIIO::ImageSpec& layout, EncodedFile& encoded) {
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        OIIO::ImageSpec plain(layout.width, layout.height, layout.nchannels, layout.format);
        plain.attribute("compression", layout.get_string_attribute("compression"));
        std::size_t metadata = 1024;
        for (const OIIO::ParamValue& attribute : layout.extra_attribs) {
            metadata += static_cast<std::size_t>(attribute.datasize()) + 64;
        }
        EncodedFile measured;
        EncodedProxy proxy("measured", measured);
        if (auto problem = Encode(image, plain, "measured", &proxy)) return problem;
        if (measured.Size() + metadata > limit.rlim_cur) return std::strerror(EFBIG);
    }
    const int file = memfd_create("umbrant", MFD_CLOEXEC);
    if (file < 0) return std::strerror(errno);
    auto problem = Encode(image, layout, fmt::format("/dev/fd/{}", file), nullptr);
    if (!problem) encoded.CopyFrom(file);
    close(file);
    return problem;
}

std::optional<std::string> EncodeAny(const ImageToWrite& image, EncodedFile& encoded) {
    const OIIO::ImageSpec layout = SpecOf(image);
    if (image.format.name == "tiff") return EncodeTiff(image, layout, encoded);
    const std::string name(image.format.name);
    EncodedProxy proxy(name, encoded);
    return Encode(image, layout, name, &proxy);
}

}  // namespace

const Codec* UmbrantLibraryCodec() {
    static const Codec codec = [] {
        // The library's debug messages would appear on the standard streams.
        OIIO::attribute("debug", 0);
        PrepareLibraryThreads();
        return Codec{"", ReadsAll, Open, EncodeAny};
    }();
    return &codec;
}

}  // namespace umbrant::host

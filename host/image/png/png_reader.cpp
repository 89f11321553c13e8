// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/png/png_reader.h"

#include <fmt/format.h>
#include <png.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <utility>

#include "host/image/png/latin_text.h"
#include "host/process/files/read_at.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kSignature = 8;

std::uint32_t Number(const unsigned char* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

/// Whether a chunk holds Exif or XMP.
bool IsOfAnotherFormat(int descriptor, off_t at, const char* type) {
    if (std::memcmp(type, "eXIf", 4) == 0) return true;
    if (std::memcmp(type, "iTXt", 4) != 0 && std::memcmp(type, "tEXt", 4) != 0 && std::memcmp(type, "zTXt", 4) != 0) {
        return false;
    }
    constexpr char kXmp[] = "XML:com.adobe.xmp";
    constexpr char kRaw[] = "Raw profile type ";
    char key[sizeof kXmp]{};
    if (ReadAt(descriptor, at, std::as_writable_bytes(std::span(key))) != sizeof key) return false;
    return std::memcmp(key, kXmp, sizeof kXmp) == 0 || std::memcmp(key, kRaw, sizeof kRaw - 1) == 0;
}

/// An open PNG. The functions that libpng jumps out of have nothing that a jump would leave behind.
class PngReader : public ImageReader {
 public:
    explicit PngReader(int descriptor) : descriptor_(dup(descriptor)) {}
    ~PngReader() override {
        if (png_) png_destroy_read_struct(&png_, info_ ? &info_ : nullptr, nullptr);
        if (descriptor_ >= 0) close(descriptor_);
    }

    std::string FormatName() const override { return "png"; }
    const ImageLayout& Layout() const override { return layout_; }

    /// Reads all chunks before the pixels. Returns why it could not.
    std::optional<std::string> Open() {
        if (descriptor_ < 0) return std::strerror(errno);
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, Fail, Ignore);
        if (!png_ || !(info_ = png_create_info_struct(png_))) throw std::bad_alloc();
        png_set_read_fn(png_, this, Take);
        if (!ReadInfo()) return message_;
        TakeLayout();
        return std::nullopt;
    }

    std::optional<std::string> Read(int begin, int end, bool asBytes, void* values) override {
        const auto width = static_cast<std::size_t>(layout_.width);
        const auto height = static_cast<std::size_t>(layout_.height);
        const std::size_t rowBytes = png_get_rowbytes(png_, info_);
        const bool inPlace = asBytes && begin == 0 && end == layout_.ChannelCount();
        // Zeroed by the system page by page: a small file that claims to be large costs nothing.
        const std::unique_ptr<png_byte, decltype(&std::free)> own(
            inPlace ? nullptr : static_cast<png_byte*>(std::calloc(height, rowBytes)), &std::free);
        if (!inPlace && !own) throw std::bad_alloc();
        png_byte* const pixels = inPlace ? static_cast<png_byte*>(values) : own.get();
        std::vector<png_bytep> rows(height);
        for (std::size_t y = 0; y < height; ++y) rows[y] = pixels + y * rowBytes;
        if (!ReadRows(rows.data())) return message_;
        if (inPlace) return std::nullopt;
        for (std::size_t y = 0; y < height; ++y) {
            const std::size_t count = width * static_cast<std::size_t>(end - begin);
            if (layout_.channelBytes == 2) {
                Choose(reinterpret_cast<const std::uint16_t*>(rows[y]), begin, end,
                       static_cast<float*>(values) + y * count, 65535.0f);
            } else if (asBytes) {
                Choose(rows[y], begin, end, static_cast<png_byte*>(values) + y * count, png_byte{1});
            } else {
                Choose(rows[y], begin, end, static_cast<float*>(values) + y * count, 255.0f);
            }
        }
        return std::nullopt;
    }

 private:
    [[noreturn]] static void Fail(png_structp png, png_const_charp message) {
        static_cast<PngReader*>(png_get_error_ptr(png))->message_ = message;
        png_longjmp(png, 1);
    }
    static void Ignore(png_structp, png_const_charp) {}
    static void Take(png_structp png, png_bytep bytes, size_t size) {
        auto& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
        if (!reader.TakeBytes({bytes, size})) png_error(png, reader.shortage_);
    }

    /// Reads larger blocks, because libpng requests a few bytes at a time.
    bool TakeBytes(std::span<png_byte> bytes) {
        while (!bytes.empty()) {
            if (taken_ == filled_) {
                const ssize_t count = ReadAt(descriptor_, at_, std::as_writable_bytes(std::span(block_)));
                if (count <= 0) {
                    shortage_ = count < 0 ? std::strerror(errno) : "the file ends too early";
                    return false;
                }
                at_ += count;
                taken_ = 0;
                filled_ = static_cast<std::size_t>(count);
            }
            const std::size_t count = std::min(bytes.size(), filled_ - taken_);
            std::memcpy(bytes.data(), block_.data() + taken_, count);
            taken_ += count;
            bytes = bytes.subspan(count);
        }
        return true;
    }

    bool ReadInfo() {
        if (setjmp(png_jmpbuf(png_))) return false;
        png_read_info(png_, info_);
        png_set_expand(png_);  // palettes, bits below 8, and the transparent colour
        png_set_interlace_handling(png_);
        if constexpr (std::endian::native == std::endian::little) png_set_swap(png_);
        png_read_update_info(png_, info_);
        return true;
    }

    bool ReadRows(png_bytepp rows) {
        if (setjmp(png_jmpbuf(png_))) return false;
        png_read_image(png_, rows);
        png_read_end(png_, nullptr);
        return true;
    }

    template <typename From, typename To>
    void Choose(const From* from, int begin, int end, To* to, To full) const {
        const int channels = layout_.ChannelCount();
        for (int x = 0; x < layout_.width; ++x, from += channels) {
            for (int channel = begin; channel < end; ++channel) {
                const From value = from[channel];
                if constexpr (std::is_same_v<To, float>) {
                    *to++ = static_cast<float>(value) * (1.0f / full);
                } else {
                    *to++ = value;
                }
            }
        }
    }

    void TakeLayout();
    void TakeColorSpace();
    void TakePlace();
    void TakeTexts();

    const int descriptor_;
    off_t at_ = 0;
    std::array<png_byte, 65536> block_;
    std::size_t taken_ = 0, filled_ = 0;
    const char* shortage_ = "";
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::string message_;
    ImageLayout layout_;
};

void PngReader::TakeLayout() {
    layout_.width = static_cast<int>(png_get_image_width(png_, info_));
    layout_.height = static_cast<int>(png_get_image_height(png_, info_));
    layout_.fullWidth = layout_.width;
    layout_.fullHeight = layout_.height;
    static const std::vector<std::string> kChannels[] = {{"Y"}, {"Y", "A"}, {"R", "G", "B"}, {"R", "G", "B", "A"}};
    layout_.channels = kChannels[png_get_channels(png_, info_) - 1];
    if (layout_.channels.back() == "A") layout_.alphaChannel = layout_.ChannelCount() - 1;
    layout_.channelBytes = png_get_bit_depth(png_, info_) == 16 ? 2 : 1;
    layout_.isStraight = true;
    TakeColorSpace();
    TakeTexts();
    TakePlace();
}

void PngReader::TakeColorSpace() {
    int intent = 0;
    double gamma = 0;
    const bool isTagged = png_get_sRGB(png_, info_, &intent) != 0;
    if (!isTagged && png_get_gAMA(png_, info_, &gamma) && gamma > 0) {
        const auto inverse = static_cast<float>(std::round(100.0 / gamma) / 100.0);
        layout_.SetReal("oiio:Gamma", inverse);
        layout_.SetText("oiio:ColorSpace", inverse == 1.0f ? "linear" : fmt::format("Gamma{:.2g}", inverse));
    } else {
        layout_.SetText("oiio:ColorSpace", "sRGB");
    }
    png_charp name = nullptr;
    png_bytep profile = nullptr;
    png_uint_32 size = 0;
    int method = 0;
    if (png_get_iCCP(png_, info_, &name, &method, &profile, &size)) {
        layout_.SetBytes("ICCProfile", std::as_bytes(std::span(profile, size)));
    }
}

void PngReader::TakePlace() {
    png_uint_32 across = 0, down = 0;
    int unit = 0;
    if (png_get_pHYs(png_, info_, &across, &down, &unit)) {
        const bool isMetre = unit == PNG_RESOLUTION_METER;
        const double scale = isMetre ? 2.54 / 100.0 : 1.0;
        layout_.SetText("ResolutionUnit", isMetre ? "inch" : "none");
        layout_.SetReal("XResolution", static_cast<float>(across * scale));
        layout_.SetReal("YResolution", static_cast<float>(down * scale));
        if (across > 0) {
            layout_.SetReal("PixelAspectRatio", static_cast<float>(down) / static_cast<float>(across));
        }
    }
    png_int_32 x = 0, y = 0;
    if (png_get_oFFs(png_, info_, &x, &y, &unit) && unit == PNG_OFFSET_PIXEL) {
        layout_.x = x;
        layout_.y = y;
    }
}

void PngReader::TakeTexts() {
    constexpr std::pair<std::string_view, const char*> kNames[] = {
        {"Description", "ImageDescription"}, {"Author", "Artist"}, {"Title", "DocumentName"}};
    png_textp texts = nullptr;
    int count = 0;
    png_get_text(png_, info_, &texts, &count);
    for (int i = 0; i < count; ++i) {
        std::string name = texts[i].key;
        for (const auto& [key, ours] : kNames) {
            if (strcasecmp(name.c_str(), key.data()) == 0) name = ours;
        }
        const std::string text = texts[i].text ? texts[i].text : "";
        const bool isUnicode = texts[i].compression >= PNG_ITXT_COMPRESSION_NONE;
        layout_.SetText(name, isUnicode ? text : Utf8OfLatin(text));
    }
    png_timep time = nullptr;
    if (png_get_tIME(png_, info_, &time)) {
        layout_.SetText("DateTime", fmt::format("{:04}:{:02}:{:02} {:02}:{:02}:{:02}", time->year, time->month,
                                                time->day, time->hour, time->minute, time->second));
    }
}

}  // namespace

bool ReadsPng(int descriptor) {
    unsigned char begin[kSignature];
    if (ReadAt(descriptor, 0, std::as_writable_bytes(std::span(begin))) != sizeof begin ||
        png_sig_cmp(begin, 0, sizeof begin) != 0) {
        return false;
    }
    // A damaged file ends the search, and is reported when it is opened.
    off_t at = kSignature;
    unsigned char chunk[8];
    while (ReadAt(descriptor, at, std::as_writable_bytes(std::span(chunk))) == sizeof chunk) {
        const char* type = reinterpret_cast<const char*>(chunk + 4);
        if (IsOfAnotherFormat(descriptor, at + 8, type)) return false;
        // What follows the pixels is not looked at by anybody.
        if (std::memcmp(type, "IDAT", 4) == 0 || std::memcmp(type, "IEND", 4) == 0) return true;
        at += 12 + off_t{Number(chunk)};
    }
    return true;
}

OpenedImage OpenPng(const ImageFile& file) {
    auto reader = std::make_unique<PngReader>(file.descriptor);
    if (auto problem = reader->Open()) return *problem;
    return reader;
}

}  // namespace umbrant::host

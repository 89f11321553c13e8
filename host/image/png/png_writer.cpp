// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/png/png_writer.h"

#include <fmt/format.h>
#include <png.h>
#include <strings.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

#include "host/compositing/row_pool.h"
#include "host/image/png/deflate_blocks.h"
#include "host/image/png/png_filter.h"
#include "host/image/png/png_texts.h"

namespace umbrant::host {

namespace {

/// The state that libpng's callbacks use, and its error message.
struct PngFile {
    EncodedFile& encoded;
    const ImageLayout& layout;
    int bits;
    std::vector<PngText> texts;
    std::vector<png_text> records;
    std::string message;
    png_structp png = nullptr;
    png_infop info = nullptr;

    ~PngFile() {
        if (png) png_destroy_write_struct(&png, info ? &info : nullptr);
    }
};

[[noreturn]] void Fail(png_structp png, png_const_charp message) {
    static_cast<PngFile*>(png_get_error_ptr(png))->message = message;
    png_longjmp(png, 1);
}

void Ignore(png_structp, png_const_charp) {}

void Put(png_structp png, png_bytep bytes, size_t size) {
    static_cast<PngFile*>(png_get_io_ptr(png))->encoded.Append(std::as_bytes(std::span(bytes, size)));
}

void Flush(png_structp) {}

void SetColorSpace(PngFile& file) {
    if (const Attribute* profile = file.layout.Find("ICCProfile"); profile && !profile->bytes.empty()) {
        png_set_iCCP(file.png, file.info, "ICC profile", PNG_COMPRESSION_TYPE_BASE,
                     reinterpret_cast<png_const_bytep>(profile->bytes.data()),
                     static_cast<png_uint_32>(profile->bytes.size()));
        return;
    }
    const Attribute* space = file.layout.Find("oiio:ColorSpace");
    const char* const name = space && space->texts.size() == 1 ? space->texts.front().c_str() : "";
    float gamma = 0;
    if (strcasecmp(name, "sRGB") == 0) {
        png_set_sRGB_gAMA_and_cHRM(file.png, file.info, PNG_sRGB_INTENT_ABSOLUTE);
    } else if (strcasecmp(name, "linear") == 0) {
        png_set_gAMA(file.png, file.info, 1.0);
    } else if (strcasecmp(name, "GammaCorrected") == 0) {
        gamma = file.layout.Real("oiio:Gamma", 1.0f);
    } else if (strncasecmp(name, "Gamma", 5) == 0 && std::sscanf(name + 5, "%f", &gamma) != 1) {
        gamma = 0;
    }
    if (gamma > 0.01f && gamma < 100.0f) png_set_gAMA(file.png, file.info, 1.0 / static_cast<double>(gamma));
}

png_uint_32 Count(double value) {
    return static_cast<png_uint_32>(std::clamp(std::round(value), 0.0, 2147483647.0));
}

void SetPlace(PngFile& file) {
    const ImageLayout& layout = file.layout;
    png_set_oFFs(file.png, file.info, layout.x, layout.y, PNG_OFFSET_PIXEL);
    const double aspect = static_cast<double>(layout.Real("PixelAspectRatio", 0));
    double across = static_cast<double>(layout.Real("XResolution", 0));
    double down = static_cast<double>(layout.Real("YResolution", 0));
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (!(across > 0)) {
        // Without a resolution the file can only state the aspect ratio of a pixel.
        if (!(aspect > 0) || aspect == 1) return;
        across = 100;
    } else if (const Attribute* name = layout.Find("ResolutionUnit"); name && name->texts.size() == 1) {
        const char* const text = name->texts.front().c_str();
        const bool isInch = strcasecmp(text, "in") == 0 || strcasecmp(text, "inch") == 0;
        const double perMetre = isInch ? 100.0 / 2.54 : strcasecmp(text, "cm") == 0 ? 100.0 : 1.0;
        if (isInch || perMetre != 1.0 || strcasecmp(text, "m") == 0) unit = PNG_RESOLUTION_METER;
        across *= perMetre;
        down *= perMetre;
    }
    if (aspect > 0) down = across * aspect;
    if (!(down > 0)) down = across;
    png_set_pHYs(file.png, file.info, Count(across), Count(down), unit);
}

void SetTexts(PngFile& file) {
    for (const PngText& text : file.texts) {
        png_text record{};
        record.compression = text.isUnicode ? PNG_ITXT_COMPRESSION_NONE : PNG_TEXT_COMPRESSION_NONE;
        record.key = const_cast<char*>(text.key.c_str());
        record.text = const_cast<char*>(text.text.c_str());
        if (text.isUnicode) {
            record.itxt_length = text.text.size();
        } else {
            record.text_length = text.text.size();
        }
        file.records.push_back(record);
    }
    if (!file.records.empty()) {
        png_set_text(file.png, file.info, file.records.data(), static_cast<int>(file.records.size()));
    }
    const Attribute* date = file.layout.Find("DateTime");
    if (!date || date->texts.size() != 1) return;
    int year, month, day, hour, minute, second;
    if (std::sscanf(date->texts.front().c_str(), "%4d:%2d:%2d %2d:%2d:%2d", &year, &month, &day, &hour, &minute,
                    &second) != 6) {
        return;
    }
    png_time time{static_cast<png_uint_16>(year), static_cast<png_byte>(month),  static_cast<png_byte>(day),
                  static_cast<png_byte>(hour),    static_cast<png_byte>(minute), static_cast<png_byte>(second)};
    png_set_tIME(file.png, file.info, &time);
}

/// Writes all that comes before the pixels. libpng jumps out of it when it fails.
bool WriteInfo(PngFile& file) {
    if (setjmp(png_jmpbuf(file.png))) return false;
    const int color = file.layout.ChannelCount() == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
    // A profile, a text or a date that libpng dislikes is no reason to have no image.
    png_set_benign_errors(file.png, 1);
    png_set_user_limits(file.png, 0x7fffffff, 0x7fffffff);
    png_set_IHDR(file.png, file.info, static_cast<png_uint_32>(file.layout.width),
                 static_cast<png_uint_32>(file.layout.height), file.bits, color, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    SetColorSpace(file);
    SetPlace(file);
    SetTexts(file);
    png_write_info(file.png, file.info);
    return true;
}

bool WriteChunk(PngFile& file, const char* type, std::span<const std::uint8_t> bytes) {
    if (setjmp(png_jmpbuf(file.png))) return false;
    png_write_chunk(file.png, reinterpret_cast<png_const_bytep>(type), bytes.data(), bytes.size());
    return true;
}

/// A value of 0..1 in the steps of a file; what is no number becomes 0.
template <typename Step>
Step Quantized(float value) {
    constexpr float kFull = static_cast<float>(static_cast<Step>(-1));
    if (!(value > 0.0f)) return 0;
    return static_cast<Step>(std::min(value * kFull + 0.5f, kFull));
}

/// The bytes of one row as PNG has them: red, green, blue, alpha, high byte first.
class RowBytes {
 public:
    explicit RowBytes(const ImageToWrite& image) : image_(image) {}

    void Take(int y, std::span<std::uint8_t> bytes) {
        std::uint8_t* to = bytes.data();
        const World& world = image_.world;
        const bool isStraight = image_.format.form == Form::kStraight;
        if (isStraight && world.PixelDepth() == Depth::k8 && image_.depth != FileDepth::k16) {
            const auto* row = static_cast<const PF_Pixel*>(static_cast<const void*>(world.Row(y)));
            for (int x = 0; x < world.Width(); ++x, to += 4) {
                to[0] = row[x].red;
                to[1] = row[x].green;
                to[2] = row[x].blue;
                to[3] = row[x].alpha;
            }
            return;
        }
        image_.values(y, y + 1, values_);
        for (const float value : values_) {
            if (image_.depth == FileDepth::k16) {
                const auto step = Quantized<std::uint16_t>(value);
                *to++ = static_cast<std::uint8_t>(step >> 8);
                *to++ = static_cast<std::uint8_t>(step);
            } else {
                *to++ = Quantized<std::uint8_t>(value);
            }
        }
    }

 private:
    const ImageToWrite& image_;
    std::vector<float> values_;
};

/// Filters the rows from `begin` to before `end`, strip by strip on all threads.
void FilterRows(const ImageToWrite& image, int begin, int end, std::size_t rowBytes, std::size_t pixel,
                std::span<std::uint8_t> to) {
    constexpr int kStrip = 16;
    RunRows((end - begin + kStrip - 1) / kStrip, [&](int strip, int) {
        const int first = begin + strip * kStrip;
        const int last = std::min(end, first + kStrip);
        RowBytes source(image);
        std::vector<std::uint8_t> above(rowBytes, 0), row(rowBytes);
        if (first > 0) source.Take(first - 1, above);
        for (int y = first; y < last; ++y) {
            source.Take(y, row);
            FilterRow(row, above, pixel,
                      to.subspan(static_cast<std::size_t>(y - begin) * (rowBytes + 1), rowBytes + 1));
            row.swap(above);
        }
        return true;
    });
}

DeflateEffort EffortOf(const std::string& compression) {
    if (compression == "fast") return DeflateEffort::kFast;
    return compression == "small" ? DeflateEffort::kSmall : DeflateEffort::kDefault;
}

std::optional<std::string> WritePixels(PngFile& file, const ImageToWrite& image) {
    const std::size_t pixel = static_cast<std::size_t>(file.layout.ChannelCount() * file.bits / 8);
    const std::size_t rowBytes = static_cast<std::size_t>(file.layout.width) * pixel;
    // In bands, which take less memory than the whole image.
    constexpr std::size_t kBand = std::size_t{1} << 22;
    const int rows = static_cast<int>(std::clamp<std::size_t>(kBand / (rowBytes + 1), 1, 1u << 20));
    // Not cleared before it is filled.
    const std::size_t bandBytes = static_cast<std::size_t>(std::min(rows, file.layout.height)) * (rowBytes + 1);
    const std::unique_ptr<std::uint8_t[]> filtered(new std::uint8_t[bandBytes]);
    bool isWritten = true;
    BlockDeflater deflater(EffortOf(image.compression), [&](std::span<const std::uint8_t> bytes) {
        isWritten = isWritten && WriteChunk(file, "IDAT", bytes);
    });
    for (int begin = 0; begin < file.layout.height; begin += rows) {
        const int end = std::min(file.layout.height, begin + rows);
        const std::span band(filtered.get(), static_cast<std::size_t>(end - begin) * (rowBytes + 1));
        FilterRows(image, begin, end, rowBytes, pixel, band);
        if (auto problem = deflater.Add(band, end == file.layout.height)) return problem;
        if (!isWritten) return file.message;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> EncodePng(const ImageToWrite& image, EncodedFile& encoded) {
    PngFile file{encoded, image.layout, image.depth == FileDepth::k16 ? 16 : 8, PngTextsOf(image.layout), {}, {}};
    file.records.reserve(file.texts.size());
    file.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &file, Fail, Ignore);
    if (!file.png || !(file.info = png_create_info_struct(file.png))) return "not enough memory";
    png_set_write_fn(file.png, &file, Put, Flush);
    if (!WriteInfo(file)) return file.message;
    if (auto problem = WritePixels(file, image)) return problem;
    if (!WriteChunk(file, "IEND", {})) return file.message;
    return std::nullopt;
}

}  // namespace umbrant::host

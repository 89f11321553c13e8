// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_writer.h"

#include <algorithm>
#include <memory>
#include <span>
#include <utility>

#include "host/compositing/row_pool.h"
#include "host/image/exr/exr_attributes.h"
#include "host/image/exr/exr_blocks.h"
#include "host/image/exr/exr_file.h"

namespace umbrant::host {

namespace {

std::optional<exr_compression_t> CompressionNamed(const std::string& name) {
    if (name == "none") return EXR_COMPRESSION_NONE;
    if (name == "zip") return EXR_COMPRESSION_ZIP;
    if (name == "zips") return EXR_COMPRESSION_ZIPS;
    return std::nullopt;
}

std::int64_t WriteAt(exr_const_context_t, void* user, const void* bytes, std::uint64_t size, std::uint64_t offset,
                     exr_stream_error_func_ptr_t) {
    static_cast<EncodedFile*>(user)->Write(offset, {static_cast<const std::byte*>(bytes), size});
    return static_cast<std::int64_t>(size);
}

/// An EXR in the making.
class ExrWriter {
 public:
    ExrWriter(const ImageToWrite& image, exr_compression_t compression)
        : image_(image),
          compression_(compression),
          type_(image.depth == FileDepth::kFloat ? EXR_PIXEL_FLOAT : EXR_PIXEL_HALF) {}

    exr_result_t Write(EncodedFile& encoded) {
        exr_result_t failed = Begin(encoded);
        if (failed == EXR_ERR_SUCCESS) failed = WriteBlocks();
        if (failed != EXR_ERR_SUCCESS) return failed;
        // Writes where the blocks are.
        exr_context_t file = file_.release();
        return exr_finish(&file);
    }

 private:
    exr_result_t Begin(EncodedFile& encoded) {
        exr_context_initializer_t context = QuietExr();
        context.user_data = &encoded;
        context.write_fn = WriteAt;
        exr_context_t file = nullptr;
        if (const exr_result_t failed = exr_start_write(&file, "image", EXR_WRITE_FILE_DIRECTLY, &context))
            return failed;
        file_.reset(file);
        int part = 0;
        if (const exr_result_t failed = exr_add_part(file, nullptr, EXR_STORAGE_SCANLINE, &part)) return failed;
        const ImageLayout& layout = image_.layout;
        const exr_attr_box2i_t data = Box(layout.x, layout.y, layout.width, layout.height);
        const exr_attr_box2i_t display =
            layout.fullWidth > 0 ? Box(layout.fullX, layout.fullY, layout.fullWidth, layout.fullHeight) : data;
        const exr_attr_v2f_t centre{};
        if (const exr_result_t failed = exr_initialize_required_attr(file, part, &display, &data, 1.0f, &centre, 1.0f,
                                                                     EXR_LINEORDER_INCREASING_Y, compression_)) {
            return failed;
        }
        for (const std::string& name : layout.channels) {
            if (exr_add_channel(file, part, name.c_str(), type_, EXR_PERCEPTUALLY_LOGARITHMIC, 1, 1) != 0) {
                return EXR_ERR_INVALID_ARGUMENT;
            }
        }
        if (const exr_result_t failed = PutExrAttributes(layout, file)) return failed;
        if (const exr_result_t failed = exr_write_header(file)) return failed;
        return exr_get_scanlines_per_chunk(file, part, &rowsPerBlock_);
    }

    static exr_attr_box2i_t Box(int x, int y, int width, int height) {
        exr_attr_box2i_t box{};
        box.min.x = x;
        box.min.y = y;
        box.max.x = x + width - 1;
        box.max.y = y + height - 1;
        return box;
    }

    /// The rows of a block as they are stored: channel by channel, in the order of their names.
    void Pack(int begin, int end, std::vector<float>& values, std::vector<std::byte>& bytes) const {
        image_.values(begin, end, values);
        const auto width = static_cast<std::size_t>(image_.layout.width);
        const auto channels = static_cast<std::size_t>(image_.layout.ChannelCount());
        const std::size_t size = type_ == EXR_PIXEL_FLOAT ? 4 : 2;
        bytes.resize(values.size() * size);
        std::span<std::byte> to = bytes;
        for (int y = begin; y < end; ++y) {
            const float* row = values.data() + static_cast<std::size_t>(y - begin) * width * channels;
            for (const std::size_t channel : order_) {
                PackExrRow(row + channel, channels, size, to.first(width * size));
                to = to.subspan(width * size);
            }
        }
    }

    exr_result_t WriteBlocks() {
        const ImageLayout& layout = image_.layout;
        for (std::size_t i = 0; i < layout.channels.size(); ++i) order_.push_back(i);
        std::sort(order_.begin(), order_.end(),
                  [&](std::size_t a, std::size_t b) { return layout.channels[a] < layout.channels[b]; });

        struct Thread {
            explicit Thread(exr_compression_t compression) : writer(compression) {}
            ExrBlockWriter writer;
            std::vector<float> values;
            std::vector<std::byte> bytes;
        };
        std::vector<std::unique_ptr<Thread>> threads(static_cast<std::size_t>(RowThreads()));
        // So many at a time that the cores have enough to share and little memory is taken.
        constexpr int kAtATime = 32;
        const int blocks = (layout.height + rowsPerBlock_ - 1) / rowsPerBlock_;
        std::vector<std::vector<std::byte>> packed;
        for (int first = 0; first < blocks; first += kAtATime) {
            const int count = std::min(kAtATime, blocks - first);
            packed.assign(static_cast<std::size_t>(count), {});
            RunRows(count, [&](int index, int number) {
                auto& thread = threads[static_cast<std::size_t>(number)];
                if (!thread) thread = std::make_unique<Thread>(compression_);
                const int begin = (first + index) * rowsPerBlock_;
                Pack(begin, std::min(begin + rowsPerBlock_, layout.height), thread->values, thread->bytes);
                packed[static_cast<std::size_t>(index)] = thread->writer.Packed(thread->bytes);
                return true;
            });
            for (int i = 0; i < count; ++i) {
                const std::vector<std::byte>& block = packed[static_cast<std::size_t>(i)];
                if (const exr_result_t failed = exr_write_scanline_chunk(
                        file_.get(), 0, layout.y + (first + i) * rowsPerBlock_, block.data(), block.size())) {
                    return failed;
                }
            }
        }
        return EXR_ERR_SUCCESS;
    }

    const ImageToWrite& image_;
    const exr_compression_t compression_;
    const exr_pixel_type_t type_;
    ExrFile file_;
    int rowsPerBlock_ = 1;
    std::vector<std::size_t> order_;  ///< of the channels in a file
};

}  // namespace

std::optional<std::string> EncodeExr(const ImageToWrite& image, EncodedFile& encoded) {
    const auto compression = CompressionNamed(image.compression);
    if (!compression || !CanPutExrAttributes(image.layout)) {
        const auto library = LibraryCodec();
        if (const auto* reason = std::get_if<std::string>(&library)) return *reason;
        return std::get<const Codec*>(library)->encode(image, encoded);
    }
    if (const exr_result_t failed = ExrWriter(image, *compression).Write(encoded)) {
        return exr_get_default_error_message(failed);
    }
    return std::nullopt;
}

}  // namespace umbrant::host

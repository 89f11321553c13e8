// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/host/image/picture_files.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace umbrant::host {

void WriteFile(const std::filesystem::path& file, OIIO::ImageSpec layout, const std::vector<float>& pixel,
               bool straight) {
    if (straight) layout.attribute("oiio:UnassociatedAlpha", 1);
    std::vector<float> values;
    for (int i = 0; i < layout.width * layout.height; ++i) values.insert(values.end(), pixel.begin(), pixel.end());
    const auto output = OIIO::ImageOutput::create(file.string());
    ASSERT_TRUE(output) << OIIO::geterror();
    ASSERT_TRUE(output->open(file.string(), layout)) << output->geterror();
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, values.data())) << output->geterror();
    ASSERT_TRUE(output->close());
}

RawFile ReadRaw(const std::filesystem::path& file) {
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(file.string(), &config);
    if (!input) {
        ADD_FAILURE() << OIIO::geterror();
        return {};
    }
    RawFile raw{input->spec(), {}};
    raw.values.resize(static_cast<std::size_t>(raw.layout.width) * static_cast<std::size_t>(raw.layout.height) *
                      static_cast<std::size_t>(raw.layout.nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, raw.layout.nchannels, OIIO::TypeDesc::FLOAT, raw.values.data()));
    return raw;
}

}  // namespace umbrant::host

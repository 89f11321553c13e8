// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Any bytes as a picture, the first of them choosing the file's extension: it is read within the program's bounds on
// pixels and memory, or refused with a sentence.

#include <array>

#include "host/image/picture.h"
#include "hostapi/limits.h"
#include "tests/fuzz/target.h"

using namespace umbrant::host;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::array<ScratchFile, 4> files = {ScratchFile("a.png"), ScratchFile("a.jpg"), ScratchFile("a.tif"),
                                                     ScratchFile("a.exr")};
    Bytes bytes(data, size);
    const ScratchFile& file = files[bytes.Byte() % files.size()];
    file.Write(bytes.Rest());
    const auto picture = ReadPicture(file.Path());
    if (!picture) {
        Promise(picture.error().kind == ErrorKind::kFile, "a picture that is refused is a file's failure");
        Promise(picture.error().sentence.find('\n') == std::string::npos, "a refusal is one line");
        return 0;
    }
    const World& world = picture->pixels;
    Promise(world.Width() > 0 && world.Width() <= PF_MAX_WORLD_WIDTH, "a picture is no wider than a world");
    Promise(world.Height() > 0 && world.Height() <= PF_MAX_WORLD_HEIGHT, "a picture is no higher than a world");
    Promise(picture->frameWidth > 0 && picture->frameHeight > 0, "a picture has a frame");
    Promise(picture->window.right - picture->window.left == world.Width() &&
                picture->window.bottom - picture->window.top == world.Height(),
            "the pixels cover the window");
    return 0;
}

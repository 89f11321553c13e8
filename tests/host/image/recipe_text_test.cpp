// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A recipe in the files of every format: what is written is found, files stay valid, and damage is noticed.

#include "host/image/recipe/recipe_text.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include "host/image/picture.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

FoundRecipe Find(const std::string& bytes) {
    return FindRecipe(MemoryBytes(std::as_bytes(std::span(bytes))));
}

/// A file of that format with a recipe, from a small world.
std::string FileWith(const std::string& format, const std::string& recipe) {
    World world = World::Create(3, 2, Depth::k8);
    Pixel8(world, 1, 1) = {255, 10, 20, 30};
    WriteOptions options;
    options.format = format;
    options.recipe = recipe;
    const auto bytes = EncodePicture(world, {{0, 0, 3, 2}, 3, 2}, options);
    EXPECT_TRUE(bytes) << (bytes ? "" : bytes.error().sentence);
    return bytes ? *bytes : "";
}

std::string Number(std::uint64_t number, int bytes) {
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) text += static_cast<char>(number >> shift & 255);
    return text;
}

std::string Chunk(const std::string& typed) {
    const auto sum = crc32_z(0, reinterpret_cast<const Bytef*>(typed.data()), typed.size());
    return Number(typed.size() - 4, 4) + typed + Number(sum, 4);
}

std::string PngWith(const std::string& chunk) {
    return "\x89PNG\r\n\x1a\n" + chunk + Chunk("IEND");
}

constexpr const char* kFormats[] = {"png", "exr", "tif", "jpg"};

TEST(RecipeText, IsFoundInEveryFormatOfImages) {
    // Longer than one segment of a JPEG, and of odd and even lengths.
    for (const std::size_t size : {1u, 2u, 1000u, 64'999u, 65'001u, 100'000u}) {
        const std::string text(size, 'r');
        for (const char* format : kFormats) {
            SCOPED_TRACE(std::string(format) + " " + std::to_string(size));
            const FoundRecipe found = Find(FileWith(format, text));
            EXPECT_EQ(found.kind, FoundRecipe::Kind::kFound);
            EXPECT_TRUE(found.text == text);
        }
    }
}

TEST(RecipeText, FilesStayWhole) {
    const Folder folder;
    for (const char* format : kFormats) {
        SCOPED_TRACE(format);
        const auto with = folder / (std::string("with.") + format);
        const auto without = folder / (std::string("without.") + format);
        WriteBytes(with, FileWith(format, "{}"));
        WriteBytes(without, FileWith(format, ""));
        const RawFile read = ReadRaw(with), plain = ReadRaw(without);
        EXPECT_EQ(read.values, plain.values);
        EXPECT_EQ(read.layout.width, 3);
        EXPECT_EQ(Find(ReadBytes(without)).kind, FoundRecipe::Kind::kNone);
    }
}

TEST(RecipeText, IsNotTakenOverFromAnInput) {
    const Folder folder;
    for (const char* format : kFormats) {
        SCOPED_TRACE(format);
        WriteBytes(folder / "in", FileWith(format, "{\"old\":1}"));
        auto picture = ReadPicture(folder / "in");
        ASSERT_TRUE(picture);
        for (const char* output : kFormats) {
            WriteOptions options;
            options.format = output;
            options.metadata = picture->metadata;
            const auto bytes = EncodePicture(picture->pixels, {{0, 0, 3, 2}, 3, 2}, options);
            ASSERT_TRUE(bytes);
            EXPECT_EQ(Find(*bytes).kind, FoundRecipe::Kind::kNone) << output;
        }
    }
}

TEST(RecipeText, EveryTextChunkOfAPngIsRead) {
    const std::string key = std::string(kRecipeName) + '\0';
    const std::string text = "{\"recipe\":1}";
    std::string packed(100, '\0');
    uLongf size = packed.size();
    ASSERT_EQ(compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
                       text.size()),
              Z_OK);
    packed.resize(size);
    const std::string zeros(2, '\0');
    for (const std::string& chunk :
         {"tEXt" + key + text, "zTXt" + key + '\0' + packed, "iTXt" + key + zeros + "en" + '\0' + "r" + '\0' + text,
          "iTXt" + key + '\1' + '\0' + zeros + packed}) {
        const FoundRecipe found = Find(PngWith(Chunk("tEXtother") + Chunk(chunk)));
        EXPECT_EQ(found.kind, FoundRecipe::Kind::kFound) << chunk.substr(0, 4);
        EXPECT_EQ(found.text, text) << chunk.substr(0, 4);
    }
}

TEST(RecipeText, DamageIsNoticed) {
    const std::string key = std::string(kRecipeName) + '\0';
    std::string changed = Chunk("tEXt" + key + "{\"recipe\":1}");
    changed[changed.size() - 6] ^= 1;
    std::string jpeg = FileWith("jpg", std::string(70'000, 'r'));
    const std::size_t second = jpeg.find(kRecipeName, jpeg.find(kRecipeName) + 1);
    ASSERT_NE(second, std::string::npos);
    jpeg[second + key.size()] = 3;
    std::string tiff = FileWith("tif", "{}");
    tiff.resize(tiff.find("{}"));
    const std::string exr = FileWith("exr", "{}");
    std::string cut = exr;
    cut.resize(exr.find(kRecipeName) + 27);
    std::string box = Number(16, 4) + "ftypqt  0000" + RecipeBox("{}");
    box[19] = 100;
    const struct {
        const char* name;
        std::string bytes;
        FoundRecipe::Kind kind;
    } rows[] = {
        {"a changed byte", PngWith(changed), FoundRecipe::Kind::kDamaged},
        {"a stream that is none", PngWith(Chunk("zTXt" + key + '\0' + "none")), FoundRecipe::Kind::kDamaged},
        {"too long", PngWith(Chunk("tEXt" + key + std::string(100'001, 'r'))), FoundRecipe::Kind::kDamaged},
        {"parts out of order", jpeg, FoundRecipe::Kind::kDamaged},
        {"a box behind the end", box, FoundRecipe::Kind::kDamaged},
        {"an attribute behind the end", cut, FoundRecipe::Kind::kDamaged},
        // Without its directory it is no TIFF.
        {"a cut TIFF", tiff, FoundRecipe::Kind::kNone},
        {"empty", "", FoundRecipe::Kind::kNoFormat},
        {"text", "a text and no image", FoundRecipe::Kind::kNoFormat},
    };
    for (const auto& row : rows) EXPECT_EQ(Find(row.bytes).kind, row.kind) << row.name;
}

TEST(RecipeText, ATooLongOneIsNotPut) {
    EncodedFile encoded;
    const std::string jpeg = FileWith("jpg", "");
    encoded.Append(std::as_bytes(std::span(jpeg)));
    PutRecipe(std::string(kMostRecipeBytes + 1, 'r'), encoded);
    EXPECT_EQ(encoded.Size(), jpeg.size());
}

TEST(RecipeText, TiffsOfBothByteOrdersAndSizesAreRead) {
    // One entry: the recipe, its length with the zero, and its place behind the directory.
    const std::string text = "{\"recipe\":1}";
    const std::string large = std::string("MM\0+\0\x08\0\0", 8) + Number(16, 8) + Number(1, 8) + Number(65123, 2) +
                              Number(2, 2) + Number(text.size() + 1, 8) + Number(52, 8) + Number(0, 8) + text + '\0';
    const std::string small = std::string("MM\0*", 4) + Number(8, 4) + Number(1, 2) + Number(65123, 2) + Number(2, 2) +
                              Number(text.size() + 1, 4) + Number(26, 4) + Number(0, 4) + text + '\0';
    EXPECT_EQ(Find(large).text, text);
    EXPECT_EQ(Find(small).text, text);
    EncodedFile encoded;
    encoded.Append(std::as_bytes(std::span(large)));
    PutRecipe("{}", encoded);
    std::string bytes(encoded.Size(), '\0');
    encoded.Read(0, std::as_writable_bytes(std::span(bytes)));
    EXPECT_EQ(Find(bytes).text, "{}") << "the newer one comes first";
}

TEST(RecipeText, TheBoxOfAClipIsFound) {
    const std::string begin = Number(16, 4) + "ftypqt  0000";
    const std::string wide = Number(1, 4) + "mdat" + Number(20, 8) + "data";
    EXPECT_EQ(Find(begin + wide + RecipeBox("{}")).text, "{}");
    EXPECT_EQ(Find(begin + wide).kind, FoundRecipe::Kind::kNone);
    EXPECT_EQ(Find(begin + Number(4, 4) + "mdat" + RecipeBox("{}")).kind, FoundRecipe::Kind::kNone);
}

TEST(RecipeText, TheTagOfAMatroskaIsFound) {
    const auto sized = [](const std::string& id, const std::string& content) {
        return id + static_cast<char>(0x80 | content.size()) + content;
    };
    const std::string simple = sized("\x67\xc8", sized("\x45\xa3", "UMBRANT:RECIPE") + sized("\x44\x87", "{}"));
    const std::string other = sized("\x67\xc8", sized("\x45\xa3", "TITLE") + sized("\x44\x87", "no"));
    const std::string tags = sized("\x12\x54\xc3\x67", sized("\x73\x73", other + simple));
    const std::string head = sized("\x1a\x45\xdf\xa3", "webm");
    EXPECT_EQ(Find(head + sized("\x18\x53\x80\x67", tags)).text, "{}");
    // A segment of an unknown length.
    EXPECT_EQ(Find(head + "\x18\x53\x80\x67\xff" + tags).text, "{}");
    EXPECT_EQ(Find(head + sized("\x18\x53\x80\x67", "")).kind, FoundRecipe::Kind::kNone);
}

}  // namespace

}  // namespace umbrant::host

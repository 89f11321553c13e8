// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Presets of any size and content: read in linear time, refused beyond a limit, and messages that stay short.

#include <algorithm>
#include <ctime>

#include "tests/host/animation/preset_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

using PresetLimits = PresetTest;

/// Processor seconds of this process, which other load does not lengthen.
double ProcessorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Expects that eight times as much takes less than 24 times as long, where the square would take 64 times.
template <typename Work>
void ExpectNoSquare(int count, Work work) {
    constexpr int kTimes = 8;
    constexpr double kMost = 3 * kTimes, kUnmeasured = 0.1;
    const auto seconds = [&](int amount) {
        const double begin = ProcessorSeconds();
        work(amount);
        return ProcessorSeconds() - begin;
    };
    const double few = seconds(count / kTimes);
    EXPECT_LT(seconds(count), kMost * few + kUnmeasured) << few;
}

TEST_F(PresetLimits, AManyKeyLineIsReadInLinearTime) {
    constexpr int kKeys = 32'000;
    std::string text;
    ExpectNoSquare(kKeys, [&](int count) {
        std::string keys;
        for (int i = 0; i < count; ++i) {
            keys += (i > 0 ? "," : "") + ("{\"frame\":" + std::to_string(i)) + ",\"value\":" + std::to_string(i % 100) +
                    "}";
        }
        MustApply(Moving("\"size\": [" + keys + "]"));
        // Written, and shown at every frame.
        text = PresetText(params_);
        for (int frame = 0; frame < count; ++frame) ASSERT_EQ(At("size", frame), std::to_string(frame % 100));
    });
    ASSERT_EQ(params_.animation.Tracks()[0].track.keys.size(), std::size_t{kKeys});
    EXPECT_THAT(text, HasSubstr("31999"));
}

TEST_F(PresetLimits, ManyUnknownKeysAreCountedAndTheFirstAreListed) {
    Result<Done> applied = Done{};
    ExpectNoSquare(100'000, [&](int count) {
        std::string keys;
        for (int i = 0; i < count; ++i) keys += (i > 0 ? "," : "") + ("\n\"sizes" + std::to_string(i)) + "\": 1";
        applied = Apply("{\"version\": 1, \"values\": {" + keys + "}}");
    });
    ASSERT_FALSE(applied);
    const std::string& sentence = applied.error().sentence;
    EXPECT_THAT(sentence, HasSubstr("' has 100000 mistakes:\n  line 2, column 1: there is no parameter 'sizes0'; "
                                    "closest: 'size'"));
    EXPECT_THAT(sentence, HasSubstr("\n  line 21, column 1: there is no parameter 'sizes19'"));
    EXPECT_THAT(sentence, EndsWith("\n  and 99980 more"));
    EXPECT_EQ(std::count(sentence.begin(), sentence.end(), '\n'), 21);
}

TEST_F(PresetLimits, TheFirstOfManyMistakesAreListedInTheOrderOfTheText) {
    std::string keys;
    for (int i = 0; i < 30; ++i) keys += "{\"frame\": " + std::to_string(i) + ", \"value\": 101},\n";
    // Keyframes are checked after values, wherever they are in the text.
    const auto applied = Apply("{\"version\": 2, \"keyframes\": {\"size\": [\n" + keys +
                               "{\"frame\": 99, \"value\": 5}]},\n\"values\": {\"nothing\": 1, \"nobody\": 1}}");
    ASSERT_FALSE(applied);
    EXPECT_THAT(applied.error().sentence, HasSubstr("' has 32 mistakes:\n  line 2, column 23: 'size' takes 0 to 100"));
    EXPECT_THAT(applied.error().sentence, HasSubstr("\n  line 21, column 24: 'size' takes 0 to 100"));
    EXPECT_THAT(applied.error().sentence, EndsWith("\n  and 12 more"));
    EXPECT_THAT(applied.error().sentence, Not(HasSubstr("nothing")));
}

TEST_F(PresetLimits, LongValuesAreEchoedInPart) {
    const std::string longText(100'000, 'x'), shown = std::string(200, 'x') + "...";
    const struct {
        const char* name;
        std::string text;
        std::string sentence;
    } rows[] = {
        {"a value", R"({"version": 1, "values": {"size": ")" + longText + "\"}}",
         "'size' takes a number from 0 to 100, not '" + shown + "'"},
        {"an item", R"({"version": 1, "values": {"mode": ")" + longText + "\"}}",
         "has no item '" + shown + "'; the items are: soft, "},
        {"a row", "{\"version\": 1, \"values\": {\"" + longText + "\": 1}}",
         "no parameter '" + shown + "'; `umbrant params` lists all parameters"},
        {"an index", "{\"version\": 1, \"values\": {\"#" + longText + "\": 1}}",
         "no parameter '#" + std::string(199, 'x') + "...'; the effect has"},
        {"a key", "{\"version\": 1, \"values\": {}, \"" + longText + "\": 1}", "no key '" + shown + "' in a preset"},
        {"a key twice", "{\"version\": 1, \"values\": {\"" + longText + "\": 1, \"" + longText + "\": 1}}",
         "the key '" + shown + "' is repeated"},
        {"a version", "{\"version\": \"" + longText + "\", \"values\": {}}",
         "version \"" + shown + "\" is not supported;"},
        {"a side", Moving(R"("size": [{"frame": 1, "value": 1, "out": ")" + longText + "\"}]"),
         ", not \"" + shown + "\""},
        {"a time", Moving("\"size\": [{\"value\": 1, \"frame\": 1" + std::string(300, '0') + "}]"),
         ", not 1" + std::string(199, '0') + "..."},
        {"a tangent", Moving(R"("centre": [{"frame": 1, "value": "1,1", "tangent-in": ")" + longText + "\"}]"),
         ", not \"" + shown + "\""},
        {"characters, not bytes",
         "{\"version\": 1, \"values\": {\"" +
             [] {
                 std::string text;
                 for (int i = 0; i < 300; ++i) text += "\u00fc";
                 return text;
             }() +
             "\": 1}}",
         "\u00fc...'; `umbrant params` lists all parameters"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto applied = Apply(row.text);
        ASSERT_FALSE(applied);
        EXPECT_EQ(applied.error().kind, ErrorKind::kUsage);
        EXPECT_THAT(applied.error().sentence, HasSubstr(row.sentence));
        EXPECT_LT(applied.error().sentence.size(), 1500u);
    }
    const auto noJson = Apply("{\"" + longText);
    ASSERT_FALSE(noJson);
    EXPECT_EQ(noJson.error().kind, ErrorKind::kFile);
    EXPECT_THAT(noJson.error().sentence, HasSubstr("last read: '\"" + std::string(199, 'x') + "...'"));
    EXPECT_LT(noJson.error().sentence.size(), 1500u);
}

TEST_F(PresetLimits, ControlCharactersAreEchoedAsEscapes) {
    const auto applied = Apply(R"({"version": 1, "values": {"a\u0000b\nc": 1, "size": "1\u00002\u001b"}})");
    ASSERT_FALSE(applied);
    EXPECT_THAT(applied.error().sentence, HasSubstr("there is no parameter 'a\\u0000b\\nc'; "));
    EXPECT_THAT(applied.error().sentence, EndsWith("'size' takes a number from 0 to 100, not '1\\u00002\\u001b'"));
    EXPECT_EQ(applied.error().sentence.find('\0'), std::string::npos);
}

TEST_F(PresetLimits, LargeFilesAreRefusedBeforeTheyAreReadWhole) {
    const auto endless = ApplyPreset("/dev/zero", params_);
    ASSERT_FALSE(endless);
    EXPECT_EQ(endless.error().kind, ErrorKind::kFile);
    EXPECT_EQ(endless.error().sentence, "cannot read the preset '/dev/zero': the file is larger than 64 MiB");
    // 64 MiB to the byte are read.
    const std::string preset = R"({"version": 1, "values": {"count": 7}})";
    constexpr std::size_t kMost = std::size_t{64} << 20;
    MustApply(preset + std::string(kMost - preset.size(), ' '));
    EXPECT_EQ(params_.values.ValueText(*params_.values.Find("count")), "7");
    const auto larger = Apply(preset + std::string(kMost - preset.size() + 1, ' '));
    ASSERT_FALSE(larger);
    EXPECT_THAT(larger.error().sentence, EndsWith("the file is larger than 64 MiB"));
}

}  // namespace

}  // namespace umbrant::host

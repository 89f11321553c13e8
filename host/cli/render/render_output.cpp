// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What `umbrant render` checks and says about its files, for one image as for many.

#include <fmt/format.h>

#include <cstdio>

#include "host/cli/render/render_options.h"
#include "host/render/background.h"
#include "host/render/plan/output_check.h"

namespace umbrant::host {

Result<Done> CheckStorage(const RenderOptions& options) {
    const bool isStream = options.output == "-";
    if (!isStream && !options.format.empty()) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("--format applies to standard output only ('-o -'); the extension of '{}' "
                                   "names its format",
                                   options.output)};
    }
    if (isStream) {
        if (auto known = CheckFormat(options.output, options.format); !known) return known;
        if (options.json) {
            return Failure{ErrorKind::kUsage,
                           "--json and '-o -' both write to standard output; write the image to a file"};
        }
    }
    if (!options.compression.empty()) {
        if (auto known = CheckCompression(options.output, options.compression, options.format); !known) return known;
    }
    if (options.outputDepth.empty()) return Done{};
    return CheckFileDepth(options.output, FileDepthNamed(options.outputDepth), options.format);
}

Result<Done> CheckOutput(const RenderOptions& options) {
    if (options.input == "-" && options.texture == "-") {
        return Failure{ErrorKind::kUsage, "standard input can be the layer or the texture, not both"};
    }
    if (options.output != "-") {
        for (const std::string& read : {options.input, options.texture, options.preset, BackgroundFile(options)}) {
            if (read.empty() || read == "-") continue;
            if (auto apart = CheckApart(read, options.output); !apart) return apart;
        }
        if (auto writable = CheckWritable(options.output); !writable) return writable;
    }
    return CheckStorage(options);
}

std::string BackgroundFile(const RenderOptions& options) {
    return IsBackgroundFile(options.background) ? options.background : "";
}

void TellNotes(const RenderOptions& options, const std::string& note, const std::string& metadataNote) {
    if (options.sequence.quiet) return;
    for (const std::string& each : {note, metadataNote}) {
        if (!each.empty()) std::fputs(("note: " + each + "\n").c_str(), stderr);
    }
}

std::string ValidateDepth(const std::string& text) {
    if (text == "8" || text == "32") return "";
    if (text == "16" || text == "half" || text == "float") {
        return fmt::format("the effect renders in 8 or 32 bits; --output-depth {} sets the depth of the file", text);
    }
    return fmt::format("'{}' is not 8 or 32, the bits of a channel in the effect", text);
}

}  // namespace umbrant::host

// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A host of the fewest functions, for what needs the whole plug-in: it loads the bundle, keeps properties without
// checking them, and renders. It judges nothing.

#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "openfx/abi/core.h"
#include "openfx/abi/image_effect_suite.h"
#include "openfx/abi/message_suite.h"
#include "openfx/abi/parameter_suite.h"
#include "openfx/abi/property_suite.h"

namespace umbrant::openfx {

using SmallValue = std::variant<int, double, std::string, void*>;

/// Properties by name, any number of values each. Reading another type than was written fails.
struct SmallSet {
    std::map<std::string, std::vector<SmallValue>, std::less<>> values;

    template <typename T>
    void Put(const std::string& name, std::initializer_list<T> all) {
        values[name].assign(all.begin(), all.end());
    }
    int Int(const std::string& name) const { return std::get<int>(values.at(name).at(0)); }
    std::string Text(const std::string& name, std::size_t index = 0) const {
        return std::get<std::string>(values.at(name).at(index));
    }
};

struct SmallParameter {
    std::string type;
    SmallSet set;
    std::vector<SmallValue> value;
};

/// An image as a host keeps it.
struct SmallImage {
    OfxRectI bounds{};
    bool isFloat = false;
    std::string alpha = "OfxImageAlphaUnPremultiplied";
    void* bottom = nullptr;
    int rowBytes = 0;
    SmallSet set;
};

struct SmallClip {
    SmallSet set;
    SmallImage* image = nullptr;  ///< what clipGetImage returns; null for none
    OfxRectD region{};
};

/// A descriptor or an instance.
struct SmallEffect {
    SmallSet set;
    SmallSet parameterSet;
    std::map<std::string, SmallClip> clips;
    std::map<std::string, SmallParameter> parameters;
    std::vector<std::string> order;  ///< of the parameters' definitions
};

/// The one host of the process.
class SmallHost {
 public:
    static SmallHost& The();

    /// Loads a bundle's binary and describes the plug-in in the context Filter. The failure is a sentence.
    std::string Load(const std::string& binary);
    OfxStatus Call(const char* action, SmallEffect* effect, SmallSet* in = nullptr, SmallSet* out = nullptr) const;
    /// An instance with the described parameters at their defaults.
    std::unique_ptr<SmallEffect> Create(OfxStatus& status) const;
    /// A frame into the clip Output.
    OfxStatus Render(SmallEffect& instance, const OfxRectI& window, double scale = 1) const;

    OfxPlugin* plugin = nullptr;
    SmallEffect described;
    SmallSet set;
    std::vector<std::string> messages;
    int images = 0;  ///< that were not released
    bool isAborted = false;
    bool hasPersistentMessages = true;  ///< version 2 of the message suite, for the next Load of the plug-in

 private:
    SmallHost();
    OfxHost host_{};
};

/// The image as its clip gives it, with all that images report.
void Describe(SmallImage& image);

}  // namespace umbrant::openfx

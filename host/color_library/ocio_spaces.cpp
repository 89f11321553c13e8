// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Colour spaces by OpenColorIO, in a shared object of their own: the library takes 35 ms to load with a configuration,
// which is spent only where colours are converted.

#include <OpenColorIO/OpenColorIO.h>

#include <exception>
#include <sstream>
#include <utility>

#include "host/color/color_spaces.h"

namespace umbrant::host {

namespace {

namespace ocio = OCIO_NAMESPACE;

class OcioConversion : public ColorConversion {
 public:
    explicit OcioConversion(ocio::ConstCPUProcessorRcPtr processor) : processor_(std::move(processor)) {}

    bool Apply(float* red, int stride, int count) const override {
        try {
            const std::ptrdiff_t pixel = static_cast<std::ptrdiff_t>(sizeof(float)) * stride;
            // Without an alpha, which no conversion is to see.
            ocio::PlanarImageDesc pixels(red, red + 1, red + 2, nullptr, count, 1, ocio::BIT_DEPTH_F32, pixel,
                                         pixel * count);
            processor_->apply(pixels);
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }

 private:
    ocio::ConstCPUProcessorRcPtr processor_;
};

class OcioSpaces : public ColorSpaces {
 public:
    explicit OcioSpaces(ocio::ConstConfigRcPtr config) : config_(std::move(config)) {}

    std::vector<std::string> Names() const override {
        std::vector<std::string> names;
        for (int i = 0; i < config_->getNumColorSpaces(); ++i) names.emplace_back(config_->getColorSpaceNameByIndex(i));
        return names;
    }

    std::string NameOf(const std::string& name) const override {
        try {
            const ocio::ConstColorSpaceRcPtr space = config_->getColorSpace(name.c_str());
            return space ? space->getName() : "";
        } catch (const std::exception&) {
            return "";
        }
    }

    std::unique_ptr<ColorConversion> Conversion(const std::string& from, const std::string& to,
                                                std::string& problem) const override {
        try {
            // Without approximations of powers and logarithms.
            auto processor =
                config_->getProcessor(from.c_str(), to.c_str())->getOptimizedCPUProcessor(ocio::OPTIMIZATION_LOSSLESS);
            return std::make_unique<OcioConversion>(std::move(processor));
        } catch (const std::exception& failure) {
            problem = failure.what();
            return nullptr;
        }
    }

 private:
    ocio::ConstConfigRcPtr config_;
};

}  // namespace

ColorSpaces* UmbrantColorSpaces(const char* file, const char* text, std::string& problem) {
    try {
        // Its messages would appear on the standard streams.
        ocio::SetLoggingLevel(ocio::LOGGING_LEVEL_NONE);
        if (file) return new OcioSpaces(ocio::Config::CreateFromFile(file));
        std::istringstream stream(text);
        return new OcioSpaces(ocio::Config::CreateFromStream(stream));
    } catch (const std::exception& failure) {
        problem = failure.what();
        return nullptr;
    }
}

}  // namespace umbrant::host

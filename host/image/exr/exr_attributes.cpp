// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_attributes.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace umbrant::host {

namespace {

using Base = AttributeType::Base;

/// A type of attributes whose values have the same memory layout as in an ImageLayout.
struct PlainType {
    exr_attribute_type_t theirs;
    AttributeType ours;
    std::size_t size;
};

constexpr unsigned char kVector = AttributeType::kIsVector;
constexpr PlainType kPlain[] = {
    {EXR_ATTR_INT, {Base::kInt, 1, 0, 0}, 4},
    {EXR_ATTR_FLOAT, {Base::kFloat, 1, 0, 0}, 4},
    {EXR_ATTR_DOUBLE, {Base::kDouble, 1, 0, 0}, 8},
    {EXR_ATTR_RATIONAL, {Base::kInt, 2, AttributeType::kIsRational, 0}, 8},
    {EXR_ATTR_TIMECODE, {Base::kUint32, 1, AttributeType::kIsTimeCode, 2}, 8},
    {EXR_ATTR_CHROMATICITIES, {Base::kFloat, 1, 0, 8}, 32},
    {EXR_ATTR_V2I, {Base::kInt, 2, 0, 0}, 8},
    {EXR_ATTR_V2F, {Base::kFloat, 2, 0, 0}, 8},
    {EXR_ATTR_V2D, {Base::kDouble, 2, 0, 0}, 16},
    {EXR_ATTR_V3I, {Base::kInt, 3, kVector, 0}, 12},
    {EXR_ATTR_V3F, {Base::kFloat, 3, kVector, 0}, 12},
    {EXR_ATTR_V3D, {Base::kDouble, 3, kVector, 0}, 24},
    {EXR_ATTR_M33F, {Base::kFloat, 9, 0, 0}, 36},
    {EXR_ATTR_M33D, {Base::kDouble, 9, 0, 0}, 72},
    {EXR_ATTR_M44F, {Base::kFloat, 16, 0, 0}, 64},
    {EXR_ATTR_M44D, {Base::kDouble, 16, 0, 0}, 128},
    {EXR_ATTR_BOX2I, {Base::kInt, 2, 0, 2}, 16},
    {EXR_ATTR_BOX2F, {Base::kFloat, 2, 0, 2}, 16},
};

/// Names that differ.
constexpr std::pair<const char*, const char*> kNames[] = {
    {"aperture", "FNumber"},        {"capDate", "DateTime"},     {"comments", "ImageDescription"},
    {"expTime", "ExposureTime"},    {"owner", "Copyright"},      {"pixelAspectRatio", "PixelAspectRatio"},
    {"timeCode", "smpte:TimeCode"}, {"xDensity", "XResolution"},
};

/// How the pixels are stored: the file's own, and no attributes of a layout.
constexpr const char* kStructure[] = {"channels",  "chunkCount", "compression", "dataWindow", "displayWindow",
                                      "lineOrder", "tiles",      "type",        "version"};

/// Prefixes of names that have a special meaning for the image library.
constexpr const char kOwnPrefix[] = "oiio:";
constexpr const char* kColor[] = {"oiio:ColorSpace", "oiio:Gamma"};

bool Begins(const std::string& name, const char* prefix) {
    return strncasecmp(name.c_str(), prefix, std::strlen(prefix)) == 0;
}

template <std::size_t kCount>
bool IsOneOf(const char* const (&names)[kCount], const std::string& name) {
    return std::any_of(std::begin(names), std::end(names), [&](const char* one) { return name == one; });
}

const PlainType* PlainTypeOf(exr_attribute_type_t type) {
    const auto* found = std::find_if(std::begin(kPlain), std::end(kPlain),
                                     [&](const PlainType& plain) { return plain.theirs == type; });
    return found == std::end(kPlain) ? nullptr : found;
}

const PlainType* PlainTypeOf(const AttributeType& type) {
    const auto* found =
        std::find_if(std::begin(kPlain), std::end(kPlain), [&](const PlainType& plain) { return plain.ours == type; });
    return found == std::end(kPlain) ? nullptr : found;
}

/// The values of a plain attribute.
const void* ValuesOf(const exr_attribute_t& attribute) {
    switch (attribute.type) {
        case EXR_ATTR_INT:
            return &attribute.i;
        case EXR_ATTR_FLOAT:
            return &attribute.f;
        case EXR_ATTR_DOUBLE:
            return &attribute.d;
        default:
            return attribute.rawptr;
    }
}

/// The attribute as a layout stores it; nothing if only the image library can represent it.
std::optional<Attribute> AttributeFrom(const exr_attribute_t& from) {
    Attribute attribute{from.name, {}, {}, {}};
    for (const auto& [theirs, ours] : kNames) {
        if (attribute.name == theirs) attribute.name = ours;
    }
    if (from.type == EXR_ATTR_STRING) {
        attribute.texts.emplace_back(from.string->str, static_cast<std::size_t>(from.string->length));
        return attribute;
    }
    if (from.type == EXR_ATTR_STRING_VECTOR) {
        attribute.type.count = from.stringvector->n_strings;
        for (int i = 0; i < from.stringvector->n_strings; ++i) {
            const exr_attr_string_t& text = from.stringvector->strings[i];
            attribute.texts.emplace_back(text.str, static_cast<std::size_t>(text.length));
        }
        if (attribute.texts.empty()) return std::nullopt;
        return attribute;
    }
    const PlainType* plain = PlainTypeOf(from.type);
    if (!plain) return std::nullopt;
    attribute.type = plain->ours;
    const auto* bytes = static_cast<const std::byte*>(ValuesOf(from));
    attribute.bytes.assign(bytes, bytes + plain->size);
    return attribute;
}

/// A file stores only the horizontal resolution.
void TakeResolution(ImageLayout& layout) {
    if (!layout.Find("XResolution")) return;
    layout.SetReal("YResolution", layout.Real("XResolution", 0) * layout.Real("PixelAspectRatio", 1));
    layout.SetText("ResolutionUnit", "in");
}

/// The name of a layout's attribute in a file; nothing for what a file does not keep.
std::optional<std::string> NameInFile(const Attribute& attribute) {
    const std::string& name = attribute.name;
    if (Begins(name, kOwnPrefix) || strcasecmp(name.c_str(), "YResolution") == 0 ||
        strcasecmp(name.c_str(), "ICCProfile") == 0) {
        return std::nullopt;
    }
    // FixDate's number means that there is no date.
    if (strcasecmp(name.c_str(), "DateTime") == 0 && attribute.type.base != Base::kString) return std::nullopt;
    for (const auto& [theirs, ours] : kNames) {
        if (strcasecmp(name.c_str(), ours) == 0) return theirs;
    }
    return name;
}

/// The type that a name of the format always has.
std::optional<exr_attribute_type_t> TypeOfName(const std::string& name) {
    static const std::map<std::string, exr_attribute_type_t> kTypes = {
        {"aperture", EXR_ATTR_FLOAT},
        {"capDate", EXR_ATTR_STRING},
        {"chromaticities", EXR_ATTR_CHROMATICITIES},
        {"comments", EXR_ATTR_STRING},
        {"expTime", EXR_ATTR_FLOAT},
        {"owner", EXR_ATTR_STRING},
        {"pixelAspectRatio", EXR_ATTR_FLOAT},
        {"screenWindowCenter", EXR_ATTR_V2F},
        {"screenWindowWidth", EXR_ATTR_FLOAT},
        {"timeCode", EXR_ATTR_TIMECODE},
        {"xDensity", EXR_ATTR_FLOAT},
    };
    const auto found = kTypes.find(name);
    return found == kTypes.end() ? std::nullopt : std::optional(found->second);
}

std::optional<exr_attribute_type_t> TypeInFile(const Attribute& attribute) {
    if (attribute.type.base == Base::kString) {
        const bool isEmpty = std::any_of(attribute.texts.begin(), attribute.texts.end(),
                                         [](const std::string& text) { return text.empty(); });
        if (isEmpty || attribute.texts.empty()) return std::nullopt;
        return attribute.type.count == 0 ? EXR_ATTR_STRING : EXR_ATTR_STRING_VECTOR;
    }
    const PlainType* plain = PlainTypeOf(attribute.type);
    if (!plain || plain->size != attribute.bytes.size()) return std::nullopt;
    return plain->theirs;
}

/// Whether a name is the format's own in another writing than ours; what such a one means is for the image library.
bool IsMisspelled(const std::string& name) {
    constexpr const char* kOwn[] = {"aperture",
                                    "capDate",
                                    "channels",
                                    "chromaticities",
                                    "comments",
                                    "compression",
                                    "dataWindow",
                                    "displayWindow",
                                    "envmap",
                                    "expTime",
                                    "keyCode",
                                    "lineOrder",
                                    "multiView",
                                    "name",
                                    "owner",
                                    "pixelAspectRatio",
                                    "preview",
                                    "screenWindowCenter",
                                    "screenWindowWidth",
                                    "tiles",
                                    "timeCode",
                                    "type",
                                    "version",
                                    "view",
                                    "worldToCamera",
                                    "worldToNDC",
                                    "wrapmodes",
                                    "xDensity",
                                    "chunkCount"};
    return std::any_of(std::begin(kOwn), std::end(kOwn),
                       [&](const char* own) { return strcasecmp(name.c_str(), own) == 0 && name != own; });
}

constexpr std::size_t kLongestName = 255, kShortName = 31;

}  // namespace

bool TakeExrAttributes(exr_const_context_t file, ImageLayout& layout) {
    int count = 0;
    if (exr_get_attribute_count(file, 0, &count) != EXR_ERR_SUCCESS) return false;
    layout.SetText("oiio:ColorSpace", "Linear");
    for (int i = 0; i < count; ++i) {
        const exr_attribute_t* theirs = nullptr;
        if (exr_get_attribute_by_index(file, 0, EXR_ATTR_LIST_SORTED_ORDER, i, &theirs) != EXR_ERR_SUCCESS) {
            return false;
        }
        const std::string name = theirs->name;
        if (IsOneOf(kStructure, name)) continue;
        if (Begins(name, kOwnPrefix) && !IsOneOf(kColor, name)) return false;
        auto attribute = AttributeFrom(*theirs);
        if (!attribute) return false;
        // The image library has no empty texts.
        if (attribute->type.count == 0 && attribute->texts.size() == 1 && attribute->texts.front().empty()) continue;
        layout.Set(std::move(*attribute));
    }
    TakeResolution(layout);
    return true;
}

bool CanPutExrAttributes(const ImageLayout& layout) {
    return std::all_of(layout.attributes.begin(), layout.attributes.end(), [](const Attribute& attribute) {
        const auto name = NameInFile(attribute);
        if (!name) return true;
        if (name->empty() || name->size() > kLongestName || IsOneOf(kStructure, *name) || IsMisspelled(*name)) {
            return false;
        }
        const auto type = TypeInFile(attribute);
        if (!type) return false;
        const auto needed = TypeOfName(*name);
        return needed ? *needed == *type : *type != EXR_ATTR_CHROMATICITIES;
    });
}

exr_result_t PutExrAttributes(const ImageLayout& layout, exr_context_t file) {
    std::map<std::string, const Attribute*> sorted;
    for (const Attribute& attribute : layout.attributes) {
        if (const auto name = NameInFile(attribute)) sorted[*name] = &attribute;
    }
    const bool hasLong =
        std::any_of(sorted.begin(), sorted.end(), [](const auto& entry) { return entry.first.size() > kShortName; });
    if (hasLong) {
        if (const exr_result_t failed = exr_set_longname_support(file, 1)) return failed;
    }
    for (const auto& [name, attribute] : sorted) {
        exr_result_t failed = EXR_ERR_SUCCESS;
        const auto type = TypeInFile(*attribute);
        if (!type) return EXR_ERR_INVALID_ATTR;
        if (*type == EXR_ATTR_STRING) {
            failed = exr_attr_set_string(file, 0, name.c_str(), attribute->texts.front().c_str());
        } else if (*type == EXR_ATTR_STRING_VECTOR) {
            std::vector<const char*> texts;
            for (const std::string& text : attribute->texts) texts.push_back(text.c_str());
            failed =
                exr_attr_set_string_vector(file, 0, name.c_str(), static_cast<int32_t>(texts.size()), texts.data());
        } else {
            const exr_attribute_t* present = nullptr;
            exr_attribute_t* theirs = nullptr;
            if (exr_get_attribute_by_name(file, 0, name.c_str(), &present) == EXR_ERR_SUCCESS) {
                theirs = const_cast<exr_attribute_t*>(present);
            } else {
                failed = exr_attr_declare(file, 0, name.c_str(), *type, &theirs);
            }
            if (failed == EXR_ERR_SUCCESS) {
                std::memcpy(const_cast<void*>(ValuesOf(*theirs)), attribute->bytes.data(), attribute->bytes.size());
            }
        }
        if (failed != EXR_ERR_SUCCESS) return failed;
    }
    return EXR_ERR_SUCCESS;
}

}  // namespace umbrant::host

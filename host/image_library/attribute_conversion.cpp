// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image_library/attribute_conversion.h"

#include <cstring>

namespace umbrant::host {

namespace {

static_assert(static_cast<int>(AttributeType::kUint8) == OIIO::TypeDesc::UINT8 &&
              static_cast<int>(AttributeType::kInt) == OIIO::TypeDesc::INT &&
              static_cast<int>(AttributeType::kFloat) == OIIO::TypeDesc::FLOAT &&
              static_cast<int>(AttributeType::kString) == OIIO::TypeDesc::STRING);

Attribute AttributeFrom(const OIIO::ParamValue& from) {
    const OIIO::TypeDesc type = from.type();
    Attribute attribute{
        from.name().string(),
        {static_cast<AttributeType::Base>(type.basetype), type.aggregate, type.vecsemantics, type.arraylen},
        {},
        {}};
    if (type.basetype == OIIO::TypeDesc::STRING) {
        const auto* texts = static_cast<const OIIO::ustring*>(from.data());
        for (std::size_t i = 0; i < type.basevalues(); ++i) attribute.texts.push_back(texts[i].string());
        return attribute;
    }
    const auto* bytes = static_cast<const std::byte*>(from.data());
    attribute.bytes.assign(bytes, bytes + from.datasize());
    return attribute;
}

void AddAttribute(const Attribute& attribute, OIIO::ImageSpec& layout) {
    const AttributeType& from = attribute.type;
    OIIO::TypeDesc type(static_cast<OIIO::TypeDesc::BASETYPE>(from.base),
                        static_cast<OIIO::TypeDesc::AGGREGATE>(from.aggregate),
                        static_cast<OIIO::TypeDesc::VECSEMANTICS>(from.semantics), from.count);
    if (from.base != AttributeType::kString) {
        layout.attribute(attribute.name, type, attribute.bytes.data());
        return;
    }
    std::vector<OIIO::ustring> texts;
    for (const std::string& text : attribute.texts) texts.emplace_back(text);
    layout.attribute(attribute.name, type, texts.data());
}

OIIO::TypeDesc TypeOf(FileDepth depth) {
    switch (depth) {
        case FileDepth::kAuto:
        case FileDepth::k8:
            return OIIO::TypeDesc::UINT8;
        case FileDepth::k16:
            return OIIO::TypeDesc::UINT16;
        case FileDepth::kHalf:
            return OIIO::TypeDesc::HALF;
        case FileDepth::kFloat:
            return OIIO::TypeDesc::FLOAT;
    }
    return OIIO::TypeDesc::UINT8;
}

}  // namespace

ImageLayout LayoutFrom(const OIIO::ImageSpec& from) {
    ImageLayout layout;
    layout.x = from.x;
    layout.y = from.y;
    layout.width = from.width;
    layout.height = from.height;
    layout.depth = from.depth;
    layout.fullX = from.full_x;
    layout.fullY = from.full_y;
    layout.fullWidth = from.full_width;
    layout.fullHeight = from.full_height;
    layout.channels = from.channelnames;
    layout.channels.resize(static_cast<std::size_t>(std::max(0, from.nchannels)));
    layout.alphaChannel = from.alpha_channel;
    layout.channelBytes = static_cast<int>(from.format.size());
    layout.isHalf = from.format == OIIO::TypeDesc::HALF;
    layout.isDeep = from.deep;
    layout.isStraight = from.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
    for (const OIIO::ParamValue& attribute : from.extra_attribs) layout.attributes.push_back(AttributeFrom(attribute));
    return layout;
}

OIIO::ImageSpec SpecOf(const ImageToWrite& image) {
    const ImageLayout& from = image.layout;
    OIIO::ImageSpec layout(from.width, from.height, from.ChannelCount(), TypeOf(image.depth));
    for (const Attribute& attribute : from.attributes) AddAttribute(attribute, layout);
    if (from.isStraight) layout.attribute("oiio:UnassociatedAlpha", 1);
    if (!image.compression.empty()) layout.attribute("compression", image.compression);
    layout.x = from.x;
    layout.y = from.y;
    if (from.fullWidth > 0) {
        layout.full_x = from.fullX;
        layout.full_y = from.fullY;
        layout.full_width = from.fullWidth;
        layout.full_height = from.fullHeight;
    }
    return layout;
}

}  // namespace umbrant::host

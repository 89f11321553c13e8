// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/image_layout.h"

#include <strings.h>

#include <cstring>
#include <utility>

namespace umbrant::host {

namespace {

bool IsNamed(const Attribute& attribute, std::string_view name) {
    return attribute.name.size() == name.size() && strncasecmp(attribute.name.data(), name.data(), name.size()) == 0;
}

template <typename Value>
bool Take(const Attribute* attribute, AttributeType::Base base, Value& value) {
    if (!attribute || attribute->type != AttributeType{base, 1, 0, 0}) return false;
    if (attribute->bytes.size() != sizeof value) return false;
    std::memcpy(&value, attribute->bytes.data(), sizeof value);
    return true;
}

template <typename Value>
Attribute Single(const std::string& name, AttributeType::Base base, Value value) {
    Attribute attribute{name, {base, 1, 0, 0}, std::vector<std::byte>(sizeof value), {}};
    std::memcpy(attribute.bytes.data(), &value, sizeof value);
    return attribute;
}

}  // namespace

const Attribute* ImageLayout::Find(std::string_view name) const {
    for (const Attribute& attribute : attributes) {
        if (IsNamed(attribute, name)) return &attribute;
    }
    return nullptr;
}

std::string ImageLayout::Text(std::string_view name, const std::string& otherwise) const {
    const Attribute* attribute = Find(name);
    return attribute && attribute->texts.size() == 1 ? attribute->texts.front() : otherwise;
}

int ImageLayout::Number(std::string_view name, int otherwise) const {
    int value = 0;
    return Take(Find(name), AttributeType::kInt, value) ? value : otherwise;
}

float ImageLayout::Real(std::string_view name, float otherwise) const {
    float value = 0;
    return Take(Find(name), AttributeType::kFloat, value) ? value : otherwise;
}

void ImageLayout::Set(Attribute attribute) {
    for (Attribute& old : attributes) {
        if (!IsNamed(old, attribute.name)) continue;
        old = std::move(attribute);
        return;
    }
    attributes.push_back(std::move(attribute));
}

void ImageLayout::SetText(const std::string& name, const std::string& text) {
    Set({name, {AttributeType::kString, 1, 0, 0}, {}, {text}});
}

void ImageLayout::SetNumber(const std::string& name, int value) {
    Set(Single(name, AttributeType::kInt, value));
}

void ImageLayout::SetReal(const std::string& name, float value) {
    Set(Single(name, AttributeType::kFloat, value));
}

void ImageLayout::SetBytes(const std::string& name, std::span<const std::byte> bytes) {
    Set({name, {AttributeType::kUint8, 1, 0, static_cast<int>(bytes.size())}, {bytes.begin(), bytes.end()}, {}});
}

}  // namespace umbrant::host

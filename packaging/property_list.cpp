// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "packaging/property_list.h"

#include <string_view>

#include "entry/version.h"
#include "hostapi/registration.h"
#include "packaging/resource_file.h"

using namespace umbrant::effect;

namespace {

constexpr std::uint32_t kStructureVersion = 0;
constexpr std::uint32_t kPropertyId = 0;
constexpr char kVendor[] = "8BIM";
/// The version of the list's own format: 2.0.
constexpr std::uint32_t kListMajor = 2;
constexpr std::uint32_t kListMinor = 0;
/// Nothing is announced there; the host does not use it.
constexpr std::uint32_t kInfoFlags = 0;

/// The longest name that every host reads whole.
constexpr std::size_t kLongestName = 31;
static_assert(sizeof(kEffectName) - 1 <= kLongestName);
static_assert(sizeof(kEffectMatchName) - 1 <= kLongestName);
static_assert(sizeof(kEffectCategory) - 1 <= kLongestName);

class Properties {
 public:
    void Number(const char* key, std::uint32_t value) {
        BigEndianBytes data;
        data.U32(value);
        Add(key, data);
    }
    void Half(const char* key, std::uint32_t value) {
        BigEndianBytes data;
        data.U16(value);
        Add(key, data);
    }
    void Halves(const char* key, std::uint32_t first, std::uint32_t second) {
        BigEndianBytes data;
        data.U16(first);
        data.U16(second);
        Add(key, data);
    }
    /// A length byte and the characters.
    void Text(const char* key, std::string_view text) {
        BigEndianBytes data;
        data.U8(static_cast<std::uint32_t>(text.size()));
        data.Text(std::string(text));
        Add(key, data);
    }

    std::string Bytes() const {
        BigEndianBytes list;
        list.U32(kStructureVersion);
        list.U32(count_);
        list.Text(properties_.Bytes());
        return list.Bytes();
    }

 private:
    void Add(const char* key, const BigEndianBytes& data) {
        properties_.Text(kVendor);
        properties_.Text(key);
        properties_.U32(kPropertyId);
        properties_.U32(static_cast<std::uint32_t>(data.Size()));
        properties_.Text(data.Bytes());
        properties_.ZerosTo((properties_.Size() + 3) / 4 * 4);
        ++count_;
    }

    BigEndianBytes properties_;
    std::uint32_t count_ = 0;
};

}  // namespace

std::string PropertyList(Slices slices) {
    Properties list;
    list.Number("kind", static_cast<std::uint32_t>(kPluginKind_Effect));
    list.Text("name", kEffectName);
    list.Text("catg", kEffectCategory);
    list.Text("mi64", kEffectEntryPoint);
    if (slices == Slices::kUniversal) list.Text("ma64", kEffectEntryPoint);
    list.Halves("ePVR", kListMajor, kListMinor);
    list.Halves("eSVR", kRegisteredApiMajor, kRegisteredApiMinor);
    list.Number("eVER", kVersionPacked);
    list.Half("eINF", kInfoFlags);
    list.Number("eGLO", static_cast<std::uint32_t>(kOutFlags));
    list.Number("eGL2", static_cast<std::uint32_t>(kOutFlags2));
    list.Text("eMNA", kEffectMatchName);
    list.Number("aeFL", static_cast<std::uint32_t>(kRegisteredReservedInfo));
    return list.Bytes();
}

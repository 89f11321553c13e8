// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/animation/located_json.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>

#include "host/parameters/echo_text.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::json;
using Kind = LocatedJson::Kind;

constexpr int kDeepest = 64;
constexpr int kMostValues = 2'000'000;

/// The parser's message without its code, with what it read last cut to what a person reads.
std::string ProblemOf(const std::string& message) {
    const std::size_t code = message.find("] ");
    const std::string words = code == std::string::npos ? message : message.substr(code + 2);
    constexpr std::string_view kBefore = "last read: '";
    const std::size_t found = words.find(kBefore);
    if (found == std::string::npos) return EchoText(words);
    const std::size_t begin = found + kBefore.size();
    std::size_t end = words.rfind("'; expected ");
    if (end == std::string::npos || end < begin) end = words.rfind('\'');
    if (end < begin) return EchoText(words);
    return words.substr(0, begin) + EchoText(std::string_view(words).substr(begin, end - begin)) + words.substr(end);
}

/// Walks over the text and leaves word of how far the parser has read.
class CountingIterator {
 public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, const char** read) : at_(at), read_(read) {}
    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        *read_ = ++at_;
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
    bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

 private:
    const char* at_;
    const char** read_;
};

/// Builds the tree from the parser's events. A token begins at the first sign that is no separator behind the one
/// before it: the parser is never more than one character ahead, and that one is a separator or a closing bracket.
class Builder : public nlohmann::json_sax<Json> {
 public:
    Builder(const std::string& text, const char** read)
        : text_(text), read_(read), before_(text.data()), counted_(text.data()) {}

    bool null() override { return Add(Begun(Kind::kNull)); }
    bool boolean(bool value) override {
        LocatedJson boolean = Begun(Kind::kBoolean);
        boolean.boolean = value;
        return Add(std::move(boolean));
    }
    bool number_integer(number_integer_t value) override { return AddNumber(static_cast<double>(value)); }
    bool number_unsigned(number_unsigned_t value) override { return AddNumber(static_cast<double>(value)); }
    bool number_float(number_float_t value, const string_t&) override { return AddNumber(value); }
    bool string(string_t& value) override {
        LocatedJson text = Begun(Kind::kString);
        text.text = std::move(value);
        return Add(std::move(text));
    }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return Open(Kind::kObject); }
    bool start_array(std::size_t) override { return Open(Kind::kArray); }
    bool key(string_t& value) override {
        open_.back()->members.push_back({std::move(value), Next(), {}});
        return true;
    }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }
    bool parse_error(std::size_t, const std::string&, const Json::exception& error) override {
        problem = ProblemOf(error.what());
        return false;
    }

    LocatedJson root;
    std::string problem;

 private:
    /// Where the token that was just read begins.
    TextPlace Next() {
        const char* end = text_.data() + text_.size();
        const char* at = before_;
        while (at < end && std::string_view(" \t\r\n,:").find(*at) != std::string_view::npos) ++at;
        before_ = *read_;
        token_ = at;
        // Each byte of the text is counted once, however long its line is.
        for (; counted_ < at; ++counted_) {
            if (*counted_ == '\n') {
                ++place_.line;
                place_.column = 1;
            } else if ((static_cast<unsigned char>(*counted_) & 0xC0) != 0x80) {
                ++place_.column;
            }
        }
        return place_;
    }

    /// A value of the token that was just read.
    LocatedJson Begun(Kind kind) {
        LocatedJson value;
        value.kind = kind;
        value.place = Next();
        return value;
    }

    bool AddNumber(double value) {
        LocatedJson number = Begun(Kind::kNumber);
        number.number = value;
        const std::string_view rest(token_, static_cast<std::size_t>(text_.data() + text_.size() - token_));
        number.text = std::string(rest.substr(0, rest.find_first_not_of("+-.0123456789eE")));
        return Add(std::move(number));
    }

    bool Add(LocatedJson value) {
        if (!Count()) return false;
        Place() = std::move(value);
        return true;
    }

    /// Bounds the memory of a hostile text: a value takes 2 bytes of it and about a hundred here.
    bool Count() {
        if (++values_ <= kMostValues) return true;
        problem = fmt::format("more than {} values", kMostValues);
        return false;
    }

    /// Where the next value belongs.
    LocatedJson& Place() {
        if (open_.empty()) return root;
        LocatedJson& parent = *open_.back();
        if (parent.kind == Kind::kObject) return parent.members.back().value;
        return parent.items.emplace_back();
    }

    bool Open(Kind kind) {
        if (open_.size() == kDeepest) {
            problem = "nested too deeply";
            return false;
        }
        if (!Count()) return false;
        LocatedJson& value = Place();
        value.kind = kind;
        value.place = Next();
        // Parents do not grow while a child is open, so the pointer stays good.
        open_.push_back(&value);
        return true;
    }

    bool Close() {
        open_.pop_back();
        before_ = *read_;
        return true;
    }

    const std::string& text_;
    const char** read_;
    const char* before_;  ///< behind the token before
    const char* token_ = nullptr;
    const char* counted_;
    TextPlace place_{};
    int values_ = 0;
    std::vector<LocatedJson*> open_;
};

}  // namespace

const LocatedJson* LocatedJson::Find(std::string_view key) const {
    for (const Member& member : members) {
        if (member.key == key) return &member.value;
    }
    return nullptr;
}

const char* LocatedJson::KindName() const {
    switch (kind) {
        case Kind::kNull:
            return "null";
        case Kind::kBoolean:
            return "a boolean";
        case Kind::kNumber:
            return "a number";
        case Kind::kString:
            return "a string";
        case Kind::kArray:
            return "an array";
        case Kind::kObject:
            return "an object";
    }
    return "";
}

Result<LocatedJson> ParseLocatedJson(const std::string& text) {
    const char* read = text.data();
    Builder builder(text, &read);
    const CountingIterator begin(text.data(), &read);
    const CountingIterator end(text.data() + text.size(), &read);
    if (!Json::sax_parse(begin, end, &builder)) return Failure{ErrorKind::kFile, builder.problem};
    return std::move(builder.root);
}

}  // namespace umbrant::host

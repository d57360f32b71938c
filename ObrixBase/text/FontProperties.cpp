#include "ObrixBase/text/FontProperties.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace qvObrixBase {
namespace {

constexpr int kSizes[] = {8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72};

constexpr const char* kStyleNames[] = {"normal", "italic", "oblique"};
constexpr const char* kPitchNames[] = {"default", "fixed", "variable"};

unsigned char lowerAscii(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + 0x20) : c;
}

std::strong_ordering compareFamilies(std::string_view a, std::string_view b) {
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned char x = lowerAscii(static_cast<unsigned char>(a[i]));
        const unsigned char y = lowerAscii(static_cast<unsigned char>(b[i]));
        if (x != y)
            return x <=> y;
    }
    return a.size() <=> b.size();
}

template <class Enum, std::size_t N>
bool enumFromName(std::string_view name, const char* const (&names)[N], Enum& out) {
    for (std::size_t i = 0; i < N; ++i)
        if (name == names[i]) {
            out = static_cast<Enum>(i);
            return true;
        }
    return false;
}

template <class Number>
bool parseNumber(std::string_view text, Number& out) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, out);
    return error == std::errc() && stop == end && !text.empty();
}

} // namespace

std::span<const int> FontProperties::standardSizes() noexcept {
    return kSizes;
}

FontProperties::FontProperties(qvString::CString family, double size, int weight, Style style,
                               Pitch pitch)
    : family_(std::move(family)), size_(snapSize(size)), weight_(clampWeight(weight)) {
    setStyle(style);
    setPitch(pitch);
}

int FontProperties::snapSize(double points) noexcept {
    if (!(points > kSizes[0])) // NaN too
        return kSizes[0];
    const int* above = std::lower_bound(std::begin(kSizes), std::end(kSizes), points,
                                        [](int size, double p) { return size < p; });
    if (above == std::end(kSizes))
        return kSizes[std::size(kSizes) - 1];
    const int below = above[-1];
    return *above - points <= points - below ? *above : below;
}

int FontProperties::clampWeight(int weight) noexcept {
    if (weight <= MinWeight)
        return MinWeight;
    if (weight >= MaxWeight)
        return MaxWeight;
    return (weight + 50) / 100 * 100;
}

void FontProperties::setStyle(Style style) noexcept {
    style_ = static_cast<Style>(std::clamp(static_cast<int>(style), 0, 2));
}

void FontProperties::setPitch(Pitch pitch) noexcept {
    pitch_ = static_cast<Pitch>(std::clamp(static_cast<int>(pitch), 0, 2));
}

bool operator==(const FontProperties& a, const FontProperties& b) noexcept {
    return (a <=> b) == 0;
}

std::strong_ordering operator<=>(const FontProperties& a, const FontProperties& b) noexcept {
    if (auto order = compareFamilies(a.family_, b.family_); order != 0)
        return order;
    if (auto order = a.size_ <=> b.size_; order != 0)
        return order;
    if (auto order = a.weight_ <=> b.weight_; order != 0)
        return order;
    if (auto order = a.style_ <=> b.style_; order != 0)
        return order;
    return a.pitch_ <=> b.pitch_;
}

qvString::CString FontProperties::toText() const {
    qvString::CString text = "family=";
    for (char c : family_) {
        if (c == '\\' || c == ';')
            text += '\\';
        if (c == '\n') {
            text += "\\n";
            continue;
        }
        text += c;
    }
    text += ";size=" + std::to_string(size_) + ";weight=" + std::to_string(weight_) +
            ";style=" + kStyleNames[static_cast<int>(style_)] +
            ";pitch=" + kPitchNames[static_cast<int>(pitch_)];
    return text;
}

qvUtil::Error FontProperties::fromText(std::string_view text, FontProperties& font) {
    FontProperties read;
    bool seen[5] = {};
    static constexpr const char* kFields[] = {"family", "size", "weight", "style", "pitch"};
    std::size_t at = 0;
    while (at <= text.size()) {
        // One field up to the next unescaped ';'; escapes are undone in the value.
        std::string field;
        bool escaped = false;
        for (; at < text.size(); ++at) {
            const char c = text[at];
            if (escaped) {
                field += c == 'n' ? '\n' : c;
                escaped = false;
            } else if (c == '\\') {
                escaped = true;
            } else if (c == ';') {
                break;
            } else {
                field += c;
            }
        }
        ++at; // past the ';'
        if (field.empty() && at > text.size() && text.empty())
            break; // "" is the default font
        const std::size_t equals = field.find('=');
        if (equals == std::string::npos)
            return {ParseError, "font text: field \"%s\" has no '='", field.c_str()};
        const std::string key = field.substr(0, equals);
        const std::string_view value = std::string_view(field).substr(equals + 1);
        const auto* slot = std::find_if(std::begin(kFields), std::end(kFields),
                                        [&](const char* name) { return key == name; });
        if (slot == std::end(kFields))
            return {ParseError, "font text: unknown field \"%s\"", key.c_str()};
        bool& once = seen[slot - std::begin(kFields)];
        if (once)
            return {ParseError, "font text: field \"%s\" given twice", key.c_str()};
        once = true;
        bool ok = true;
        if (key == "family") {
            read.family_ = qvString::CString(value);
        } else if (key == "size") {
            double size = 0;
            ok = parseNumber(value, size);
            read.setSize(size);
        } else if (key == "weight") {
            int weight = 0;
            ok = parseNumber(value, weight);
            read.setWeight(weight);
        } else if (key == "style") {
            ok = enumFromName(value, kStyleNames, read.style_);
        } else {
            ok = enumFromName(value, kPitchNames, read.pitch_);
        }
        if (!ok)
            return {ParseError, "font text: bad %s \"%s\"", key.c_str(),
                    std::string(value).c_str()};
    }
    font = std::move(read);
    return {};
}

} // namespace qvObrixBase

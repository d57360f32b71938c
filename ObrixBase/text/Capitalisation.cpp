#include "ObrixBase/text/Capitalisation.h"

#include <cstring>

namespace qvObrixBase {
namespace {

using Byte = unsigned char;

// What one character is to the capitalisation rules. Uncased letters, digits and bytes that
// are not valid UTF-8 are `Other`: part of a word, never changed.
enum class Kind { Space, LineBreak, Punct, Upper, Lower, Other };

struct Char {
    Kind kind;
    int length; // bytes
};

bool isContinuation(const Byte* p, const Byte* end) {
    return p < end && (*p & 0xC0) == 0x80;
}

Char classify(const Byte* p, const Byte* end) {
    const Byte b = *p;
    if (b < 0x80) {
        if (b == '\n')
            return {Kind::LineBreak, 1};
        if (b == ' ' || b == '\t' || b == '\r' || b == '\f' || b == '\v')
            return {Kind::Space, 1};
        if (b >= 'A' && b <= 'Z')
            return {Kind::Upper, 1};
        if (b >= 'a' && b <= 'z')
            return {Kind::Lower, 1};
        if (b >= '0' && b <= '9')
            return {Kind::Other, 1};
        return {Kind::Punct, 1};
    }
    if (b == 0xC2 && isContinuation(p + 1, end)) // U+0080-U+00BF: Latin-1 signs and quotes
        return {Kind::Punct, 2};
    if (b == 0xC3 && isContinuation(p + 1, end)) { // U+00C0-U+00FF: the accented letters
        const Byte c = p[1];
        if (c == 0x97 || c == 0xB7) // multiplication and division signs
            return {Kind::Punct, 2};
        if (c <= 0x9E)
            return {Kind::Upper, 2};
        if (c == 0x9F || c == 0xBF) // sharp s and y diaeresis: no one-for-one capital
            return {Kind::Other, 2};
        return {Kind::Lower, 2};
    }
    if (b == 0xE2 && p + 2 < end && (p[1] == 0x80 || p[1] == 0x81) && isContinuation(p + 2, end))
        return {Kind::Punct, 3}; // the general punctuation block: dashes, curly quotes
    return {Kind::Other, 1};
}

// Upper and lower case sit 0x20 apart both in ASCII and in the second byte of U+00C0-U+00FE.
void setCase(Byte* p, Kind from, Kind to) {
    if (from == to || (from != Kind::Upper && from != Kind::Lower))
        return;
    Byte& cased = *p < 0x80 ? p[0] : p[1];
    cased = static_cast<Byte>(to == Kind::Upper ? cased - 0x20 : cased + 0x20);
}

// The letters of a word part without the punctuation around it.
struct Core {
    Byte* begin;
    Byte* end;
    Char first;
    bool capitalInside; // a capital after the first character: the word is left alone
};

Core coreOf(Byte* begin, Byte* end) {
    Byte* b = begin;
    Char c{};
    while (b < end && (c = classify(b, end)).kind == Kind::Punct)
        b += c.length;
    Core core{b, b, c, false};
    if (b == end)
        return core;
    Byte* lastNonPunct = b + c.length;
    for (Byte* p = b + c.length; p < end;) {
        const Char k = classify(p, end);
        p += k.length;
        if (k.kind != Kind::Punct)
            lastNonPunct = p;
        if (k.kind == Kind::Upper)
            core.capitalInside = true;
    }
    core.end = lastNonPunct;
    return core;
}

// The core in ASCII lower case into `out` (at most `capacity` - 1 bytes); false when it does
// not fit or holds non-ASCII bytes.
bool lowerAscii(const Core& core, char* out, std::size_t capacity) {
    const std::size_t n = static_cast<std::size_t>(core.end - core.begin);
    if (n >= capacity)
        return false;
    for (std::size_t i = 0; i < n; ++i) {
        const Byte b = core.begin[i];
        if (b >= 0x80 || b == 0)
            return false;
        out[i] = static_cast<char>(b >= 'A' && b <= 'Z' ? b + 0x20 : b);
    }
    out[n] = '\0';
    return true;
}

bool isSmallWord(const Core& core) {
    // By length, so that most words (five letters and more) are settled by one comparison.
    static const char* const byLength[5][11] = {
        {},
        {"a"},
        {"an", "or", "so", "as", "at", "by", "in", "of", "on", "to", "vs"},
        {"the", "and", "but", "nor", "for", "yet", "off", "per", "via"},
        {"from", "into", "onto", "upon", "with"},
    };
    const std::ptrdiff_t n = core.end - core.begin;
    char lower[8];
    if (n > 4 || !lowerAscii(core, lower, sizeof lower))
        return false;
    for (const char* word : byLength[n])
        if (word && std::strcmp(lower, word) == 0)
            return true;
    return false;
}

// The pronoun I: "I", "i", and contractions such as "I'm" (straight or curly apostrophe).
bool isPronounI(const Core& core) {
    const Byte first = *core.begin;
    if (first != 'I' && first != 'i')
        return false;
    const std::ptrdiff_t n = core.end - core.begin;
    return n == 1 || core.begin[1] == '\'' ||
           (n >= 4 && core.begin[1] == 0xE2 && core.begin[2] == 0x80 && core.begin[3] == 0x99);
}

// True when the word's last character, closing quotes and brackets aside, is one of `marks`.
bool endsWithMark(const Byte* begin, const Byte* end, const char* marks) {
    const Byte* p = end;
    while (p > begin) {
        const Byte b = p[-1];
        if (b == '"' || b == '\'' || b == ')' || b == ']' || b == '}') {
            --p;
        } else if (p - begin >= 3 && p[-3] == 0xE2 && p[-2] == 0x80 && (b == 0x99 || b == 0x9D)) {
            p -= 3; // a closing curly quote
        } else {
            return b < 0x80 && b != 0 && std::strchr(marks, b) != nullptr;
        }
    }
    return false;
}

enum class Style { Title, Sentence };

template <class PartFn>
void forEachWord(Byte* s, Byte* end, PartFn&& onWord) {
    for (Byte* p = s; p < end;) {
        const Char c = classify(p, end);
        if (c.kind == Kind::Space || c.kind == Kind::LineBreak) {
            onWord(p, p, c.kind == Kind::LineBreak);
            p += c.length;
            continue;
        }
        Byte* wordEnd = p;
        while (wordEnd < end) {
            const Char k = classify(wordEnd, end);
            if (k.kind == Kind::Space || k.kind == Kind::LineBreak)
                break;
            wordEnd += k.length;
        }
        onWord(p, wordEnd, false);
        p = wordEnd;
    }
}

qvString::CString capitalise(std::string_view text, Style style) {
    qvString::CString out(text);
    Byte* const s = reinterpret_cast<Byte*>(out.data());
    Byte* const end = s + out.size();
    bool starts = true; // the next word opens a title (part) or a sentence

    forEachWord(s, end, [&](Byte* begin, Byte* wordEnd, bool lineBreak) {
        if (begin == wordEnd) {
            if (lineBreak && style == Style::Title)
                starts = true;
            return;
        }
        const bool endsPart = endsWithMark(begin, wordEnd, style == Style::Title ? ":?!" : ".?!");
        bool isLast = false;
        if (style == Style::Title) {
            isLast = endsPart;
            Byte* next = wordEnd;
            while (next < end && classify(next, end).kind == Kind::Space)
                ++next;
            isLast = isLast || next == end || *next == '\n';
        }
        Core lastCore{nullptr, nullptr, {}, true};
        for (Byte* part = begin; part <= wordEnd;) {
            Byte* partEnd = static_cast<Byte*>(
                std::memchr(part, '-', static_cast<std::size_t>(wordEnd - part)));
            if (!partEnd)
                partEnd = wordEnd;
            const Core core = coreOf(part, partEnd);
            if (core.begin != core.end) {
                if (!core.capitalInside) {
                    Kind want;
                    if (style == Style::Title)
                        want = starts || !isSmallWord(core) ? Kind::Upper : Kind::Lower;
                    else
                        want = starts || isPronounI(core) ? Kind::Upper : Kind::Lower;
                    setCase(core.begin, core.first.kind, want);
                }
                starts = false;
                lastCore = core;
            }
            part = partEnd + 1;
        }
        // The last word of a title is capitalised even when small ("What It Is For").
        if (isLast && !lastCore.capitalInside)
            setCase(lastCore.begin, classify(lastCore.begin, end).kind, Kind::Upper);
        // A word of punctuation alone ("--") leaves the opening to the word after it.
        starts = starts || endsPart;
    });
    return out;
}

} // namespace

qvString::CString titleCase(std::string_view text) {
    return capitalise(text, Style::Title);
}

qvString::CString sentenceCase(std::string_view text) {
    return capitalise(text, Style::Sentence);
}

} // namespace qvObrixBase

#include "Texts/Shown.h"

#include "Texts/Utf8.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace velmorquit {

namespace {

constexpr char32_t replacement = 0xFFFD;
/// More than any living script puts on one letter.
constexpr int mostMarks = 4;

struct Range {
    char32_t first;
    char32_t last;
};

/// Blanks, and characters that at most break the line.
constexpr std::array<Range, 9> blanks{{{0x00, 0x20},
                                       {0x7F, 0xA0},
                                       {0x1680, 0x1680},
                                       {0x2000, 0x200A},
                                       {0x2028, 0x2029},
                                       {0x202F, 0x202F},
                                       {0x205F, 0x205F},
                                       {0x2800, 0x2800},
                                       {0x3000, 0x3000}}};

/// Characters without a shape that hide something, or reverse the direction of the text after them.
constexpr std::array<Range, 18> hidden{{{0xAD, 0xAD},
                                        {0x034F, 0x034F},
                                        {0x061C, 0x061C},
                                        {0x115F, 0x1160},
                                        {0x17B4, 0x17B5},
                                        {0x180E, 0x180E},
                                        {0x200B, 0x200B},
                                        {0x200E, 0x200F},
                                        {0x202A, 0x202E},
                                        {0x2060, 0x206F},
                                        {0x3164, 0x3164},
                                        {0xFEFF, 0xFEFF},
                                        {0xFFA0, 0xFFA0},
                                        {0xFFF0, 0xFFFB},
                                        {0x1BCA0, 0x1BCA3},
                                        {0x1D173, 0x1D17A},
                                        {0xE0000, 0xE00FF},
                                        {0xE01F0, 0xE0FFF}}};

/// Select the shape of the character before them.
constexpr std::array<Range, 4> selectors{
    {{0x180B, 0x180D}, {0x180F, 0x180F}, {0xFE00, 0xFE0F}, {0xE0100, 0xE01EF}}};

/// Marks over, under or through the letter before them, which can be repeated without limit.
constexpr std::array<Range, 41> marks{
    {{0x0300, 0x036F},  {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x05BF, 0x05BF}, {0x05C1, 0x05C2},
     {0x05C4, 0x05C5},  {0x05C7, 0x05C7}, {0x0610, 0x061A}, {0x064B, 0x065F}, {0x0670, 0x0670},
     {0x06D6, 0x06DC},  {0x06DF, 0x06E4}, {0x06E7, 0x06E8}, {0x06EA, 0x06ED}, {0x0711, 0x0711},
     {0x0730, 0x074A},  {0x07EB, 0x07F3}, {0x0816, 0x0819}, {0x08CA, 0x08E1}, {0x08E3, 0x08FF},
     {0x0951, 0x0954},  {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x0EB1, 0x0EB1},
     {0x0EB4, 0x0EBC},  {0x0EC8, 0x0ECE}, {0x135D, 0x135F}, {0x1AB0, 0x1AFF}, {0x1B6B, 0x1B73},
     {0x1CD0, 0x1CE8},  {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0x2CEF, 0x2CF1}, {0x2DE0, 0x2DFF},
     {0x302A, 0x302D},  {0x3099, 0x309A}, {0xA66F, 0xA67D}, {0xA8E0, 0xA8F1}, {0xFE20, 0xFE2F},
     {0x1D165, 0x1D172}}};

enum class Kind { visible, blank, hidden, joiner, selector, mark };

bool isIn(char32_t code, std::span<const Range> ranges) {
    return std::ranges::any_of(
        ranges, [code](Range range) { return code >= range.first && code <= range.last; });
}

Kind kindOf(char32_t code) {
    if (code > 0x20 && code < 0x7F)
        return Kind::visible;
    if (isIn(code, blanks))
        return Kind::blank;
    if (isIn(code, hidden))
        return Kind::hidden;
    if (code == 0x200C || code == 0x200D)
        return Kind::joiner;
    if (isIn(code, selectors))
        return Kind::selector;
    return isIn(code, marks) ? Kind::mark : Kind::visible;
}

bool isNoCharacter(char32_t code) {
    return (code & 0xFFFE) == 0xFFFE || (code >= 0xFDD0 && code <= 0xFDEF);
}

/// Takes the first character off. An invalid one counts as a replacement character and takes as
/// many bytes as were well-formed.
char32_t takeCharacter(std::string_view& text) {
    const Utf8Character first = firstCharacter(text);
    text.remove_prefix(first.size);
    return first.isValid && !isNoCharacter(first.code) ? first.code : replacement;
}

void append(std::string& text, char32_t code) {
    const auto add = [&](char32_t byte) { text += static_cast<char>(byte); };
    const auto follow = [&](int shift) { add(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        add(code);
    } else if (code < 0x800) {
        add(0xC0 | code >> 6);
        follow(0);
    } else if (code < 0x10000) {
        add(0xE0 | code >> 12);
        follow(6);
        follow(0);
    } else {
        add(0xF0 | code >> 18);
        follow(12);
        follow(6);
        follow(0);
    }
}

/// Builds a text from the characters of another.
class Writing {
public:
    explicit Writing(std::size_t most) : most_(std::max<std::size_t>(most, 1)) {}

    void add(char32_t code) {
        switch (kindOf(code)) {
        case Kind::visible:
            addVisible(code);
            break;
        case Kind::blank:
            addGap();
            break;
        case Kind::hidden:
            break;
        case Kind::joiner:
            // Joiners matter between letters of other scripts; here they could only hide something.
            joiner_ = base_ >= 0x80 ? code : 0;
            break;
        case Kind::selector:
            if (base_ != 0 && !std::exchange(isSelected_, true))
                append(text_, code);
            break;
        case Kind::mark:
            if (base_ != 0 && marks_++ < mostMarks)
                append(text_, code);
            break;
        }
    }

    /// A blank or a line feed that stays in place.
    void addLayout(char32_t code) {
        put(code);
        base_ = joiner_ = 0;
    }

    [[nodiscard]] bool isFull() const { return isFull_; }
    std::string text() && { return std::move(text_); }

private:
    void addVisible(char32_t code) {
        if (std::exchange(hasGap_, false))
            put(' ');
        if (joiner_ != 0 && base_ != 0 && code >= 0x80 && !isFull_)
            append(text_, joiner_);
        put(code);
        base_ = code;
        joiner_ = 0;
        marks_ = 0;
        isSelected_ = false;
    }

    void addGap() {
        hasGap_ = !text_.empty();
        base_ = joiner_ = 0;
    }

    // The ellipsis replaces the last character, with all marks on it.
    void put(char32_t code) {
        if (count_ + 1 == most_)
            end_ = text_.size();
        if (count_++ < most_) {
            append(text_, code);
        } else if (!std::exchange(isFull_, true)) {
            text_.resize(end_);
            while (text_.ends_with(' '))
                text_.pop_back();
            text_ += "…";
        }
    }

    std::size_t most_;
    std::string text_;
    std::size_t count_ = 0;
    /// Length of the text when it had room for one more character.
    std::size_t end_ = 0;
    /// The character that a mark would apply to; 0 without one.
    char32_t base_ = 0;
    char32_t joiner_ = 0;
    int marks_ = 0;
    bool isSelected_ = false;
    bool hasGap_ = false;
    bool isFull_ = false;
};

} // namespace

std::string shownText(std::string_view text, std::size_t most) {
    Writing writing(most);
    while (!text.empty() && !writing.isFull())
        writing.add(takeCharacter(text));
    return std::move(writing).text();
}

std::string shownName(std::string_view name) { return shownText(name, longestShownName); }

std::string shownLines(std::string_view text) {
    constexpr std::size_t most = 65536;
    Writing writing(most);
    while (!text.empty() && !writing.isFull()) {
        const char32_t code = takeCharacter(text);
        const bool isBreak = code == 0x2028 || code == 0x2029;
        if (code == '\n' || (code >= 0xA0 && !isBreak && kindOf(code) == Kind::blank))
            writing.addLayout(code);
        else if (kindOf(code) == Kind::blank)
            writing.addLayout(' ');
        else
            writing.add(code);
    }
    return std::move(writing).text();
}

std::string shownJson(std::string_view json) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    const auto escape = [&](char32_t unit) {
        text += "\\u";
        for (const int shift : {12, 8, 4, 0})
            text += digits[unit >> shift & 0xF];
    };
    while (!json.empty()) {
        const char32_t code = takeCharacter(json);
        const Kind kind = kindOf(code);
        if (code == ' ' || kind == Kind::visible || kind == Kind::mark) {
            append(text, code);
        } else if (code < 0x10000) {
            escape(code);
        } else {
            escape(0xD800 + ((code - 0x10000) >> 10));
            escape(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    return text;
}

} // namespace velmorquit

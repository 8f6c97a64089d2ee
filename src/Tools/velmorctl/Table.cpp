#include "Table.h"

#include <QString>

#include <algorithm>
#include <unicode/uchar.h>
#include <utility>

namespace velmorquit {

namespace {

/// How many columns of a terminal a character takes.
std::size_t widthOf(char32_t character) {
    const auto code = static_cast<UChar32>(character);
    constexpr std::uint32_t joining = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK;
    if ((U_GET_GC_MASK(code) & joining) != 0)
        return 0;
    const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

std::size_t widthOf(const std::string& text) {
    std::size_t width = 0;
    for (const char32_t character : QString::fromStdString(text).toStdU32String())
        width += widthOf(character);
    return width;
}

} // namespace

void Table::add(Row row) { rows_.push_back(std::move(row)); }

std::string Table::text() const {
    std::vector<std::size_t> widths(columns_.size());
    for (const Row& row : rows_) {
        for (std::size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], widthOf(row[column]));
    }
    std::string text;
    for (const Row& row : rows_) {
        std::string line;
        for (std::size_t column = 0; column < widths.size(); ++column) {
            const std::string blanks(widths[column] - widthOf(row[column]), ' ');
            const bool isLeft = columns_[column] == Align::left;
            line += "  " + (isLeft ? row[column] + blanks : blanks + row[column]);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

} // namespace velmorquit

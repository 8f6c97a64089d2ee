#include "Services/MacInfo.h"

#include "Texts/Shown.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace velmorquit::MacInfo {

namespace {

std::string without(std::string text, std::string_view part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part))
        text.erase(at, part.size());
    return text;
}

std::vector<std::string> words(const std::string& text) {
    std::vector<std::string> found;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        if (end > begin)
            found.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return found;
}

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

std::string plain(std::string_view brand) {
    return without(without(std::string(brand), "(R)"), "(TM)");
}

std::string intelName(std::string_view brand) {
    for (const std::string& word : words(plain(brand))) {
        if (word.size() >= 2 && word[0] == 'i' && isDigit(word[1]))
            return "Intel Core " + word.substr(0, word.find('-'));
    }
    return "Intel";
}

/// Maker and model; the rest ("8-Core Processor", "with Radeon Graphics") adds nothing.
std::string amdName(std::string_view brand) {
    std::string name;
    for (const std::string& word : words(plain(brand))) {
        if (word == "Processor" || word == "with" || word == "w/" || word.ends_with("-Core"))
            break;
        name += (name.empty() ? "" : " ") + word;
    }
    return name;
}

} // namespace

std::string chipName(std::string_view brand) {
    if (brand.starts_with("Apple"))
        return std::string(brand);
    if (brand.find("Intel") != std::string_view::npos)
        return intelName(brand);
    if (brand.find("AMD") != std::string_view::npos)
        return amdName(brand);
    return "Apple Silicon";
}

Handle load(MainLoop& loop, const Kernel& kernel,
            std::function<void(const std::string& line)> completion) {
    auto line = std::make_shared<std::string>();
    return loop.background(
        [line, &kernel] {
            *line = shownText(kernel.machineModel().value_or("Mac") + " · " +
                              chipName(kernel.processorBrand()));
        },
        [line, completion = std::move(completion)] { completion(*line); });
}

} // namespace velmorquit::MacInfo

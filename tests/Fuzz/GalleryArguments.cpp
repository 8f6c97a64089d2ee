#include "CommandLine.h"
#include "Fuzz/Fuzz.h"

using namespace velmorquit;

/// The words behind velmorquit-gallery, a line each.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    QStringList arguments;
    for (const std::string& word : fuzz::split(text, '\n'))
        arguments << QString::fromLocal8Bit(QByteArray::fromStdString(word));
    const auto read = parseCommandLine(arguments);
    if (const auto* line = std::get_if<CommandLine>(&read)) {
        fuzz::require(!line->languages.empty() && !line->scales.empty(), "something is drawn");
        for (const int scale : line->scales)
            fuzz::require(scale == 1 || scale == 2, "at a scale that there is");
    } else {
        fuzz::require(!std::get<std::string>(read).empty(), "what is wrong is said");
    }
    return 0;
}

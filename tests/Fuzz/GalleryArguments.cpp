#include "CommandLine.h"
#include "Fuzz/Fuzz.h"

/// The words behind velmorquit-gallery, a line each.
void velmorquit::fuzz::examine(std::string_view bytes) {
    QStringList arguments;
    for (const std::string& word : split(bytes, '\n'))
        arguments << QString::fromLocal8Bit(QByteArray::fromStdString(word));
    const auto read = parseCommandLine(arguments);
    if (const auto* line = std::get_if<CommandLine>(&read)) {
        require(!line->languages.empty() && !line->scales.empty(), "something is drawn");
        for (const int scale : line->scales)
            require(scale == 1 || scale == 2, "at a scale that there is");
    } else {
        require(!std::get<std::string>(read).empty(), "what is wrong is said");
    }
}

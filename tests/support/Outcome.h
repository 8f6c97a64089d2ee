#pragma once

#include "support/Child.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmorquit {

using Words = std::vector<std::string>;

/// How a command ended, and all that it printed.
struct Outcome {
    int status = -1;
    std::string text;

    friend void PrintTo(const Outcome& outcome, std::ostream* stream) {
        *stream << "status " << outcome.status << ", «" << outcome.text << "»";
    }
};

/// Waits, very patiently, for the end of a command.
inline Outcome outcomeOf(Child& command) {
    const auto hasEnded = [&] {
        static_cast<void>(command.output()); // a full pipe would hold it up
        return !command.isRunning();
    };
    if (!waitUntil(hasEnded, 120000))
        throw std::runtime_error("a command goes on: " + command.output());
    return {command.status(), command.output()};
}

/// Runs a command to its end.
inline Outcome run(const Words& command) {
    Child child(command);
    return outcomeOf(child);
}

/// Matches the outcome with that status and a text that matches.
template <class Text> auto ends(int status, const Text& text) {
    return testing::AllOf(testing::Field("status", &Outcome::status, status),
                          testing::Field("text", &Outcome::text, text));
}

/// Empty where there is no such file.
inline std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Folders on the way there are made.
inline void write(const std::filesystem::path& file, const std::string& contents) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
}

} // namespace velmorquit

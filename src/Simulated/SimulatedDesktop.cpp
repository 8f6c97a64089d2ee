#include "Simulated/SimulatedDesktop.h"

#include <iomanip>
#include <sstream>

namespace velmorquit {

SimulatedDesktop::SimulatedDesktop() = default;

SimulatedApplication& SimulatedDesktop::open(std::string name, std::uint64_t memory) {
    const ProcessId id = nextId_++;
    auto application = std::make_shared<SimulatedApplication>(
        id, std::move(name), memory,
        SimulatedApplication::Surroundings{
            .loop = loop,
            .log = [this](std::string_view what) { write(what); },
            .ended = [this, id] { workspace.tell(WorkspaceEvent::terminated, id); },
            .policyChanged = [this, id] { workspace.tell(WorkspaceEvent::policyChanged, id); }});
    workspace.add(application);
    return *application;
}

void SimulatedDesktop::write(std::string_view what) {
    const auto seconds = std::chrono::duration<double>(loop.uptime() - logStart_);
    std::ostringstream line;
    line << std::fixed << std::setprecision(2) << seconds.count() << ' ' << what;
    lines_.push_back(line.str());
}

void SimulatedDesktop::startLog() {
    lines_.clear();
    logStart_ = loop.uptime();
}

std::string SimulatedDesktop::log() const {
    std::string text;
    for (const std::string& line : lines_)
        text += line + '\n';
    return text;
}

Desktop SimulatedDesktop::ports(const Formats& userFormats) {
    return ports(userFormats, loginWindow);
}

Desktop SimulatedDesktop::ports(const Formats& userFormats, LoginWindow& endsSessions) {
    return {loop,      preferences,
            workspace, kernel,
            systemLog, remote,
            program,   userFormats,
            volumes,   endsSessions,
            sleepHold, backupTool,
            files,     {.program = "/tool", .destinations = SimulatedFiles::destinations}};
}

} // namespace velmorquit

#pragma once

#include "Remote/Fields.h"
#include "Remote/Status.h"

namespace velmorquit::remote {

[[nodiscard]] Json encode(const Application& application);
[[nodiscard]] Json encode(const std::vector<Application>& applications);
/// With the reason why each stays.
[[nodiscard]] Json encodeStubborn(const std::vector<Application>& applications);
[[nodiscard]] Json encode(const RunState& run);
[[nodiscard]] Json encode(const std::optional<Schedule>& schedule);
[[nodiscard]] Json encode(const std::optional<Ending>& ending);
[[nodiscard]] Json encode(const std::vector<Drive>& drives);
[[nodiscard]] Json encode(const std::vector<SavedApp>& apps);
[[nodiscard]] Json encode(const Status& status);

/// Reading the statements of another process: every field that makes no sense is neutral, an
/// unknown phase is idle, and texts are made fit for display.
[[nodiscard]] Application decodeApplication(const Json& json);
[[nodiscard]] RunState decodeRun(const Json& json);
[[nodiscard]] std::optional<Schedule> decodeSchedule(const Json& json);
[[nodiscard]] std::optional<Ending> decodeEnding(const Json& json);
[[nodiscard]] Status decodeStatus(const Json& json);

/// The applications in the field `key`.
[[nodiscard]] std::vector<Application> decodeApplications(const Json& json, const char* key);

/// Whether it has the fields that every status has.
[[nodiscard]] bool isStatus(const Json& json);

} // namespace velmorquit::remote

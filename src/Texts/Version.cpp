#include "Texts/Version.h"

namespace velmorquit {

std::string versionLine(std::string_view program) {
    return std::string(program) + " " VELMOR_VERSION;
}

} // namespace velmorquit

#pragma once

#include "Platform/Application.h"

namespace velmorquit {

/// This program as a Qt application.
class QtProgram final : public Application {
public:
    void terminate() override;
};

} // namespace velmorquit

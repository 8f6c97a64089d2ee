#include "Linux/Log/JournalLog.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

TEST(JournalLog, WritesOneLineWhateverIsInIt) {
    testing::internal::CaptureStderr();
    JournalLog().write("Velmor Quit: aspetto a\nVelmor Quit: b\x1b[31m\xff");
    JournalLog().write(std::string(1 << 20, 'x'));
    const std::string written = testing::internal::GetCapturedStderr();
    const std::size_t end = written.find('\n');
    EXPECT_EQ(written.substr(0, end), "Velmor Quit: aspetto a Velmor Quit: b [31m\ufffd");
    EXPECT_LT(written.size(), 2100U);
    EXPECT_TRUE(written.ends_with("…\n"));
}

} // namespace
} // namespace velmorquit

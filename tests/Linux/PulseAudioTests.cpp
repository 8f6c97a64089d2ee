#include "Linux/Loop/QtMainLoop.h"
#include "Linux/Sound/PulseAudioProcesses.h"
#include "support/Child.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>

namespace velmorquit {
namespace {

using Ids = std::set<ProcessId>;

/// A sound server of its own, with an output that nobody hears.
class PulseAudioTest : public testing::Test {
protected:
    PulseAudioTest() { ::setenv("PULSE_SERVER", ("unix:" + socket()).c_str(), 1); }
    ~PulseAudioTest() override {
        server_.reset();
        ::unsetenv("PULSE_SERVER");
    }

    void SetUp() override {
        if (std::system("command -v pulseaudio >/dev/null") != 0)
            GTEST_SKIP() << "another sound server is in PulseAudio's place";
    }

    void startServer() {
        server_ = std::make_unique<Child>(std::vector<std::string>{
            "env", "XDG_RUNTIME_DIR=" + folder_, "HOME=" + folder_, "pulseaudio", "-n",
            "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--disable-shm=yes", "-L",
            "module-native-protocol-unix auth-anonymous=1 socket=" + socket(), "-L",
            "module-null-sink sink_name=silence"});
        EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(socket()); }))
            << server_->output();
    }

    Ids busy() {
        std::optional<Ids> answer;
        audio.busyProcesses(
            [&](const auto& processes) { answer.emplace(processes.begin(), processes.end()); });
        EXPECT_FALSE(answer) << "never within the question";
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer.value_or(Ids{-1});
    }

    [[nodiscard]] std::string socket() const { return folder_ + "/native"; }

    QtMainLoop loop;
    PulseAudioProcesses audio{loop};
    std::unique_ptr<Child> server_;

private:
    const TemporaryFolder temporary_{"velmor-sound."};
    const std::string folder_ = temporary_.path();
};

TEST_F(PulseAudioTest, TellsWhoPlaysAndWhoRecordsForAsLongAsTheyDo) {
    startServer();
    EXPECT_TRUE(busy().empty());
    auto player = std::make_unique<Child>(
        std::vector<std::string>{"pacat", "--playback", "--raw", "/dev/zero"});
    auto recorder = std::make_unique<Child>(
        std::vector<std::string>{"pacat", "--record", "--raw", "/dev/null"});
    EXPECT_TRUE(waitUntil([&] { return busy() == Ids{player->id(), recorder->id()}; }));
    recorder.reset();
    EXPECT_TRUE(waitUntil([&] { return busy() == Ids{player->id()}; }));
    player.reset();
    EXPECT_TRUE(waitUntil([&] { return busy().empty(); }));
}

TEST_F(PulseAudioTest, WithoutAServerOrWithOneThatHangsItSaysNobody) {
    EXPECT_TRUE(busy().empty());
    startServer();
    server_->send(SIGSTOP);
    EXPECT_TRUE(busy().empty());
}

} // namespace
} // namespace velmorquit

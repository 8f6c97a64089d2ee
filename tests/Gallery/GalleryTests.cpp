#include "support/Outcome.h"
#include "support/TemporaryFolder.h"

#include <QImage>

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace velmorquit {
namespace {

using testing::_;

class Gallery : public testing::Test {
protected:
    Gallery() { ::setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1); }

    static Outcome draw(const Words& words, const Words& environment = {}) {
        Words command{"env"};
        command.insert(command.end(), environment.begin(), environment.end());
        command.emplace_back(VELMORQUIT_GALLERY);
        command.insert(command.end(), words.begin(), words.end());
        return run(command);
    }
    [[nodiscard]] QImage picture(const std::string& file) const {
        const QImage image(QString::fromStdString(folder.path() / file));
        EXPECT_FALSE(image.isNull()) << file;
        return image;
    }

    const TemporaryFolder folder;
};

TEST_F(Gallery, drawsTheSameWhoeverLooksAndWhereverInBothLanguagesAndAtBothScales) {
    Words words{"--out", folder.path() / "here", "panel-quitting", "panel-schedule"};
    ASSERT_THAT(draw(words), ends(0, _));
    words[1] = folder.path() / "elsewhere";
    ASSERT_THAT(draw(words, {"TZ=Asia/Tokyo", "LC_ALL=en_GB.UTF-8", "LANGUAGE=en", "DISPLAY=:77",
                             "QT_SCALE_FACTOR=1.5", "QT_QPA_PLATFORM=xcb"}),
                ends(0, _));
    EXPECT_THAT(run({"diff", "-r", folder.path() / "here", folder.path() / "elsewhere"}),
                ends(0, ""));
    const QImage plain = picture("here/it/panel-quitting.png");
    EXPECT_EQ(picture("here/it/panel-quitting@2x.png").size(), plain.size() * 2);
    EXPECT_NE(picture("here/en/panel-quitting.png"), plain);
}

TEST_F(Gallery, everyPictureShowsAnotherState) {
    std::istringstream names(draw({"--list"}).text);
    ASSERT_THAT(draw({"--language", "it", "--scale", "1", "--out", folder.path()}), ends(0, _));
    std::map<std::vector<uchar>, std::string> known;
    for (std::string name; names >> name;) {
        const QImage image = picture("it/" + name + ".png");
        EXPECT_GE(image.width(), 200) << name;
        const auto [same, isNew] =
            known.emplace(std::vector(image.bits(), image.bits() + image.sizeInBytes()), name);
        EXPECT_TRUE(isNew) << name << " is the same as " << same->second;
    }
    ASSERT_GE(known.size(), 20U);
}

} // namespace
} // namespace velmorquit

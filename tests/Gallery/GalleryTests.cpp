#include "support/Child.h"
#include "support/Waiting.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>

namespace velmorquit {
namespace {

class Gallery : public testing::Test {
protected:
    Gallery() { qputenv("XDG_RUNTIME_DIR", folder_.path().toLocal8Bit()); }

    struct End {
        int status = 0;
        std::string output;
    };

    static End run(const std::vector<std::string>& words,
                   const std::vector<std::string>& environment = {}) {
        std::vector<std::string> command{"env"};
        command.insert(command.end(), environment.begin(), environment.end());
        command.emplace_back(VELMORQUIT_GALLERY);
        command.insert(command.end(), words.begin(), words.end());
        Child child(command);
        const auto hasEnded = [&child] {
            static_cast<void>(child.output());
            return !child.isRunning();
        };
        EXPECT_TRUE(waitUntil(hasEnded, 120000));
        return {child.status(), child.output()};
    }

    [[nodiscard]] std::string folder(const char* name) const {
        return folder_.filePath(QLatin1String(name)).toStdString();
    }
    [[nodiscard]] QImage picture(const std::string& file) const {
        return QImage(folder_.filePath(QString::fromStdString(file)));
    }
    [[nodiscard]] QByteArray bytes(const std::string& file) const {
        QFile stored(folder_.filePath(QString::fromStdString(file)));
        EXPECT_TRUE(stored.open(QIODevice::ReadOnly)) << file;
        return stored.readAll();
    }

    static QStringList names() {
        const std::string output = run({"--list"}).output;
        return QString::fromStdString(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private:
    QTemporaryDir folder_;
};

TEST_F(Gallery, drawsTheSameWhoeverLooksAndWherever) {
    const std::vector<std::string> wanted{"panel-idle", "panel-quitting", "panel-schedule"};
    std::vector<std::string> words{"--language", "it", "--out", folder("here")};
    words.insert(words.end(), wanted.begin(), wanted.end());
    ASSERT_EQ(run(words).status, 0);
    words[3] = folder("elsewhere");
    ASSERT_EQ(run(words, {"TZ=Asia/Tokyo", "LC_ALL=en_GB.UTF-8", "LANGUAGE=en", "DISPLAY=:77",
                          "QT_SCALE_FACTOR=1.5", "QT_QPA_PLATFORM=xcb"})
                  .status,
              0);
    for (const std::string& name : wanted) {
        for (const char* scale : {"", "@2x"}) {
            const std::string file = "/it/" + name + scale + ".png";
            EXPECT_EQ(bytes("here" + file), bytes("elsewhere" + file)) << file;
        }
    }
}

TEST_F(Gallery, everyPictureShowsAnotherState) {
    const QStringList all = names();
    ASSERT_GE(all.size(), 20);
    ASSERT_EQ(run({"--language", "it", "--scale", "1", "--out", folder("all")}).status, 0);
    std::map<QByteArray, std::string> known;
    for (const QString& name : all) {
        const std::string file = "all/it/" + name.toStdString() + ".png";
        EXPECT_GE(picture(file).width(), 200) << file;
        const auto [same, isNew] = known.emplace(bytes(file), file);
        EXPECT_TRUE(isNew) << file << " is the same as " << same->second;
    }
}

TEST_F(Gallery, drawsInBothLanguagesAndAtBothScales) {
    ASSERT_EQ(run({"--out", folder("both"), "panel-empty"}).status, 0);
    const QImage plain = picture("both/it/panel-empty.png");
    ASSERT_FALSE(plain.isNull());
    EXPECT_EQ(picture("both/it/panel-empty@2x.png").size(), plain.size() * 2);
    EXPECT_EQ(picture("both/en/panel-empty@2x.png").width(), plain.width() * 2);
    EXPECT_NE(picture("both/en/panel-empty.png"), plain);
}

TEST_F(Gallery, putsThePicturesOfASheetBesideOneAnother) {
    ASSERT_EQ(run({"--language", "en", "--scale", "1", "--sheet", folder("sheets/en.png"),
                   "panel-empty", "panel-waiting"})
                  .status,
              0);
    ASSERT_EQ(run({"--language", "en", "--scale", "1", "--out", folder("one"), "panel-empty",
                   "panel-waiting"})
                  .status,
              0);
    const QImage sheet = picture("sheets/en.png");
    const QImage first = picture("one/en/panel-empty.png");
    const QImage second = picture("one/en/panel-waiting.png");
    ASSERT_FALSE(first.isNull() || second.isNull());
    EXPECT_EQ(sheet.width(), first.width() + second.width());
    const QRect panel(48, 48, 360, 200);
    EXPECT_EQ(sheet.copy(panel), first.copy(panel));
    EXPECT_EQ(sheet.copy(panel.translated(first.width(), 0)), second.copy(panel));
}

TEST_F(Gallery, saysWhatItDoesNotUnderstand) {
    const std::vector<std::vector<std::string>> wrong{
        {"panel-nowhere"}, {"--language", "fr"},       {"--scale", "3"},
        {"--nonsense"},    {"--sheet", "/tmp/it.png"}, {"--language"},
    };
    for (const auto& words : wrong) {
        const End end = run(words);
        EXPECT_EQ(end.status, 2) << words.front();
        EXPECT_NE(end.output.find("velmorquit-gallery: "), std::string::npos) << end.output;
    }
    EXPECT_EQ(run({"--scale", "1", "--out", "/dev/null/folder", "panel-empty"}).status, 1);
}

} // namespace
} // namespace velmorquit

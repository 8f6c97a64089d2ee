#include "Codecs/PropertyList.h"
#include "support/TemporaryFolder.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>

namespace velmorquit {
namespace {

using namespace std::string_literals;
using Array = Value::Array;
using Dictionary = Value::Dictionary;

WallTime at(int year, unsigned month, unsigned day, Duration time = {}) {
    return WallTime(std::chrono::sys_days{std::chrono::year{year} / month / day}) + time;
}

std::string xml(const std::string& body) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + body + "</plist>\n";
}

/// A binary list of one-byte offsets that are given with the values.
std::string binary(const std::string& values, const std::string& offsets) {
    std::string trailer(32, '\0');
    trailer[6] = 1;
    trailer[7] = 1;
    trailer[15] = static_cast<char>(offsets.size());
    for (std::size_t at = 0; at < 4; ++at)
        trailer[31 - at] = static_cast<char>((8 + values.size()) >> (8 * at));
    return "bplist00" + values + offsets + trailer;
}

std::string repeated(int times, std::string_view text) {
    std::string all;
    while (times-- > 0)
        all += text;
    return all;
}

Value everything() {
    return Dictionary{
        {"flags", Array{true, false}},
        {"integers", Array{0, 1, -1, std::numeric_limits<std::int64_t>::min(),
                           std::numeric_limits<std::int64_t>::max()}},
        {"reals", Array{0.0, 1.0, 0.1, -1234.5, 1e300, 5e-324, std::numeric_limits<double>::max(),
                        -std::numeric_limits<double>::infinity()}},
        {"texts", Array{"", "caffè & <tè> ]]> \"'", " spazi \r\n\t", "\x01\x1b\x7f", "\xff\xfe",
                        "\xed\xa0\x80", "&amp;&#65;", "a\0b"s, "\U0010F000\U0010F0FF\uFFFF"}},
        {"dates", Array{at(2026, 3, 2, 9h), at(2000, 12, 31, 23h), at(1969, 7, 20, 20h)}},
        {"data", Array{Value::Data{}, Value::Data(1000, std::byte{0xA5})}},
        {"empty", Array{Array{}, Dictionary{}}},
        {"", "empty key"},
        {"k\0x"s, "a key with a zero byte"},
        {"<key> & \x01\xff\n", Dictionary{{"nested", Array{Dictionary{{"deep", 1}}}}}},
    };
}

std::optional<Value> kept(const Value& value) {
    return PropertyList::decode(PropertyList::encode(value));
}

TEST(PropertyList, GivesBackWhatWasWritten) {
    EXPECT_EQ(kept(everything()), everything());
    const auto number = kept(std::nan(""));
    ASSERT_TRUE(number && number->as<double>());
    EXPECT_TRUE(std::isnan(*number->as<double>()));
    EXPECT_EQ(kept(at(2026, 3, 2, 1999ms)), Value(at(2026, 3, 2, 1s)));
    EXPECT_EQ(kept(at(1900, 1, 1, -500ms)), Value(at(1899, 12, 31, 24h - 1s)));
}

TEST(PropertyList, ReadsWhatOthersWrite) {
    const auto date = [](const char* text) {
        return xml("<date>" + std::string(text) + "</date>");
    };
    const WallTime last = at(2262, 4, 11, 23h + 47min + 16s);
    const std::string tag = "<plist version='>'";
    std::string longTag = tag;
    for (int number = 0; number < 100'000; ++number)
        longTag += " a" + std::to_string(number) + "='>'";
    std::string attributes = "<!DOCTYPE plist [<!ATTLIST true";
    for (int number = 0; number < 10'000; ++number)
        attributes += " a" + std::to_string(number) + " CDATA 'x'";
    const std::string written = PropertyList::encode(everything());
    const std::pair<std::string, std::optional<Value>> lists[] = {
        {date("4001-01-01T00:00:00Z"), last},
        {binary("\x33\x7f\xf0\0\0\0\0\0\0"s, "\x08"), last},
        {date("2026-13-01T00:00:00Z"), {}},
        {date("2026-02-29T00:00:00Z"), {}},
        {date("2026-02-28"), {}},
        {date("morgen"), {}},
        // Types that no value has are left out.
        {binary("\x80\x05", "\x08"), {}},
        {binary("\xA2\x01\x02\x80\x05\x09", "\x08\x0B\x0D"), Array{true}},
        {binary("\xA1\x01\0"s, "\x08\x0A"), {}},
        {xml("<dict><key>a</key><null/></dict>"), {}},
        {binary("\xA1\0"s, "\x08"), {}}, // an array that holds itself
        {binary("\xD1\x01\x02\x53k\0x\x09"s, "\x08\x0B\x0F"), Dictionary{{"k\0x"s, true}}},
        {tag + "><true/></plist>", true},
        {longTag + "><true/></plist>", {}}, // which would take for ever
        {attributes + ">]><plist><true/></plist>", {}},
        // By hand.
        {"\n<?xml version=\"1.0\"?><!-- mine --><dict><key>a</key><true/></dict>\n",
         Dictionary{{"a", true}}},
        {xml("<array><integer>many</integer><date>today</date><true/><integer/></array>"),
         Array{true}},
        // No list.
        {"", {}},
        {"ciao", {}},
        {"bplist00", {}},
        {"<plist version=\"1.0\"></plist>", {}},
        {xml("<dict><key>a</key><string>x</dict>"), {}},
    };
    for (const auto& [list, value] : lists)
        EXPECT_EQ(PropertyList::decode(list), value) << list.substr(0, 200);
    for (std::size_t length = 0; length < written.size(); ++length) {
        const auto cut = PropertyList::decode(written.substr(0, length));
        EXPECT_TRUE(!cut || cut == everything()) << "half of it, cut at " << length;
    }
}

TEST(PropertyList, HasAnEndToNesting) {
    const std::string body = repeated(250'000, "<array>") + repeated(250'000, "</array>");
    EXPECT_TRUE(PropertyList::decode(xml(body)));
}

TEST(PropertyList, ReadsNothingFromListsThatStandForMoreThanTheySay) {
    // Each array holds the next one twice: 2^60 values in some hundred bytes.
    std::string values;
    std::string offsets;
    for (char next = 1; next <= 60; ++next) {
        offsets += static_cast<char>(8 + values.size());
        values += "\xA2"s + next + next;
    }
    offsets += static_cast<char>(8 + values.size());
    EXPECT_FALSE(PropertyList::decode(binary(values + "\x09", offsets)));

    // An array that holds a long text 240 times.
    const std::string array = "\xAF\x10\xF0" + std::string(240, '\1');
    const std::string text = "\x5F\x12\0\x10\0\0"s + std::string(1 << 20, 'x');
    EXPECT_FALSE(
        PropertyList::decode(binary(array + text, {'\x08', static_cast<char>(8 + array.size())})));

    std::string entities = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaa\">";
    for (char name = 'b'; name < 'k'; ++name)
        entities += "<!ENTITY "s + name + " \"" +
                    repeated(10, "&"s + static_cast<char>(name - 1) + ";") + "\">";
    EXPECT_FALSE(PropertyList::decode(entities + "]><plist><string>&j;</string></plist>"));
    EXPECT_FALSE(PropertyList::decode("<!DOCTYPE plist [<!ENTITY e \"" + repeated(4000, "x") +
                                      "\">]><plist><string>" + repeated(10'000, "&e;") +
                                      "</string></plist>"));
}

TEST(PropertyList, ReadsRealsUnderAnyLocale) {
    const TemporaryFolder folder;
    const std::string build =
        "localedef -i it_IT -f UTF-8 " + folder.path().string() + "/it_IT.UTF-8 >/dev/null 2>&1";
    const bool isBuilt = std::system(build.c_str()) == 0;
    setenv("LOCPATH", folder.path().c_str(), 1);
    const bool isSet = isBuilt && std::setlocale(LC_ALL, "it_IT.UTF-8");
    const auto read = PropertyList::decode(PropertyList::encode(1234.5));
    const auto decimal = std::to_string(0.5);
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
    if (!isSet)
        GTEST_SKIP() << "no Italian locale can be built here";
    EXPECT_EQ(read, Value(1234.5));
    EXPECT_EQ(decimal[1], ',') << "the locale was left changed";
}

} // namespace
} // namespace velmorquit

#include "fakes/TemporaryDirectory.h"
#include "update/BundleInfo.h"
#include "update/RunningBundle.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace velmora {
namespace {

std::string xml(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>";
}

std::string xmlWithVersion(const std::string& version) {
    return xml("<dict><key>CFBundleShortVersionString</key><string>" + version + "</string></dict>");
}

std::string binary(const std::string& text) {
    plist_t node = nullptr;
    plist_from_xml(text.data(), static_cast<std::uint32_t>(text.size()), &node);
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(node, &bytes, &size);
    std::string result(bytes, size);
    std::free(bytes);
    plist_free(node);
    return result;
}

TEST(BundleInfo, ReadsTheVersionFromXml) {
    EXPECT_EQ(decodeBundleInfo(xmlWithVersion("1.9.3"))->shortVersion, "1.9.3");
    EXPECT_EQ(decodeBundleInfo(xmlWithVersion("1 &lt; 2"))->shortVersion, "1 < 2");
}

TEST(BundleInfo, ReadsTheVersionFromBinary) {
    const auto bytes = binary(xmlWithVersion("1.9.3"));
    ASSERT_TRUE(bytes.starts_with("bplist00"));
    EXPECT_EQ(decodeBundleInfo(bytes)->shortVersion, "1.9.3");
}

TEST(BundleInfo, AVersionThatIsNoTextIsNone) {
    EXPECT_EQ(decodeBundleInfo(xml("<dict><key>CFBundleShortVersionString</key><real>1.9</real></dict>"))->shortVersion,
              std::nullopt);
    EXPECT_EQ(decodeBundleInfo(xml("<dict><key>CFBundleName</key><string>x</string></dict>"))->shortVersion,
              std::nullopt);
}

TEST(BundleInfo, WhatIsNoDictionaryFails) {
    const std::string cases[] = {"",
                                 "x",
                                 "not a list",
                                 "<plist",
                                 xml("<array/>"),
                                 xml("<string>1</string>"),
                                 "bplist00",
                                 std::string("bplist00") + std::string(40, '\xff'),
                                 std::string(2U << 20, ' ')};
    for (const auto& text : cases) {
        EXPECT_FALSE(decodeBundleInfo(text)) << text.substr(0, 100);
    }
}

/// The objects as they are, with the table of their places and the end behind them. Numbers take two bytes.
std::string binaryList(const std::vector<std::string>& objects, std::uint64_t top = 0) {
    const auto bigEndian = [](std::uint64_t number, int width) {
        std::string bytes;
        for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
            bytes += static_cast<char>(number >> shift & 0xFF);
        }
        return bytes;
    };
    std::string list = "bplist00";
    std::string places;
    for (const auto& object : objects) {
        places += bigEndian(list.size(), 2);
        list += object;
    }
    const auto table = list.size();
    return list + places + bigEndian(0, 6) + "\2\2" + bigEndian(objects.size(), 8) + bigEndian(top, 8) +
           bigEndian(table, 8);
}

using namespace std::string_literals;
const auto onePair = "\xD1\0\1\0\2"s;  // a dictionary of object 1 as the key and object 2 as the value
const auto versionKey =
    "\x5F\x10\x1A"
    "CFBundleShortVersionString"s;

TEST(BundleInfo, ReadsBinaryListsAsTheyAreWritten) {
    EXPECT_EQ(decodeBundleInfo(binaryList({onePair, versionKey,
                                           "\x53"
                                           "1.9"s}))
                  ->shortVersion,
              "1.9");
    EXPECT_EQ(decodeBundleInfo(binaryList({onePair, versionKey,
                                           "\x62\0"
                                           "1\0\xE9"s}))
                  ->shortVersion,
              "1\xC3\xA9");
    EXPECT_EQ(decodeBundleInfo(binaryList({versionKey,
                                           "\x53"
                                           "1.9"s,
                                           "\xD1\0\0\0\1"s},
                                          2))
                  ->shortVersion,
              "1.9");
    EXPECT_EQ(decodeBundleInfo(binaryList({"\xD2\0\1\0\1\0\2\0\3"s, versionKey,
                                           "\x51"
                                           "1"s,
                                           "\x51"
                                           "2"s}))
                  ->shortVersion,
              "2");
    EXPECT_EQ(decodeBundleInfo(binary(xmlWithVersion("1.9 \xF0\x9F\x98\x80")))->shortVersion, "1.9 \xF0\x9F\x98\x80");
}

TEST(BundleInfo, AVersionWithAZeroByteIsReadWhole) {
    const auto withZero = decodeBundleInfo(binaryList({onePair, versionKey,
                                                       "\x53"
                                                       "1\0"
                                                       "2"s}));
    ASSERT_TRUE(withZero);
    EXPECT_EQ(withZero->shortVersion,
              "1\0"
              "2"s);
}

TEST(BundleInfo, BinaryListsThatPointOutsideHaveNoVersion) {
    const std::string values[] = {"\x51"s,
                                  "\x5F\x10\xFF"s,
                                  "\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s,
                                  "\x5F\x1F"s,
                                  "\x5F"s,
                                  "\x5F\x51"
                                  "a"s,
                                  "\x61\0"s,
                                  "\x6F\x13\x80\0\0\0\0\0\0\0"s,
                                  "\x51\x80"s,
                                  "\x10\1"s,
                                  "\x09"s};
    for (const auto& value : values) {
        const auto info = decodeBundleInfo(binaryList({onePair, versionKey, value}));
        ASSERT_TRUE(info);
        EXPECT_EQ(info->shortVersion, std::nullopt) << testing::PrintToString(value);
    }
    EXPECT_EQ(decodeBundleInfo(binaryList({onePair, versionKey}))->shortVersion, std::nullopt);
    EXPECT_EQ(decodeBundleInfo(binaryList({onePair}))->shortVersion, std::nullopt);
}

TEST(BundleInfo, BinaryListsThatAreBrokenFail) {
    const auto whole = binaryList({onePair, versionKey,
                                   "\x51"
                                   "1"s});
    ASSERT_TRUE(decodeBundleInfo(whole));
    const auto with = [&](std::size_t fromEnd, const std::string& bytes) {
        auto broken = whole;
        return broken.replace(broken.size() - fromEnd, bytes.size(), bytes);
    };
    const std::string cases[] = {binaryList({}),
                                 binaryList({onePair}, 1),
                                 binaryList({"\xD2\0\1\0"s}),
                                 binaryList({"\xDF\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s}),
                                 binaryList({"\xA0"s}),
                                 with(26, "\0"s),                                // places without bytes
                                 with(26, "\x09"s),                              // wider than any number
                                 with(25, "\0"s),                                // references without bytes
                                 with(24, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s),  // objects
                                 with(8, "\0\0\0\0\0\0\0\7"s),                   // the table in the head
                                 with(8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s)};
    for (const auto& bytes : cases) {
        EXPECT_FALSE(decodeBundleInfo(bytes)) << testing::PrintToString(bytes);
    }
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(decodeBundleInfo(whole.substr(0, size))) << size;
    }
}

TEST(BundleInfo, ListsThatUnfoldToMoreThanThereIsMemoryAreRead) {
    // Forty arrays, each of which holds the next one fourteen times.
    std::vector<std::string> objects{"\xD2\0\1\0\3\0\2\0\4"s, versionKey,
                                     "\x53"
                                     "1.9"s,
                                     "\x51"
                                     "x"s};
    for (char next = 5; next < 45; ++next) {
        std::string array = "\xAE";
        for (int i = 0; i < 14; ++i) {
            array += {'\0', next};
        }
        objects.push_back(array);
    }
    objects.push_back(
        "\x51"
        "y"s);
    EXPECT_EQ(decodeBundleInfo(binaryList(objects))->shortVersion, "1.9");
}

TEST(BundleInfo, LargeListsTakeNoLongTime) {
    std::string escapes;
    while (escapes.size() < 1'000'000) {
        escapes += "&amp;";
    }
    const auto start = std::chrono::steady_clock::now();
    (void)decodeBundleInfo(xmlWithVersion(escapes));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

class RunningBundleTest : public testing::Test {
protected:
    std::filesystem::path install(const std::string& infoPlist) {
        const auto contents = directory / "My Velmora.app" / "Contents";
        std::filesystem::create_directories(contents / "MacOS");
        if (!infoPlist.empty()) {
            writeContent(contents / "Info.plist", infoPlist);
        }
        return contents / "MacOS/velmora";
    }

    TemporaryDirectory directory;
};

TEST_F(RunningBundleTest, IsFoundAroundTheProgram) {
    const auto bundle = RunningBundle::ofProgram(install(xmlWithVersion("1.9.3")), "1.15.0");
    EXPECT_EQ(bundle.path, directory / "My Velmora.app");
    EXPECT_TRUE(bundle.isBundle);
    EXPECT_EQ(bundle.version, "1.9.3");
}

TEST_F(RunningBundleTest, WithoutAVersionStringItIsVersionZero) {
    EXPECT_EQ(RunningBundle::ofProgram(install(xml("<dict/>")), "1.15.0").version, "0");
    EXPECT_EQ(RunningBundle::ofProgram(install("broken"), "1.15.0").version, "0");
}

TEST_F(RunningBundleTest, WithoutInformationItIsVersionZero) {
    EXPECT_EQ(RunningBundle::ofProgram(install(""), "1.15.0").version, "0");
}

TEST_F(RunningBundleTest, AProgramOfThePackageSystemIsNoBundle) {
    for (const char* program :
         {"/usr/bin/velmora", "/velmora", "/x/Velmora.app/velmora", "/x/Contents/MacOS/velmora"}) {
        const auto bundle = RunningBundle::ofProgram(program, "1.15.0");
        EXPECT_EQ(bundle.path, program);
        EXPECT_FALSE(bundle.isBundle);
        EXPECT_EQ(bundle.version, "1.15.0");
    }
}

}  // namespace
}  // namespace velmora

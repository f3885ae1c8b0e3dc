#include "fakes/TemporaryDirectory.h"
#include "update/BundleInfo.h"
#include "update/RunningBundle.h"

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstdlib>

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

#include "ui/Changelog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace velmora {
namespace {

using testing::ElementsAre;

struct Entry {
    std::string version;
    std::string date;
    std::vector<std::string> changes;
    bool operator==(const Entry&) const = default;
};

/// What the file says, read in another way than the build does.
std::vector<Entry> entriesOfTheFile() {
    std::ifstream file(VELMORA_CHANGELOG);
    EXPECT_TRUE(file);
    const std::regex heading(R"(^## \[(.*)\] - (.*)$)");
    std::vector<Entry> entries;
    std::string line;
    std::smatch parts;
    while (std::getline(file, line)) {
        if (std::regex_match(line, parts, heading)) {
            entries.push_back({parts[1], parts[2], {}});
        } else if (entries.empty()) {
            continue;
        } else if (line.starts_with("- ")) {
            entries.back().changes.push_back(line.substr(2));
        } else if (line.starts_with("  ")) {
            entries.back().changes.back() += line.substr(1);
        }
    }
    return entries;
}

std::vector<Entry> entriesOfTheProgram() {
    std::vector<Entry> entries;
    for (const ChangelogEntry& entry : changelog) {
        entries.push_back({std::string(entry.version), std::string(entry.date),
                           std::vector<std::string>(entry.changes.begin(), entry.changes.end())});
    }
    return entries;
}

TEST(ChangelogTest, IsTheFileChangelogMd) {
    EXPECT_EQ(entriesOfTheProgram(), entriesOfTheFile());
}

TEST(ChangelogTest, HasFifteenVersionsNewestFirst) {
    std::vector<std::string> versions;
    for (const ChangelogEntry& entry : changelog) {
        versions.emplace_back(entry.version);
    }
    EXPECT_THAT(versions, ElementsAre("1.15.0", "1.14.0", "1.13.0", "1.12.0", "1.11.0", "1.10.0", "1.9.0", "1.8.0",
                                      "1.6.0", "1.5.0", "1.4.0", "1.3.0", "1.2.0", "1.1.0", "1.0.0"));
    EXPECT_EQ(versions.front(), VELMORA_VERSION);
}

TEST(ChangelogTest, DatesFallFromMayToSeptember2026) {
    const std::regex form(R"(2026-0[5-9]-(0[1-9]|[12]\d|3[01]))");
    std::string later = "2026-10";
    for (const ChangelogEntry& entry : changelog) {
        const std::string date(entry.date);
        EXPECT_TRUE(std::regex_match(date, form)) << date;
        EXPECT_LT(date, later);
        later = date;
    }
}

TEST(ChangelogTest, EveryVersionHasAFewChanges) {
    for (const ChangelogEntry& entry : changelog) {
        EXPECT_GE(entry.changes.size(), 2U) << entry.version;
        EXPECT_LE(entry.changes.size(), 8U) << entry.version;
    }
}

}  // namespace
}  // namespace velmora

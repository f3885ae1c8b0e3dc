#include "fakes/TemporaryDirectory.h"
#include "platform/linux/AutostartEntry.h"

#include <gio/gdesktopappinfo.h>
#include <glib.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace velmora {
namespace {

namespace fs = std::filesystem;

class AutostartEntryTest : public testing::Test {
protected:
    [[nodiscard]] AutostartEntry entryFor(const fs::path& program) const { return {configuration.path(), program}; }
    /// A line as a desktop's own tools add it.
    void append(const std::string& line) const { writeContent(file, contentOf(file) + line + "\n"); }

    TemporaryDirectory configuration;
    const fs::path file = configuration / "autostart" / "com.velmora.app.desktop";
    AutostartEntry entry = entryFor("/opt/velmora/bin/velmora");
};

TEST_F(AutostartEntryTest, IsThereWhileEnabled) {
    EXPECT_FALSE(entry.isEnabled());
    entry.set(true);
    EXPECT_TRUE(entry.isEnabled());
    EXPECT_TRUE(fs::exists(file));
    entry.set(true);
    EXPECT_TRUE(entry.isEnabled());
    entry.set(false);
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_FALSE(fs::exists(file));
    entry.set(false);
    EXPECT_FALSE(entry.isEnabled());
}

TEST_F(AutostartEntryTest, LeavesTheEntriesOfOthersAlone) {
    const auto other = configuration / "autostart" / "other.desktop";
    fs::create_directory(other.parent_path());
    writeContent(other, "[Desktop Entry]\n");
    entry.set(true);
    entry.set(false);
    EXPECT_EQ(contentOf(other), "[Desktop Entry]\n");
}

TEST_F(AutostartEntryTest, AnEntryThatTheDesktopSwitchedOffIsNotEnabled) {
    for (const std::string line : {"Hidden=true", "Hidden = true", "Hidden=1", "X-GNOME-Autostart-enabled=false",
                                   "X-GNOME-Autostart-enabled=0", "X-MATE-Autostart-enabled=false", "Hidden=true\r"}) {
        entry.set(true);
        append(line);
        EXPECT_FALSE(entry.isEnabled()) << line;
        entry.set(true);
        EXPECT_TRUE(entry.isEnabled()) << "and switched on again after " << line;
    }
}

TEST_F(AutostartEntryTest, OtherLinesDoNotSwitchItOff) {
    for (const std::string line : {"Hidden=false", "X-GNOME-Autostart-enabled=true", "# Hidden=true",
                                   "Comment=Hidden=true", "[Desktop Action Quit]\nHidden=true", ""}) {
        entry.set(true);
        append(line);
        EXPECT_TRUE(entry.isEnabled()) << line;
    }
}

TEST_F(AutostartEntryTest, AFolderThatCannotBeWrittenIsSilent) {
    writeContent(configuration / "autostart", "a file where the folder should be");
    entry.set(true);
    EXPECT_FALSE(entry.isEnabled());
    entry.set(false);
    EXPECT_EQ(contentOf(configuration / "autostart"), "a file where the folder should be");

    AutostartEntry nowhere("/proc/no such folder", "/usr/bin/velmora");
    nowhere.set(true);
    EXPECT_FALSE(nowhere.isEnabled());
    nowhere.set(false);
}

/// Programs whose paths are read by GLib as they were meant, in the way in which desktops read entries.
class AutostartCommandTest : public AutostartEntryTest, public testing::WithParamInterface<std::string> {};

TEST_P(AutostartCommandTest, StartsTheProgramAndNothingElse) {
    const std::string program = GetParam();
    entryFor(program).set(true);

    const std::unique_ptr<GKeyFile, decltype(&g_key_file_free)> keys(g_key_file_new(), g_key_file_free);
    GError* error = nullptr;
    ASSERT_TRUE(g_key_file_load_from_file(keys.get(), file.c_str(), G_KEY_FILE_NONE, &error)) << error->message;
    const std::unique_ptr<char, decltype(&g_free)> command(
        g_key_file_get_string(keys.get(), "Desktop Entry", "Exec", nullptr), g_free);
    ASSERT_NE(command, nullptr);

    int count = 0;
    char** arguments = nullptr;
    ASSERT_TRUE(g_shell_parse_argv(command.get(), &count, &arguments, &error)) << error->message;
    const std::unique_ptr<char*, decltype(&g_strfreev)> owner(arguments, g_strfreev);
    ASSERT_EQ(count, 1);
    std::string started = arguments[0];
    for (std::size_t at = 0; (at = started.find("%%", at)) != std::string::npos; ++at) {
        started.erase(at, 1);  // field codes come after the quotes
    }
    EXPECT_EQ(started, program);
    EXPECT_EQ(std::string(arguments[0]).find('%') == std::string::npos, program.find('%') == std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Paths, AutostartCommandTest,
                         testing::Values("/usr/bin/velmora", "/opt/My Apps/velmora", "/opt/it's/velmora",
                                         R"(/opt/"quoted"/velmora)", R"(/opt/back\slash\/velmora)", "/opt/100%/%f/%%/v",
                                         "/opt/$HOME/`id`/$(id)/velmora", "/opt/a;b&c|d>e<f*g?h#i~j=k(l)/velmora",
                                         "/opt/ünïcødé 東京/velmora", "/opt/two\nlines/velmora",
                                         "/opt/tab\tand\rreturn/v", R"(/opt/\n\s\t/velmora)", R"(/opt/\"\$\`/velmora)",
                                         "/opt/ends with \\"));

/// The whole way: GLib itself starts the program of the entry. (It looks for the program before it has read "%%" as one
/// percent sign, and finds none. Others do it right.)
TEST_F(AutostartEntryTest, GLibStartsTheProgramWhateverItsPath) {
    const auto folder = configuration / R"(a "b" $c `d` \e it's; 東京)";
    fs::create_directory(folder);
    const auto program = folder / "velmora";
    const auto witness = configuration / "started";
    writeContent(program, "#!/bin/sh\nprintf '%s %s\\n' $# \"$0\" > \"" + witness.string() + ".new\"\nmv \"" +
                              witness.string() + ".new\" \"" + witness.string() + "\"\n");
    fs::permissions(program, fs::perms::owner_all);
    entryFor(program).set(true);

    GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(file.c_str());
    ASSERT_NE(info, nullptr);
    GPid pid = 0;
    GError* error = nullptr;
    const auto started = g_desktop_app_info_launch_uris_as_manager(
        info, nullptr, nullptr, G_SPAWN_DO_NOT_REAP_CHILD, nullptr, nullptr,
        [](GDesktopAppInfo*, GPid child, void* into) { *static_cast<GPid*>(into) = child; }, &pid, &error);
    EXPECT_TRUE(started) << (error != nullptr ? error->message : "");
    g_clear_error(&error);
    g_object_unref(info);
    ASSERT_GT(pid, 0);
    int status = 0;
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_EQ(contentOf(witness), "0 " + program.string() + "\n");
}

}  // namespace
}  // namespace velmora

#include "FaultyFiles.h"
#include "base/AtomicFile.h"
#include "fakes/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

namespace velmora {
namespace {

namespace fs = std::filesystem;

/// A write where the mode of a file cannot be changed.
struct Write {
    mode_t fixedMode;              ///< of every new file
    std::optional<mode_t> before;  ///< of the file that is replaced
    bool succeeds;
};

class FixedModeTest : public testing::TestWithParam<Write> {};

TEST_P(FixedModeTest, AFileIsWrittenWhenItIsOpenToNobodyElseThanItShould) {
    const auto write = GetParam();
    const TemporaryDirectory directory;
    if (write.before) {
        writeContent(directory / "file", "old");
        fs::permissions(directory / "file", static_cast<fs::perms>(*write.before));
    }
    faults::armFixedMode(directory.path(), write.fixedMode);
    const bool written = static_cast<bool>(writeFileAtomically(directory / "file", "new"));
    faults::disarm();

    EXPECT_EQ(written, write.succeeds);
    if (written) {
        EXPECT_EQ(contentOf(directory / "file"), "new");
        EXPECT_EQ(modeOf(directory / "file"), write.fixedMode);
    } else if (write.before) {
        EXPECT_EQ(contentOf(directory / "file"), "old");
    }
    const auto files = std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator());
    EXPECT_EQ(files, written || write.before ? 1 : 0) << "no temporary file stays";
}

std::string nameOf(const testing::TestParamInfo<Write>& info) {
    const auto octal = [](mode_t mode) {
        std::string digits;
        for (int shift = 9; shift >= 0; shift -= 3) {
            digits += static_cast<char>('0' + ((mode >> shift) & 7));
        }
        return digits;
    };
    return octal(info.param.fixedMode) + (info.param.before ? "over" + octal(*info.param.before) : "new");
}

INSTANTIATE_TEST_SUITE_P(Modes, FixedModeTest,
                         testing::Values(Write{0600, {}, true},      // what mkostemp makes
                                         Write{0700, {}, true},      // others have nothing of it
                                         Write{0644, {}, false},     // readable for everybody
                                         Write{0620, {}, false},     //
                                         Write{0600, 0644, true},    // narrower than it was
                                         Write{0644, 0644, true},    //
                                         Write{0640, 0644, true},    //
                                         Write{0664, 0644, false},   // wider
                                         Write{0600, 0400, true},    // the owner's matter
                                         Write{0755, 0600, false}),  //
                         nameOf);

}  // namespace
}  // namespace velmora

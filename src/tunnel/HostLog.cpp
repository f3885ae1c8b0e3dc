#include "tunnel/HostLog.h"

#include "base/Localized.h"
#include "base/Text.h"
#include "base/UniqueFd.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <optional>
#include <utility>

namespace velmora {

namespace {

constexpr mode_t logFileMode = 0600;
constexpr std::size_t longestReason = 4096;

/// A log is a file. Whoever reads a FIFO can go away while it is written to, and that would end the program.
bool isFile(const UniqueFd& fd) {
    struct stat status {};
    return ::fstat(fd.get(), &status) == 0 && S_ISREG(status.st_mode);
}

/// No descriptor when there is no such log.
UniqueFd openLog(const std::filesystem::path& path, int mode) {
    if (path.native().find('\0') != std::string::npos) {
        return {};  // the system would take the file that is named up to there, which need not be a log
    }
    // O_NONBLOCK: a FIFO in the place of the log must not stop the tunnel.
    UniqueFd fd(::open(path.c_str(), mode | O_CLOEXEC | O_NONBLOCK, logFileMode));
    return fd && isFile(fd) ? std::move(fd) : UniqueFd();
}

/// Without the first bytes of a last character whose other bytes are missing.
std::string_view withoutCutCharacter(std::string_view text) {
    constexpr std::size_t longestCharacter = 4;
    for (std::size_t length = 1; length < longestCharacter && length <= text.size(); ++length) {
        const auto byte = static_cast<unsigned char>(text[text.size() - length]);
        if (byte >= 0xC0) {
            const std::size_t whole = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            return text.substr(0, text.size() - (length < whole ? length : 0));
        }
        if (byte < 0x80) {
            break;
        }
    }
    return text;
}

/// Finds the first line worth showing in text that comes in blocks.
class ReasonFinder final {
public:
    /// True once the reason is known.
    bool take(std::string_view block) {
        while (!block.empty()) {
            const auto end = block.find('\n');
            addToLine(block.substr(0, end));
            if (end == std::string_view::npos) {
                return isFull() && look();  // the rest of the line, however long, would change nothing
            }
            if (endLine()) {
                return true;
            }
            block.remove_prefix(end + 1);
        }
        return false;
    }

    /// The text has ended, perhaps without a line feed.
    bool endLine() {
        const bool isFound = look();
        line_.clear();
        return isFound;
    }

    [[nodiscard]] const std::optional<std::string>& reason() const { return reason_; }

private:
    static bool isKept(std::string_view line) {
        return !line.empty() && !line.starts_with("[") && !line.starts_with("Warning:") && !line.starts_with("debug");
    }

    [[nodiscard]] bool isFull() const { return line_.size() == longestReason; }

    /// True when the line, as far as it is known, is the reason.
    bool look() {
        const auto text = trimWhitespaceAndNewlines(isFull() ? withoutCutCharacter(line_) : line_);
        if (isKept(text)) {
            reason_ = std::string(text);
        }
        return reason_.has_value();
    }

    /// A line of any length takes bounded memory: white space at its start and text beyond the limit are not kept.
    void addToLine(std::string_view piece) {
        while (!piece.empty() && line_.size() < longestReason) {
            const auto part = piece.substr(0, longestReason - line_.size());
            line_ += part;
            piece.remove_prefix(part.size());
            const auto kept = trimWhitespaceAndNewlines(line_);
            line_.erase(0, kept.empty() ? line_.size() : static_cast<std::size_t>(kept.data() - line_.data()));
        }
    }

    std::string line_;
    std::optional<std::string> reason_;
};

std::optional<std::string> firstKeptLine(const std::filesystem::path& path) {
    const auto fd = openLog(path, O_RDONLY);
    if (!fd) {
        return std::nullopt;
    }
    ReasonFinder finder;
    std::array<char, 65536> block{};
    for (;;) {
        const auto count = ::read(fd.get(), block.data(), block.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        if (finder.take({block.data(), static_cast<std::size_t>(count)})) {
            return finder.reason();
        }
    }
    finder.endLine();
    return finder.reason();
}

}  // namespace

std::filesystem::path hostLogPath(const std::filesystem::path& logDirectory, const std::string& hostName) {
    // Joined as text: a name that begins with a slash must not replace the folder.
    return {logDirectory.string() + "/" + hostName + ".log"};
}

void appendToLog(const std::filesystem::path& path, std::string_view bytes) {
    const auto fd = openLog(path, O_WRONLY | O_CREAT | O_APPEND);
    if (!fd) {
        return;
    }
    while (!bytes.empty()) {
        const auto count = ::write(fd.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::string exitReason(const std::filesystem::path& path, int exitStatus) {
    if (auto line = firstKeptLine(path)) {
        return *std::move(line);
    }
    return filled(localized("velmora::TunnelEngine", "Exited (code %1)"), {std::to_string(exitStatus)});
}

}  // namespace velmora

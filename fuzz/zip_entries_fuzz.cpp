#include "Fuzz.h"
#include "base/Text.h"
#include "fakes/TemporaryDirectory.h"
#include "update/ArchiveListing.h"
#include "update/ZipWriter.h"

#include <algorithm>
#include <deque>
#include <map>
#include <string>

// Archives that are well packed, with names and links that nobody should follow. A line of the input is an entry: a
// letter for what it is, the name up to a "|", and the content.

namespace {

using namespace velmora;
using Kind = ArchiveEntry::Kind;

std::uint32_t modeFor(char kind) {
    switch (kind) {
        case 'p':
            return test::ZipWriter::program;
        case 'd':
            return test::ZipWriter::folder;
        case 'l':
            return test::ZipWriter::link;
        case 's':
            return 0140777;  // a socket
        case 'n':
            return 0;
        default:
            return test::ZipWriter::file;
    }
}

std::string archiveOf(std::string_view input) {
    test::ZipWriter writer;
    for (const auto line : split(input, '\n')) {
        if (line.empty()) {
            continue;
        }
        const auto bar = std::min(line.find('|', 1), line.size());
        writer.add({.name = std::string(line.substr(1, bar - 1)),
                    .content = std::string(line.substr(std::min(bar + 1, line.size()))),
                    .mode = modeFor(line.front()),
                    .deflate = line.front() == 'z'});
    }
    return writer.bytes();
}

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

/// The listing as a file system sees it that does not tell letters' case apart.
std::map<std::string, ArchiveEntry> inLowerCase(const ArchiveListing& listing) {
    std::map<std::string, ArchiveEntry> lower;
    for (const auto& [path, entry] : listing) {
        require(lower.emplace(lowerCase(path), entry).second, "names differ in more than their case");
    }
    return lower;
}

/// Goes along a path as the system does, through every link on the way. False when it leaves the folder.
bool staysInside(const std::map<std::string, ArchiveEntry>& listing, const std::string& path) {
    std::deque<std::string> ahead;
    for (const auto part : split(path, '/')) {
        ahead.emplace_back(part);
    }
    std::vector<std::string> here;
    int links = 0;
    while (!ahead.empty()) {
        const auto part = ahead.front();
        ahead.pop_front();
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            if (here.empty()) {
                return false;
            }
            here.pop_back();
            continue;
        }
        here.push_back(part);
        const auto entry = listing.find(lowerCase(join(here, "/")));
        if (entry == listing.end() || entry->second.kind != Kind::link) {
            continue;
        }
        if (++links > 40) {
            return true;  // a circle leads nowhere
        }
        if (entry->second.target.starts_with('/')) {
            return false;
        }
        here.pop_back();
        const auto target = split(entry->second.target, '/');
        ahead.insert(ahead.begin(), target.begin(), target.end());
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryDirectory folder;
    const auto archive = folder / "a.zip";
    writeContent(archive, archiveOf(textOf(data, size)));
    const auto listing = listArchive(archive, {.unpackedBytes = 1 << 20, .entries = 1000}, Cancellation());
    if (!listing) {
        require(!listing.error().message.empty(), "a refusal has a reason");
        return 0;
    }
    const auto lower = inLowerCase(*listing);
    for (const auto& [path, entry] : *listing) {
        require(!path.empty() && isAscii(path) && !path.starts_with('/'), "a path is plain and relative");
        require(staysInside(lower, path), "nothing leads out of the folder");
        for (auto slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
            const auto above = lower.find(lowerCase(path.substr(0, slash)));
            require(above == lower.end() || above->second.kind == Kind::folder, "only folders hold others");
        }
    }
    return 0;
}

#include "Fuzz.h"
#include "base/UniqueFd.h"
#include "fakes/TemporaryDirectory.h"
#include "update/ArchiveListing.h"
#include "update/ZipContent.h"
#include "update/ZipDirectory.h"

#include <fcntl.h>

#include <string>

// Any bytes in the place of an archive.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    constexpr std::size_t mostEntries = 100;
    constexpr std::size_t room = 16;
    static const TemporaryDirectory folder;
    const auto archive = folder / "a.zip";
    writeContent(archive, std::string(textOf(data, size)));

    const auto listing = listArchive(archive, {.unpackedBytes = 1 << 20, .entries = mostEntries}, Cancellation());
    const UniqueFd file(::open(archive.c_str(), O_RDONLY | O_CLOEXEC));
    const auto entries = readZipDirectory(file.get(), mostEntries);
    require(entries || !listing, "what has no directory cannot be listed");
    if (!entries) {
        return 0;
    }
    require(entries->size() <= mostEntries, "entries are counted");
    std::uint64_t end = 0;
    for (const auto& entry : *entries) {
        require(entry.dataOffset >= end && entry.dataOffset + entry.packedSize <= size,
                "entries stand one behind another within the archive");
        end = entry.dataOffset + entry.packedSize;
        std::string kept(room, 'x');
        const bool intact = verifyZipContent(file.get(), entry, kept, Cancellation());
        require(kept.size() <= room, "no more is kept than there is room");
        require(!intact || kept.size() == std::min<std::uint64_t>(room, entry.size), "what there is is kept");
        require(intact || !listing, "what is damaged cannot be listed");
    }
    require(!listing || listing->size() == entries->size(), "each entry is listed");
    return 0;
}

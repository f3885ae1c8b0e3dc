#include "Fuzz.h"
#include "fakes/InMemoryDefaultsStore.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/VirtualScheduler.h"
#include "model/HostJson.h"
#include "sync/FolderSync.h"

#include <chrono>
#include <string>

// The file in the shared folder, from the poll that finds it to the hosts that come of it.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    static const TemporaryDirectory folder;
    const auto file = folder / syncFileName;
    writeContent(file, std::string(textOf(data, size)));

    VirtualScheduler scheduler;
    InMemoryDefaultsStore defaults;
    FolderSync sync(scheduler, defaults);
    std::vector<std::vector<SSHHost>> received;
    sync.setOnChange([&](std::vector<SSHHost> hosts) { received.push_back(std::move(hosts)); });
    sync.setFolder(folder.path());
    scheduler.advance(std::chrono::seconds(30));

    const auto pulled = sync.pull();
    require(received.size() == (pulled ? 1U : 0U), "a file that can be read is delivered once, any other never");
    require(contentOf(file) == textOf(data, size), "reading leaves the file alone");
    if (!pulled) {
        return 0;
    }
    require(received.front().size() == pulled->size(), "all hosts are delivered");
    sync.push(*pulled);
    require(sync.pull() == pulled, "what was pushed is pulled");
    scheduler.advance(std::chrono::seconds(30));
    require(received.size() == 1, "our own file is no news");
    return 0;
}

#include "Fuzz.h"
#include "fakes/TemporaryDirectory.h"
#include "sync/Backup.h"
#include "sync/ImportExportCommands.h"

#include <string>
#include <unordered_set>
#include <utility>

// A backup of our own, through the commands of the menu.

namespace {

class OneFile final : public velmora::FilePanels {
public:
    explicit OneFile(std::filesystem::path file) : file_(std::move(file)) {}

    std::optional<std::filesystem::path> chooseFileToOpen(std::string_view, std::string_view) override { return file_; }
    std::optional<std::filesystem::path> chooseFileToSave(std::string_view, std::string_view) override { return file_; }

private:
    std::filesystem::path file_;
};

struct List {
    std::vector<velmora::SSHHost> hosts;
    std::size_t saves = 0;

    velmora::HostListAccess access() {
        return {.hosts = [this]() -> const std::vector<velmora::SSHHost>& { return hosts; },
                .append =
                    [this](std::vector<velmora::SSHHost> added) {
                        hosts.insert(hosts.end(), std::make_move_iterator(added.begin()),
                                     std::make_move_iterator(added.end()));
                    },
                .save = [this] { ++saves; }};
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    static const TemporaryDirectory folder;
    OneFile panels(folder / backupFileName);
    writeContent(folder / backupFileName, std::string(textOf(data, size)));

    List list;
    list.hosts.resize(2);
    list.hosts[1].name = "web";
    const auto result = importVelmoraFile(panels, list.access());
    require(list.saves == list.hosts.size() - 2, "each host that comes in is saved");
    if (!result) {
        require(list.hosts.size() == 2, "what is no backup changes nothing");
        return 0;
    }
    require(static_cast<std::size_t>(result->imported) == list.hosts.size() - 2 && result->skipped >= 0,
            "each host counts once");
    std::unordered_set<Uuid> ids;
    for (const auto& host : list.hosts) {
        require(ids.insert(host.id).second, "each host has an id of its own");
    }

    exportTunnels(panels, list.access());
    List restored;
    const auto all = importVelmoraFile(panels, restored.access());
    require(all && all->skipped == 0 && restored.hosts == list.hosts, "a backup brings back what it was made of");
    const auto twice = importVelmoraFile(panels, restored.access());
    require(twice && twice->imported == 0 && twice->skipped == all->imported, "nothing comes in twice");
    return 0;
}

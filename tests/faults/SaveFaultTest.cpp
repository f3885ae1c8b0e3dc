#include "FaultyFiles.h"
#include "fakes/FakeSystem.h"
#include "model/HostJson.h"
#include "platform/qt/IniDefaultsStore.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace velmora {
namespace {

namespace fs = std::filesystem;
using faults::Fault;

constexpr std::size_t largest = std::size_t{64} << 20;

/// The files of a user, and a program on them with real settings.
struct Program {
    explicit Program(const fs::path& home) : home_(home) {}

    static fs::path hostsFile(const fs::path& home) { return home / "share/Velmora/hosts.json"; }
    static fs::path syncFile(const fs::path& home) { return home / "folder/velmora-sync.json"; }
    static fs::path settingsFile(const fs::path& home) { return home / "config/com.velmora.app.conf"; }

    [[nodiscard]] Platform platform() {
        Platform result = system.platform();
        result.paths = {.home = home_,
                        .applicationSupport = home_ / "share",
                        .library = home_ / "state",
                        .configuration = home_ / "config",
                        .temporary = home_,
                        .largeTemporary = home_};
        return {.paths = result.paths,
                .scheduler = result.scheduler,
                .launcher = result.launcher,
                .runner = result.runner,
                .credentials = result.credentials,
                .defaults = *settings,
                .environment = result.environment,
                .pacPort = 0};
    }

    FakeSystem system;
    fs::path home_;
    std::unique_ptr<IniDefaultsStore> settings = std::make_unique<IniDefaultsStore>(settingsFile(home_));
    TunnelManager manager{platform()};
};

std::vector<SSHHost> hostsNamed(const std::string& prefix, int count) {
    std::vector<SSHHost> hosts(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        hosts[static_cast<std::size_t>(i)].name = prefix + std::to_string(i);
        hosts[static_cast<std::size_t>(i)].hostname = "server.example";
        hosts[static_cast<std::size_t>(i)].connectOnStartup = false;
    }
    return hosts;
}

std::vector<std::string> names(const std::vector<SSHHost>& hosts) {
    std::vector<std::string> all;
    for (const auto& host : hosts) {
        all.push_back(host.name);
    }
    return all;
}

/// Something that the user does, and what is in memory and in the files before and after it.
struct Action {
    std::string name;
    std::function<void(Program&)> run;
    std::vector<std::string> hostsAfter;
    std::string exceptionsAfter = "old.example";
    std::function<void(Program&)> first = [](Program&) {};  ///< what others do, which does not fail
    /// Other lists that stand in the files for a while.
    std::vector<std::vector<std::string>> between;
    bool reads = false;  ///< what cannot be read leaves everything as it is
};

const std::vector<std::string> before{"a0", "a1", "a2"};

std::vector<std::vector<std::string>> edits(int count) {
    std::vector<std::vector<std::string>> lists;
    for (int i = 1; i <= count; ++i) {
        lists.push_back({"a0", "edit" + std::to_string(i), "a2"});
    }
    return lists;
}

std::vector<Action> actions() {
    return {
        {"SaveAnEdit",
         [](Program& program) {
             program.manager.hosts().edit([](std::vector<SSHHost>& hosts) { hosts[1].name = "edited"; });
             program.manager.save();
         },
         {"a0", "edited", "a2"}},
        {"DeleteAHost",
         [](Program& program) { program.manager.deleteHost(program.manager.hosts()->at(0).id); },
         {"a1", "a2"}},
        {"AddManyHosts",
         [](Program& program) {
             const auto list = program.manager.hostListAccess();
             list.append(hostsNamed("b", 500));
             list.save();
         },
         [] {
             auto all = before;
             for (const auto& name : names(hostsNamed("b", 500))) {
                 all.push_back(name);
             }
             return all;
         }()},
        {"ChangeTheExceptions", [](Program& program) { program.manager.setProxyExceptions("new.example"); }, before,
         "new.example"},
        {.name = "TakeTheFoldersList",
         .run = [](Program& program) { program.system.scheduler.advance(std::chrono::seconds(6)); },
         .hostsAfter = {"c0", "c1"},
         .first =
             [](Program& program) {
                 const auto shared = Program::syncFile(program.home_);
                 fs::copy_file(program.home_ / "incoming", shared, fs::copy_options::overwrite_existing);
                 fs::last_write_time(shared, fs::last_write_time(shared) + std::chrono::seconds(10));
             },
         .reads = true},
        {.name = "EditTwentyTimes",
         .run =
             [](Program& program) {
                 for (const auto& list : edits(20)) {
                     program.manager.hosts().edit([&](std::vector<SSHHost>& hosts) { hosts[1].name = list[1]; });
                     program.manager.save();
                 }
             },
         .hostsAfter = edits(20).back(),
         .between = edits(20)},
        {"ChooseAFolder",
         [](Program& program) {
             program.manager.folderSync().setFolder(program.home_ / "folder2");
             program.manager.folderSync().push(program.manager.hosts().get());
         },
         before},
    };
}

/// Runs in a process of its own. The status is what the function returns, or -1 when the process was killed.
int inProcess(const std::function<int()>& work) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(work());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// What a process that ran to its end has to say.
constexpr int fine = 0;
constexpr int killed = -1;
constexpr int nothingWasLeftToFail = 10;
constexpr int memoryChanged = 11;
constexpr int cannotSaveAgain = 12;

class SaveFaultTest : public testing::TestWithParam<std::tuple<int, Fault>> {
protected:
    static Action action() { return actions()[static_cast<std::size_t>(std::get<0>(GetParam()))]; }

    void prepare() {
        fs::remove_all(home());
        for (const auto* folder : {"share/Velmora", "state", "config", "folder", "folder2"}) {
            fs::create_directories(home() / folder);
        }
        const auto json = *encodeHosts(hostsNamed("a", 3));
        writeContent(Program::hostsFile(home()), json);
        writeContent(Program::syncFile(home()), json);
        writeContent(home() / "incoming", *encodeHosts(hostsNamed("c", 2)));
        writeContent(Program::settingsFile(home()),
                     "[General]\nglobalProxyJump=jump.example\nproxyExceptions=old.example\n"
                     "syncFolderPath=" +
                         (home() / "folder").string() + "\n");
    }

    [[nodiscard]] fs::path home() const { return root_ / "home"; }

    /// The action with a fault at its so-many-eth operation, and the program going on.
    int act(Fault fault, long operation) const {
        return inProcess([&, this] {
            Program program(home());
            const Action todo = action();
            todo.first(program);
            faults::arm(home(), fault, operation);
            todo.run(program);
            if (faults::disarm() < operation) {
                return nothingWasLeftToFail;
            }
            const auto inMemory = names(program.manager.hosts().get());
            const bool isIntact = (inMemory == todo.hostsAfter || (todo.reads && inMemory == before)) &&
                                  program.manager.proxyExceptions().get() == todo.exceptionsAfter;
            if (!isIntact) {
                return memoryChanged;
            }
            program.manager.save();
            program.manager.setProxyExceptions(todo.exceptionsAfter);
            const auto written = decodeHosts(contentOf(Program::hostsFile(home())));
            return written && names(*written) == inMemory ? fine : cannotSaveAgain;
        });
    }

    [[nodiscard]] static bool isOldOrNew(const std::vector<std::string>& found, const Action& action) {
        return found == before || found == action.hostsAfter ||
               std::find(action.between.begin(), action.between.end(), found) != action.between.end();
    }

    /// What a program that starts now finds.
    int startAgain() const {
        return inProcess([this] {
            const Action done = action();
            Program program(home());
            const auto found = names(program.manager.hosts().get());
            const auto exceptions = program.manager.proxyExceptions().get();
            const bool isWhole = isOldOrNew(found, done) &&
                                 (exceptions == "old.example" || exceptions == done.exceptionsAfter) &&
                                 program.manager.globalProxyJump().get() == "jump.example";
            return isWhole ? fine : memoryChanged;
        });
    }

    void expectWholeFiles(long operation) const {
        const auto hosts = decodeHosts(contentOf(Program::hostsFile(home())));
        EXPECT_TRUE(hosts && isOldOrNew(names(*hosts), action())) << "operation " << operation;
        const auto shared = decodeHosts(contentOf(Program::syncFile(home())));
        EXPECT_TRUE(shared) << "operation " << operation;
        EXPECT_EQ(startAgain(), fine) << "operation " << operation;
    }

    TemporaryDirectory root_;
};

TEST_P(SaveFaultTest, LeavesOldOrNewFilesAndAProgramThatGoesOn) {
    const Fault fault = std::get<1>(GetParam());
    const bool kills = fault == Fault::killBefore || fault == Fault::killHalfway || fault == Fault::killAfter;
    long operation = 1;
    for (;; ++operation) {
        prepare();
        const int status = act(fault, operation);
        if (status == nothingWasLeftToFail) {
            break;
        }
        EXPECT_EQ(status, kills ? killed : fine) << "operation " << operation;
        expectWholeFiles(operation);
        ASSERT_LT(operation, 1000);
    }
    RecordProperty("operations", static_cast<int>(operation - 1));
    EXPECT_GT(operation, 5) << "the action touches files";
}

std::string nameOf(const testing::TestParamInfo<std::tuple<int, Fault>>& info) {
    static const std::map<Fault, std::string> faultNames{
        {Fault::ioError, "IoError"},       {Fault::noSpace, "NoSpace"},         {Fault::readOnly, "ReadOnly"},
        {Fault::shortWrite, "ShortWrite"}, {Fault::killBefore, "KilledBefore"}, {Fault::killHalfway, "KilledHalfway"},
        {Fault::killAfter, "KilledAfter"}};
    return actions()[static_cast<std::size_t>(std::get<0>(info.param))].name + faultNames.at(std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(EachOperation, SaveFaultTest,
                         testing::Combine(testing::Range(0, static_cast<int>(actions().size())),
                                          testing::Values(Fault::ioError, Fault::noSpace, Fault::readOnly,
                                                          Fault::shortWrite, Fault::killBefore, Fault::killHalfway,
                                                          Fault::killAfter)),
                         nameOf);

}  // namespace
}  // namespace velmora

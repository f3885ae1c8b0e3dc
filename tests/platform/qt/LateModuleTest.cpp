#include "fakes/TemporaryDirectory.h"
#include "manager/KeychainStore.h"
#include "platform/linux/LateCredentialStore.h"
#include "platform/linux/LateHttpClient.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <gmock/gmock.h>

#include <fstream>
#include <future>

namespace velmora {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string>& warnings() {
    static std::vector<std::string> lines;
    return lines;
}

void keepWarning(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type == QtWarningMsg) {
        warnings().push_back(text.toStdString());
    }
}

void write(const fs::path& file, std::string_view content) {
    std::ofstream(file) << content;
}

bool isLoaded(const fs::path& library) {
    return contentOf("/proc/self/maps").find(library.string()) != std::string::npos;
}

class LateModuleTest : public testing::Test {
protected:
    LateModuleTest() {
        warnings().clear();
        qInstallMessageHandler(keepWarning);
        write(page_, "what stands there");
    }
    ~LateModuleTest() override { qInstallMessageHandler(nullptr); }

    /// On a thread of its own, as its contract says.
    Result<HttpAnswer, Error> get(HttpClient& client) {
        const HttpRequest request{.url = "file://" + page_.string(), .idleLimit = 10s, .largestBody = 1000};
        return std::async(std::launch::async, [&] { return client.get(request, Cancellation()); }).get();
    }

    fs::path copyOf(const char* library) {
        fs::path copy = folder_.path() / fs::path(library).filename();
        fs::copy_file(library, copy);
        return copy;
    }

    TemporaryDirectory folder_;
    fs::path page_ = folder_.path() / "page";
};

TEST_F(LateModuleTest, NetworkIsLoadedByTheFirstRequest) {
    const fs::path module = copyOf(NETWORK_MODULE);
    LateHttpClient client(module);
    EXPECT_FALSE(isLoaded(module));

    const auto answer = get(client);

    ASSERT_TRUE(answer) << answer.error().message;
    EXPECT_EQ(answer->body, "what stands there");
    EXPECT_TRUE(isLoaded(module));
    EXPECT_TRUE(get(client));
    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(LateModuleTest, DownloadsToo) {
    LateHttpClient client(NETWORK_MODULE);
    const fs::path file = folder_.path() / "download";
    const HttpRequest request{.url = "file://" + page_.string(), .idleLimit = 10s, .largestBody = 1000};
    const auto answer = std::async(std::launch::async, [&] {
                            return client.download(
                                request, file, [](auto, auto) {}, Cancellation());
                        }).get();
    ASSERT_TRUE(answer) << answer.error().message;
    EXPECT_EQ(contentOf(file), "what stands there");
}

TEST_F(LateModuleTest, AnUpdateOfTheFilesLeavesTheRunningProgramItsOwn) {
    const fs::path module = copyOf(NETWORK_MODULE);
    LateHttpClient client(module);
    write(folder_.path() / "newer", "not for the program that runs");
    fs::rename(folder_.path() / "newer", module);

    const auto answer = get(client);

    ASSERT_TRUE(answer) << answer.error().message;
    EXPECT_EQ(answer->body, "what stands there");
}

TEST_F(LateModuleTest, KeyringIsLoadedByTheFirstCall) {
    const fs::path module = copyOf(KEYRING_MODULE);
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/proc/no-bus");
    LateCredentialStore store(module);
    EXPECT_FALSE(isLoaded(module));

    EXPECT_EQ(store.copyMatching({.service = "a", .account = "b"}).status, CredentialStatus::notAvailable);

    EXPECT_TRUE(isLoaded(module));
    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(LateModuleTest, WithoutItsLibraryThereIsNoKeychain) {
    const fs::path missing = folder_.path() / "keyring.so";
    LateCredentialStore store(missing);
    const CredentialKey key{.service = "a", .account = "b"};
    EXPECT_THAT(warnings(), IsEmpty());

    EXPECT_EQ(store.copyMatching(key).status, CredentialStatus::notAvailable);
    EXPECT_EQ(store.update(key, "secret"), CredentialStatus::notAvailable);
    EXPECT_EQ(store.add(key, "secret"), CredentialStatus::notAvailable);
    EXPECT_EQ(store.remove(key), CredentialStatus::notAvailable);

    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr(missing.string()), HasSubstr("No such file or directory"))));
    EXPECT_EQ(KeychainStore(store).load(Uuid::random()), std::nullopt);
}

TEST_F(LateModuleTest, WithoutItsLibraryEveryRequestFails) {
    const fs::path missing = folder_.path() / "network.so";
    LateHttpClient client(missing);
    const std::string message =
        "A part of Velmora cannot be loaded: " + missing.string() + ": No such file or directory";
    for (int i = 0; i < 2; ++i) {
        const auto answer = get(client);
        ASSERT_FALSE(answer);
        EXPECT_EQ(answer.error().message, message);
    }
    const fs::path file = folder_.path() / "download";
    const auto answer = client.download(
        {}, file, [](auto, auto) {}, Cancellation());
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error().message, message);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_THAT(warnings(), ElementsAre(message));
}

TEST_F(LateModuleTest, AFileThatIsNoLibrary) {
    const fs::path module = folder_.path() / "network.so";
    write(module, "nothing that could be loaded");
    LateHttpClient client(module);
    const auto answer = get(client);
    ASSERT_FALSE(answer);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr(module.string())));
}

TEST_F(LateModuleTest, ALibraryForSomethingElse) {
    LateHttpClient client(KEYRING_MODULE);
    const auto answer = get(client);
    ASSERT_FALSE(answer);
    EXPECT_THAT(answer.error().message, HasSubstr("velmoraMakeHttpClient"));
}

}  // namespace
}  // namespace velmora

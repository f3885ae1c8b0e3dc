// The program as it is shipped, but for two things: the port of its proxy script, which the environment names, because
// many of them run side by side; and each line on standard input is a list of hosts that the user saves.
#include "app/RunVelmora.h"
#include "model/HostJson.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

class SavesFromStandardInput final {
public:
    explicit SavesFromStandardInput(velmora::TunnelManager& manager) : manager_(manager) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
    }

private:
    void read() {
        std::array<char, 65536> buffer{};
        const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            notifier_.setEnabled(false);
            return;
        }
        line_.append(buffer.data(), static_cast<std::size_t>(count));
        for (auto end = line_.find('\n'); end != std::string::npos; end = line_.find('\n')) {
            if (auto hosts = velmora::decodeHosts(line_.substr(0, end))) {
                manager_.hosts().set(*std::move(hosts));
                manager_.save();
            }
            line_.erase(0, end + 1);
        }
    }

    velmora::TunnelManager& manager_;
    QSocketNotifier notifier_{STDIN_FILENO, QSocketNotifier::Read};
    std::string line_;
};

}  // namespace

int main(int argc, char** argv) {
    std::unique_ptr<SavesFromStandardInput> saves;  // made when there is an application
    velmora::ProgramOptions options;
    const char* port = std::getenv("VELMORA_TEST_PAC_PORT");
    options.pacPort = port != nullptr ? static_cast<std::uint16_t>(std::atoi(port)) : 0;
    options.beforeLoop = [&](velmora::TunnelManager& manager, velmora::Updater&) {
        saves = std::make_unique<SavesFromStandardInput>(manager);
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [&] { saves.reset(); });
    };
    return velmora::runVelmora(argc, argv, options);
}

#include "app/RunVelmora.h"

#include "manager/TunnelManager.h"
#include "platform/Paths.h"
#include "platform/SystemServices.h"
#include "platform/posix/AsioProcessLauncher.h"
#include "platform/posix/FileLimit.h"
#include "platform/posix/IoThread.h"
#include "platform/posix/SignalWatcher.h"
#include "platform/posix/SystemProcessRunner.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SingleInstance.h"
#include "ui/VelmoraApp.h"

#include <QApplication>

namespace velmora {

namespace {

void introduce() {
    QApplication::setApplicationName(QStringLiteral("Velmora"));
    QApplication::setOrganizationDomain(QStringLiteral("velmora.com"));
    QApplication::setDesktopFileName(QStringLiteral("com.velmora.app"));
    QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace

int runVelmora(int argc, char** argv, const ProgramOptions& options) {
    const Paths paths = Paths::ofThisUser();
    const auto directory = paths.applicationSupport / "Velmora";
    SingleInstance instance(directory);
    if (instance.role() == SingleInstance::Role::later) {
        return 0;
    }

    raiseFileLimit();
    introduce();
    const QApplication application(argc, argv);

    QtScheduler scheduler;
    IoThread io;
    VelmoraApp* shell = nullptr;  // there before the event loop runs, and with it what signals ask for
    const SignalWatcher endOfProgram(io, scheduler, [&shell] { shell->quit(); });
    AsioProcessLauncher launcher(io);
    SystemProcessRunner runner;
    const auto credentials = makeCredentialStore();
    const auto defaults = makeDefaultsStore(paths);
    TunnelManager manager({.paths = paths,
                           .scheduler = scheduler,
                           .launcher = launcher,
                           .runner = runner,
                           .credentials = *credentials,
                           .defaults = *defaults,
                           .environment = currentEnvironment(),
                           .sshProgram = options.sshProgram,
                           .pacPort = options.pacPort});

    const auto tray = makeTrayWatcher();
    const auto policy = makeActivationPolicy();
    VelmoraApp app(manager, *tray, *policy, directory / "hosts.json");
    shell = &app;
    instance.onKnock([&app] { app.openManagedWindow("main"); });
    return QApplication::exec();
}

}  // namespace velmora

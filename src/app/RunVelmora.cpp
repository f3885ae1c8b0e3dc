#include "app/RunVelmora.h"

#include "app/UpdateDialog.h"
#include "platform/Paths.h"
#include "platform/SystemServices.h"
#include "platform/posix/AsioProcessLauncher.h"
#include "platform/posix/CoreDumps.h"
#include "platform/posix/ExitWatcher.h"
#include "platform/posix/FileLimit.h"
#include "platform/posix/IoThread.h"
#include "platform/posix/SignalWatcher.h"
#include "platform/posix/SpawnDetachedLauncher.h"
#include "platform/posix/StandardStreams.h"
#include "platform/posix/SystemProcessRunner.h"
#include "platform/posix/ThreadWorker.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/QtWorkspace.h"
#include "platform/qt/SingleInstance.h"
#include "ui/ApplicationIcon.h"
#include "ui/ApplicationStyle.h"
#include "ui/SystemDialogs.h"
#include "ui/Translations.h"
#include "ui/VelmoraApp.h"
#include "update/CodeRequirement.h"
#include "update/Updater.h"

#include <QApplication>
#include <QLocale>

namespace velmora {

namespace {

void introduce() {
    QApplication::setApplicationName(QStringLiteral("Velmora"));
    QApplication::setApplicationVersion(QStringLiteral(VELMORA_VERSION));
    QApplication::setOrganizationDomain(QStringLiteral("velmora.com"));
    QApplication::setDesktopFileName(QStringLiteral("com.velmora.app"));
    QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace

int runVelmora(int argc, char** argv, const ProgramOptions& options) {
    openMissingStandardStreams();
    ignoreBrokenPipes();
    keepEndedChildren();
    const Paths paths = Paths::ofThisUser();
    const auto directory = paths.applicationSupport / "Velmora";
    SingleInstance instance(directory);
    if (instance.role() == SingleInstance::Role::later) {
        return 0;
    }

    disableCoreDumps();
    raiseFileLimit();
    introduce();
    QApplication application(argc, argv);
    QApplication::setStyle(new ApplicationStyle(application));  // the application deletes it
    installTranslations(application, QLocale().uiLanguages());
    QApplication::setWindowIcon(applicationIcon());

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

    const auto policy = makeActivationPolicy();
    SystemDialogs dialogs(*policy);
    const auto http = makeHttpClient();
    const auto& identity = options.updateIdentity;
    const auto bundleTools = makeBundleTools(runner,
                                             {.teamIdentifier = identity.teamIdentifier,
                                              .publicKey = identity.publicKey,
                                              .codeRequirement = codeRequirement(identity.teamIdentifier)},
                                             paths);
    SpawnDetachedLauncher detachedLauncher;
    UpdateDialog alert(dialogs);
    ThreadWorker worker;
    Updater updater(
        {.scheduler = scheduler,
         .defaults = *defaults,
         .worker = worker,
         .http = *http,
         .bundles = *bundleTools,
         .launcher = detachedLauncher,
         .alert = alert,
         .temporaryFolder = paths.largeTemporary,
         .runningBundle = RunningBundle::ofProgram(QApplication::applicationFilePath().toStdString(), VELMORA_VERSION),
         .defaultFeedURL = identity.feedURL,
         .terminate = [&shell] { shell->quit(); }});

    const auto tray = makeTrayWatcher();
    const auto launchAtLogin = makeLaunchAtLogin(paths);
    QtWorkspace workspace;
    VelmoraApp app({.manager = manager,
                    .updater = updater,
                    .defaults = *defaults,
                    .dialogs = dialogs,
                    .workspace = workspace,
                    .launchAtLogin = *launchAtLogin,
                    .tray = *tray,
                    .policy = *policy,
                    .teamIdentifier = identity.teamIdentifier});
    shell = &app;
    const ExitWatcher lostDisplay([&manager] { manager.terminateAllProcesses(); });
    instance.onKnock([&app] { app.openManagedWindow(windows::main); });
    updater.start();
    options.beforeLoop(manager, updater);
    const int status = QApplication::exec();
    instance.stopListening();
    return status;
}

}  // namespace velmora

#pragma once

#include "platform/ActivationPolicy.h"
#include "platform/CredentialStore.h"
#include "platform/DefaultsStore.h"
#include "platform/Paths.h"
#include "platform/TrayWatcher.h"

#include <memory>

namespace velmora {

// What every system has in its own way. Each function is there once for each system. Main thread, with a QApplication.

std::unique_ptr<DefaultsStore> makeDefaultsStore(const Paths& paths);
std::unique_ptr<CredentialStore> makeCredentialStore();
std::unique_ptr<TrayWatcher> makeTrayWatcher();
std::unique_ptr<ActivationPolicy> makeActivationPolicy();

}  // namespace velmora

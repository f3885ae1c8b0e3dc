#include "platform/macos/DockPolicy.h"

#import <AppKit/AppKit.h>

namespace velmora {

void DockPolicy::setRegular() {
    [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
}

void DockPolicy::setAccessory() {
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void DockPolicy::activate() {
    [NSApp activateIgnoringOtherApps:YES];
}

}  // namespace velmora

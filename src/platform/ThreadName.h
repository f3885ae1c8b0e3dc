#pragma once

namespace velmora {

/// Gives the calling thread the name that debuggers and monitors show: the label, such as "com.velmora.pac-server", or,
/// where the system has no room for one, its last part. A label that does not fit even so leaves the thread its name.
void nameThread(const char* label);

}  // namespace velmora

#pragma once

namespace velmora {

/// Opens /dev/null in the place of every standard stream that is closed. A program may be started without them; its
/// pipes would then stand where a child's streams have to go. To be called before anything is opened.
void openMissingStandardStreams();

}  // namespace velmora

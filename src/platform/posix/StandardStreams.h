#pragma once

namespace velmora {

/// Opens /dev/null in the place of every standard stream that is closed. A program may be started without them; its
/// pipes would then stand where a child's streams have to go. To be called before anything is opened.
void openMissingStandardStreams();

/// Makes a write to a pipe that nobody reads any more fail like any other write. Otherwise a message on standard error
/// would end the program when the terminal or the journal behind it has gone, and every tunnel with it.
void ignoreBrokenPipes();

}  // namespace velmora

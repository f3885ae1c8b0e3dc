#pragma once

namespace velmora {

/// Opens /dev/null in the place of every standard stream that is closed. A program may be started without them; its
/// pipes would then stand where a child's streams have to go. To be called before anything is opened.
void openMissingStandardStreams();

/// Makes a write to a pipe that nobody reads any more fail like any other write. Otherwise a message on standard error
/// would end the program when the terminal or the journal behind it has gone, and every tunnel with it.
void ignoreBrokenPipes();

/// Makes a child that has ended wait to be asked how. A program may be started with SIGCHLD ignored; the system then
/// forgets every exit status, and gives a child's number to another process while we still take it for ours. To be
/// called before anything is started.
void keepEndedChildren();

}  // namespace velmora

#pragma once

namespace velmora {

/// No crash of this process, or of what it starts, writes memory to a file: passwords stand in it.
void disableCoreDumps();

}  // namespace velmora

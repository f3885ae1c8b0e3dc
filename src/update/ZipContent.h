#pragma once

#include "base/Cancellation.h"
#include "update/ZipDirectory.h"

#include <string>

namespace velmora {

/// Unpacks an entry in memory, a little at a time, and compares size and checksum with what the directory says. At most
/// `kept` takes bytes, and only as many as it has room for (its size on entry); it is cut to what there was.
/// Needs the same small memory for every entry. False when something differs or the work was cancelled. Any thread.
bool verifyZipContent(int archive, const ZipEntry& entry, std::string& kept, const Cancellation& cancellation);

}  // namespace velmora

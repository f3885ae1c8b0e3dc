#pragma once

namespace velmora {

/// Allows as many open files as the system lets this user have: a tunnel takes several. A refusal leaves things as
/// they are.
void raiseFileLimit();

}  // namespace velmora

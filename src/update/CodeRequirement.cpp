#include "update/CodeRequirement.h"

namespace velmora {

std::string codeRequirement(std::string_view teamIdentifier) {
    return "anchor apple generic and certificate leaf[subject.OU] = \"" + std::string(teamIdentifier) + "\"";
}

}  // namespace velmora

#pragma once

#include "platform/DetachedLauncher.h"

namespace velmora {

class SpawnDetachedLauncher final : public DetachedLauncher {
public:
    Result<void, Error> start(const std::string& program, const std::vector<std::string>& arguments) override;
};

}  // namespace velmora

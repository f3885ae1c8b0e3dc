#pragma once

#include "platform/Workspace.h"

namespace velmora {

class QtWorkspace final : public Workspace {
public:
    void open(const std::filesystem::path& file) override;
};

}  // namespace velmora

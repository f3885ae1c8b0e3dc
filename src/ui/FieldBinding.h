#pragma once

#include "model/SSHHost.h"

#include <cstdint>
#include <string>

class QCheckBox;

namespace velmora {

class HostBinding;
class IntegerField;
class LinesField;
class TextField;

// Ties a control to a field of the host, both ways, until one of them goes.

void bindField(TextField& control, HostBinding& host, std::string SSHHost::*field);
void bindField(LinesField& control, HostBinding& host, std::string SSHHost::*field);
void bindField(IntegerField& control, HostBinding& host, std::int64_t SSHHost::*field);
void bindField(QCheckBox& control, HostBinding& host, bool SSHHost::*field);

}  // namespace velmora

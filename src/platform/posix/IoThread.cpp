#include "platform/posix/IoThread.h"

namespace velmora {

IoThread::IoThread() : work_(context_.get_executor()), thread_([this] { context_.run(); }) {}

IoThread::~IoThread() {
    context_.stop();
    thread_.join();
}

}  // namespace velmora

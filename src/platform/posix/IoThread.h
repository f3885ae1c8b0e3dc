#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <thread>

namespace velmora {

/// A background thread that waits for descriptors and sleeps otherwise. Work reaches it through its context; what still
/// waits when this object goes is dropped.
class IoThread final {
public:
    IoThread();
    IoThread(const IoThread&) = delete;
    IoThread& operator=(const IoThread&) = delete;
    ~IoThread();

    [[nodiscard]] boost::asio::io_context& context() { return context_; }

private:
    boost::asio::io_context context_{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
    std::thread thread_;
};

}  // namespace velmora

// SPDX-License-Identifier: GPL-3.0-or-later
// While it lives, no file of this process grows beyond `bytes`: a disk that is full.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace skyhold {

class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes)
        : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int);
};

} // namespace skyhold

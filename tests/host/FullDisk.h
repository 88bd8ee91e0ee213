#pragma once

#include <signal.h>
#include <sys/resource.h>

/// Lets files of this process grow to that many bytes only, as on a full disk, for the life of the object.
class FullDisk {
public:
    explicit FullDisk(rlim_t limit) {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_Previous);
        const rlimit size{limit, m_Previous.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &size);
    }
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &m_Previous);
        ::signal(SIGXFSZ, SIG_DFL);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_Previous{};
};

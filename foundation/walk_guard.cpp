#include "foundation/walk_guard.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

bool IsKernelFileSystem(uint64_t magic) {
    static constexpr uint64_t KERNEL_TYPES[] = {
        0x9fa0,     // proc
        0x62656572, // sysfs
        0x27e0eb,   // cgroup
        0x63677270, // cgroup2
        0x64626720, // debugfs
        0x74726163, // tracefs
        0x73636673, // securityfs
        0x1cd1,     // devpts
        0x6165676c, // pstore
        0xcafe4a11, // bpf
        0x62656570, // configfs
        0x65735543, // fusectl
        0xf97cff8c, // selinuxfs
        0xde5e81e4, // efivarfs
        0x19800202, // mqueue
        0x42494e4d, // binfmt_misc
        0x43415d53, // smackfs
        0x958458f6, // hugetlbfs
    };
    return std::find(std::begin(KERNEL_TYPES), std::end(KERNEL_TYPES), magic) !=
           std::end(KERNEL_TYPES);
}

bool SWalkGuard::IdentityOf(int fd, Identity& identity) {
    struct stat status;
    if (fd < 0 || fstat(fd, &status) != 0) {
        return false;
    }
    identity = {static_cast<uint64_t>(status.st_dev), static_cast<uint64_t>(status.st_ino)};
    return true;
}

SWalkGuard::~SWalkGuard() {
    if (topCopy >= 0) {
        close(topCopy);
    }
}

bool SWalkGuard::Start(int topFd) {
    visited.clear();
    above.clear();
    if (topCopy >= 0) {
        close(topCopy);
        topCopy = -1;
    }
    Identity identity;
    if (!IdentityOf(topFd, identity)) {
        return false;
    }
    visited.insert(identity);
    above.push_back(identity);
    // The folders above are looked up when the first link is met: most
    // walks meet none, and a deep top would cost a step per level.
    topCopy = fcntl(topFd, F_DUPFD_CLOEXEC, 0);
    return true;
}

void SWalkGuard::FindFoldersAbove() {
    if (topCopy < 0) {
        return;
    }
    // Up through ".." until it leads nowhere new (the root of the system).
    int fd = openat(topCopy, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    close(topCopy);
    topCopy = -1;
    while (fd >= 0) {
        Identity parent;
        bool known = IdentityOf(fd, parent) &&
                     std::find(above.begin(), above.end(), parent) == above.end();
        if (known) {
            above.push_back(parent);
        }
        int next = known ? openat(fd, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
        close(fd);
        fd = next;
    }
}

bool SWalkGuard::Start(const char* path) {
    int fd = path != nullptr && path[0] != 0 ? open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    bool started = Start(fd);
    if (fd >= 0) {
        close(fd);
    }
    return started;
}

bool SWalkGuard::Enter(int fd, bool viaLink, uint64_t* device, uint64_t* inode) {
    Identity identity;
    if (!IdentityOf(fd, identity)) {
        return false;
    }
    if (device != nullptr && inode != nullptr) {
        *device = identity.device;
        *inode = identity.inode;
    }
    if (!viaLink) {
        visited.insert(identity);
        return true;
    }
    FindFoldersAbove();
    if (visited.count(identity) != 0 ||
        std::find(above.begin(), above.end(), identity) != above.end()) {
        return false;
    }
    struct statfs system;
    if (fstatfs(fd, &system) == 0 && IsKernelFileSystem(static_cast<uint64_t>(system.f_type))) {
        return false;
    }
    visited.insert(identity);
    return true;
}

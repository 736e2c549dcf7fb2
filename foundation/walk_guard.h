// The rule every walk of a folder tree keeps about symbolic links, so that a
// walk always ends and stays within reason:
//
// - A folder reached through a symbolic link is entered only when the walk
//   has not met that real folder (device and inode) before, by any route.
//   Two links to "." in one folder, or a link to a folder above, end there.
// - A link to the walk's top folder or to any folder above it (a link to
//   "/", to the home folder, to "..") is not followed: the folder it leads
//   to holds the whole walk again.
// - A link into a file system of the kernel's own (/proc, /sys, cgroups,
//   debugfs and the like) is not followed: such trees are not files and
//   have no end worth walking.
//
// Folders reached without a link are always entered (their real folder is
// noted, so a link to them later is not followed). Links to folders on
// other disks are followed as before, once per real folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <vector>

class SWalkGuard {
public:
    SWalkGuard() = default;
    SWalkGuard(const SWalkGuard&) = delete;
    SWalkGuard& operator=(const SWalkGuard&) = delete;
    ~SWalkGuard();

    // Starts a walk at the folder open at topFd (not taken): notes the top
    // and every folder above it. False when topFd cannot be asked.
    bool Start(int topFd);
    // Starts a walk at the folder path names; false when it is no folder.
    bool Start(const char* path);
    // Whether the walk goes into the folder open at fd, reached through a
    // link (viaLink) or as a plain subfolder. Notes the folder when it does;
    // device and inode, when given, receive its identity.
    bool Enter(int fd, bool viaLink, uint64_t* device = nullptr, uint64_t* inode = nullptr);
    // How many real folders the walk has entered.
    size_t GetCount() const { return visited.size(); }

private:
    struct Identity {
        uint64_t device;
        uint64_t inode;
        bool operator==(const Identity& other) const {
            return device == other.device && inode == other.inode;
        }
    };
    struct IdentityHash {
        size_t operator()(const Identity& id) const {
            return static_cast<size_t>(id.inode * 0x9E3779B97F4A7C15ull ^ id.device);
        }
    };
    static bool IdentityOf(int fd, Identity& identity);
    void FindFoldersAbove();

    std::unordered_set<Identity, IdentityHash> visited;
    std::vector<Identity> above; // the top and every folder above it
    int topCopy = -1;            // the top, until the folders above are found
};

// True for a file system of the kernel's own (proc, sysfs, cgroup, debugfs,
// tracefs, securityfs, devpts, pstore, bpf, configfs, ...), given the magic
// number statfs reports.
bool IsKernelFileSystem(uint64_t magic);

#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace yunqi {

// What tells two names of one file apart from two files: device and inode,
// or on Windows volume serial and file index.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    bool operator==(const FileIdentity&) const = default;
};

// Empty when the path names nothing (or nothing that can be asked).
std::optional<FileIdentity> IdentityOf(const QString& path);

// A regular file, or nothing yet: not a folder, device, FIFO or console.
bool IsRegularOrAbsent(const QString& path);

}  // namespace yunqi

// Files from disk are read only when they are what they claim to be: a FIFO
// would block a reader for ever, a device (/dev/zero, /dev/urandom) would
// never end. Header-only, so that the log library can use it too.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace Morvane {

enum class EFileKind { kMissing, kRegular, kFolder, kOther };

inline EFileKind FileKind(const std::string& path)
{
    struct stat info {};
    if (path.empty() || ::stat(path.c_str(), &info) != 0)
        return EFileKind::kMissing;
    if (S_ISREG(info.st_mode))
        return EFileKind::kRegular;
    if (S_ISDIR(info.st_mode))
        return EFileKind::kFolder;
    return EFileKind::kOther;
}

// A regular file that opens for reading, or a folder that may be read: what
// a file search may take as found. Never blocks.
inline bool IsReadableFileOrFolder(const std::string& path)
{
    switch (FileKind(path)) {
    case EFileKind::kFolder:
        return ::access(path.c_str(), R_OK) == 0;
    case EFileKind::kRegular: {
        const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            return false;
        ::close(fd);
        return true;
    }
    default:
        return false;
    }
}

// Reads a whole regular file of at most maxBytes into out. Anything else
// (missing, a folder, a FIFO, a device, too large, unreadable) gives false
// and a reason; nothing blocks.
inline bool ReadRegularFile(const std::string& path, size_t maxBytes, std::string& out, std::string& error)
{
    out.clear();
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        error = "cannot open " + path + ": " + std::strerror(errno);
        return false;
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        error = path + " is not a regular file";
        return false;
    }
    if (static_cast<unsigned long long>(info.st_size) > maxBytes) {
        ::close(fd);
        error = path + " is larger than " + std::to_string(maxBytes) + " bytes";
        return false;
    }
    out.resize(static_cast<size_t>(info.st_size));
    size_t done = 0;
    while (done < out.size()) {
        const ssize_t got = ::read(fd, &out[done], out.size() - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<size_t>(got);
    }
    ::close(fd);
    out.resize(done);  // a file that shrank meanwhile gives what was there
    return true;
}

// Whether path may be opened for writing without blocking: a regular file,
// or nothing yet (it will be created).
inline bool IsWritableTarget(const std::string& path)
{
    const EFileKind kind = FileKind(path);
    return kind == EFileKind::kMissing || kind == EFileKind::kRegular;
}

}  // namespace Morvane

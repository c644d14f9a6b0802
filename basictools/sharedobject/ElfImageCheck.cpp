#include "ElfImageCheck.h"

#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <vector>

namespace Morvane {

namespace {

bool ReadAt(int fd, void* out, size_t size, off_t offset)
{
    size_t done = 0;
    while (done < size) {
        const ssize_t got = ::pread(fd, static_cast<char*>(out) + done, size - done, offset + static_cast<off_t>(done));
        if (got <= 0)
            return false;
        done += static_cast<size_t>(got);
    }
    return true;
}

bool CheckHeaders(int fd, uint64_t fileSize, std::string& error)
{
    Elf64_Ehdr header{};
    if (fileSize < sizeof(header) || !ReadAt(fd, &header, sizeof(header), 0) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        error = "not an ELF file";
        return false;
    }
    if (header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_phentsize != sizeof(Elf64_Phdr)) {
        error = "not a 64-bit ELF image";
        return false;
    }
    const uint64_t tableEnd = header.e_phoff + uint64_t{header.e_phnum} * sizeof(Elf64_Phdr);
    if (header.e_phnum == 0 || header.e_phoff > fileSize || tableEnd > fileSize) {
        error = "the program headers lie outside the file";
        return false;
    }
    std::vector<Elf64_Phdr> segments(header.e_phnum);
    if (!ReadAt(fd, segments.data(), segments.size() * sizeof(Elf64_Phdr), static_cast<off_t>(header.e_phoff))) {
        error = "the program headers cannot be read";
        return false;
    }
    for (const Elf64_Phdr& segment : segments) {
        if (segment.p_type != PT_LOAD && segment.p_type != PT_DYNAMIC)
            continue;
        if (segment.p_offset > fileSize || segment.p_filesz > fileSize - segment.p_offset) {
            error = "the file is truncated: a segment ends at byte " +
                    std::to_string(segment.p_offset + segment.p_filesz) + " of " + std::to_string(fileSize);
            return false;
        }
    }
    return true;
}

}  // namespace

bool CheckElfImage(const std::string& path, std::string& error)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        error = "cannot open " + path;
        return false;
    }
    struct stat info {};
    bool ok = false;
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))
        error = path + " is not a regular file";
    else
        ok = CheckHeaders(fd, static_cast<uint64_t>(info.st_size), error);
    ::close(fd);
    if (!ok && error.find(path) == std::string::npos)
        error = path + ": " + error;
    return ok;
}

}  // namespace Morvane

#include "imaging/gfile.h"

#include "imaging/galloc.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string nativePath(const char* path) {
    std::string out = path ? path : "";
    for (char& c : out)
        if (c == '\\') c = '/';
    return out;
}

// A handle of 0 means failure, but descriptor 0 is free whenever the process
// runs without standard input; move such a descriptor out of the way.
intptr_t toHandle(int fd) {
    if (fd < 0) return 0;
    if (fd == 0) {
        int moved = fcntl(fd, F_DUPFD_CLOEXEC, 1);
        close(fd);
        return moved < 0 ? 0 : moved;
    }
    return fd;
}

void createFoldersAlong(const std::string& path) {
    for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        mkdir(path.substr(0, at).c_str(), 0777); // errors ignored: it may exist
}

} // namespace

intptr_t gfopenread(const char* path) {
    std::string native = nativePath(path);
    int fd = open(native.c_str(), O_RDONLY | O_CLOEXEC);
    // A directory opens for reading but is no file: its "size" would be
    // taken for the file's length.
    struct stat st {};
    if (fd >= 0 && fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        close(fd);
        errno = EISDIR;
        return 0;
    }
    return toHandle(fd);
}

intptr_t gfopenwrite(const char* path) {
    std::string native = nativePath(path);
    if (!native.empty()) createFoldersAlong(native);
    return toHandle(open(native.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
}

int gfclose(intptr_t handle) {
    if (handle == 0) return 1;
    return close(static_cast<int>(handle)) == 0;
}

int32_t gfread(intptr_t handle, void* buffer, int32_t count) {
    if (count <= 0) return 0;
    ssize_t got = read(static_cast<int>(handle), buffer, static_cast<size_t>(count));
    if (got == 0) got = read(static_cast<int>(handle), buffer, static_cast<size_t>(count));
    return got < 0 ? -1 : static_cast<int32_t>(got);
}

int32_t gfwrite(intptr_t handle, const void* buffer, int32_t count) {
    if (count <= 0) return 0;
    ssize_t put = write(static_cast<int>(handle), buffer, static_cast<size_t>(count));
    int32_t written = put < 0 ? 0 : static_cast<int32_t>(put);
    if (written != count) gprintf("write warning.  %d requested, got %d\n", count, written);
    return written;
}

int gfseek(intptr_t handle, uint32_t low, int32_t high) {
    int fd = static_cast<int>(handle);
    off_t offset =
        static_cast<off_t>((static_cast<uint64_t>(static_cast<uint32_t>(high)) << 32) | low);
    if (lseek(fd, offset, SEEK_SET) != static_cast<off_t>(-1)) return 1;
    return lseek(fd, static_cast<off_t>(static_cast<int32_t>(low)), SEEK_SET) !=
           static_cast<off_t>(-1);
}

int64_t gftell(intptr_t handle) {
    off_t at = lseek(static_cast<int>(handle), 0, SEEK_CUR);
    return at < 0 ? 0 : static_cast<int64_t>(at);
}

int64_t gfsize(intptr_t handle) {
    int fd = static_cast<int>(handle);
    off_t at = lseek(fd, 0, SEEK_CUR);
    if (at < 0) return 0;
    off_t end = lseek(fd, 0, SEEK_END);
    lseek(fd, at, SEEK_SET);
    return end < 0 ? 0 : static_cast<int64_t>(end);
}

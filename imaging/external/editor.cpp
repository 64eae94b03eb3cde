#include "imaging/external/editor.h"

#include "imaging/galloc.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace external {

namespace {

std::string& configured() {
    static std::string command;
    return command;
}

bool onPath(const char* program) {
    const char* path = getenv("PATH");
    if (!path) return false;
    std::string folders = path;
    size_t start = 0;
    while (start <= folders.size()) {
        size_t end = folders.find(':', start);
        if (end == std::string::npos) end = folders.size();
        std::string candidate = folders.substr(start, end - start) + "/" + program;
        struct stat info {};
        if (end > start && stat(candidate.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
            access(candidate.c_str(), X_OK) == 0)
            return true;
        start = end + 1;
    }
    return false;
}

} // namespace

void editor_set_command(const char* command) {
    configured() = command ? command : "";
}

std::string editor_command() {
    if (!configured().empty()) return configured();
    const char* fromEnvironment = getenv("ZY_EXTERNAL_EDITOR");
    if (fromEnvironment && *fromEnvironment) return fromEnvironment;
    return onPath("gimp") ? "gimp" : "";
}

bool editor_run(const std::string& command, const std::string& path) {
    // The file is passed as "$1", so no quoting of the path is needed.
    std::string script = command + " \"$1\"";
    pid_t child = fork();
    if (child < 0) {
        gprintf("Photoshop - cannot start the image editor: %s\n", strerror(errno));
        return false;
    }
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", script.c_str(), "sh", path.c_str(),
              static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) {
            gprintf("Photoshop - lost the image editor: %s\n", strerror(errno));
            return false;
        }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return true;
    if (WIFEXITED(status))
        gprintf("Photoshop - the image editor '%s' ended with status %d\n", command.c_str(),
                WEXITSTATUS(status));
    else
        gprintf("Photoshop - the image editor '%s' was stopped by signal %d\n", command.c_str(),
                WTERMSIG(status));
    return false;
}

} // namespace external

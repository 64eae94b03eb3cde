// io_bench SOURCE [REPEATS [JOBS]]: how fast the codec library moves one large
// frame through each format. SOURCE is any file the library reads (the
// comparison script gives it a 4096 x 4096 RGBA picture made by
// ImageMagick). For each format the frame is written to a temporary file,
// read back and listed; each job is timed in CPU seconds (user and system), best of
// REPEATS, with the files in the page cache. Reading goes into a buffer
// allocated and touched once, so only the library's own work counts.
//
// Printed per job: seconds, MB/s of the file and MB/s of the frame's ARGB
// pixels (so formats of different sizes compare), and the same for a plain
// read() of the file ("cat"), which is the most any reader could reach.

#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"

#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// CPU time of this process (user and system): other work on a shared
// machine does not count against the job.
double cpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double bestSeconds(int repeats, const std::function<bool()>& job) {
    double best = 1e30;
    for (int i = 0; i < repeats; ++i) {
        const double start = cpuSeconds();
        if (!job()) {
            fprintf(stderr, "io_bench: the job failed\n");
            exit(1);
        }
        best = std::min(best, cpuSeconds() - start);
    }
    return best;
}

bool catFile(const std::string& path) {
    int fd = open(path.c_str(), O_RDONLY);
    if (fd < 0) return false;
    static std::vector<char> buffer(1 << 20);
    while (read(fd, buffer.data(), buffer.size()) > 0) {
    }
    close(fd);
    return true;
}

// Opens, lists and (when `into` is given) decodes frame 0 as 32-bit ARGB.
bool readFrame(const std::string& path, std::vector<uint8_t>* into) {
    char workarea[260] = {};
    intptr_t stream = TavixGOpen(path.c_str(), workarea);
    if (!stream) return false;
    TavixSet(TavixGet());
    TavixReader reader = nullptr;
    bool ok = TavixOpen(&reader, stream, path.c_str(), 1) > 0;
    if (ok) {
        TavixInfoPtr info(TavixFrameInfo(reader, 0));
        ok = info != nullptr;
        if (ok && into) {
            info->bufferbpp = 32;
            ok = TavixRead(reader, info.get(), into->data(), info->width * 4);
        }
        TavixClose(reader);
    }
    TavixProgramCallbacks().close(stream);
    return ok;
}

struct Target {
    const char* label;
    const char* driver;
    const char* extension;
    bool packed;
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: io_bench SOURCE [REPEATS [JOBS]]\n");
        return 2;
    }
    const std::string source = argv[1];
    const int repeats = argc > 2 ? std::max(1, atoi(argv[2])) : 3;
    // An optional third argument names the jobs to run ("tga,png").
    const std::string only = argc > 3 ? std::string(",") + argv[3] + "," : "";
    if (!getenv("TAVIX_DRIVERNAME")) setenv("TAVIX_DRIVERNAME", ZY_TAVIX_LIBRARY, 1);
    if (!TavixBind()) {
        fprintf(stderr, "io_bench: %s\n", TavixBindError().c_str());
        return 1;
    }
    TavixReadResult original = TavixReadFile(source);
    if (!original.ok) {
        fprintf(stderr, "io_bench: %s\n", original.error.c_str());
        return 1;
    }
    // Always a 32-bit frame, so every format gets the same pixels.
    TavixFrame frame;
    frame.info = CopyTavixInfo(*original.frames[0].info);
    {
        TavixInfo& info = *frame.info;
        std::vector<uint8_t> argb(static_cast<size_t>(info.width) * info.height * 4);
        TavixReadResult again;
        readFrame(source, &argb);
        info.bufferbpp = info.bpp = 32;
        info.alphabits = info.redbits = info.greenbits = info.bluebits = 8;
        info.formatid = 0;
        info.subtype = 0;
        info.packed = 0;
        frame.pixels = std::move(argb);
        frame.pitch = info.width * 4;
    }
    const double pixelMb = static_cast<double>(frame.pixels.size()) / 1048576.0;
    printf("frame %d x %d, %.1f MB of ARGB pixels, best of %d\n", frame.info->width,
           frame.info->height, pixelMb, repeats);
    printf("%-22s %9s %10s %10s %10s\n", "job", "file MB", "seconds", "MB/s file", "MB/s px");

    // "source" times reading the given file itself (a run-length BMP made
    // by ImageMagick, say) beside a plain read of it.
    if (only.find(",source,") != std::string::npos) {
        const double fileMb = static_cast<double>(std::filesystem::file_size(source)) / 1048576.0;
        std::vector<uint8_t> rows(frame.pixels.size());
        const double cat = bestSeconds(repeats, [&] { return catFile(source); });
        const double read = bestSeconds(repeats, [&] { return readFrame(source, &rows); });
        const double info = bestSeconds(repeats, [&] { return readFrame(source, nullptr); });
        for (auto [job, seconds] :
             {std::pair{"source cat", cat}, {"source read", read}, {"source info", info}})
            printf("%-22s %9.3f %10.4f %10.0f %10.0f\n", job, fileMb, seconds, fileMb / seconds,
                   pixelMb / seconds);
    }

    auto folder = std::filesystem::temp_directory_path() / ("io_bench." + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::vector<uint8_t> into(frame.pixels.size(), 1);

    const Target targets[] = {
        {"tga", "tga", "tga", false},           {"tga rle", "tga", "tga", true},
        {"bmp", "bmp", "bmp", false},           {"tvx", "tvx", "tvx", false},
        {"png", "png", "png", false},           {"fsh plain", "newfsh", "fsh", false},
        {"fsh refpack", "newfsh", "fsh", true},
    };
    for (const Target& t : targets) {
        const int driver = TavixFind(t.driver);
        if (driver < 0) continue;
        if (!only.empty() && only.find(std::string(",") + t.label + ",") == std::string::npos)
            continue;
        const std::string path = (folder / (std::string("out.") + t.extension)).string();
        frame.info->packed = t.packed ? 1 : 0;
        double write = bestSeconds(repeats, [&] {
            std::string error;
            return TavixWriteFile(path, driver, {&frame}, error);
        });
        const double fileMb = static_cast<double>(std::filesystem::file_size(path)) / 1048576.0;
        double cat = bestSeconds(repeats, [&] { return catFile(path); });
        double read = bestSeconds(repeats, [&] { return readFrame(path, &into); });
        double info = bestSeconds(repeats, [&] { return readFrame(path, nullptr); });
        if (memcmp(into.data(), frame.pixels.data(), into.size()) != 0)
            printf("%s: the frame read back differs from the one written\n", t.label);
        auto line = [&](const char* job, double seconds) {
            printf("%-22s %9.3f %10.4f %10.0f %10.0f\n", (std::string(t.label) + " " + job).c_str(),
                   fileMb, seconds, fileMb / seconds, pixelMb / seconds);
        };
        line("cat", cat);
        line("read", read);
        line("write", write);
        line("info", info);
    }
    std::filesystem::remove_all(folder);
    TavixUnbind();
    return 0;
}

// refpack_bench FILE... [-r REPEATS]: RefPack speed and size on raw files
// (the comparison script gives it 4096 x 4096 RGBA frames: tiled sprites,
// noise and one flat colour). Per file: compressed size and ratio, the
// best MB/s (CPU time) of encoding (of the input) and of decoding (of the
// output), and whether the stream decodes back to the input exactly.

#include "tavix/core/Errors.h"
#include "tavix/drivers/shape/RefPack.h"

#include <algorithm>
#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using namespace tavix;

namespace {

// CPU time of this process (user and system): other work on a shared
// machine does not count against the job.
double cpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <typename Job> double best(int repeats, Job&& job) {
    double seconds = 1e30;
    for (int i = 0; i < repeats; ++i) {
        const double start = cpuSeconds();
        job();
        seconds = std::min(seconds, cpuSeconds() - start);
    }
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    int repeats = 3;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "-r") == 0 && i + 1 < argc)
            repeats = std::max(1, atoi(argv[++i]));
        else
            files.push_back(argv[i]);
    }
    if (files.empty()) {
        fprintf(stderr, "usage: refpack_bench FILE... [-r REPEATS]\n");
        return 2;
    }
    printf("%-28s %10s %10s %7s %10s %10s %s\n", "file", "bytes", "packed", "ratio", "enc MB/s",
           "dec MB/s", "round trip");
    for (const std::string& name : files) {
        std::ifstream in(name, std::ios::binary);
        std::vector<char> raw{std::istreambuf_iterator<char>(in), {}};
        Bytes data(raw.begin(), raw.end());
        raw.clear();
        raw.shrink_to_fit();
        try {
            Bytes packed;
            double encode = best(repeats, [&] { packed = refpack::encode(data); });
            refpack::Decoded back;
            double decode = best(repeats, [&] { back = refpack::decode(packed, data.size()); });
            const double mb = static_cast<double>(data.size()) / 1048576.0;
            std::string base = name.substr(name.find_last_of('/') + 1);
            printf("%-28s %10zu %10zu %6.2f%% %10.1f %10.1f %s\n", base.c_str(), data.size(),
                   packed.size(), 100.0 * static_cast<double>(packed.size()) / data.size(),
                   mb / encode, mb / decode, back.bytes == data ? "exact" : "DIFFERS");
        } catch (const FormatError& error) {
            printf("%s: %s\n", name.c_str(), error.message);
            return 1;
        }
    }
    return 0;
}

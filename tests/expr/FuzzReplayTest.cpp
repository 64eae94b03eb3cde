// Replays a fuzz target's corpus through its entry point, so the inputs that
// once broke something (and the hand-written nasty ones) run in every test.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Each replay binary names its suite, so ctest keeps the two apart.
TEST(ZY_REPLAY_SUITE, EveryCorpusInputRunsCleanly) {
    namespace fs = std::filesystem;
    size_t replayed = 0;
    for (const auto& entry : fs::directory_iterator(ZY_CORPUS_DIR)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream file(entry.path(), std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)),
                                   std::istreambuf_iterator<char>());
        SCOPED_TRACE(entry.path().filename().string());
        EXPECT_EQ(LLVMFuzzerTestOneInput(bytes.data(), bytes.size()), 0);
        ++replayed;
    }
    EXPECT_GE(replayed, 20u);
}

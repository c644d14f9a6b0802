// Runs every file of the chunk parser's seed corpus through LoadChunk and
// a write/read cycle, so the corpus is checked in builds without clang.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "ChunkBytesCheck.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <corpus folder>\n", argv[0]);
        return 2;
    }
    namespace fs = std::filesystem;
    std::error_code ec;
    int files = 0, failures = 0;
    for (const auto& entry : fs::directory_iterator(argv[1], ec)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const std::string problem =
            chunk_check::CheckChunkBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        ++files;
        if (!problem.empty()) {
            ++failures;
            std::fprintf(stderr, "%s: %s\n", entry.path().filename().c_str(), problem.c_str());
        }
    }
    if (ec || files == 0) {
        std::fprintf(stderr, "no corpus files in %s\n", argv[1]);
        return 1;
    }
    std::printf("%d corpus files, %d failures\n", files, failures);
    return failures == 0 ? 0 : 1;
}

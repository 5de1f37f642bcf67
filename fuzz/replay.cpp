// Takes the place of the fuzzers' engine where the inputs are there already: runs the one fuzzer it is linked
// with on every file of the named folders. For checkers that need no special build, such as valgrind.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size);

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const auto& path : files) {
        std::fprintf(stderr, "input %s\n", path.c_str());  // so that a report tells which it was
        std::ifstream file(path, std::ios::binary);
        const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}

// TARGETReplay FOLDER...: gives every file of the folders to one fuzz target, once, in the order of their names.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> filesOf(const char* folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(stream), {}};
    std::vector<std::uint8_t> bytes(content.begin(), content.end());
    (void)LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    try {
        for (int index = 1; index < argc; ++index) {
            for (const std::filesystem::path& file : filesOf(argv[index])) {
                std::printf("%s\n", file.c_str());
                (void)std::fflush(stdout);
                replay(file);
                ++count;
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    std::printf("%zu files replayed\n", count);
    return count > 0 ? 0 : 1;
}

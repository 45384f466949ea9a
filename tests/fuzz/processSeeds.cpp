// SPDX-License-Identifier: MIT
// The main function of a fuzz target without libFuzzer: processes each file in the folders that are its
// arguments. Fails if a folder has no file. An input that violates an invariant aborts the process.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char* arguments[])
{
    namespace fs = std::filesystem;
    for (int i = 1; i < count; ++i) {
        int files = 0;
        for (const auto& entry : fs::recursive_directory_iterator(arguments[i])) {
            if (!entry.is_regular_file())
                continue;
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++files;
        }
        if (files == 0) {
            std::printf("no seeds in %s\n", arguments[i]);
            return 1;
        }
    }
    return count > 1 ? 0 : 1;
}

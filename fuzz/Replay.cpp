// Runs a target once on each file in the given folders.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "Fuzz.h"

int main(int count, char** folders) {
    int replayed = 0;
    for (int i = 1; i < count; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(folders[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                   input.size());
            ++replayed;
        }
    }
    return replayed > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

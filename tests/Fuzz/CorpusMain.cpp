#include "Fuzz/Fuzz.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

// Runs a harness once over each file of the folder that it is given.
int main(int argc, char** argv) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argc > 1 ? argv[1] : ".")) {
        std::cerr << entry.path().filename().string() << '\n';
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string content(std::istreambuf_iterator<char>(stream), {});
        velmorquit::fuzz::examine(content);
        ++count;
    }
    return count > 0 ? 0 : 1;
}

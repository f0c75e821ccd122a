// Listing the files of a directory.

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "StringUtil.h"

namespace Dictionary {

namespace {

// Kept: a file is listed when its name has any one of these letters.
constexpr char kListedLetters[] = "dump";

bool isDirectory(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void listEntries(const std::string& path, std::vector<std::string>& files) {
    DIR* directory = opendir(path.c_str());
    if (directory == nullptr) return;
    while (const dirent* entry = readdir(directory)) {
        const std::string name = entry->d_name;
        if (name.find_last_of(kListedLetters) == std::string::npos) continue;
        files.push_back(path + "/" + name);
    }
    closedir(directory);
}

}  // namespace

int GetAllFileByDir(std::string path, std::vector<std::string>& files) {
    files.clear();
    if (access(path.c_str(), F_OK) != 0) std::printf("open File %sfailed!\n", path.c_str());
    if (isDirectory(path)) {
        listEntries(path, files);
    } else {
        files.push_back(path);
    }
    return static_cast<int>(files.size());
}

}  // namespace Dictionary

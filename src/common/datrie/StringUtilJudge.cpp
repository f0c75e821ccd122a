// The fatal check.

#include <cstdio>
#include <cstdlib>

#include "StringUtil.h"

namespace Dictionary {

int Judge(int condition, const char* message) {
    if (condition == 0) return 0;
    std::printf("%s\n", message);
    std::exit(-1);
}

}  // namespace Dictionary

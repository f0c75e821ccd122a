// Uses the classes. Fails unless the coder decodes.

#include <vector>

#include "UTF8Coder.h"

int main() {
    Dictionary::CUTF8Coder coder;
    std::vector<int> codes;
    std::vector<Dictionary::SPOS> positions;
    coder.encodeString("京都", codes, positions, 0);
    return codes == std::vector<int>{0x4EAC, 0x90FD} ? 0 : 1;
}

#include "DATInterface.h"

#include <cstdlib>
#include <memory>

#include "DATDictionarySample.h"

namespace Dictionary {

// What the entry points may do that a host may not.
struct EntryPoints {
    static char* search(const CDictionayApp& app, const char* text, bool withFeatures) {
        return app.searchText(text, withFeatures);
    }
};

}  // namespace Dictionary

using Dictionary::CDictionayApp;
using Dictionary::EntryPoints;

void buildTree(const char* sourceFileName, const char* binaryFileName) {
    CDictionayApp app;
    app.buildDic(sourceFileName, "\t", "\n");
    app.writeBinaryDic(binaryFileName);
}

void* loadBin(const char* fileName) {
    auto app = std::make_unique<CDictionayApp>();
    app->loadBinaryDic(fileName);
    return app.release();
}

char* search(const char* text, void* handle, bool withFeatures) {
    if (handle == nullptr) return EntryPoints::search(CDictionayApp(), text, withFeatures);
    return EntryPoints::search(*static_cast<CDictionayApp*>(handle), text, withFeatures);
}

void destroyBin(void* handle) {
    delete static_cast<CDictionayApp*>(handle);
}

void freeResult(void* result) {
    std::free(result);
}

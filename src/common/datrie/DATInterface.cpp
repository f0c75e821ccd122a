#include "DATInterface.h"

#include <cstdlib>
#include <memory>

#include "DATDictionarySample.h"
#include "ImageSearch.h"
#include "LoadedImage.h"
#include "UTF8Coder.h"

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
using Dictionary::LoadedImage;

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
    Dictionary::CUTF8Coder coder;
    if (handle == nullptr) return Dictionary::searchImage(nullptr, coder, text, withFeatures);
    if (const LoadedImage* const loaded = LoadedImage::of(handle)) {
        return Dictionary::searchImage(loaded->searchedImage(), coder, text, withFeatures);
    }
    return EntryPoints::search(*static_cast<CDictionayApp*>(handle), text, withFeatures);
}

void destroyBin(void* handle) {
    if (handle == nullptr) return;
    if (LoadedImage* const loaded = LoadedImage::of(handle)) return loaded->destroy();
    delete static_cast<CDictionayApp*>(handle);
}

void freeResult(void* result) {
    std::free(result);
}

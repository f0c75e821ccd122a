// Images in memory, built of words.

#ifndef TESTS_LABEL_IMAGE_H
#define TESTS_LABEL_IMAGE_H

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "Dictionary.h"

// Keys with one data field each.
using Words = std::map<std::string, std::string>;
using Handle = std::unique_ptr<DictionaryHandle, decltype(&dictionaryClose)>;

inline Handle imageOf(const Words& words) {
    std::string records;
    for (const auto& [key, data] : words) records += key + '\t' + data + '\n';
    DictionarySource source = {};
    source.size = sizeof source;
    source.bytes = {records.data(), records.size()};
    DictionaryBuildOptions options = {};
    options.size = sizeof options;
    options.allowEmpty = true;
    DictionaryImageBuffer image = {};
    const DictionaryTarget target = {sizeof target, nullptr, &image};
    EXPECT_EQ(dictionaryBuildFrom(&source, &target, &options, nullptr, nullptr), DICTIONARY_OK);
    DictionaryHandle* const handle =
        dictionaryOpenBytes({image.bytes, image.size}, DICTIONARY_OPEN_COPY, nullptr);
    dictionaryFreeBuffer(&image);
    return {handle, dictionaryClose};
}

#endif

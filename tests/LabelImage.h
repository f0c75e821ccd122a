// Images in memory that are built from words, and how words are folded.

#ifndef TESTS_LABEL_IMAGE_H
#define TESTS_LABEL_IMAGE_H

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Dictionary.h"

// Keys with one data field each.
using Words = std::map<std::string, std::string>;
using Handle = std::unique_ptr<DictionaryHandle, decltype(&dictionaryClose)>;

// Some letters and their folded forms, which have as many bytes, fewer or more.
inline const std::pair<std::string, std::string> kFoldings[] = {{"A", "a"},
                                                                {"\u00c9", "\u00e9"},
                                                                {"\uff21", "a"},
                                                                {"\u212a", "k"},
                                                                {"\u023a", "\u2c65"},
                                                                {"\u0345", "\u03b9"},
                                                                {"\U00010400", "\U00010428"}};

inline std::string foldedSlowly(std::string text) {
    for (const auto& [letter, folded] : kFoldings) {
        for (std::size_t at = 0; (at = text.find(letter, at)) != text.npos; at += folded.size()) {
            text.replace(at, letter.size(), folded);
        }
    }
    return text;
}

// What an image is built from.
struct Source {
    Words words;
    bool isFolded = false;

    std::string key(const std::string& text) const { return isFolded ? foldedSlowly(text) : text; }

    // Each key with its data text. Keys that are equal when folded become one key with the data of
    // both.
    Words content() const {
        Words all;
        for (const auto& [word, data] : words) {
            std::string& text = all[key(word)];
            text += (text.empty() ? "" : ";") + data + '\t';
        }
        return all;
    }
};

inline Handle imageOf(const Words& words, bool isFolded = false) {
    std::string records;
    for (const auto& [key, data] : words) records += key + '\t' + data + '\n';
    DictionarySource source = {};
    source.size = sizeof source;
    source.bytes = {records.data(), records.size()};
    DictionaryBuildOptions options = {};
    options.size = sizeof options;
    options.allowEmpty = true;
    options.folded = isFolded;
    DictionaryImageBuffer image = {};
    const DictionaryTarget target = {sizeof target, nullptr, &image};
    EXPECT_EQ(dictionaryBuildFrom(&source, &target, &options, nullptr, nullptr), DICTIONARY_OK);
    DictionaryHandle* const handle =
        dictionaryOpenBytes({image.bytes, image.size}, DICTIONARY_OPEN_COPY, nullptr);
    dictionaryFreeBuffer(&image);
    return {handle, dictionaryClose};
}

// A set of images, which must outlive it.
inline Handle setOf(const std::vector<Handle>& images) {
    std::vector<const DictionaryHandle*> handles;
    for (const Handle& image : images) handles.push_back(image.get());
    return {dictionaryOpenSet(handles.data(), handles.size(), nullptr), dictionaryClose};
}

#endif

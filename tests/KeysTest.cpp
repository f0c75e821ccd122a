// Compares lists of keys, and lookups of many keys, with std::map.

#include <algorithm>
#include <optional>
#include <random>
#include <thread>
#include <tuple>

#include "ImageFormat.h"
#include "KeyCursor.h"
#include "KeyIndex.h"
#include "LabelImage.h"
#include "UTF8Coder.h"

namespace {

using Texts = std::vector<std::string>;
using Listed = std::vector<std::tuple<std::string, std::string, std::uint32_t>>;
using Cursor = std::unique_ptr<DictionaryCursor, decltype(&dictionaryCloseCursor)>;

DictionaryText textOf(const std::string& text) {
    return {text.data(), text.size()};
}

Cursor cursorOf(const Handle& handle) {
    return {dictionaryOpenCursor(handle.get(), nullptr), dictionaryCloseCursor};
}

void add(const DictionaryKey& key, Listed& keys) {
    keys.emplace_back(std::string(key.text.bytes, key.text.size),
                      std::string(key.data.bytes, key.data.size), key.image);
}

// The keys up to the end of the cursor. After it there is nothing.
Listed listed(DictionaryCursor* cursor) {
    Listed keys;
    DictionaryKey key;
    while (dictionaryNextKey(cursor, &key)) add(key, keys);
    EXPECT_FALSE(dictionaryNextKey(cursor, &key));
    EXPECT_EQ(key.text.bytes, nullptr);
    return keys;
}

// The same by calls for many keys at once. The first call asks for a few.
Listed listedAtOnce(DictionaryCursor* cursor) {
    Listed keys;
    std::vector<DictionaryKey> some(1000);
    std::size_t wanted = 3;
    while (const std::size_t count = dictionaryNextKeys(cursor, some.data(), wanted)) {
        EXPECT_LE(count, wanted);
        wanted = some.size();
        for (std::size_t i = 0; i < count; ++i) {
            const char* const end = some[i].text.bytes + some[i].text.size;
            EXPECT_EQ(*end, '\0');
            if (i + 1 < count) {
                EXPECT_EQ(some[i + 1].text.bytes, end + 1);
            }
            add(some[i], keys);
        }
    }
    EXPECT_EQ(dictionaryNextKeys(cursor, some.data(), some.size()), 0u);
    return keys;
}

const Texts kIllegal = {"\xED\xA0\x80", "\xED\xA0\x80\xED\xB0\x80", "\xEF", "a\xEF"};

bool isLegal(const std::string& text) {
    return std::count(kIllegal.begin(), kIllegal.end(), text) == 0;
}

// The keys of several images, with the number of their image; the last image that has a key wins.
// No key begins with illegal UTF-8.
Listed expected(const std::vector<Source>& images, const std::string& prefix) {
    std::map<std::string, std::pair<std::string, std::uint32_t>> all;
    for (std::uint32_t image = 0; image < images.size(); ++image) {
        const std::string begin = images[image].key(prefix);
        for (const auto& [key, data] : images[image].content()) {
            const bool begins = isLegal(prefix) && key.compare(0, begin.size(), begin) == 0;
            if (begins) all[key] = {data, image};
        }
    }
    Listed keys;
    for (const auto& [key, found] : all) keys.emplace_back(key, found.first, found.second);
    return keys;
}

std::optional<std::string> lookedUp(const std::vector<Source>& images, const std::string& text) {
    for (auto image = images.rbegin(); image != images.rend(); ++image) {
        const Words content = image->content();
        const auto found = content.find(image->key(text));
        if (found != content.end()) return found->second;
    }
    return std::nullopt;
}

std::optional<std::string> answerOf(const DictionaryText& data) {
    if (data.bytes == nullptr) return std::nullopt;
    return std::string(data.bytes, data.size);
}

// Expects that every list and every lookup of `texts` in the handle equals that in the maps.
void expectModel(const Handle& handle, const std::vector<Source>& images, const Texts& texts) {
    const Cursor cursor = cursorOf(handle);
    const Listed all = expected(images, "");
    EXPECT_EQ(listed(cursor.get()), all);
    std::vector<DictionaryText> keys;
    std::size_t found = 0;
    for (const std::string& text : texts) {
        dictionarySeekPrefix(cursor.get(), textOf(text));
        const Listed some = expected(images, text);
        EXPECT_EQ(listed(cursor.get()), some) << text;
        dictionarySeekPrefix(cursor.get(), textOf(text));
        EXPECT_EQ(listedAtOnce(cursor.get()), some) << text;
        keys.push_back(textOf(text));
        found += dictionaryLookupKey(handle.get(), keys.back(), nullptr) ? 1 : 0;
    }
    std::vector<DictionaryText> data(texts.size(), {"", 7});
    EXPECT_EQ(dictionaryLookupKeys(handle.get(), keys.data(), keys.size(), data.data()), found);
    EXPECT_EQ(dictionaryLookupKeys(handle.get(), keys.data(), keys.size(), nullptr), found);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto answer = lookedUp(images, texts[i]);
        EXPECT_EQ(answerOf(data[i]), answer) << texts[i];
        DictionaryText one = {"", 7};
        EXPECT_EQ(dictionaryLookupKey(handle.get(), keys[i], &one), answer.has_value());
        EXPECT_EQ(answerOf(one), answer) << texts[i];
    }
    dictionarySeekPrefix(cursor.get(), {nullptr, 0});
    EXPECT_EQ(listedAtOnce(cursor.get()), all);
}

// One character of each length, the last of their planes among them, in the order of their bytes,
// and letters that are folded.
const Texts kCharacters = {"a", "\u00e9", "\uffff", "\U00010000", "\U0010FFFF",
                           "A", "\u00c9", "\u212a", "\u023a",     "\U00010400"};

TEST(Keys, SmallDictionariesEqualAMap) {
    // All texts of one character and many of two. Queries are these, and texts that are no keys.
    Texts texts = kCharacters;
    for (const std::string& first : kCharacters) {
        for (const char* second : {"a", "\uffff", "\U00010000", "\u023a"}) {
            texts.push_back(first + second);
        }
    }
    Texts queries = texts;
    queries.insert(queries.end(), kIllegal.begin(), kIllegal.end());
    queries.insert(queries.end(), {"", "b", "k", "\u2c65", "\U00010428a", std::string(99, 'A')});
    queries.emplace_back(1, '\0');
    std::mt19937 random(3);
    for (int round = 0; round < 60 && !testing::Test::HasFailure(); ++round) {
        std::vector<Source> sources(1 + random() % 3);
        std::vector<Handle> images;
        for (Source& source : sources) {
            source.isFolded = random() % 2 == 0;
            for (const std::string& text : texts) {
                if (random() % 5 == 0) source.words[text] = std::to_string(round);
            }
            images.push_back(imageOf(source.words, source.isFolded));
            expectModel(images.back(), {source}, queries);
        }
        expectModel(setOf(images), sources, queries);
    }
}

std::string randomText(std::mt19937& random) {
    static const int kStarts[] = {2, 'a', 0x7F, 0x4E00, 0xD7FE, 0xE000, 0xFFFE, 0x1F600, 0x10FFFC};
    std::string text;
    for (auto i = 1 + random() % 6; i > 0; --i) {
        const int code = kStarts[random() % 9] + static_cast<int>(random() % 2);
        char bytes[4];
        const int size = Dictionary::CUTF8Coder().decode(code, bytes, sizeof bytes);
        text.append(bytes, static_cast<std::size_t>(size));
    }
    return text;
}

TEST(Keys, RandomAndLongKeysEqualAMap) {
    std::mt19937 random(4);
    Words words;
    Texts queries;
    for (int i = 0; i < 3000; ++i) {
        const std::string text = randomText(random);
        if (text[0] != '\t' && i % 2 == 0) words[text] = std::to_string(i % 7);
        if (i % 10 == 0) queries.push_back(text);
    }
    const std::string longKey(1000, 'x');
    for (const std::size_t size : {254u, 255u, 256u, 600u, 1000u}) {
        words[longKey.substr(0, size)] = "long";
        words[longKey.substr(0, size) + "\U0001F600" + longKey.substr(0, 300)] = "";
    }
    queries.insert(queries.end(), {longKey, longKey.substr(0, 300), longKey + "x"});
    expectModel(imageOf(words), {{words}}, queries);
}

TEST(Keys, ArgumentsThatAreNoneFindNothing) {
    DictionaryError error;
    EXPECT_EQ(dictionaryOpenCursor(nullptr, &error), nullptr);
    EXPECT_EQ(error.code, DICTIONARY_BAD_ARGUMENT);
    const Handle handle = imageOf({{"a", "1"}});
    const DictionaryText keys[] = {{nullptr, 1}, {"a", 1}, {"a", 0}};
    DictionaryText data[3];
    EXPECT_EQ(dictionaryLookupKeys(nullptr, keys, 3, data), 0u);
    EXPECT_EQ(data[1].bytes, nullptr);
    EXPECT_EQ(dictionaryLookupKeys(handle.get(), nullptr, 3, data), 0u);
    EXPECT_EQ(dictionaryLookupKeys(handle.get(), keys, 3, data), 1u);
    // An image without a cell for the character.
    const DictionaryText above = {"東", 3};
    EXPECT_EQ(dictionaryLookupKeys(imageOf({{"\x01", "1"}}).get(), &above, 1, data), 0u);
    DictionaryKey key;
    EXPECT_FALSE(dictionaryNextKey(nullptr, &key));
    EXPECT_FALSE(dictionaryNextKey(cursorOf(handle).get(), nullptr));
    EXPECT_EQ(dictionaryNextKeys(nullptr, &key, 1), 0u);
    EXPECT_EQ(dictionaryNextKeys(cursorOf(handle).get(), nullptr, 1), 0u);
    EXPECT_EQ(dictionaryNextKeys(cursorOf(handle).get(), &key, 0), 0u);
    dictionarySeekPrefix(nullptr, textOf("a"));
    dictionaryCloseCursor(nullptr);
}

TEST(Keys, FirstCursorsMayRace) {
    constexpr int kThreads = 8;
    Words words;
    std::mt19937 random(6);
    for (int i = 0; i < 300; ++i) words[randomText(random)] = std::to_string(i);
    const Handle handle = imageOf(words);
    std::vector<Listed> lists(kThreads);
    std::vector<std::thread> threads;
    for (Listed& list : lists) {
        threads.emplace_back([&] { list = listed(cursorOf(handle).get()); });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Listed& list : lists) EXPECT_EQ(list, expected({{words}}, ""));
}

// Whatever the cells hold, a list ends, and each of its keys is found by its own prefix.
TEST(Keys, ListsOfDamagedImagesEnd) {
    const Words words = {
        {"a", "1"}, {"ab", "2"}, {"abc", "3"}, {"b\U0001F600", "4"}, {"\uffff", ""}};
    Handle handle = imageOf(words);
    const DictionaryText whole = dictionaryImageBytes(handle.get(), 0);
    const std::string sound(whole.bytes, whole.size);
    const Dictionary::CellView cells = Dictionary::ImageView(sound.data()).cells();
    std::vector<std::uint32_t> used = {'c', 65536};
    for (std::uint32_t cell = 1; cell < cells.firstLimit(); ++cell) {
        if (cells.checkOf(cell) != Dictionary::kFreeImageCheck) used.push_back(cell);
    }
    std::mt19937 random(5);
    for (int round = 0; round < 500; ++round) {
        std::string bytes = sound;
        for (int i = 0; i < 3; ++i) {
            const std::int32_t values[] = {static_cast<std::int32_t>(used[random() % used.size()]),
                                           -1,
                                           0,
                                           INT32_MIN,
                                           INT32_MAX,
                                           static_cast<std::int32_t>(random())};
            const std::size_t word = 4 * (random() % 2);  // base or check
            std::memcpy(&bytes[used[random() % used.size()] * 12 + word], &values[random() % 6], 4);
        }
        const Dictionary::ImageView image(bytes.data());
        const Dictionary::KeyIndex index(image);
        Dictionary::KeyCursor cursor(image, index), own(image, index);
        std::size_t count = 0;
        std::string last;
        for (; cursor.next(); ++count) {
            const std::string key(cursor.text());
            ASSERT_LT(last, key);
            last = key;
            own.seek(key);
            ASSERT_TRUE(own.next() && own.text() == key);
        }
        ASSERT_EQ(count, index.keyCount());
        ASSERT_LE(count, used.size());
    }
}

}  // namespace

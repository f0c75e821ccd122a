// Eight threads on one handle, while others load, destroy and build.

#include <atomic>
#include <functional>
#include <thread>

#include "DATInterface.h"
#include "Dictionary.h"
#include "TemporaryFile.h"

namespace {

using Texts = std::vector<std::string>;

// All texts of up to `most` of the letters.
Texts textsOver(const Texts& letters, std::size_t most) {
    Texts texts = {""};
    std::size_t done = 0;
    for (std::size_t length = 0; length < most; ++length) {
        for (const std::size_t end = texts.size(); done < end; ++done) {
            for (const std::string& letter : letters) texts.push_back(texts[done] + letter);
        }
    }
    return texts;
}

// The results of all lookups in a text, as one text; `image` may be null.
std::string answer(void* handle, const DictionaryHandle* image, const std::string& text) {
    char* const found = search(text.c_str(), handle, true);
    std::string all = found;
    freeResult(found);
    // What loadBin returns is only for search.
    if (image == nullptr) return all;
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.unit = DICTIONARY_UNIT_UTF16;
    const DictionaryText searched = {text.data(), text.size()};
    DictionaryMatches list = {};
    for (const int mode : {DICTIONARY_FIND_ALL, DICTIONARY_FIND_LONGEST, DICTIONARY_FIND_SEGMENT,
                           DICTIONARY_FIND_PREFIXES}) {
        options.mode = mode;
        dictionaryFindMatches(image, &options, searched, &list, nullptr);
        for (std::size_t i = 0; i < list.count; ++i) {
            const DictionaryMatch& match = list.items[i];
            all += std::to_string(match.start) + '+' + std::to_string(match.length) + ' ';
            all.append(match.data.bytes, match.data.size);
        }
    }
    dictionaryFreeMatches(&list);
    DictionaryText data;
    if (dictionaryLookupKey(image, searched, &data)) all.append(data.bytes, data.size);
    return all;
}

void runTogether(const std::vector<std::function<void()>>& tasks) {
    std::vector<std::thread> threads;
    for (const auto& task : tasks) threads.emplace_back(task);
    for (std::thread& thread : threads) thread.join();
}

TEST(Threads, AnswerAsOneAloneDoes) {
    constexpr int kSearchers = 8, kLoaders = 2, kBuilders = 2, kRounds = 4;
    std::string records;
    for (const std::string& key : textsOver({"a", "b", "中"}, 3)) {
        if (!key.empty()) records += key + "\tdata of " + key + "\n";
    }
    const TemporaryFile source(records), image;
    dictionaryBuildFile(source.path(), image.path(), nullptr, nullptr, nullptr);
    DictionaryHandle* const handle = dictionaryOpenFile(image.path(), DICTIONARY_OPEN_MAP, nullptr);
    const Texts texts = textsOver({"a", "b", "中", "\xFF", "\U0001F600"}, 4);
    Texts answers, plainAnswers;
    for (const std::string& text : texts) {
        answers.push_back(answer(handle, handle, text));
        plainAnswers.push_back(answer(handle, nullptr, text));
    }

    std::atomic<int> wrong{0};
    const auto check = [&](DictionaryHandle* opened, std::size_t i) {
        if (answer(opened, opened, texts[i]) != answers[i]) ++wrong;
    };
    const auto searchAll = [&] {
        for (std::size_t i = 0; i < texts.size(); ++i) check(handle, i);
    };
    const auto loadOften = [&] {
        for (std::size_t i = 0; i < texts.size(); i += 20) {
            void* const plain = loadBin(image.path());
            if (answer(plain, nullptr, texts[i]) != plainAnswers[i]) ++wrong;
            destroyBin(plain);
            const int mode = i % 40 == 0 ? DICTIONARY_OPEN_SHARE : DICTIONARY_OPEN_COPY;
            DictionaryHandle* const opened = dictionaryOpenFile(image.path(), mode, nullptr);
            check(opened, i);
            dictionaryClose(opened);
        }
    };
    const auto buildOften = [&] {
        const TemporaryFile plain, checked;
        for (int round = 0; round < kRounds; ++round) {
            buildTree(source.path(), plain.path());
            dictionaryBuildFile(source.path(), checked.path(), nullptr, nullptr, nullptr);
            if (plain.content() != checked.content()) ++wrong;
        }
    };
    std::vector<std::function<void()>> tasks(kSearchers, searchAll);
    tasks.insert(tasks.end(), kLoaders, loadOften);
    tasks.insert(tasks.end(), kBuilders, buildOften);
    printedBy([&] { runTogether(tasks); });
    dictionaryClose(handle);
    EXPECT_EQ(wrong, 0);
}

}  // namespace

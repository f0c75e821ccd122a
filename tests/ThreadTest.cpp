// Eight threads on one handle, while others load, destroy and build.

#include <atomic>
#include <functional>
#include <thread>

#include "DATChecked.h"
#include "DATInterface.h"
#include "DATMatch.h"
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

// Everything that lookups say of a text, as one text.
std::string answer(void* handle, const std::string& text) {
    char* const found = search(text.c_str(), handle, true);
    std::string all = found;
    freeResult(found);
    DictionaryMatches list = {nullptr, 0, 0};
    for (int mode = DICTIONARY_FIND_ALL; mode <= DICTIONARY_FIND_AS_SEARCH; ++mode) {
        dictionaryFind(handle, mode, DICTIONARY_UNIT_UTF16, text.data(), text.size(), &list);
        for (std::size_t i = 0; i < list.count; ++i) {
            const DictionaryMatch& match = list.items[i];
            all += std::to_string(match.start) + '+' + std::to_string(match.length) + ' ';
            all.append(match.data, match.dataLength);
        }
    }
    dictionaryReleaseMatches(&list);
    const char* data = nullptr;
    std::size_t size = 0;
    if (dictionaryLookup(handle, text.data(), text.size(), &data, &size)) all.append(data, size);
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
    dictionaryBuild(source.path(), image.path(), nullptr, nullptr);
    void* const handle = dictionaryOpen(image.path(), DICTIONARY_OPEN_MAP, nullptr);
    const Texts texts = textsOver({"a", "b", "中", "\xFF", "\U0001F600"}, 4);
    Texts answers;
    for (const std::string& text : texts) answers.push_back(answer(handle, text));

    std::atomic<int> wrong{0};
    const auto check = [&](void* opened, std::size_t i) {
        if (answer(opened, texts[i]) != answers[i]) ++wrong;
    };
    const auto searchAll = [&] {
        for (std::size_t i = 0; i < texts.size(); ++i) check(handle, i);
    };
    const auto loadOften = [&] {
        for (std::size_t i = 0; i < texts.size(); i += 20) {
            void* const opened = i % 40 == 0
                                     ? loadBin(image.path())
                                     : dictionaryOpen(image.path(), DICTIONARY_OPEN_COPY, nullptr);
            check(opened, i);
            destroyBin(opened);
        }
    };
    const auto buildOften = [&] {
        const TemporaryFile plain, checked;
        for (int round = 0; round < kRounds; ++round) {
            buildTree(source.path(), plain.path());
            dictionaryBuild(source.path(), checked.path(), nullptr, nullptr);
            if (plain.content() != checked.content()) ++wrong;
        }
    };
    std::vector<std::function<void()>> tasks(kSearchers, searchAll);
    tasks.insert(tasks.end(), kLoaders, loadOften);
    tasks.insert(tasks.end(), kBuilders, buildOften);
    printedBy([&] { runTogether(tasks); });
    destroyBin(handle);
    EXPECT_EQ(wrong, 0);
}

}  // namespace

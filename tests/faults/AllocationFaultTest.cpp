// Every allocation of every operation fails, once and permanently. The caller learns of it, nothing
// leaks, and what was loaded answers as before.

#include <cerrno>
#include <functional>
#include <memory>

#include "DATDictionarySample.h"
#include "DATInterface.h"
#include "DATReader.h"
#include "Dictionary.hpp"
#include "Faults.h"
#include "TemporaryFile.h"

namespace {

using namespace Dictionary;

// Too long for the buffer that a search has on the stack.
const std::string kLongKey(200, 'k');
const std::string kSource =
    "a\t1\nab\t2\n中文\tx\ty\nab\t3\na😀\trefused\nlonger than inline\tz\n" + kLongKey + "\t\n";
const std::string kLongText =
    "ab中文 longer than inline, 中文 again" + kLongKey + " and " + kLongKey;
const char* const kText = kLongText.c_str();

struct Dictionaries {
    Dictionaries() {
        printedBy([&] {
            const SourceCloser closer;
            buildTree(source.path(), image.path());
        });
        bytes = image.content();
        handle.reset(loadBin(image.path()));
    }

    const TemporaryFile source{kSource}, image, target;
    std::string bytes;
    std::unique_ptr<void, decltype(&destroyBin)> handle{nullptr, destroyBin};
    CUTF8Coder coder;
};

// An operation, with its result as text. If it reports a lack of memory in another way than by
// std::bad_alloc, it is made to throw that.
using Operation = std::function<std::string()>;

void throwIf(bool memoryIsShort) {
    if (memoryIsShort) throw std::bad_alloc();
}

std::string list(const std::vector<SPOS>& records) {
    std::string text;
    for (const SPOS& r : records) text += std::to_string(r.start) + '-' + std::to_string(r.end);
    return text;
}

Operation lookup(Dictionaries& all, bool reverse) {
    return [&all, reverse] {
        CDATReader reader(&all.coder, &all.bytes[0], reverse);
        std::string text;
        std::vector<SPOS> records;
        CDictionayApp::Matches groups;
        reader.exactMatch("longer than inline", text);
        reader.allMatch(kText, records, false, -1);
        reader.maxMatch(kText, records);
        reader.allMatch(kText, groups, false, -1);
        return text + list(records) + std::to_string(groups.size());
    };
}

using Result = std::unique_ptr<char, decltype(&freeResult)>;

Operation queries(CDictionayApp& app) {
    return [&app] {
        CDictionayApp::Matches matches;
        app.allMatch(kText, matches);
        app.showAllMatch(kText, matches);
        const Result text(app.returnListStr(kText, matches, true), freeResult);
        std::string feature;
        app.showExactMatch("ab", feature);
        return text.get() + feature;
    };
}

Operation searching(void* handle) {
    return [handle] {
        const Result text(search(kText, handle, true), freeResult);
        return std::string(text.get());
    };
}

std::string write(const Dictionaries& all) {
    const SourceCloser closer;
    CDictionayApp app;
    app.buildDic(all.source.path(), "\t", "\n");
    app.writeBinaryDic(all.target.path());
    disarm();
    return all.target.content();
}

std::string writeByKeys(CUTF8Coder& coder) {
    CDATWriter writer(&coder, true);
    for (const char* key : {"a", "ab", "中文", "b"}) writer.addKeys(key, "of this key, the data");
    writer.buildDAT();
    std::vector<std::pair<std::string, std::string>> shown;
    writer.show(shown);
    const std::unique_ptr<char[]> image(writer.write());
    return {image.get(), static_cast<std::size_t>(writer.imageSize())};
}

std::string checkedBuild(const Dictionaries& all, const char* image) {
    DictionarySource source = {};
    source.size = sizeof source;
    source.path = all.source.path();
    const DictionaryTarget target = {sizeof target, image, nullptr};
    const int code = dictionaryBuildFrom(&source, &target, nullptr, nullptr, nullptr);
    throwIf(code == DICTIONARY_NO_MEMORY);
    disarm();
    return std::to_string(code) + all.target.content();
}

std::string openByClass(const Dictionaries& all, dictionary::OpenMode mode) {
    dictionary::verifyImage(all.image.path());
    const auto image = dictionary::Image::open(all.image.path(), mode);
    std::string text = std::to_string(image.find(kText, dictionary::FindMode::longest).size());
    image.visit(kText, {}, [&](const dictionary::Match& match) { text += match.data; });
    for (const dictionary::Key& key : image.keys("ab")) text += key.text;
    for (const auto& data : image.lookupEach(std::vector<const char*>{"ab", "b"})) {
        text += data.value_or("none");
    }
    return text;
}

std::string buildByClass(const Dictionaries& all) {
    dictionary::ImageBuffer image;
    const std::pair<const char*, const char*> items[] = {{"a", "1"}, {"\U0001F600", "2"}};
    dictionary::buildItems(items, image);
    const dictionary::Built checked = dictionary::checkBytes("a\t\nb\n");
    dictionary::buildFile(all.source.path(), all.target.path());
    disarm();
    return std::string(image.view()) + checked.problems.at(0).what() + all.target.content();
}

std::string load(const char* name) {
    destroyBin(loadBin(name));
    return "";
}

// One run with a fault in it. Returns false when the fault did not occur.
bool failOnce(const Operation& operation, const std::string& expected, const Fault& fault) {
    const long allocations = liveAllocations();
    const long descriptors = openDescriptors();
    bool isSame = false;
    bool isRefused = false;
    printedBy([&] {
        arm(fault);
        try {
            isSame = operation() == expected;
        } catch (const std::bad_alloc&) {
            isRefused = true;
        }
        disarm();
    });
    EXPECT_EQ(liveAllocations(), allocations) << "allocation " << fault.number;
    EXPECT_EQ(openDescriptors(), descriptors) << "allocation " << fault.number;
    EXPECT_TRUE(isSame || (hasStruck() && isRefused)) << "allocation " << fault.number;
    return hasStruck();
}

TEST(AllocationFault, ReachesTheCallerAndLeavesNothingBehind) {
    Dictionaries all;
    const std::pair<const char*, Operation> operations[] = {
        {"plain build", [&] { return write(all); }},
        {"writer", [&] { return writeByKeys(all.coder); }},
        {"checked build", [&] { return checkedBuild(all, all.target.path()); }},
        {"check", [&] { return checkedBuild(all, nullptr); }},
        {"build by class", [&] { return buildByClass(all); }},
        {"load", [&] { return load(all.image.path()); }},
        {"load nothing", [&] { return load("/no/such/image"); }},
        {"open", [&] { return openByClass(all, dictionary::OpenMode::map); }},
        {"open a copy", [&] { return openByClass(all, dictionary::OpenMode::copy); }},
        {"open a shared one", [&] { return openByClass(all, dictionary::OpenMode::share); }},
        {"lookup", lookup(all, false)},
        {"reverse lookup", lookup(all, true)},
        {"queries", queries(*static_cast<CDictionayApp*>(all.handle.get()))},
        {"search", searching(all.handle.get())}};
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        std::string expected, afterwards;
        printedBy([&, &run = operation] { expected = run(); });
        for (const bool forGood : {false, true}) {
            int number = 1;
            while (failOnce(operation, expected, {kAllocation, number, ENOMEM, forGood})) ++number;
            EXPECT_GT(number, 1);
        }
        printedBy([&, &run = operation] { afterwards = run(); });
        EXPECT_TRUE(afterwards == expected);
    }
}

}  // namespace

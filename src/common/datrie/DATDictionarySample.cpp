#include "DATDictionarySample.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "DATReader.h"
#include "Diagnostics.h"
#include "ImageSearch.h"
#include "RecordLines.h"
#include "RecordReader.h"
#include "ResultText.h"
#include "SourceKeys.h"
#include "SourceTable.h"
#include "TrieBuilder.h"

namespace Dictionary {

// CRecordReader::next, with a call before each read.
struct RecordsByFill {
    template <class BeforeFill>
    static char* next(CRecordReader& source, BeforeFill beforeFill) {
        while (!source.takeFromFill()) {
            beforeFill();
            if (!source.goToNextFill()) return nullptr;
        }
        return source.m_recordBuffer;
    }
};

namespace {

constexpr int kNoFile = -1;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Reads the records of a source into `table`. Stops at the first one with fewer than two fields and
// returns it; returns null if there is none. Calls `beforeFill()` before it waits for more of the
// source.
template <class BeforeFill>
const char* read(CRecordReader& source, SourceTable& table, BeforeFill beforeFill) {
    std::vector<char*> fields;
    std::vector<std::string_view> texts;
    while (char* record = RecordsByFill::next(source, beforeFill)) {
        if (source.splitRecord(record, fields) <= 1) return record;
        texts.assign(fields.begin(), fields.end());
        table.add(texts);
    }
    return nullptr;
}

// Returns false if it stopped at a record with fewer than two fields.
bool gather(CRecordReader& source, SourceTable& table) {
    MessageBlock messages(stderr);
    RecordLines lines(table, messages);
    const char* const malformed = read(source, table, [&] {
        lines.write();
        messages.flush();
    });
    if (malformed == nullptr) return true;
    lines.write();
    messages << "Wrong format of file : " << malformed << "\n";
    return false;
}

void addAll(const SourceTable& table, ICoderInterface& coder, TrieBuilder& builder) {
    MessageBlock messages(stderr);
    addKeysOf(table, coder, builder,
              [&](const std::string& key) { messages << "wrong add a key : " << key << "\n"; });
}

}  // namespace

int CDictionayApp::buildDic(const char* fileName, const char* fieldSeparator,
                            const char* recordSeparator) {
    // Kept: the writer of an earlier build is leaked.
    m_writer = new CDATWriter(m_coder, false);
    m_writer->m_builder->expectOneBuild();
    auto source = std::make_unique<CRecordReader>();
    // No file has the empty name.
    source->init(fileName == nullptr ? "" : fileName, recordSeparator, fieldSeparator);
    {
        SourceTable table;
        if (!gather(*source, table)) {
            // Kept: the reader with its descriptor is left as it is.
            static_cast<void>(source.release());
            return 0;
        }
        source.reset();
        table.arrange();
        addAll(table, *m_coder, *m_writer->m_builder);
    }
    m_writer->buildDAT();
    std::fputs("Build OK\n", stderr);
    return 1;
}

int CDictionayApp::writeBinaryDic(const char* fileName) {
    const std::unique_ptr<std::FILE, CloseFile> file(
        fileName == nullptr ? nullptr : std::fopen(fileName, "wb"));
    if (file == nullptr) return 0;
    // A buffer would cut up the pieces.
    std::setbuf(file.get(), nullptr);
    // The image goes to the file piece by piece, so that it is never in memory twice.
    m_writer->m_imageSize = m_writer->m_builder->writeImage(
        [](std::int32_t size) {
            (StreamMessage() << "size of dictionary : " << std::to_string(size).c_str())
                .print(stderr);
        },
        [&](const char* bytes, std::size_t size) { std::fwrite(bytes, 1, size, file.get()); });
    // Kept: errors of these writes, and of closing the file, are ignored.
    return 1;
}

int CDictionayApp::loadBinaryDic(const char* fileName) {
    // The C library must not be given a null name.
    const int file = fileName == nullptr ? kNoFile : open(fileName, O_RDONLY);
    if (file == kNoFile) {
        (StreamMessage() << "Error open binary dic : " << fileName << " " << std::strerror(errno))
            .print(stderr);
        return 0;
    }
    const off_t length = lseek(file, 0, SEEK_END);
    m_image = mmap(nullptr, static_cast<std::size_t>(length), PROT_READ, MAP_PRIVATE, file, 0);
    if (m_image == MAP_FAILED) {
        (StreamMessage() << "Error Mapping file : " << fileName << " " << std::strerror(errno))
            .print(stderr);
        // Kept: the marker stays in m_image, and the descriptor stays open.
        return 0;
    }
    m_imageLength = length;
    close(file);
    if (!isAsLongAsItSays(m_image, length)) dropImage();
    return 1;
}

void CDictionayApp::dropImage() {
    munmap(m_image, static_cast<std::size_t>(m_imageLength));
    m_image = nullptr;
    m_imageLength = 0;
}

void* CDictionayApp::image() const {
    return m_image == MAP_FAILED ? nullptr : m_image;
}

void CDictionayApp::allMatch(const char* text, Matches& result) {
    if (text == nullptr || image() == nullptr) return;
    CDATReader(m_coder, image(), false).allMatch(text, result, false, -1);
}

char* CDictionayApp::returnListStr(const char* text, Matches& result, bool withFeatures) {
    ResultText list(withFeatures);
    for (std::size_t position = 0; position < result.size(); ++position) {
        if (result[position].empty()) continue;
        const auto& [length, feature] = result[position].back();
        list.add({text + position, static_cast<std::size_t>(length)}, position, feature);
    }
    return list.release();
}

char* CDictionayApp::searchText(const char* text, bool withFeatures) const {
    return searchImage(image(), *m_coder, text, withFeatures);
}

void CDictionayApp::showAllMatch(const char* text, Matches& result) {
    for (std::size_t position = 0; position < result.size(); ++position) {
        for (const auto& [length, feature] : result[position]) {
            std::fprintf(stderr, "%.*s : %s\n", length, text + position, feature.c_str());
        }
    }
}

void CDictionayApp::showExactMatch(const char* key, std::string& feature) {
    CDATReader(m_coder, image(), false).exactMatch(key, feature);
    (StreamMessage() << "EXACT MATCH" << key << " : " << feature.c_str()).print(stderr);
}

}  // namespace Dictionary

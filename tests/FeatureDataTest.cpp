#include "FeatureData.h"

#include <gtest/gtest.h>

namespace {

// Reads at `offset` into a record that already held a text, and returns its text.
std::string read(CFeatureDataContainer& area, int offset) {
    CFeatureData data;
    data.text = "before";
    area.read(data, offset);
    return data.text;
}

TEST(FeatureData, RecordsFollowEachOtherAndTheAreaDoubles) {
    CFeatureDataContainer area;
    EXPECT_EQ(read(area, 0), "");
    std::string bytes;
    for (int size = 8, capacity = 8; size <= 4096; size += 8) {
        CFeatureData data;
        data.length = 4;
        data.text = {"ab\0c", 4};
        const char* const before = area.data();
        EXPECT_EQ(area.write(data), size - 8);
        EXPECT_EQ(area.data() != before, before == nullptr || size > capacity) << size;
        if (size > capacity) capacity *= 2;
        EXPECT_EQ(read(area, size - 8), "ab") << "a text ends at its first NUL";
        bytes.append("\4\0\0\0ab\0c", 8);
    }
    EXPECT_EQ(std::string(area.data(), static_cast<std::size_t>(area.size())), bytes);
    EXPECT_EQ(read(area, -1), "before");
    for (const char* text : {"", "x"}) {
        CFeatureData data;
        data.text = text;
        data.length = static_cast<int>(data.text.size());
        EXPECT_EQ(read(area, area.write(data)), text);
        area.reset(true, nullptr, 0, 0);
    }
}

}  // namespace

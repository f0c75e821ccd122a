#include "FeatureData.h"

#include <gtest/gtest.h>

namespace {

int write(CFeatureDataContainer& area, const std::string& text) {
    CFeatureData data;
    data.length = static_cast<int>(text.size());
    data.text = text;
    return area.write(data);
}

// What a record that held something before reads at `offset`.
std::string read(CFeatureDataContainer& area, int offset) {
    CFeatureData data;
    data.text = "before";
    area.read(data, offset);
    return data.text;
}

TEST(FeatureData, RecordsFollowEachOther) {
    const std::string bytes("\2\0\0\0ab\3\0\0\0xyz\3\0\0\0c\0d", 20);
    CFeatureDataContainer area;
    EXPECT_EQ(read(area, 0), "");
    EXPECT_EQ(write(area, "ab"), 0);
    EXPECT_EQ(write(area, "xyz"), 6);
    EXPECT_EQ(area.size(), 13);
    EXPECT_EQ(write(area, {"c\0d", 3}), 13);
    EXPECT_EQ(std::string(area.data(), static_cast<std::size_t>(area.size())), bytes);

    area.reset(false, bytes.data(), 20, 20);
    EXPECT_EQ(read(area, 6), "xyz");
    EXPECT_EQ(read(area, 13), "c") << "a text ends at its first NUL";
    EXPECT_EQ(read(area, -1), "before");
}

TEST(FeatureData, DoublesAndClears) {
    CFeatureDataContainer area;
    for (int size = 4, capacity = 8; size <= 4096; size += 4) {
        const char* const before = area.data();
        EXPECT_EQ(write(area, ""), size - 4);
        EXPECT_EQ(area.data() != before, before == nullptr || size > capacity) << size;
        if (size > capacity) capacity *= 2;
        EXPECT_EQ(read(area, size - 4), "");
    }
}

}  // namespace

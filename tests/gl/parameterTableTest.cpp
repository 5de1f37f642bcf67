#include "gl/parameterTable.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace {

using zellab::gl::hashKey;
using zellab::gl::ParameterTable;

TEST(ParameterTable, HashesTheBytesLowFirst) {
    EXPECT_EQ(hashKey(0x626F6F66u), 0x3F5076EFu) << "published for the text foob";
}

/// Past several growths, with keys that collide in the first buckets, against an ordered map.
TEST(ParameterTable, KeepsTheLastValueOfEveryKeyAndTheOrderOfTheFirst) {
    std::mt19937 random(5);
    ParameterTable<int> table;
    std::map<std::uint32_t, int> expected;
    std::vector<std::uint32_t> order;
    for (int i = 0; i < 2000; ++i) {
        const std::uint32_t key = random() % 700 * (i % 2 ? 0x01000000u : 1u);
        if (expected.insert_or_assign(key, i).second) order.push_back(key);
        table.set(key, i);
        const ParameterTable<int> copy(table);
        if (i % 100 == 0) table = copy;
    }
    const ParameterTable<int> copy(table);
    table.set(order[0], -1);
    table.clear();
    EXPECT_EQ(table.find(order[0]), nullptr);
    ASSERT_EQ(copy.size(), expected.size());
    std::size_t i = 0;
    for (const auto& entry : copy) EXPECT_EQ(entry.key, order[i++]);
    for (const auto& [key, value] : expected) {
        ASSERT_NE(copy.find(key), nullptr);
        EXPECT_EQ(*copy.find(key), value);
    }
    EXPECT_EQ(copy.find(0xFFFFFFFFu), nullptr);
}

}  // namespace

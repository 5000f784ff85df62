/**
 * @file expectations.h
 * What the tests of capture files expect of what a file holds.
 */
#ifndef EXPECTATIONS_H
#define EXPECTATIONS_H

#include <gtest/gtest.h>

#include "captured.h"

/** Expects the same snapshots in the same order. */
inline void expect_same(const std::vector<records::Snapshot>& found, const std::vector<records::Snapshot>& expected)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(differences(found[i], expected[i]), std::vector<std::string>()) << i;
}

/** Expects no damage. */
inline void expect_sound(const Held& held)
{
    EXPECT_TRUE(held.losses.empty());
    EXPECT_EQ(held.tail, 0u);
}

#endif

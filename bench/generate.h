#pragma once
// A realistic book for the benchmarks: one client, one year, twelve monthly periods and
// any number of postings spread across them.

#include "core/value.h"

#include <cstddef>
#include <cstdint>

namespace zifora::bench {

/// What the generator makes.
struct BookShape {
    size_t postings = 10'000;
    int year = 2024;
    uint64_t seed = 20240101; // same seed, same book
};

/// The database root, {"clients": [client]}, with the client's years, periods, categories,
/// accounts and postings filled as a user of the program would leave them. Every posting's
/// amount keys are worked out by the item calculation.
[[nodiscard]] core::Value makeBook(const BookShape& shape);

/// The number of postings below the root (the items of every period of every year).
[[nodiscard]] size_t countPostings(const core::Value& root);

} // namespace zifora::bench

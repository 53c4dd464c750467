#include "components/band/technology.h"

#include <gtest/gtest.h>

#include <set>

namespace {

constexpr int kBeyondAllTechnologies = 40;

TEST(Technology, SecondAndThirdGenerationIsEverythingFromGprsToEhrpdButLte) {
    const std::set<int> expected = {2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 13, 14};
    for (int technology = -2; technology < kBeyondAllTechnologies; ++technology) {
        EXPECT_EQ(IsSecondOrThirdGeneration(technology), expected.count(technology) == 1)
            << technology;
    }
}

TEST(Technology, LteIsPlainOrWithAggregatedCarriers) {
    for (int technology = -2; technology < kBeyondAllTechnologies; ++technology) {
        EXPECT_EQ(IsLte(technology), technology == 11 || technology == 16) << technology;
    }
}

}  // namespace

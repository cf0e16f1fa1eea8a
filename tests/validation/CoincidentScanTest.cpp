#include <iterator>
#include <limits>
#include <ostream>
#include <random>

#include <gtest/gtest.h>

#include "LiteralCoincidentScan.h"
#include "PoseCharacter.h"
#include "SameGeometryValidator.h"
#include "TPose.h"

void PrintTo(const SameGeometryValidator::Finding& finding, std::ostream* out)
{
    *out << "(" << finding.first << ", " << finding.second << (finding.exact ? ", exact)" : ", almost)");
}

namespace {

// A node moved into one of a few clusters, each axis nudged by an offset around the "almost" distance, so that
// a layout holds exact coincidences, near misses and pairs on either side of the boundary. Near 100 the offsets
// vanish in float rounding, near 0 they are kept exactly, near 1 they land on a coarse grid.
tpose::Position ClusteredPosition(std::mt19937& rng)
{
    static const tpose::Position clusters[] = {{0.0f, 0.0f, 0.0f}, {1.0f, 100.0f, 0.0f}, {100.0f, -3.5f, 1.0f}};
    static const float offsets[] = {0.0f, 0.0f, 0.0f, 1e-7f, -1e-7f, 4e-7f, -4e-7f, 9e-7f, 1e-6f, -1e-6f, 2e-6f};
    std::uniform_int_distribution<size_t> cluster(0, std::size(clusters) - 1);
    std::uniform_int_distribution<size_t> offset(0, std::size(offsets) - 1);
    tpose::Position position = clusters[cluster(rng)];
    for (float& coordinate : position)
        coordinate += offsets[offset(rng)];
    return position;
}

struct Layout
{
    tpose::Pose pose;
    tpose::AssignedFlags flags;
};

Layout RandomLayout(std::mt19937& rng)
{
    Layout layout {tpose::Make(), tpose::NoneAssigned()};
    std::bernoulli_distribution assigned(0.8);
    std::bernoulli_distribution clustered(0.3);
    for (int id = 0; id < 212; ++id) {
        layout.flags[id] = assigned(rng) ? 1u : 0u;
        if (clustered(rng))
            layout.pose[id] = ClusteredPosition(rng);
    }
    return layout;
}

} // namespace

TEST(CoincidentScan, AgreesWithTheLiteralScanOnRandomNearCoincidentLayouts)
{
    std::mt19937 rng(20240611u);
    size_t exact = 0;
    size_t almost = 0;
    for (int round = 0; round < 200; ++round) {
        const Layout layout = RandomLayout(rng);
        const PoseCharacter character(layout.flags.data(), layout.pose);
        const auto expected = LiteralCoincidentScan(layout.flags.data(), character.Get());
        ASSERT_EQ(SameGeometryValidator::FindCoincidentPairs(layout.flags.data(), character.Get()), expected)
            << "round " << round;
        for (const auto& finding : expected)
            ++(finding.exact ? exact : almost);
    }
    // Guards the generator: the comparison only means something if both kinds of finding occur often.
    EXPECT_GT(exact, 1000u);
    EXPECT_GT(almost, 1000u);
}

TEST(CoincidentScan, AgreesWithTheLiteralScanOnNonFinitePositions)
{
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    tpose::Pose pose = tpose::Make();
    const tpose::AssignedFlags flags = tpose::AllAssigned();
    pose[1] = {nan, 0.0f, 0.0f};
    pose[8] = {nan, 0.0f, 0.0f};
    pose[2] = {inf, 1.0f, 0.0f};
    pose[5] = {inf, 1.0f, 0.0f};
    pose[3] = {inf, 2.0f, 0.0f};
    pose[9] = {-inf, 0.0f, 0.0f};
    pose[12] = {-inf, 0.0f, 0.0f};
    pose[15] = {0.0f, nan, 0.0f};
    pose[20] = {0.0f, nan, 0.0f};
    const PoseCharacter character(flags.data(), pose);
    const auto expected = LiteralCoincidentScan(flags.data(), character.Get());
    EXPECT_EQ(SameGeometryValidator::FindCoincidentPairs(flags.data(), character.Get()), expected);
    EXPECT_EQ(expected.size(), 2u) << "the equal infinities, and nothing with a NaN";
}

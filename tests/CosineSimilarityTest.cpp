#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "plain/CosineSimilarity.h"
#include "plain/Steps.h"
#include "support/Calls.h"

namespace {

using namespace quarry::test;
using quarry::plain::SameBits;

using Embedding = std::vector<float>;

constexpr std::size_t kLength = 512;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

Embedding RandomEmbedding(uint64_t seed, float scale = 1.0F) {
    cv::RNG random(seed + 1);  // a generator seeded with 0 gives 0 for ever
    Embedding values(kLength);
    for (float& value : values) value = scale * static_cast<float>(random.gaussian(1.0));
    return values;
}

/// One where the given place holds 1 and the others 0.
Embedding Axis(std::size_t place) {
    Embedding values(kLength, 0.0F);
    values[place] = 1.0F;
    return values;
}

class CosineSimilarity : public ProcessorTest<operations::CosineSimilarity> {
protected:
    double Compare(const Embedding& a, const Embedding& b) { return Call({0, 0, a.data(), 0, b.data()})->Similarity; }
};

/// Rounds to a float here and now, whatever the compiler would rather do.
float Rounded(float value) {
    volatile float kept = value;
    return kept;
}
double Rounded(double value) {
    volatile double kept = value;
    return kept;
}

double FloatDot(const Embedding& a, const Embedding& b) {
    return quarry::plain::FloatDot(a.data(), b.data());
}
double GroupedNorm(const Embedding& v) {
    return quarry::plain::GroupedNorm(v.data());
}
double Reference(const Embedding& a, const Embedding& b) {
    return quarry::plain::Cosine(a.data(), b.data());
}

TEST_F(CosineSimilarity, EqualsThePlainSumsBitForBit) {
    for (uint64_t seed = 0; seed < 2000; ++seed) {
        const Embedding a = RandomEmbedding(2 * seed);
        const Embedding b = RandomEmbedding(2 * seed + 1);
        EXPECT_TRUE(SameBits(Compare(a, b), Reference(a, b))) << "seed " << seed;
    }
}

TEST_F(CosineSimilarity, EqualsThePlainSumsForValuesOfVeryDifferentSizes) {
    for (uint64_t seed = 0; seed < 300; ++seed) {
        cv::RNG random(seed + 1);
        Embedding a = RandomEmbedding(2 * seed);
        Embedding b = RandomEmbedding(2 * seed + 1);
        for (float& value : a) value *= std::pow(2.0F, static_cast<float>(random.uniform(-40, 40)));
        for (float& value : b) value *= std::pow(2.0F, static_cast<float>(random.uniform(-40, 40)));
        EXPECT_TRUE(SameBits(Compare(a, b), Reference(a, b))) << "seed " << seed;
    }
}

/// Sums of the same terms, taken another way.
double DotInDouble(const Embedding& a, const Embedding& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < kLength; ++i) sum += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    return sum;
}
double DotBackwards(const Embedding& a, const Embedding& b) {
    return FloatDot({a.rbegin(), a.rend()}, {b.rbegin(), b.rend()});
}
double DotInLanes(const Embedding& a, const Embedding& b) {
    float lanes[4] = {};
    for (std::size_t i = 0; i < kLength; ++i) lanes[i % 4] = Rounded(lanes[i % 4] + Rounded(a[i] * b[i]));
    return Rounded(Rounded(lanes[0] + lanes[1]) + Rounded(lanes[2] + lanes[3]));
}
double DotFused(const Embedding& a, const Embedding& b) {
    float sum = 0.0F;
    for (std::size_t i = 0; i < kLength; ++i) sum = std::fma(a[i], b[i], sum);
    return sum;
}
double NormOneByOne(const Embedding& v) {
    double sum = 0.0;
    for (const float value : v) sum = Rounded(sum + static_cast<double>(value) * static_cast<double>(value));
    return std::sqrt(sum);
}
double NormOfFloats(const Embedding& v) {
    float sum = 0.0F;
    for (const float value : v) sum = Rounded(sum + Rounded(value * value));
    return std::sqrt(sum);
}

TEST_F(CosineSimilarity, KeepsOrderGroupingAndPrecisionOfItsSums) {
    struct Other {
        const char* name;
        double (*dot)(const Embedding&, const Embedding&);
        double (*norm)(const Embedding&);
    };
    const Other others[] = {
        {"dot in double", DotInDouble, GroupedNorm},    {"dot backwards", DotBackwards, GroupedNorm},
        {"dot in four lanes", DotInLanes, GroupedNorm}, {"dot with fused rounding", DotFused, GroupedNorm},
        {"norm one by one", FloatDot, NormOneByOne},    {"norm in single precision", FloatDot, NormOfFloats},
    };
    for (const Other& other : others) {
        int seedsThatTell = 0;
        for (uint64_t seed = 0; seed < 100; ++seed) {
            const Embedding a = RandomEmbedding(2 * seed);
            const Embedding b = RandomEmbedding(2 * seed + 1);
            if (SameBits(other.dot(a, b) / (other.norm(a) * other.norm(b)), Reference(a, b))) continue;
            ++seedsThatTell;
            EXPECT_TRUE(SameBits(Compare(a, b), Reference(a, b))) << "seed " << seed << ", not the " << other.name;
        }
        EXPECT_GT(seedsThatTell, 0) << "no seed tells the " << other.name;
    }
}

TEST_F(CosineSimilarity, OfEqualEmbeddingsIsOne) {
    for (uint64_t seed = 0; seed < 100; ++seed) {
        const Embedding a = RandomEmbedding(seed);
        EXPECT_NEAR(Compare(a, a), 1.0, 1e-5) << "seed " << seed;
    }
}

TEST_F(CosineSimilarity, OfOppositeEmbeddingsIsMinusOne) {
    for (uint64_t seed = 0; seed < 100; ++seed) {
        const Embedding a = RandomEmbedding(seed);
        Embedding opposite = a;
        for (float& value : opposite) value = -value;
        EXPECT_NEAR(Compare(a, opposite), -1.0, 1e-5) << "seed " << seed;
    }
}

TEST_F(CosineSimilarity, OfOrthogonalEmbeddingsIsZero) {
    Embedding a(kLength);
    Embedding b(kLength);
    for (std::size_t i = 0; i < kLength; ++i) {
        a[i] = static_cast<float>(1 + i % 7);
        b[i] = i % 14 < 7 ? 1.0F : -1.0F;
    }
    // 512 is not a multiple of 14: the last 8 places are left out.
    std::fill(b.begin() + 504, b.end(), 0.0F);
    EXPECT_EQ(Compare(a, b), 0.0);
}

TEST_F(CosineSimilarity, ReadsEveryPlaceOnce) {
    for (std::size_t i = 0; i < kLength; ++i) {
        EXPECT_EQ(Compare(Axis(i), Axis(i)), 1.0) << "place " << i;
        EXPECT_EQ(Compare(Axis(i), Axis((i + 1) % kLength)), 0.0) << "place " << i;
        Embedding twice = Axis(i);
        twice[(i + 5) % kLength] = 1.0F;
        EXPECT_DOUBLE_EQ(Compare(Axis(i), twice), std::sqrt(0.5)) << "place " << i;
    }
}

TEST_F(CosineSimilarity, IsSymmetric) {
    for (uint64_t seed = 0; seed < 100; ++seed) {
        const Embedding a = RandomEmbedding(2 * seed);
        const Embedding b = RandomEmbedding(2 * seed + 1);
        EXPECT_TRUE(SameBits(Compare(a, b), Compare(b, a))) << "seed " << seed;
    }
}

TEST_F(CosineSimilarity, DoesNotChangeWithTheScale) {
    for (const float scale : {0.001F, 0.3F, 2.0F, 7.7F, 1e6F}) {
        for (uint64_t seed = 0; seed < 20; ++seed) {
            const Embedding a = RandomEmbedding(2 * seed);
            const Embedding b = RandomEmbedding(2 * seed + 1);
            EXPECT_NEAR(Compare(RandomEmbedding(2 * seed, scale), b), Compare(a, b), 1e-6)
                << "seed " << seed << ", scale " << scale;
        }
    }
}

TEST_F(CosineSimilarity, WithZerosIsNotANumber) {
    const Embedding zeros(kLength, 0.0F);
    const Embedding a = RandomEmbedding(3);
    EXPECT_TRUE(std::isnan(Compare(zeros, a)));
    EXPECT_TRUE(std::isnan(Compare(a, zeros)));
    EXPECT_TRUE(std::isnan(Compare(zeros, zeros)));
}

TEST_F(CosineSimilarity, WithAnInfiniteValueIsNotANumber) {
    Embedding a = RandomEmbedding(3);
    a[100] = kInfinity;
    EXPECT_TRUE(std::isnan(Compare(a, RandomEmbedding(4))));
}

TEST_F(CosineSimilarity, WithAValueThatIsNotANumberIsNotANumber) {
    Embedding a = RandomEmbedding(3);
    a[511] = kNan;
    EXPECT_TRUE(std::isnan(Compare(a, RandomEmbedding(4))));
}

TEST_F(CosineSimilarity, IsInfiniteWhenOnlyTheDotProductIsBeyondAFloat) {
    const Embedding large(kLength, 1e20F);
    Embedding opposite(kLength, -1e20F);
    EXPECT_EQ(Compare(large, large), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Compare(large, opposite), -std::numeric_limits<double>::infinity());
}

TEST_F(CosineSimilarity, OfValuesWhoseProductsVanishInAFloatIsZero) {
    const Embedding tiny(kLength, 1e-40F);
    EXPECT_EQ(Compare(tiny, tiny), 0.0);
}

TEST_F(CosineSimilarity, KeepsDenormalValuesAndProducts) {
    // 2e-22 squared is a denormal float; 1e-40 is one itself.
    const Embedding small(kLength, 2e-22F);
    EXPECT_TRUE(SameBits(Compare(small, small), Reference(small, small)));
    EXPECT_NEAR(Compare(small, small), 1.0, 0.05);
    const Embedding tiny(kLength, 1e-40F);
    const Embedding one(kLength, 1.0F);
    EXPECT_TRUE(SameBits(Compare(tiny, one), Reference(tiny, one)));
    EXPECT_NEAR(Compare(tiny, one), 1.0, 1e-3);
}

TEST_F(CosineSimilarity, RefusesANullEmbedding) {
    const Embedding a = RandomEmbedding(6);
    ExpectRefusal<std::invalid_argument>({0, 0, nullptr, 0, a.data()},
                                         "EmbeddingData.FirstEmbedding is null; 512 values are needed");
    ExpectRefusal<std::invalid_argument>({0, 0, a.data(), 0, nullptr},
                                         "EmbeddingData.SecondEmbedding is null; 512 values are needed");
    ExpectRefusal<std::invalid_argument>({0, 0, nullptr, 0, nullptr},
                                         "EmbeddingData.FirstEmbedding is null; 512 values are needed");
}

}  // namespace

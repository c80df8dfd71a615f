// What a block may be: the same with the standard library's spans and with those of the header.

#include <TessarinCalibrateSDK.hpp>

#include <gtest/gtest.h>

#include <array>
#include <type_traits>

using Span = tessarin::Bytes;
using ConstSpan = tessarin::ConstBytes;
using Vector = std::vector<unsigned char>;

#if __cplusplus >= 202002L
static_assert(std::is_same_v<Span, std::span<unsigned char>>);
#endif

static_assert(std::is_convertible_v<Vector&, Span>);
static_assert(std::is_convertible_v<const Vector&, ConstSpan>);
static_assert(std::is_convertible_v<Vector, ConstSpan>);
static_assert(std::is_convertible_v<Span, ConstSpan>);
static_assert(std::is_convertible_v<std::array<unsigned char, 3>&, Span>);

static_assert(!std::is_convertible_v<const Vector&, Span>, "what is const is not written to");
static_assert(!std::is_convertible_v<Vector, Span>, "what dies is not written to");
static_assert(!std::is_convertible_v<ConstSpan, Span>);
static_assert(!std::is_convertible_v<std::vector<char>&, Span>);
static_assert(!std::is_convertible_v<std::vector<unsigned short>&, ConstSpan>);
static_assert(!std::is_convertible_v<int, Span>);

TEST(Span, ShowsWhatItWasMadeOf) {
    Vector aBytes{1, 2, 3};
    const Span Whole(aBytes);
    EXPECT_EQ(Whole.data(), aBytes.data());
    EXPECT_EQ(Whole.size(), 3u);
    EXPECT_FALSE(Whole.empty());
    Whole[1] = 7;
    EXPECT_EQ(aBytes, (Vector{1, 7, 3}));
    EXPECT_EQ(Vector(Whole.begin(), Whole.end()), aBytes);

    unsigned char anArray[] = {4, 5};
    EXPECT_EQ(ConstSpan(anArray).data(), anArray);
    EXPECT_EQ(ConstSpan(anArray).size(), 2u);
    EXPECT_EQ(ConstSpan(Whole).data(), aBytes.data());
    EXPECT_EQ(Span(aBytes.data() + 1, 2).size(), 2u);
}

TEST(Span, OfNothingIsEmpty) {
    EXPECT_TRUE(Span().empty());
    EXPECT_EQ(Span().data(), nullptr);
    EXPECT_TRUE(ConstSpan(Vector()).empty());
}

TEST(Span, HasParts) {
    const Vector aBytes{1, 2, 3, 4};
    const ConstSpan Whole(aBytes);
    EXPECT_EQ(Whole.first(2).data(), aBytes.data());
    EXPECT_EQ(Whole.first(2).size(), 2u);
    EXPECT_EQ(Whole.subspan(3).data(), aBytes.data() + 3);
    EXPECT_EQ(Whole.subspan(3).size(), 1u);
}

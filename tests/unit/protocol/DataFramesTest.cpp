#include "FrameSupport.h"

namespace flashwriter {
namespace {

class DataFrames : public Codec {
protected:
    // Bytes that differ from their neighbours, so that a shifted copy shows.
    static Bytes pattern(std::size_t count) {
        Bytes bytes(count);
        for (std::size_t i = 0; i < count; ++i) {
            bytes[i] = static_cast<std::uint8_t>(i * 7 + 3);
        }
        return bytes;
    }
};

TEST_F(DataFrames, ASmallFinalFrame) {
    const Bytes data{0x10, 0x20, 0x30};
    EXPECT_EQ(codec.makeDataFrame(data.data(), 3, true, length), RESULT_OK);
    expectSent({0x02, 0x03, 0x10, 0x20, 0x30, 0x9D, 0x03});
}

TEST_F(DataFrames, AFrameThatOthersFollowEndsInEtb) {
    const Bytes data{0x10, 0x20, 0x30};
    EXPECT_EQ(codec.makeDataFrame(data.data(), 3, false, length), RESULT_OK);
    expectSent({0x02, 0x03, 0x10, 0x20, 0x30, 0x9D, 0x17});
}

TEST_F(DataFrames, OneByte) {
    const Bytes data{0xFF};
    EXPECT_EQ(codec.makeDataFrame(data.data(), 1, true, length), RESULT_OK);
    expectSent({0x02, 0x01, 0xFF, 0x00, 0x03});
}

TEST_F(DataFrames, NoBytes) {
    EXPECT_EQ(codec.makeDataFrame(nullptr, 0, true, length), RESULT_OK);
    expectSent({0x02, 0x00, 0x00, 0x03});
}

TEST_F(DataFrames, AFrameOf255BytesCarriesItsLength) {
    const Bytes data = pattern(255);
    EXPECT_EQ(codec.makeDataFrame(data.data(), 255, true, length), RESULT_OK);
    EXPECT_EQ(length, 259U);
    EXPECT_EQ(codec.GetCommandFrames()[1], 0xFF);
    expectSent(dataFrame(data, 0x03));
}

TEST_F(DataFrames, AFrameOf256BytesFillsTheBufferAndCarriesLengthZero) {
    const Bytes data = pattern(256);
    EXPECT_EQ(codec.makeDataFrame(data.data(), 256, false, length), RESULT_OK);
    EXPECT_EQ(length, 260U);
    EXPECT_EQ(codec.GetCommandFrames()[1], 0x00);
    expectSent(dataFrame(data, 0x17));
}

TEST_F(DataFrames, TheSumOf256BytesRunsOverAllOfThem) {
    Bytes data(256, 0x00);
    data[255] = 0x01; // the 257th byte summed
    EXPECT_EQ(codec.makeDataFrame(data.data(), 256, true, length), RESULT_OK);
    EXPECT_EQ(codec.GetCommandFrames()[1], 0x00);
    EXPECT_EQ(codec.GetCommandFrames()[258], 0xFF);
    EXPECT_EQ(codec.GetCommandFrames()[259], 0x03);
}

TEST_F(DataFrames, MoreThan256BytesAreRefused) {
    const Bytes data = pattern(257);
    EXPECT_EQ(codec.makeDataFrame(data.data(), 257, true, length), RESULT_PARAMETER_ERROR);
    expectSent({});
    for (const std::uint64_t tooLong : {std::uint64_t{0x100000000}, UINT64_MAX}) {
        std::fill_n(codec.GetCommandFrames(), 260, std::uint8_t{0xEE});
        length = 0xEEEE;
        EXPECT_EQ(codec.makeDataFrame(data.data(), tooLong, true, length), RESULT_PARAMETER_ERROR);
        expectSent({});
    }
}

TEST_F(DataFrames, BytesOfANullPointerAreRefused) {
    EXPECT_EQ(codec.makeDataFrame(nullptr, 1, true, length), RESULT_PARAMETER_ERROR);
    expectSent({});
}

TEST_F(DataFrames, AShorterFrameLeavesNothingOfALongerOne) {
    const Bytes data = pattern(256);
    ASSERT_EQ(codec.makeDataFrame(data.data(), 256, false, length), RESULT_OK);
    ASSERT_EQ(codec.makeDataFrame(data.data(), 2, true, length), RESULT_OK);
    expectSent({0x02, 0x02, 0x03, 0x0A, 0xF1, 0x03});
}

TEST_F(DataFrames, ProgrammingBuildsTheSameFrame) {
    const Bytes data = pattern(256);
    EXPECT_EQ(codec.MakeProgrammingDataFrame(data.data(), 256, true, length), RESULT_OK);
    expectSent(dataFrame(data, 0x03));
    EXPECT_EQ(codec.MakeProgrammingDataFrame(data.data(), 256, false, length), RESULT_OK);
    expectSent(dataFrame(data, 0x17));
    const Bytes more = pattern(257);
    EXPECT_EQ(codec.MakeProgrammingDataFrame(more.data(), 257, true, length),
              RESULT_PARAMETER_ERROR);
    expectSent({});
}

TEST_F(DataFrames, ProgrammingReadsOnlyTheLowByteOfTheFinalFlag) {
    const Bytes data{0x10};
    const Bytes final{0x02, 0x01, 0x10, 0xEF, 0x03};
    const Bytes notFinal{0x02, 0x01, 0x10, 0xEF, 0x17};
    EXPECT_EQ(codec.MakeProgrammingDataFrame(data.data(), 1, 0x100, length), RESULT_OK);
    expectSent(notFinal);
    EXPECT_EQ(codec.MakeProgrammingDataFrame(data.data(), 1, 0xFFFFFFFFFFFFFF00, length),
              RESULT_OK);
    expectSent(notFinal);
    EXPECT_EQ(codec.MakeProgrammingDataFrame(data.data(), 1, 0x101, length), RESULT_OK);
    expectSent(final);
    EXPECT_EQ(codec.MakeProgrammingDataFrame(data.data(), 1, 0x80, length), RESULT_OK);
    expectSent(final);
}

} // namespace
} // namespace flashwriter

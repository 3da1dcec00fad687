#include "sequence/context/ResultText.h"

#include "sequence/context/ResultCode.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace flashwriter {
namespace {

const std::string UNKNOWN = " Error\nエラー：不明なエラーが発生しました\n";

TEST(ResultText, GivesEveryCodeItsText) {
    const std::vector<std::pair<std::int64_t, std::string>> rows{
        {0x0000, " OK\n"},
        {0x1000, " Error\nエラー：シリアルポート情報の取得失敗\n"},
        {0x1001, " Error\nエラー：シリアルポートが未選択\n"},
        {0x1002, " Error\nエラー：シリアルポートのオープンエラー\n"},
        {0x2000, " Error\nエラー：初期化失敗\n"},
        {0x2001, " Error\nエラー：フレームフォーマットが不正\n"},
        {0x2002, " Error\nエラー：パラメータが不正\n"},
        {0x2003, " Error\nエラー：SUMが不正\n"},
        {0x2004, " Error\nエラー：送信失敗\n"},
        {0x2005, " Error\nエラー：受信タイムアウト\n"},
        {0x2006, " Error\nエラー：送信タイムアウト\n"},
        {0x2007, " Error\nエラー：コマンド・フレームに対する異常終了\n"},
        {0x2008, " Error\nエラー：データ・フレームに対する異常終了\n"},
        {0x2009, " Error\nエラー：モード引き込み処理のタイムアウト\n"},
        {0x200A, " Error\nエラー：ブランクではない\n"},
        {0x200B, " Error\nエラー：ボーレート変更失敗\n"},
        {0x200C, " Error\nエラー：バッファーオーバーフロー\n"},
        {0x200D, " Error\nエラー：Cehcksumコマンドで取得した値とGUIで算出した値が異なる\n"},
        {0x3000, " Error\nエラー：ファイルが存在しません。\n"},
        {0x3001, " Error\nエラー：未対応形式\n"},
        {0x3002, " Error\nエラー：ファイルのサイズが不正です。\n"},
        {0x3003, " Error\nエラー：ファイルの読みこみに失敗しました。\n"},
        {0x3004, " Error\nエラー：コード・フラッシュ・メモリのサイズが不正\n"},
        {0x3005, " Error\nエラー：データ・フラッシュ・メモリのサイズが不正\n"},
        {0x3006, " Error\nエラー：コード・フラッシュ・メモリの開始アドレスが不正\n"},
        {0x3007, " Error\nエラー：データ・フラッシュ・メモリの開始アドレスが不正\n"},
    };
    for (const auto& [code, text] : rows) {
        EXPECT_EQ(getResultText(code), text) << std::hex << code;
    }
}

TEST(ResultText, GivesTheUnknownErrorToEveryOtherValue) {
    for (const std::int64_t code :
         {std::int64_t{1}, std::int64_t{-1}, std::int64_t{0x0FFF}, std::int64_t{0x1003},
          std::int64_t{0x1004}, std::int64_t{0x1FFF}, std::int64_t{0x200E}, std::int64_t{0x2FFF},
          std::int64_t{0x3008}, INT64_MAX, INT64_MIN}) {
        EXPECT_EQ(getResultText(code), UNKNOWN) << std::hex << code;
    }
}

TEST(ResultText, NamesStandForTheirValues) {
    EXPECT_EQ(RESULT_OK, 0U);
    EXPECT_EQ(RESULT_PORT_INFO_FAILED, 0x1000U);
    EXPECT_EQ(RESULT_PORT_NOT_SELECTED, 0x1001U);
    EXPECT_EQ(RESULT_PORT_OPEN_ERROR, 0x1002U);
    EXPECT_EQ(RESULT_MONITOR_TIMER_FAILED, 0x1004U);
    EXPECT_EQ(RESULT_INIT_FAILED, 0x2000U);
    EXPECT_EQ(RESULT_FRAME_FORMAT_ERROR, 0x2001U);
    EXPECT_EQ(RESULT_PARAMETER_ERROR, 0x2002U);
    EXPECT_EQ(RESULT_SUM_ERROR, 0x2003U);
    EXPECT_EQ(RESULT_SEND_FAILED, 0x2004U);
    EXPECT_EQ(RESULT_RECEIVE_TIMEOUT, 0x2005U);
    EXPECT_EQ(RESULT_SEND_TIMEOUT, 0x2006U);
    EXPECT_EQ(RESULT_COMMAND_FRAME_ABORT, 0x2007U);
    EXPECT_EQ(RESULT_DATA_FRAME_ABORT, 0x2008U);
    EXPECT_EQ(RESULT_MODE_ENTRY_TIMEOUT, 0x2009U);
    EXPECT_EQ(RESULT_NOT_BLANK, 0x200AU);
    EXPECT_EQ(RESULT_BAUD_RATE_CHANGE_FAILED, 0x200BU);
    EXPECT_EQ(RESULT_BUFFER_OVERFLOW, 0x200CU);
    EXPECT_EQ(RESULT_CHECKSUM_MISMATCH, 0x200DU);
    EXPECT_EQ(RESULT_FILE_NOT_FOUND, 0x3000U);
    EXPECT_EQ(RESULT_UNSUPPORTED_FORMAT, 0x3001U);
    EXPECT_EQ(RESULT_FILE_SIZE_ERROR, 0x3002U);
    EXPECT_EQ(RESULT_FILE_READ_FAILED, 0x3003U);
    EXPECT_EQ(RESULT_CODE_FLASH_SIZE_ERROR, 0x3004U);
    EXPECT_EQ(RESULT_DATA_FLASH_SIZE_ERROR, 0x3005U);
    EXPECT_EQ(RESULT_CODE_FLASH_ADDRESS_ERROR, 0x3006U);
    EXPECT_EQ(RESULT_DATA_FLASH_ADDRESS_ERROR, 0x3007U);
}

} // namespace
} // namespace flashwriter

#include "sequence/context/ResultText.h"

#include "sequence/context/ResultCode.h"

#include <algorithm>
#include <array>

namespace flashwriter {

namespace {

struct TextOfCode {
    ResultCode code;
    const char* text;
};

constexpr std::array TEXTS{
    TextOfCode{RESULT_OK, " OK\n"},
    TextOfCode{RESULT_PORT_INFO_FAILED, " Error\nエラー：シリアルポート情報の取得失敗\n"},
    TextOfCode{RESULT_PORT_NOT_SELECTED, " Error\nエラー：シリアルポートが未選択\n"},
    TextOfCode{RESULT_PORT_OPEN_ERROR, " Error\nエラー：シリアルポートのオープンエラー\n"},
    TextOfCode{RESULT_INIT_FAILED, " Error\nエラー：初期化失敗\n"},
    TextOfCode{RESULT_FRAME_FORMAT_ERROR, " Error\nエラー：フレームフォーマットが不正\n"},
    TextOfCode{RESULT_PARAMETER_ERROR, " Error\nエラー：パラメータが不正\n"},
    TextOfCode{RESULT_SUM_ERROR, " Error\nエラー：SUMが不正\n"},
    TextOfCode{RESULT_SEND_FAILED, " Error\nエラー：送信失敗\n"},
    TextOfCode{RESULT_RECEIVE_TIMEOUT, " Error\nエラー：受信タイムアウト\n"},
    TextOfCode{RESULT_SEND_TIMEOUT, " Error\nエラー：送信タイムアウト\n"},
    TextOfCode{RESULT_COMMAND_FRAME_ABORT, " Error\nエラー：コマンド・フレームに対する異常終了\n"},
    TextOfCode{RESULT_DATA_FRAME_ABORT, " Error\nエラー：データ・フレームに対する異常終了\n"},
    TextOfCode{RESULT_MODE_ENTRY_TIMEOUT, " Error\nエラー：モード引き込み処理のタイムアウト\n"},
    TextOfCode{RESULT_NOT_BLANK, " Error\nエラー：ブランクではない\n"},
    TextOfCode{RESULT_BAUD_RATE_CHANGE_FAILED, " Error\nエラー：ボーレート変更失敗\n"},
    TextOfCode{RESULT_BUFFER_OVERFLOW, " Error\nエラー：バッファーオーバーフロー\n"},
    TextOfCode{RESULT_CHECKSUM_MISMATCH,
               " Error\nエラー：Cehcksumコマンドで取得した値とGUIで算出した値が異なる\n"},
    TextOfCode{RESULT_FILE_NOT_FOUND, " Error\nエラー：ファイルが存在しません。\n"},
    TextOfCode{RESULT_UNSUPPORTED_FORMAT, " Error\nエラー：未対応形式\n"},
    TextOfCode{RESULT_FILE_SIZE_ERROR, " Error\nエラー：ファイルのサイズが不正です。\n"},
    TextOfCode{RESULT_FILE_READ_FAILED, " Error\nエラー：ファイルの読みこみに失敗しました。\n"},
    TextOfCode{RESULT_CODE_FLASH_SIZE_ERROR,
               " Error\nエラー：コード・フラッシュ・メモリのサイズが不正\n"},
    TextOfCode{RESULT_DATA_FLASH_SIZE_ERROR,
               " Error\nエラー：データ・フラッシュ・メモリのサイズが不正\n"},
    TextOfCode{RESULT_CODE_FLASH_ADDRESS_ERROR,
               " Error\nエラー：コード・フラッシュ・メモリの開始アドレスが不正\n"},
    TextOfCode{RESULT_DATA_FLASH_ADDRESS_ERROR,
               " Error\nエラー：データ・フラッシュ・メモリの開始アドレスが不正\n"},
};

constexpr const char* UNKNOWN_ERROR_TEXT = " Error\nエラー：不明なエラーが発生しました\n";

} // namespace

std::string getResultText(std::int64_t code) {
    const auto* found = std::ranges::find_if(TEXTS, [code](const TextOfCode& row) {
        return static_cast<std::int64_t>(row.code) == code;
    });
    return found != TEXTS.end() ? found->text : UNKNOWN_ERROR_TEXT;
}

} // namespace flashwriter

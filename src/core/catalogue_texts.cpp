#include "core/catalogue_texts.h"

#include <algorithm>
#include <array>

namespace corlune {
namespace {

// One row a text: {id, English, Japanese}. A row may stand anywhere; the order of the ids is restored below.
// The given texts come first; added texts follow, grouped by the room that shows them, with free ids:
// captions 7700-7899 and 8100-8399, messages 9500-9799.
//
// Wide on purpose: both languages of a text stand side by side.
// clang-format off
constexpr CatalogueText kRows[] = {
    // Messages
    {9000, "Initialization file doesn't exist", "初期INIファイルが存在しません。"},
    {9001, "The model name is not specified. Please set it on the system setting screen.", "型名が指定されていません。システム設定画面で設定してください。"},
    {9002, "Cannot find the instrument $1. It starts in off-line mode?", "機器$1が接続されていません。オフラインで起動しますか？"},
    {9003, "The model name $1 is not correct. It starts in off-line mode?", "機器$1の型名が違っています。オフラインで起動しますか？"},
    {9004, "The model name $1 is not registered in initialization file?", "型名 「$1」 は初期INIファイルに登録されていません。"},
    {9005, "The sequence data file error.", "シーケンスデータファイルが異常です。"},
    {9100, "Save changes in the sequence data?", "シーケンスデータの変更を保存しますか？"},
    {9101, "Save the sequence data under the edit?", "編集中のシーケンスデータを保存しますか？"},
    {9102, "The specified jump destination is deleted. Is it OK?", "指定したジャンプ先を削除します。よろしいですか？"},
    {9103, "The specified branch destination is deleted. Is it OK?", "指定したブランチ先を削除します。よろしいですか？"},
    {9104, "The branch step number specified in the step $1 doesn't exist.", "ステップ$1で指定したブランチステップ番号が存在しません。"},
    {9105, "Input value Error!  Input value $1  Range of Input $2-$3", "入力値が異常です。入力値$1 入力範囲$2-$3"},
    {9106, "The form of copy origin and copy destination is different.", "コピー元とコピー先の形式が違います。"},
    {9107, "The waveform of all steps is changed to $1. Is it OK?", "全ステップの波形を$1に変更します。よろしいですか？"},
    {9108, "Input value Error!", "入力値が異常です。"},
    {9109, "The sine wave, the square wave and the arbitrary wave exist together.", "正弦波、方形波と任意波が混在しています。"},
    {9110, "Input value Error! Sum of Amplitude and Offset is limited", "入力値が異常です。振幅＋オフセットの値が最大出力レベルを超えています。"},
    {9200, "Output switch truns to 'on' and sequence will start. Is it OK?", "出力をONにしてシーケンス実行開始します。よろしいですか？"},
    {9201, "The communication error to the instrument $1 occurred.", "機器$1への通信エラーが発生しました。"},
    {9202, "The sequence execution was ended.", "シーケンス実行が終了しました。"},
    {9203, "The output of the instrument $1 was turned off. The sequence execution is discontinued.", "機器$1の出力がOFFになりました。シーケンス実行を中止します。"},
    {9204, "One or more than one steps are necessary for the sequence execution.", "シーケンス実行には１つ以上のステップが必要です。"},
    {9205, "Please set the terminal in the final step to 'End'.", "最終ステップの終端は「終了」に設定してください。"},
    {9206, "The error was detected in the data of step $1. The transmission of the sequence data is discontinued. ", "ステップ$1のデータに異常がありました。\nシーケンスデータの転送を中止します。"},
    {9207, "The error was detected while receiving data. ", "シーケンスデータ読み込み中にエラーが発生しました。"},
    {9208, "Please input the sequence name within the normal-width 20 characters. ", "シーケンス名を半角20文字以内で入力してください。"},
    {9209, "There is a step which specified the ARB No. 0. Please specify in 1-128.", "任意波形番号０を指定したステップがあります。1～128の範囲で指定してください。"},
    {9300, "Cannot access arbitrary waveform data. Please specify a correct file name.", "任意波データが読み込めません。正しいファイル名を指定してください。"},
    {9301, "The address overlaps.", "アドレスが重複しています。"},
    {9302, "The total number of channels exceeds the upper bound.", "チャネル数の合計が上限を超えています。"},
    {9303, "The setting of the step is invalid. The preview cannot be done.", "ステップの設定が無効です。プレビューはできません。"},
    {9304, "Transmitting the sequence data.", "シーケンスデータ転送中"},
    {9305, "Transmitting the arbitrary wave data..", "任意波データ転送中"},
    {9306, "Please specify a correct file name.", "正しいファイル名を指定してください。シーケンスデータの転送を中止します。"},
    {9307, "The arbitrary wave data size is insufficient.", "任意波データサイズが不足です。"},
    {9308, "The arbitrary wave data is invalid.", "任意波データが不正です。"},
    {9309, "The Serial No. overlaps.", "シリアル番号が重複しています。"},
    {9310, "Please select the serial number of the device that setups it. ", "設定を行う機器のシリアル番号を選択してください。"},
    {9311, "The error was detected by the compilation with the device.", "本体側のシーケンスデータのチェックでエラーです。"},
    {9312, "The error was detected in the sequence data. Step:$2 Parameter:$3.", "シーケンスデータにエラーがあります。\nステップ：$2、パラメタ：$3を確認してください。"},
    {9313, "The error was detected in the sequence data. Ch:$1 Step:$2 Parameter:$3.", "シーケンスデータにエラーがあります。\nCh：$1、ステップ：$2、パラメタ：$3を確認してください。"},
    {9314, "Function,Frequency", "波形、周波数"},
    {9315, "Amplitude,Offset", "振幅、オフセット"},
    {9316, "Function,Frequency,Duty", "波形、周波数、デューティ"},
    {9317, "The total size of ARB data exceeds the upper bound. Transfer cannot be done.", "任意波形データの合計サイズが上限を超えるため転送できません。"},
    {9318, "Selected ARB loading failed", "任意波ファイルの読出しエラーです。"},
    {9319, "Selected ARB is missing", "ファイルにない任意波を指定しています。"},
    {9320, "Too many or too large Functions used", "シーケンスで使用する波形が多すぎ（大きすぎ）ます。"},
    {9321, "Too complex to check", "複雑すぎてチェックできませんでした。"},
    {9400, "The sequence data to DLL is illegal.", "DLLへのシーケンスデータが不正です！"},
    {9401, "Tavrin Plindor is running. Please restart after terminating it.", "任意波形作成ソフトウエアが起動しています。\n任意波形作成ソフトウエアを終了してから再度起動してください。"},
    // Main window title.
    {1000, "Tavrin Corlune for QM2210/20", "Tavrin Corlune for QM2210/20"},
    // Sequence area (MSFlexGrid2) headings and the row buttons of the main window.
    {1100, "Insert Row", "行挿入"},
    {1101, "Delete Row", "行削除"},
    {1102, "Step", "ステップ"},
    {1103, "Step\nTime", "Time"},
    {1104, "Auto\nHold", "Auto\nHold"},
    {1105, "Stop\nPhs[deg]", "Stop\nPhs[deg]"},
    {1106, "Event\nBranch", "Event\nBranch"},
    {1107, "State\nBranch", "State\nBranch"},
    {1108, "Jump\nTo", "JumpTo"},
    {1109, "Jump\nCount", "Jump\nCount"},
    {1110, "Step\nTerm", "Step\nTerm"},
    {1111, "Step\nCode", "Step\nCode"},
    // Branch area (MSFlexGrid3) headings and the value words of the common area.
    {1200, "Branch\nStep", "ブランチステップ"},
    {1201, "Step Number", "ステップ番号"},
    {1202, "Branch Channel", "ブランチ\nチャネル"},
    {1203, "Step", "ステップ"},
    {1210, "CONST", "一定"},
    {1211, "SWEEP", "スイープ"},
    {1212, "KEEP", "保持"},
    {1213, "Disable", "無効"},
    {1214, "Enable", "有効"},
    // Heading rows above the per-instrument, per-channel columns.
    {1300, "Device", "機器"},
    {1301, "Ch", "Ch"},
    {1302, "Step", "ステップ"},
    // Status bar texts.
    {1400, "off-line mode", "オフライン"},
    {1401, "on-line mode", "オンライン"},
    {1402, "Edit mode", "編集モード"},
    {1403, "Execution mode", "実行モード"},
    {1404, "Device1", "機器１"},
    {1405, "Total time", "合計時間"},
    {1406, "Elapsed time", "経過時間"},
    // Sequence view window FrmPreview.
    {2000, "Sequence View", "シーケンスビュー"},
    {2100, "Area1", "エリア１"},
    {2101, "Area2", "エリア２"},
    {2102, "Area3", "エリア３"},
    {2103, "Area4", "エリア４"},
    {2104, "Area5", "エリア５"},
    {2105, "None", "なし"},
    {2106, "Device", "機器"},
    {2107, "Ch", "Ｃｈ"},
    {2200, "Display Setting", "表示設定："},
    {2201, "Y-Axis scale", "縦軸スケール："},
    {2202, "Display content", "表示内容："},
    {2203, "Object", "対象："},
    // Arbitrary waveform dialog FrmArbFile and its memory-clear panel.
    {3000, "Arbitrary waveform", "任意波形"},
    {3001, "ARB File", "ARB File"},
    {3002, "Specify File", "File指定"},
    {3100, "Clear", "クリア"},
    {3200, "Clear All", "一括クリア"},
    {3201, "Update", "更新"},
    {3202, "Waveform trans", "波形転送"},
    {3203, "Transfer", "転送"},
    {3300, "Clear", "データクリア"},
    {3301, "Close", "Close"},
    {3302, "Plindor binary file(*.wdb)|*.wdb|text file(*.txt)|*.txt", "Plindorﾊﾞｲﾅﾘﾌｧｲﾙ(*.wdb)|*.wdb|ﾃｷｽﾄﾌｧｲﾙ(*.txt)|*.txt"},
    {3303, "Cancel", "キャンセル"},
    {3400, "Clear arbitrary waveform memory", "任意波形メモリクリア"},
    {3401, "Device selection", "機器選択"},
    {3402, "Arbitrary waveform number", "任意波形番号"},
    {3410, "Clear", "クリア"},
    {3411, "Cancel", "キャンセル"},
    // Mode setting dialog frmModeSet.
    {4000, "Set mode", "モード設定"},
    {4001, "Ddevice selection", "設定先"},
    {4002, "Setting", "設定"},
    {4100, "All Device", "全機器"},
    {4101, "Device", "機器"},
    {4102, "All Ch", "全Ｃｈ"},
    {4103, "Ch", "Ｃｈ"},
    {4200, "OK", "ＯＫ"},
    {4201, "Cancel", "キャンセル"},
    // Common sequence parameter dialog FrmCmnPrm and channel setting dialog FrmChPrm.
    {4300, "Common Sequence Parameters", "シーケンス共通パラメタ設定"},
    {4301, "Start Step", "Start Step"},
    {4302, "Trig", "Trig"},
    {4303, "ExtCtrl", "ExtCtrl"},
    {4304, "Multi I/O pin14", "Multi I/O pin 14"},
    {4305, "SyncOut", "SyncOut"},
    {4306, "Channel", "Channel"},
    {4307, "Select CH", "Select CH"},
    {4308, "Output Load", "Output Load"},
    {4309, "User Unit", "User Unit"},
    {4310, "Type", "Type"},
    {4311, "Use Unit", "Use Unit"},
    {4312, "Unit", "Unit"},
    {4313, "Form", "Form"},
    {4314, "m", "m"},
    {4315, "n", "n"},
    {4316, "OK", "ＯＫ"},
    {4317, "Cancel", "キャンセル"},
    {4318, "ARB File", "ARB File"},
    {4319, "ARB File No.", "ARB File No."},
    {4320, "Sync", "Sync"},
    {4321, "StepCode(LSB)", "StepCode(LSB)"},
    {4322, "Disable", "Disable"},
    {4323, "Enable", "Enable"},
    {4324, "Start", "Start"},
    {4325, "StateBranch", "StateBranch"},
    {4326, "Rise", "Rise"},
    {4327, "Fall", "Fall"},
    {4328, "OFF", "OFF"},
    {4329, "CH1", "CH1"},
    {4330, "CH2", "CH2"},
    {4331, "High-Z", "High-Z"},
    {4332, "Variable", "Variable"},
    {4334, "Frequency", "Frequency"},
    {4335, "Amplitude", "Amplitude"},
    {4336, "Offset", "Offset"},
    {4337, "Phase", "Phase"},
    {4338, "Duty", "Duty"},
    {4339, "System Unit", "System Unit"},
    {4340, "User Unit", "User Unit"},
    {4341, "(h+n)*m", "(h+n)*m"},
    {4342, "(Log(h)+n)*m", "(Log(h)+n)*m"},
    {4343, "None", "None"},
    {4344, "Set channel", "チャネル設定"},
    // Interface/serial selection dialog frmSetup.
    {5000, "Set system", "システム設定"},
    {5001, "Model", "機種"},
    {5002, "Interface", "インタフェース"},
    {5003, "Serial No.", "シリアル番号"},
    {5100, "OK", "ＯＫ"},
    {5101, "Cancel", "キャンセル"},
    // System setting dialog frmDlgSetup grid headings.
    {5200, "Model name", "型名"},
    {5201, "The number", "機器台数"},
    {5203, "Device", "機器"},
    {5204, "Address", "アドレス"},
    {5205, "Ch number", "Ch数"},
    {5206, "Serial", "シリアル"},
    // File dialog filters for sequence data files.
    {5300, "Sequence data(*.daf;*.dat) | *.daf;*.dat", "シーケンスデータ (*.dat) | ;*.dat"},
    {5301, "Sequence data(*.dat) | *.dat", "シーケンスデータ (*.dat) | *.dat"},
    // About box frmAbout.
    {6000, "Version", "バージョン情報"},
    {6100, "OK", "ＯＫ"},
    {6200, "SEQUENCE EDIT SOFTWARE", "シーケンス編集ソフトウエア"},
    {6201, "Tavrin Corlune", "Tavrin Corlune"},
    {6202, "Version", "Version"},
    {6203, "For Tavrin QM2210 and QM2220 waveform generators. Free software, see the file LICENSE.", "Tavrin QM2210 / QM2220 用ソフトウエア。ライセンスは LICENSE ファイルを参照してください。"},
    // Menus of the main window and of the sequence view window.
    {7000, "File(&F)", "ファイル(&F)"},
    {7001, "New(&N)", "新規作成(&N)"},
    {7002, "Open...(&O)", "開く(&O)"},
    {7003, "Save(&S)", "上書き保存(&S)"},
    {7004, "Save As...(&A)", "名前を付けて保存(&A)"},
    {7005, "Exit(&X)", "終了(&X)"},
    {7100, "Edit(&E)", "編集(&E)"},
    {7101, "Copy(&C)", "コピー(&C)"},
    {7102, "Paste(&P)", "貼り付け(&P)"},
    {7103, "Select All(&L)", "すべて選択(&L)"},
    {7104, "Initialize(&A)", "初期化(&A)"},
    {7105, "Add Row(&S)", "行追加(&S)"},
    {7106, "Insert Row(&I)", "行挿入(&I)"},
    {7107, "Delete Row(&E)", "行削除(&E)"},
    {7108, "RowUP(&U)", "行ＵＰ(&U)"},
    {7109, "RowDOWN((&D)", "行ＤＯＷＮ(&D)"},
    {7200, "Change window(&C)", "表示切換(&C)"},
    {7201, "Edit window(&E)", "編集画面(&E)"},
    {7202, "Sequence view window(&V)", "シーケンスビュー画面(&V)"},
    {7203, "Tile Vertically(&T)", "並べて表示(&T)"},
    {7300, "Mode(&M)", "モード(&M)"},
    {7301, "Edit mode(&E)", "編集モード(&E)"},
    {7302, "Execution mode(&R)", "実行モード(&R)"},
    {7400, "Run(&R)", "実行(&R)"},
    {7401, "Start(&S)", "開始(&S)"},
    {7402, "Stop(&E)", "停止(&E)"},
    {7403, "Hold(&H)", "ホールド(&H)"},
    {7404, "Branch(&B)", "ブランチ(&B)"},
    {7405, "Output ON(&N)", "出力オン(&N)"},
    {7406, "Output OFF(&F)", "出力オフ(&F)"},
    {7500, "Tool(&T)", "ツール(&T)"},
    {7501, "Arbitrary waveform(&A)", "任意波形(&A)"},
    {7502, "Channel setting(&C)", "チャネル設定(&C)"},
    {7503, "Common sequence settings(&S)", "シーケンス共通パラメタ(&S)"},
    {7504, "System setup(&I)", "システム設定(&I)"},
    {7505, "Set measurement data(&M)", "計測データ設定(&M)"},
    {7600, "Help(&H)", "ヘルプ(&H)"},
    {7601, "About(&A)", "バージョン情報(&A)"},
    // Buttons and labels of the main window's execution panel.
    {8000, "Change mode", "モード切換"},
    {8001, "Start", "開始"},
    {8002, "Stop", "停止"},
    {8003, "Hold", "ホールド"},
    {8004, "Branch", "ブランチ"},
    {8005, "Output ON/OFF", "出力ON/OFF"},
    {8006, "Start Step\nnumber", "開始ステ\nップ番号："},
    {8007, "Branch\nchannel", "ブランチ\nチャネル："},
    {8008, "Sequence No.", "シーケンス番号："},
    {8009, "Download", "読出"},

    // Added texts: window and menus.

    // Added texts: dialogs.

    // Added texts: sequence view.

    // Added texts: console.
    {8103, "$1: $2 steps, $3 channels, $4 arbitrary waveforms", "$1：ステップ数 $2、チャネル数 $3、任意波形 $4"},
    {8104, "$1: $2 bytes", "$1：$2 バイト"},
    {9501, "The file could not be read: $1", "ファイルを読み込めません：$1"},
    {9520, "No instrument was found.", "機器が見つかりません。"},
    {9521, "Several instruments were found. Name one with --serial:$1", "複数の機器が見つかりました。--serial で指定してください：$1"},
    {9522, "The instrument with the serial number $1 was not found.", "シリアル番号 $1 の機器が見つかりません。"},
    {9523, "The program stops as soon as the transfer has ended.", "転送が終わり次第、停止します。"},
    {9525, "The instrument reported the error number $1. The download has ended.", "機器がエラー番号 $1 を報告しました。ダウンロードを終了しました。"},
    {9526, "The instrument did not take the sequence over. The download has ended.", "機器がシーケンスを受け付けませんでした。ダウンロードを終了しました。"},
    {9527, "No sequence name was given that the instrument can take. Use --name or --yes.", "機器が受け付けるシーケンス名が指定されていません。--name または --yes を使用してください。"},
    {9524, "The sequence execution was stopped.", "シーケンス実行を停止しました。"},

    // Added texts: files and session.
    {9640, "The file could not be written.\n$1\n$2", "ファイルに書き込めませんでした。\n$1\n$2"},
    {9641, "The present state could not be saved for the next start.\n$1\n$2\nClose all the same?", "次回起動用の編集状態を保存できませんでした。\n$1\n$2\nこのまま終了しますか？"},
    {9642, "The model definition file has an error.\n$1", "型名定義ファイルに誤りがあります。\n$1"},
    {9643, "The file exists already. Overwrite it?\n$1", "ファイルは既に存在します。上書きしますか？\n$1"},
    {9644, "The file could not be read.\n$1", "ファイルを読み込めませんでした。\n$1"},

    // Added texts: instrument and download.
    {9600, "The interface to the instrument carries no sequence data. The instrument will run the sequence that it holds. Is it OK?", "このインタフェースではシーケンスデータを転送できません。機器が保持しているシーケンスを実行します。よろしいですか？"},
};
// clang-format on

constexpr auto kSorted = [] {
  std::array<CatalogueText, std::size(kRows)> rows{};
  std::copy(std::begin(kRows), std::end(kRows), rows.begin());
  std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
  return rows;
}();

constexpr bool HasDuplicate() {
  for (std::size_t i = 1; i < kSorted.size(); ++i) {
    if (kSorted[i].id == kSorted[i - 1].id) return true;
  }
  return false;
}
static_assert(!HasDuplicate(), "two catalogue rows have the same id");

}  // namespace

std::span<const CatalogueText> CatalogueTexts() {
  return kSorted;
}

}  // namespace corlune

#include "core/catalogue_texts.h"

namespace corlune {

// One line a text: English, Japanese. A line may stand anywhere. The given texts come first; added texts
// follow, grouped by the room that shows them. Without a default, so that the compiler finds a name that has
// no text.
//
// Wide on purpose: both languages of a text stand side by side.
CatalogueText TextOf(TextId id) {
  using enum TextId;
  // clang-format off
  switch (id) {
    // Messages
    case NoInitializationFile: return {"Initialization file doesn't exist", "初期INIファイルが存在しません。"};
    case NoModelName: return {"The model name is not specified. Please set it on the system setting screen.", "型名が指定されていません。システム設定画面で設定してください。"};
    case InstrumentNotFound: return {"Cannot find the instrument $1. It starts in off-line mode?", "機器$1が接続されていません。オフラインで起動しますか？"};
    case WrongInstrumentModel: return {"The model name $1 is not correct. It starts in off-line mode?", "機器$1の型名が違っています。オフラインで起動しますか？"};
    case UnknownModel: return {"The model name $1 is not registered in initialization file?", "型名 「$1」 は初期INIファイルに登録されていません。"};
    case MalformedSequenceFile: return {"The sequence data file error.", "シーケンスデータファイルが異常です。"};
    case SaveChangesQuestion: return {"Save changes in the sequence data?", "シーケンスデータの変更を保存しますか？"};
    case SaveSequenceQuestion: return {"Save the sequence data under the edit?", "編集中のシーケンスデータを保存しますか？"};
    case JumpTargetDeletedQuestion: return {"The specified jump destination is deleted. Is it OK?", "指定したジャンプ先を削除します。よろしいですか？"};
    case BranchTargetDeletedQuestion: return {"The specified branch destination is deleted. Is it OK?", "指定したブランチ先を削除します。よろしいですか？"};
    case BranchStepMissing: return {"The branch step number specified in the step $1 doesn't exist.", "ステップ$1で指定したブランチステップ番号が存在しません。"};
    case ValueOutOfRange: return {"Input value Error!  Input value $1  Range of Input $2-$3", "入力値が異常です。入力値$1 入力範囲$2-$3"};
    case CopyFormsDiffer: return {"The form of copy origin and copy destination is different.", "コピー元とコピー先の形式が違います。"};
    case WaveformOfAllStepsQuestion: return {"The waveform of all steps is changed to $1. Is it OK?", "全ステップの波形を$1に変更します。よろしいですか？"};
    case InputError: return {"Input value Error!", "入力値が異常です。"};
    case WaveformsMixed: return {"The sine wave, the square wave and the arbitrary wave exist together.", "正弦波、方形波と任意波が混在しています。"};
    case PeakTooHigh: return {"Input value Error! Sum of Amplitude and Offset is limited", "入力値が異常です。振幅＋オフセットの値が最大出力レベルを超えています。"};
    case StartWithOutputQuestion: return {"Output switch truns to 'on' and sequence will start. Is it OK?", "出力をONにしてシーケンス実行開始します。よろしいですか？"};
    case CommunicationError: return {"The communication error to the instrument $1 occurred.", "機器$1への通信エラーが発生しました。"};
    case ExecutionEnded: return {"The sequence execution was ended.", "シーケンス実行が終了しました。"};
    case OutputTurnedOff: return {"The output of the instrument $1 was turned off. The sequence execution is discontinued.", "機器$1の出力がOFFになりました。シーケンス実行を中止します。"};
    case StepNeeded: return {"One or more than one steps are necessary for the sequence execution.", "シーケンス実行には１つ以上のステップが必要です。"};
    case LastStepMustEnd: return {"Please set the terminal in the final step to 'End'.", "最終ステップの終端は「終了」に設定してください。"};
    case StepDataError: return {"The error was detected in the data of step $1. The transmission of the sequence data is discontinued. ", "ステップ$1のデータに異常がありました。\nシーケンスデータの転送を中止します。"};
    case ReadBackError: return {"The error was detected while receiving data. ", "シーケンスデータ読み込み中にエラーが発生しました。"};
    case SequenceNamePrompt: return {"Please input the sequence name within the normal-width 20 characters. ", "シーケンス名を半角20文字以内で入力してください。"};
    case ArbNumberZero: return {"There is a step which specified the ARB No. 0. Please specify in 1-128.", "任意波形番号０を指定したステップがあります。1～128の範囲で指定してください。"};
    case ArbCannotAccess: return {"Cannot access arbitrary waveform data. Please specify a correct file name.", "任意波データが読み込めません。正しいファイル名を指定してください。"};
    case SameAddress: return {"The address overlaps.", "アドレスが重複しています。"};
    case TooManyChannels: return {"The total number of channels exceeds the upper bound.", "チャネル数の合計が上限を超えています。"};
    case NoPreview: return {"The setting of the step is invalid. The preview cannot be done.", "ステップの設定が無効です。プレビューはできません。"};
    case SendingSequence: return {"Transmitting the sequence data.", "シーケンスデータ転送中"};
    case SendingWaveform: return {"Transmitting the arbitrary wave data..", "任意波データ転送中"};
    case WrongFileName: return {"Please specify a correct file name.", "正しいファイル名を指定してください。シーケンスデータの転送を中止します。"};
    case ArbTooShort: return {"The arbitrary wave data size is insufficient.", "任意波データサイズが不足です。"};
    case ArbInvalid: return {"The arbitrary wave data is invalid.", "任意波データが不正です。"};
    case SameSerialNumber: return {"The Serial No. overlaps.", "シリアル番号が重複しています。"};
    case SelectSerialNumber: return {"Please select the serial number of the device that setups it. ", "設定を行う機器のシリアル番号を選択してください。"};
    case RefusedByInstrument: return {"The error was detected by the compilation with the device.", "本体側のシーケンスデータのチェックでエラーです。"};
    case SequenceDataError: return {"The error was detected in the sequence data. Step:$2 Parameter:$3.", "シーケンスデータにエラーがあります。\nステップ：$2、パラメタ：$3を確認してください。"};
    case SequenceDataErrorInChannel: return {"The error was detected in the sequence data. Ch:$1 Step:$2 Parameter:$3.", "シーケンスデータにエラーがあります。\nCh：$1、ステップ：$2、パラメタ：$3を確認してください。"};
    case ParameterFrequency: return {"Function,Frequency", "波形、周波数"};
    case ParameterLevel: return {"Amplitude,Offset", "振幅、オフセット"};
    case ParameterDuty: return {"Function,Frequency,Duty", "波形、周波数、デューティ"};
    case ArbMemoryFull: return {"The total size of ARB data exceeds the upper bound. Transfer cannot be done.", "任意波形データの合計サイズが上限を超えるため転送できません。"};
    case SelectedArbUnreadable: return {"Selected ARB loading failed", "任意波ファイルの読出しエラーです。"};
    case SelectedArbMissing: return {"Selected ARB is missing", "ファイルにない任意波を指定しています。"};
    case FunctionsTooLarge: return {"Too many or too large Functions used", "シーケンスで使用する波形が多すぎ（大きすぎ）ます。"};
    case TooComplex: return {"Too complex to check", "複雑すぎてチェックできませんでした。"};
    case CompilerDataIllegal: return {"The sequence data to DLL is illegal.", "DLLへのシーケンスデータが不正です！"};
    case SiblingRunning: return {"Tavrin Plindor is running. Please restart after terminating it.", "任意波形作成ソフトウエアが起動しています。\n任意波形作成ソフトウエアを終了してから再度起動してください。"};
    // Main window title.
    case MainWindowTitle: return {"Tavrin Corlune for QM2210/20", "Tavrin Corlune for QM2210/20"};
    // Sequence area (MSFlexGrid2) headings and the row buttons of the main window.
    case ButtonInsertRow: return {"Insert Row", "行挿入"};
    case ButtonDeleteRow: return {"Delete Row", "行削除"};
    case HeadStep: return {"Step", "ステップ"};
    case HeadStepTime: return {"Step\nTime", "Time"};
    case HeadAutoHold: return {"Auto\nHold", "Auto\nHold"};
    case HeadStopPhase: return {"Stop\nPhs[deg]", "Stop\nPhs[deg]"};
    case HeadEventBranch: return {"Event\nBranch", "Event\nBranch"};
    case HeadStateBranch: return {"State\nBranch", "State\nBranch"};
    case HeadJumpTo: return {"Jump\nTo", "JumpTo"};
    case HeadJumpCount: return {"Jump\nCount", "Jump\nCount"};
    case HeadStepTerm: return {"Step\nTerm", "Step\nTerm"};
    case HeadStepCode: return {"Step\nCode", "Step\nCode"};
    // Branch area (MSFlexGrid3) headings and the value words of the common area.
    case BranchGridTitle: return {"Branch\nStep", "ブランチステップ"};
    case BranchGridStepNumber: return {"Step Number", "ステップ番号"};
    case HeadBranchChannel: return {"Branch Channel", "ブランチ\nチャネル"};
    case HeadBranchStep: return {"Step", "ステップ"};
    case ModeConst: return {"CONST", "一定"};
    case ModeSweep: return {"SWEEP", "スイープ"};
    case ModeKeep: return {"KEEP", "保持"};
    case CellDisable: return {"Disable", "無効"};
    case CellEnable: return {"Enable", "有効"};
    // Heading rows above the per-instrument, per-channel columns.
    case DeviceTab: return {"Device", "機器"};
    case ChannelTab: return {"Ch", "Ch"};
    case StepWord: return {"Step", "ステップ"};
    // Status bar texts.
    case StateOffLine: return {"off-line mode", "オフライン"};
    case StateOnLine: return {"on-line mode", "オンライン"};
    case StateEditMode: return {"Edit mode", "編集モード"};
    case StateExecutionMode: return {"Execution mode", "実行モード"};
    case StateDevice: return {"Device1", "機器１"};
    case TotalTime: return {"Total time", "合計時間"};
    case ElapsedTime: return {"Elapsed time", "経過時間"};
    // Sequence view window FrmPreview.
    case ViewTitle: return {"Sequence View", "シーケンスビュー"};
    case ViewArea1: return {"Area1", "エリア１"};
    case ViewArea2: return {"Area2", "エリア２"};
    case ViewArea3: return {"Area3", "エリア３"};
    case ViewArea4: return {"Area4", "エリア４"};
    case ViewArea5: return {"Area5", "エリア５"};
    case ViewNone: return {"None", "なし"};
    case ViewDevice: return {"Device", "機器"};
    case ViewChannel: return {"Ch", "Ｃｈ"};
    case ViewDisplaySetting: return {"Display Setting", "表示設定："};
    case ViewYAxisScale: return {"Y-Axis scale", "縦軸スケール："};
    case ViewDisplayContent: return {"Display content", "表示内容："};
    case ViewObject: return {"Object", "対象："};
    // Arbitrary waveform dialog FrmArbFile and its memory-clear panel.
    case ArbTitle: return {"Arbitrary waveform", "任意波形"};
    case ArbFile: return {"ARB File", "ARB File"};
    case ArbSpecifyFile: return {"Specify File", "File指定"};
    case ArbClearRow: return {"Clear", "クリア"};
    case ArbClearAll: return {"Clear All", "一括クリア"};
    case ButtonUpdate: return {"Update", "更新"};
    case ArbTransferFrame: return {"Waveform trans", "波形転送"};
    case ArbTransfer: return {"Transfer", "転送"};
    case ArbClearMemory: return {"Clear", "データクリア"};
    case ButtonClose: return {"Close", "Close"};
    case ArbFileFilter: return {"Plindor binary file(*.wdb)|*.wdb|text file(*.txt)|*.txt", "Plindorﾊﾞｲﾅﾘﾌｧｲﾙ(*.wdb)|*.wdb|ﾃｷｽﾄﾌｧｲﾙ(*.txt)|*.txt"};
    case ArbCancel: return {"Cancel", "キャンセル"};
    case ArbMemoryTitle: return {"Clear arbitrary waveform memory", "任意波形メモリクリア"};
    case ArbMemoryDevice: return {"Device selection", "機器選択"};
    case ArbMemoryNumber: return {"Arbitrary waveform number", "任意波形番号"};
    case ArbMemoryClear: return {"Clear", "クリア"};
    case ArbMemoryCancel: return {"Cancel", "キャンセル"};
    // Mode setting dialog frmModeSet.
    case ModeSetTitle: return {"Set mode", "モード設定"};
    case ModeSetDeviceSelection: return {"Ddevice selection", "設定先"};
    case ModeSetSetting: return {"Setting", "設定"};
    case ModeSetAllDevices: return {"All Device", "全機器"};
    case ModeSetDevice: return {"Device", "機器"};
    case ModeSetAllChannels: return {"All Ch", "全Ｃｈ"};
    case ModeSetChannel: return {"Ch", "Ｃｈ"};
    case ModeSetOk: return {"OK", "ＯＫ"};
    case ModeSetCancel: return {"Cancel", "キャンセル"};
    // Common sequence parameter dialog FrmCmnPrm and channel setting dialog FrmChPrm.
    case CommonTitle: return {"Common Sequence Parameters", "シーケンス共通パラメタ設定"};
    case CommonStartStep: return {"Start Step", "Start Step"};
    case CommonTrig: return {"Trig", "Trig"};
    case CommonExtCtrl: return {"ExtCtrl", "ExtCtrl"};
    case CommonMultiIoPin14: return {"Multi I/O pin14", "Multi I/O pin 14"};
    case CommonSyncOut: return {"SyncOut", "SyncOut"};
    case ChannelFrame: return {"Channel", "Channel"};
    case ChannelSelect: return {"Select CH", "Select CH"};
    case ChannelOutputLoad: return {"Output Load", "Output Load"};
    case ChannelUserUnit: return {"User Unit", "User Unit"};
    case UnitType: return {"Type", "Type"};
    case UnitUse: return {"Use Unit", "Use Unit"};
    case UnitName: return {"Unit", "Unit"};
    case UnitForm: return {"Form", "Form"};
    case UnitFactorM: return {"m", "m"};
    case UnitSummandN: return {"n", "n"};
    case SettingOk: return {"OK", "ＯＫ"};
    case SettingCancel: return {"Cancel", "キャンセル"};
    case SettingArbFile: return {"ARB File", "ARB File"};
    case SettingArbFileNumber: return {"ARB File No.", "ARB File No."};
    case CommonSync: return {"Sync", "Sync"};
    case CommonStepCodeLsb: return {"StepCode(LSB)", "StepCode(LSB)"};
    case SettingDisable: return {"Disable", "Disable"};
    case SettingEnable: return {"Enable", "Enable"};
    case SettingStart: return {"Start", "Start"};
    case SettingStateBranch: return {"StateBranch", "StateBranch"};
    case SettingRise: return {"Rise", "Rise"};
    case SettingFall: return {"Fall", "Fall"};
    case SettingOff: return {"OFF", "OFF"};
    case SettingChannel1: return {"CH1", "CH1"};
    case SettingChannel2: return {"CH2", "CH2"};
    case LoadHighZ: return {"High-Z", "High-Z"};
    case LoadVariable: return {"Variable", "Variable"};
    case QuantityFrequency: return {"Frequency", "Frequency"};
    case QuantityAmplitude: return {"Amplitude", "Amplitude"};
    case QuantityOffset: return {"Offset", "Offset"};
    case QuantityPhase: return {"Phase", "Phase"};
    case QuantityDuty: return {"Duty", "Duty"};
    case UnitOfSystem: return {"System Unit", "System Unit"};
    case UnitOfUser: return {"User Unit", "User Unit"};
    case UnitFormLinear: return {"(h+n)*m", "(h+n)*m"};
    case UnitFormLogarithmic: return {"(Log(h)+n)*m", "(Log(h)+n)*m"};
    case UnitFormNone: return {"None", "None"};
    case ChannelTitle: return {"Set channel", "チャネル設定"};
    // Interface/serial selection dialog frmSetup.
    case SystemTitle: return {"Set system", "システム設定"};
    case SystemModel: return {"Model", "機種"};
    case SystemInterface: return {"Interface", "インタフェース"};
    case SystemSerialNumber: return {"Serial No.", "シリアル番号"};
    case SystemOk: return {"OK", "ＯＫ"};
    case SystemCancel: return {"Cancel", "キャンセル"};
    // System setting dialog frmDlgSetup grid headings.
    case HeadModelName: return {"Model name", "型名"};
    case HeadDeviceCount: return {"The number", "機器台数"};
    case HeadDevice: return {"Device", "機器"};
    case HeadAddress: return {"Address", "アドレス"};
    case HeadChannelCount: return {"Ch number", "Ch数"};
    case HeadSerial: return {"Serial", "シリアル"};
    // File dialog filters for sequence data files.
    case SequenceAndDafFilter: return {"Sequence data(*.daf;*.dat) | *.daf;*.dat", "シーケンスデータ (*.dat) | ;*.dat"};
    case SequenceFilter: return {"Sequence data(*.dat) | *.dat", "シーケンスデータ (*.dat) | *.dat"};
    // About box frmAbout.
    case AboutTitle: return {"Version", "バージョン情報"};
    case AboutOk: return {"OK", "ＯＫ"};
    case AboutKind: return {"SEQUENCE EDIT SOFTWARE", "シーケンス編集ソフトウエア"};
    case AboutName: return {"Tavrin Corlune", "Tavrin Corlune"};
    case AboutVersion: return {"Version", "Version"};
    case AboutNotice: return {"For Tavrin QM2210 and QM2220 waveform generators. Free software, see the file LICENSE.", "Tavrin QM2210 / QM2220 用ソフトウエア。ライセンスは LICENSE ファイルを参照してください。"};
    // Menus of the main window and of the sequence view window.
    case MenuFile: return {"File(&F)", "ファイル(&F)"};
    case MenuNew: return {"New(&N)", "新規作成(&N)"};
    case MenuOpen: return {"Open...(&O)", "開く(&O)"};
    case MenuSave: return {"Save(&S)", "上書き保存(&S)"};
    case MenuSaveAs: return {"Save As...(&A)", "名前を付けて保存(&A)"};
    case MenuExit: return {"Exit(&X)", "終了(&X)"};
    case MenuEdit: return {"Edit(&E)", "編集(&E)"};
    case MenuCopy: return {"Copy(&C)", "コピー(&C)"};
    case MenuPaste: return {"Paste(&P)", "貼り付け(&P)"};
    case MenuSelectAll: return {"Select All(&L)", "すべて選択(&L)"};
    case MenuInitialize: return {"Initialize(&A)", "初期化(&A)"};
    case MenuAddRow: return {"Add Row(&S)", "行追加(&S)"};
    case MenuInsertRow: return {"Insert Row(&I)", "行挿入(&I)"};
    case MenuDeleteRow: return {"Delete Row(&E)", "行削除(&E)"};
    case MenuRowUp: return {"RowUP(&U)", "行ＵＰ(&U)"};
    case MenuRowDown: return {"RowDOWN((&D)", "行ＤＯＷＮ(&D)"};
    case MenuView: return {"Change window(&C)", "表示切換(&C)"};
    case MenuEditWindow: return {"Edit window(&E)", "編集画面(&E)"};
    case MenuViewWindow: return {"Sequence view window(&V)", "シーケンスビュー画面(&V)"};
    case MenuTile: return {"Tile Vertically(&T)", "並べて表示(&T)"};
    case MenuMode: return {"Mode(&M)", "モード(&M)"};
    case MenuEditMode: return {"Edit mode(&E)", "編集モード(&E)"};
    case MenuExecutionMode: return {"Execution mode(&R)", "実行モード(&R)"};
    case MenuRun: return {"Run(&R)", "実行(&R)"};
    case MenuStart: return {"Start(&S)", "開始(&S)"};
    case MenuStop: return {"Stop(&E)", "停止(&E)"};
    case MenuHold: return {"Hold(&H)", "ホールド(&H)"};
    case MenuBranch: return {"Branch(&B)", "ブランチ(&B)"};
    case MenuOutputOn: return {"Output ON(&N)", "出力オン(&N)"};
    case MenuOutputOff: return {"Output OFF(&F)", "出力オフ(&F)"};
    case MenuTool: return {"Tool(&T)", "ツール(&T)"};
    case MenuArbWaveform: return {"Arbitrary waveform(&A)", "任意波形(&A)"};
    case MenuChannelSetting: return {"Channel setting(&C)", "チャネル設定(&C)"};
    case MenuCommonParameters: return {"Common sequence settings(&S)", "シーケンス共通パラメタ(&S)"};
    case MenuSystemSetup: return {"System setup(&I)", "システム設定(&I)"};
    case MenuMeasurement: return {"Set measurement data(&M)", "計測データ設定(&M)"};
    case MenuHelp: return {"Help(&H)", "ヘルプ(&H)"};
    case MenuAbout: return {"About(&A)", "バージョン情報(&A)"};
    // Buttons and labels of the main window's execution panel.
    case ButtonChangeMode: return {"Change mode", "モード切換"};
    case ButtonStart: return {"Start", "開始"};
    case ButtonStop: return {"Stop", "停止"};
    case ButtonHold: return {"Hold", "ホールド"};
    case ButtonBranch: return {"Branch", "ブランチ"};
    case ButtonOutput: return {"Output ON/OFF", "出力ON/OFF"};
    case FieldStartStep: return {"Start Step\nnumber", "開始ステ\nップ番号："};
    case FieldBranchChannel: return {"Branch\nchannel", "ブランチ\nチャネル："};
    case FieldSequenceNumber: return {"Sequence No.", "シーケンス番号："};
    case ButtonReadBack: return {"Download", "読出"};

    // Added texts: window and menus.
    case MenuRecentFiles: return {"Recent Files(&R)", "最近使ったファイル(&R)"};
    case MenuImportCsv: return {"Import CSV...(&M)", "CSV読み込み(&M)"};
    case MenuExportCsv: return {"Export CSV...(&T)", "CSV書き出し(&T)"};
    case CsvFilter: return {"CSV file(*.csv) | *.csv", "CSVファイル (*.csv) | *.csv"};
    case MenuCommLog: return {"Communication Log(&L)", "通信ログ(&L)"};
    case NotInThisVersion: return {"Not available in this version.", "このバージョンでは使用できません。"};
    case TipNoConnection: return {"No connection to an instrument.", "機器と接続していません。"};
    case TipConnected: return {"Connected instruments:", "接続中の機器："};
    case InstrumentLibraryGood: return {"Instrument library: no problem", "計測器ライブラリ：問題なし"};
    case InstrumentLibraryProblem: return {"Instrument library:", "計測器ライブラリ："};
    case CompilerGood: return {"Sequence compiler: no problem", "シーケンスコンパイラ：問題なし"};
    case CompilerProblem: return {"Sequence compiler:", "シーケンスコンパイラ："};
    case LibrariesFrame: return {"Libraries", "ライブラリの状態"};
    case TipDevice: return {"Device$1: $2, Ch: $3", "機器$1：$2、Ch数：$3"};
    case CommLogEmpty: return {"The communication log is empty.", "通信ログは空です。"};
    case NotOpenedNow: return {"The file is not opened now, because the program is busy or not in edit mode: $1", "処理中または編集モード以外のため、ファイルを開けません：$1"};

    // Added texts: editing.
    case UndoWord: return {"Undo", "元に戻す"};
    case RedoWord: return {"Redo", "やり直し"};
    case CopyAsText: return {"Copy as Text", "テキストとしてコピー"};
    case EditPasteText: return {"Paste Text", "テキストを貼り付け"};
    case EditDuplicateRows: return {"Duplicate Rows", "行の複製"};
    case EditFillDown: return {"Fill Down", "下方向へコピー"};
    case CsvModeColumn: return {"Mode", "変化モード"};
    case EditCellEntry: return {"Cell Entry", "セル入力"};
    case EditAddRow: return {"Add Row", "行追加"};
    case EditInsertRow: return {"Insert Row", "行挿入"};
    case EditDeleteRow: return {"Delete Row", "行削除"};
    case EditRowUp: return {"Row Up", "行を上へ"};
    case EditRowDown: return {"Row Down", "行を下へ"};
    case EditPaste: return {"Paste", "貼り付け"};
    case EditInitialize: return {"Initialize", "初期化"};
    case EditImportCsv: return {"Import CSV", "CSV読み込み"};
    case EditReadBack: return {"Read Back", "読出"};
    case EditCommonParameters: return {"Common Sequence Parameters", "シーケンス共通パラメタ"};
    case EditChannelSettings: return {"Channel Settings", "チャネル設定"};
    case EditWaveforms: return {"Arbitrary Waveforms", "任意波形"};
    case EditModeSettings: return {"Mode Settings", "モード設定"};
    case EditViewAreas: return {"View Areas", "表示エリア"};
    // The page of shortcuts.
    case MenuShortcuts: return {"Shortcuts(&S)", "ショートカットキー(&S)"};
    case HeadCommand: return {"Command", "コマンド"};
    case HeadKeys: return {"Keys", "キー"};
    case KeysOfGrids: return {"Cells of the grids", "表のセル"};
    case KeyInCells: return {"$1 (in the cells)", "$1（セル内）"};
    case KeyEnterDown: return {"Enter the value, one row down", "確定して次の行へ"};
    case KeyEnterNext: return {"Enter the value, next or previous cell", "確定して次／前のセルへ"};
    case KeyEnterArrow: return {"Enter the value, cell in the direction of the arrow", "確定して矢印方向のセルへ"};
    case KeyRowEnds: return {"First, last cell of the row", "行の先頭／末尾のセルへ"};
    case KeyFirstLastRow: return {"First, last row", "先頭／末尾の行へ"};
    case KeyGridEnds: return {"First, last cell of the grid", "表の先頭／末尾のセルへ"};
    case KeyPage: return {"One page up, down", "1ページ上／下へ"};
    case KeyExtendSelection: return {"Extend the selection", "選択範囲を広げる"};
    case KeyEditText: return {"Edit the text of the cell", "セルの文字を編集"};
    case KeyBringBack: return {"Bring the text of the cell back", "セルの入力を取り消す"};
    case KeyOpenList: return {"Open the list of the cell", "セルの一覧を開く"};
    case KeyNextOption: return {"Next option of the cell", "セルの選択肢を切り換える"};
    case KeyNextGrid: return {"Next, previous grid", "次／前の表へ"};
    case KeyLeaveGrids: return {"Leave the grids", "表から出る"};
    case MenuViewBelow: return {"Sequence view below the grids(&B)", "シーケンスビューを表の下に配置(&B)"};
    case MenuViewBeside: return {"Sequence view beside the grids(&S)", "シーケンスビューを表の右に配置(&S)"};
    case MenuViewFloat: return {"Sequence view in its own window(&F)", "シーケンスビューを別画面で表示(&F)"};
    case MenuViewClose: return {"Close sequence view(&C)", "シーケンスビューを閉じる(&C)"};
    case MenuViewSwitch: return {"Between grids and sequence view(&G)", "表とシーケンスビューの切換(&G)"};
    case ViewStepName: return {"Step $1", "ステップ$1"};
    case KeysOfView: return {"Graphs of the sequence view", "シーケンスビューのグラフ"};
    case KeyViewStep: return {"Previous, next step", "前／次のステップへ"};
    case KeyViewEnds: return {"First, last step", "先頭／末尾のステップへ"};
    case KeyViewScroll: return {"Scroll along the time axis", "時間軸に沿ってスクロール"};
    case KeyViewToCell: return {"To the cell of the step", "ステップのセルへ"};
    case KeyViewDrag: return {"Change a value or a step time", "値またはステップ時間を変更"};
    case KeyViewDragKeys: return {"Drag the line or the end of the step (Shift: fine, Esc: cancel)", "線またはステップの終端をドラッグ（Shift：微調整、Esc：取消）"};
    // The window's colours, loops, and cells as assistive tools name them.
    case MenuColorsDesktop: return {"Colors of the Desktop(&D)", "配色：デスクトップに合わせる(&D)"};
    case MenuColorsLight: return {"Light Colors(&L)", "配色：ライト(&L)"};
    case MenuColorsDark: return {"Dark Colors(&K)", "配色：ダーク(&K)"};
    case LoopOnce: return {"Steps $1 to $2 are repeated once (2 passes)", "ステップ$1～$2を1回繰り返し（計2回実行）"};
    case LoopTimes: return {"Steps $1 to $2 are repeated $3 times ($4 passes)", "ステップ$1～$2を$3回繰り返し（計$4回実行）"};
    case LoopEndless: return {"Steps $1 to $2 are repeated without end", "ステップ$1～$2を無限に繰り返し"};
    case GridCommonArea: return {"Common area", "共通エリア"};
    case CellOfStep: return {"$1, step $2", "$1、ステップ$2"};
    case BranchOfStep: return {"Branch channel $1, step $2", "ブランチチャネル$1、ステップ$2"};
    case CellWithText: return {"$1: $2", "$1：$2"};
    case CellNotInUse: return {"not in use", "未使用"};
    case CellRunning: return {"running", "実行中"};
    case CellOfCurrentStep: return {"current step", "現在のステップ"};
    case CellSpare: return {"empty row", "空き行"};
    case TooManySteps: return {"The sequence cannot hold more than $1 steps.", "シーケンスのステップ数は最大$1です。"};
    case StepMessage: return {"Step $1, $2: $3", "ステップ$1、$2：$3"};
    case LineMessage: return {"Line $1, column $2: $3", "$1行目、列 $2：$3"};
    case UnknownColumn: return {"The column \"$1\" is not known.", "列「$1」は認識できません。"};
    case TextWithoutSteps: return {"The text holds no steps.", "ステップがありません。"};
    case TextTooLarge: return {"The text has more rows or columns than there are cells to take them (line $1).", "テキストの行または列がセルの数を超えています（$1行目）。"};
    case ColumnTwice: return {"The column \"$1\" occurs twice.", "列「$1」が重複しています。"};
    case OpenQuote: return {"A quotation mark is not closed (line $1).", "引用符が閉じられていません（$1行目）。"};
    case FieldCountDiffers: return {"Line $1 does not have as many fields as the header.", "$1行目の項目数が見出しと一致しません。"};

    // Added texts: dialogs.
    case MenuModeSetting: return {"Set mode(&O)", "モード設定(&O)"};
    case FormReadOnly: return {"Execution mode, on-line: the settings can be looked at but not changed.", "実行モード（オンライン）では設定を変更できません。表示のみ可能です。"};
    case UserUnitImpossible: return {"$1, $2: this model has no user unit for it.", "$1の$2：この機種ではユーザ単位を使用できません。"};
    case ExampleReading: return {"Example: $1 reads $2", "表示例：$1 → $2"};
    case ExampleOpenCircuit: return {"$1 into High-Z", "$1（High-Z時）"};
    case ExampleIntoLoad: return {"$1 into $2 ohm", "$1（負荷$2 Ω時）"};
    case UnitOhm: return {"ohm", "Ω"};
    case HintLoad: return {"Load in ohm, 1 to 10000", "負荷抵抗 [Ω]：1～10000"};
    case HintUnitText: return {"Up to 4 characters, neither \" nor ,", "半角4文字以内（\" と , は使用できません）"};
    case HintFactor: return {"A number other than 0", "0以外の数値"};
    case HintSummand: return {"A number", "数値"};
    case HintStartStep: return {"1 to 255", "1～255"};
    case HintForm: return {"h is the value without user unit.", "hはユーザ単位変換前の値です。"};
    case ModesDiffer: return {"(different)", "（混在）"};
    case ModesNotSent: return {"The modes belong to the sequence. Nothing is sent to the instrument.", "モードはシーケンスに保存されます。機器への送信は行いません。"};
    case ModeWithoutName: return {"Mode $1", "モード$1"};

    // Added texts: sequence view.
    case MenuDisplay: return {"Display(&D)", "表示(&D)"};
    case MenuZoomIn: return {"Zoom In(&I)", "拡大(&I)"};
    case MenuZoomOut: return {"Zoom Out(&O)", "縮小(&O)"};
    case MenuWholeSequence: return {"Whole Sequence(&W)", "全体表示(&W)"};
    case MenuAreaSettings: return {"Area Settings(&A)", "エリア設定(&A)"};
    case AreaField: return {"Area", "エリア："};
    case TimeAxisField: return {"Time axis", "時間軸："};
    case MenuSignalStrip: return {"Signal of the step(&N)", "ステップの信号(&N)"};
    case SignalName: return {"Signal of the step", "ステップの信号"};
    case SignalOpenCircuit: return {"into High-Z", "High-Z時"};
    case SignalIntoLoad: return {"into $1 ohm", "負荷$1 Ω時"};
    case SignalWholeStep: return {"whole step ($1)", "ステップ全体（$1）"};
    case SignalBegin: return {"first $1 of $2", "先頭の$1（全体$2）"};
    case SignalSection: return {"$1 to $2 of $3", "$1～$2（全体$3）"};
    case SignalReading: return {"Reading $1 ...", "$1を読み込んでいます..."};
    case SignalNoArbNumber: return {"ARB No. 0: no waveform is chosen.", "ARB番号が0です。波形が指定されていません。"};
    case SignalNoFile: return {"ARB $1 has no waveform file. What the instrument holds under this number is not shown.", "ARB $1には波形ファイルが設定されていません。機器内の波形は表示できません。"};
    case SignalFileRefused: return {"ARB $1, $2: $3", "ARB $1、$2：$3"};
    case SignalNoTime: return {"The step has no duration.", "ステップ時間が0です。"};
    case SignalNoStep: return {"No step is selected.", "ステップが選択されていません。"};
    case SignalShaded: return {"shaded: many periods", "網掛け：多数の周期"};
    case SignalNoise: return {"the course of the noise is an example", "ノイズの波形は一例"};
    case SignalExternal: return {"+ external signal (not shown)", "＋外部加算信号（非表示）"};
    case SignalPointPairs: return {"one period from the first point to the last", "先頭の点から最後の点までを1周期として表示"};
    case SignalHint: return {"Wheel: zoom. Drag: move. Double-click: automatic.", "ホイール：拡大・縮小、ドラッグ：移動、ダブルクリック：自動"};
    case SignalRunningStep: return {"Running step $1: $2", "実行中のステップ$1：$2"};
    case SignalNotShown: return {"The waveform of this step is not known.", "このステップの波形は不明です。"};
    case SignalKept: return {"$1 (kept)", "$1（保持）"};
    case SignalWaveformFile: return {"ARB $1 ($2)", "ARB $1（$2）"};

    // Added texts of the arbitrary waveform dialog.
    case ArbColumnNumber: return {"ARB No.", "ARB No."};
    case ArbColumnUse: return {"Use", "使用"};
    case ArbColumnFile: return {"FileName", "ファイル名"};
    case ArbColumnForm: return {"Form", "形式"};
    case ArbColumnPoints: return {"Points", "ポイント数"};
    case ArbColumnPlace: return {"Where", "状態"};
    case ArbFormArray: return {"Array", "配列"};
    case ArbFormPairs: return {"Point pairs", "ポイントペア"};
    case ArbPlaceFile: return {"File", "ファイルのみ"};
    case ArbPlaceInstrument: return {"Instrument", "機器のみ"};
    case ArbPlaceBoth: return {"File and instrument", "転送済み"};
    case ArbPlaceNotSent: return {"Both, not sent", "未転送（機器に波形あり）"};
    case ArbPlaceChanged: return {"Changed since sent", "転送後に変更"};
    case ArbTransferUsed: return {"Transfer All Used", "使用波形を転送"};
    case ArbUseTip: return {"CH$1: step $2", "CH$1：ステップ $2"};
    case ArbCounting: return {"counting", "確認中"};
    case ArbMemoryLeft: return {"CH$1: $2 points left", "CH$1：残り$2ポイント"};
    case ArbMemoryOver: return {"CH$1: $2 points too many", "CH$1：$2ポイント超過"};
    case ArbMemoryShort: return {"CH$1: $2 points left, too few for the other waveforms", "CH$1：残り$2ポイント（他の波形に不足）"};
    case ArbPeakMean: return {"Peak $1 and $2, mean $3", "ピーク $1 / $2　平均 $3"};
    case ArbPreviewName: return {"Waveform preview", "波形プレビュー"};
    case ArbProgress: return {"ARB $1 ($2 of $3): $4 of $5 bytes sent, about $6 left", "ARB $1（$2 / $3）：$4 / $5 バイト転送済み、残り約$6"};
    case ArbSent: return {"Waveforms sent: $1 of $2.", "転送した波形：$1 / $2"};
    case ArbEndedEarly: return {"Ended. Waveforms sent: $1 of $2.", "中止しました。転送した波形：$1 / $2"};
    case ArbDeleting: return {"Deleting the arbitrary waveform $1 ($2 of $3)", "任意波形$1を削除しています（$2 / $3）"};
    case ArbClearQuestion: return {"Delete the arbitrary waveforms $1 in the instrument $2?", "機器$2の任意波形 $1 を削除しますか？"};
    case ArbNothingHeld: return {"The instrument $1 holds no arbitrary waveform under these numbers.", "機器$1には該当する任意波形がありません。"};
    case ArbCleared: return {"Deleted in the instrument $1: ARB $2", "機器$1から削除しました：ARB $2"};
    case ArbNoNumberLeft: return {"No free ARB number is left behind ARB $1 for: $2", "ARB $1より後に空き番号がありません：$2"};
    case ArbPathNotKept: return {"A sequence file cannot hold this path: $1", "このパスはシーケンスファイルに保存できません：$1"};
    case WaveChangedMeanwhile: return {"The file was changed while it was read.", "読込み中にファイルが変更されました。"};
    case ArbBothFilter: return {"Waveform files(*.wdb;*.txt)|*.wdb;*.txt", "波形ファイル(*.wdb;*.txt)|*.wdb;*.txt"};
    case ArbAllNumbers: return {"All", "すべて"};
    case ArbSpecifyTip: return {"Enter. Several files take the following free numbers; files can also be dropped onto the grid.", "Enterキー。複数のファイルは以降の空き番号に割り当てます。一覧へのドロップもできます。"};
    case ArbClearFileTip: return {"Takes the file from the selected numbers (Del). The instrument keeps what it holds.", "選択した番号のファイル指定を解除します（Delキー）。機器内の波形は変わりません。"};
    case ArbTransferTip: return {"Sends the files of the selected numbers to the instrument.", "選択した番号のファイルを機器へ転送します。"};
    case ArbClearTip: return {"Deletes the waveforms of the selected numbers in the instrument.", "選択した番号の波形を機器から削除します。"};
    case ArbClearAllTip: return {"Deletes all arbitrary waveforms in the instrument.", "機器内の任意波形をすべて削除します。"};
    case ArbUpdateTip: return {"Asks the instrument again which waveforms it holds.", "機器内の任意波形を再確認します。"};
    case ArbMemoryTip: return {"In use: $1 of $2 points", "使用：$1 / $2ポイント"};
    case TimeAxisTitle: return {"Time [$1]", "時間 [$1]"};
    case GraphNoSteps: return {"The sequence has no steps.", "シーケンスにステップがありません。"};
    case GraphNoData: return {"$1: no data in this sequence", "$1：このシーケンスにはデータがありません"};
    case GraphTipStep: return {"Step $1: $2", "ステップ$1：$2"};
    case GraphTipConstant: return {"$1: $2", "$1：$2"};
    case GraphTipRamp: return {"$1: $2 to $3", "$1：$2 → $3"};
    case GraphTipUnused: return {"$1: not used in this step", "$1：このステップでは使用しません"};
    case GraphsName: return {"Graphs of the sequence", "シーケンスのグラフ"};
    case GraphAllAreasOff: return {"All areas are off.", "表示するエリアがありません。"};
    case GraphParameterUnused: return {"No step uses this parameter.", "このパラメタを使用するステップがありません。"};
    // Choices that model definitions offer for the view.
    case ChoiceAuto: return {"Auto", "自動"};
    case ChoiceFrequency: return {"Frequency", "周波数"};
    case ChoiceAmplitude: return {"Amplitude", "振幅"};
    case ChoiceOffset: return {"Offset", "オフセット"};
    case ChoicePhase: return {"Phase", "位相"};
    case ChoiceDuty: return {"Duty", "デューティ"};
    case ChoiceEnvelope: return {"Envelope", "包絡線"};
    case ChoiceTime: return {"Time", "時間"};
    case ChoiceSteps: return {"Steps", "ステップ"};
    case ChoiceOff: return {"OFF", "OFF"};
    case ChoiceOn: return {"ON", "ON"};

    // Added texts: console.
    case SequenceSummary: return {"$1: steps $2, channels $3, arbitrary waveforms $4", "$1：ステップ数 $2、チャネル数 $3、任意波形 $4"};
    case FileSize: return {"$1: $2 bytes", "$1：$2 バイト"};
    case SeverityError: return {"Error", "エラー"};
    case SeverityWarning: return {"Warning", "警告"};
    case FindingNoStep: return {"The step $1 does not exist.", "ステップ$1は存在しません。"};
    case FindingNoCode: return {"The code $1 has no meaning here.", "コード$1は定義されていません。"};
    case FindingNoUnit: return {"The unit $1 has no meaning here.", "単位$1は定義されていません。"};
    case FindingArbWithoutFile: return {"No file is given for the arbitrary waveform $1. The instrument must hold it already.", "任意波形$1のファイルが指定されていません。機器に任意波形が必要です。"};
    case FindingRefused: return {"The sequence compiler refuses it: $1", "シーケンスコンパイラのチェックでエラーです：$1"};
    case FindingNegativeTime: return {"The time $1 is negative.", "時間$1は負の値です。"};
    case FindingUnusableFile: return {"The waveform file cannot be used. $1", "任意波形ファイルを使用できません。$1"};
    case ConsoleCannotReadFile: return {"The file could not be read: $1", "ファイルを読み込めません：$1"};
    case NoInstrument: return {"No instrument was found.", "機器が見つかりません。"};
    case SeveralInstruments: return {"Several instruments were found. Name one with --serial:$1", "複数の機器が見つかりました。--serial で指定してください：$1"};
    case SerialNumberNotFound: return {"The instrument with the serial number $1 was not found.", "シリアル番号 $1 の機器が見つかりません。"};
    case EndsAfterBlock: return {"The program ends as soon as the block under way has been sent.", "送信中のブロックが終わり次第、終了します。"};
    case DownloadErrorNumber: return {"The instrument reported the error number $1. Sending has ended.", "機器がエラー番号 $1 を報告しました。転送を中止しました。"};
    case DownloadNotTaken: return {"The instrument did not take the sequence over. Sending has ended.", "機器がシーケンスを受け付けませんでした。転送を中止しました。"};
    case NoSequenceName: return {"No sequence name was given that the instrument can take. Use --name or --yes.", "機器が受け付けるシーケンス名が指定されていません。--name または --yes を使用してください。"};
    case ExecutionEndedBadly: return {"The sequence execution did not end as it should. Check the instrument.", "シーケンス実行は正常に終了しませんでした。機器の状態を確認してください。"};
    case ExecutionStopped: return {"The sequence execution was stopped.", "シーケンス実行を停止しました。"};
    case WaveCannotOpen: return {"There is no such file, or it cannot be opened.", "ファイルが存在しないか、開くことができません。"};
    case WaveCannotRead: return {"The file could not be read to its end.", "ファイルを最後まで読み込めませんでした。"};
    case WaveEndsInHeader: return {"The file ends within its header.", "ファイルがヘッダの途中で終わっています。"};
    case WaveEndsInPoints: return {"The file ends before its $1 points do.", "ファイルが$1点のデータの途中で終わっています。"};
    case WavePairCount: return {"Point pairs: $1. Possible are 1 to 524288.", "ポイントペア数：$1（1～524288）"};
    case WaveValueCount: return {"Values: $1. A waveform has 4096, 8192, 16384 and so on up to 524288.", "データ数：$1（4096、8192、16384 … 524288）"};
    case WaveNoInteger: return {"Value $1 is no integer from -32767 to 32767.", "$1番目の値が-32767～32767の整数ではありません。"};
    case WaveNoSeparator: return {"No separator stands in $1 bytes.", "$1バイト以内に区切り文字がありません。"};
    case WaveNeitherWdbNorTxt: return {"It is neither a .wdb nor a .txt file.", "拡張子が .wdb でも .txt でもありません。"};
    case TransferEnded: return {"The transfer was ended. Nothing was started.", "転送を中止しました。シーケンスは開始していません。"};
    case StoppedAgain: return {"The instrument was told to stop once more and has taken it.", "停止コマンドを再送し、機器が受け付けました。"};
    case CouldNotStop: return {"The instrument could not be stopped and may still be running. Switch it off by hand.", "機器を停止できませんでした。実行中の可能性があります。機器を直接操作して停止してください。"};
    case CannotWriteOutput: return {"Standard output could not be written.", "標準出力に書き込めませんでした。"};

    // Added texts: instruments out of sight.
    case MayStillRun: return {"An instrument may still be running! Stop it (Shift+F5) or switch its output off (F8).", "機器がまだ実行中の可能性があります。停止（Shift+F5）または出力OFF（F8）を行ってください。"};
    case ConnectionLost: return {"Device$1: connection lost.", "機器$1：接続が切れました。"};
    case GoOnQuestion: return {"An instrument may still be running. Go on without stopping it?", "機器がまだ実行中の可能性があります。停止せずに続行しますか？"};

    // Added texts: files and session.
    case CannotWriteFile: return {"The file could not be written.\n$1\n$2", "ファイルに書き込めませんでした。\n$1\n$2"};
    case StateNotSavedQuestion: return {"The present state could not be saved for the next start.\n$1\n$2\nClose all the same?", "次回起動用の編集状態を保存できませんでした。\n$1\n$2\nこのまま終了しますか？"};
    case BadModelDefinition: return {"The model definition file has an error.\n$1", "機種定義ファイルに誤りがあります。\n$1"};
    case OverwriteQuestion: return {"The file exists already. Overwrite it?\n$1", "ファイルは既に存在します。上書きしますか？\n$1"};
    case CannotReadFile: return {"The file could not be read.\n$1", "ファイルを読み込めませんでした。\n$1"};

    // Added texts: start-up.
    case LineCannotBeTaken: return {"$1, line $2, cannot be taken:\n$3", "$1の$2行目が読み込めません：\n$3"};
    case KeyMissing: return {"$1: $2 is missing.", "$1：$2がありません。"};
    case PathUnreadable: return {"$1 cannot be read.", "$1を読み込めません。"};
    case WorkFileSetAside: return {"It is kept as $1. The program starts with a new sequence.", "$1として保管しました。新規シーケンスで起動します。"};
    case WorkFileNotSetAside: return {"It could not be set aside and stays as it is. The program starts with a new sequence, which is not kept for the next start: save it under a name of its own.", "移動できないため、そのまま残します。新規シーケンスで起動しますが、次回起動用には保存されません。名前を付けて保存してください。"};
    case SearchingInstruments: return {"Searching for instruments...", "機器を検索しています..."};
    case ConnectingInstrument: return {"Connecting to the instrument...", "機器に接続しています..."};
    case CheckingModel: return {"Checking the model of the instrument $1...", "機器$1の型名を確認しています..."};
    case ReadingArbDirectory: return {"Arbitrary waveforms in the instrument: $1/$2", "機器内の任意波形を確認しています：$1 / $2"};
    case ButtonWorkOffLine: return {"Cancel and work off-line", "中止してオフラインで使用"};

    // Added texts: instrument and download.
    case NoBlocksQuestion: return {"The interface to the instrument carries no sequence data. The instrument will run the sequence that it holds. Is it OK?", "このインタフェースではシーケンスデータを転送できません。機器が保持しているシーケンスを実行します。よろしいですか？"};
    case CarriesNoBlocks: return {"The interface to the instrument carries neither sequences nor waveforms; they go over USBTMC.", "このインタフェースではシーケンスも波形も転送・読出できません。USBTMCで接続してください。"};
    case DeviceSilent: return {"no answer", "応答なし"};
    case DownloadReplyUnreadable: return {"The instrument's answer to the error query cannot be read. Sending has ended.", "エラー問い合わせに対する機器の応答を読み取れません。転送を中止しました。"};

    // Added texts: status bar.
    case OutputIsOn: return {"Output: ON", "出力：ON"};
    case OutputIsOff: return {"Output: OFF", "出力：OFF"};
    case OutputUnknown: return {"Output: unknown", "出力：不明"};
    case OutputNone: return {"Output: ----", "出力：----"};
    case TipOutputIsOn: return {"The outputs of the instruments are on.", "機器の出力はオンです。"};
    case TipOutputIsOff: return {"The outputs of the instruments are off.", "機器の出力はオフです。"};
    case TipOutputUnknown: return {"It is not known whether an output is on. Output OFF (F8) switches all of them off.", "出力がオンかどうか不明です。出力OFF（F8）ですべての出力をオフにできます。"};
    case TipOutputNone: return {"No instrument is connected.", "機器と接続していません。"};
    case SimulatedInterface: return {"simulated", "シミュレーション"};

    // Added texts: notices.
    case MenuNotices: return {"Notices(&N)", "通知履歴(&N)"};
    case ShowNotices: return {"All notices", "通知の履歴を表示"};
    case CloseNotice: return {"Close the notice (Esc)", "通知を閉じる（Esc）"};
    case SeverityInformation: return {"Information", "情報"};
    case HeadTime: return {"Time", "時刻"};
    case HeadNotice: return {"Notice", "通知"};
    case NoNotices: return {"There are no notices.", "通知はありません。"};
    case ButtonCloseDialog: return {"Close", "閉じる"};

    // Added texts: what a transfer waits for.
    case ReadingBack: return {"Reading the sequence $1 back from the instrument.", "機器からシーケンス$1を読み出しています。"};
    case PreparingInstrument: return {"Preparing the instrument.", "機器を準備しています。"};
    case WaitingForCompilation: return {"The instrument is compiling the sequence.", "機器がシーケンスをコンパイルしています。"};
    case ButtonCancelTransfer: return {"Cancel", "キャンセル"};
    case EndsAfterTransfer: return {"Ends as soon as the transfer under way is complete.", "実行中の転送が終わり次第、中止します。"};
    case ReadBackCancelled: return {"The read-back was cancelled. The sequence is unchanged.", "読出を中止しました。シーケンスは変更されていません。"};

    // Added texts: why nothing happens.
    case BranchWithoutTarget: return {"No branch: the step has no branch step for branch channel $1.", "ブランチできません。このステップには、ブランチチャネル$1のブランチステップが設定されていません。"};
    case NothingToEnter: return {"Nothing can be entered here: the step does not use this parameter.", "このステップでは使用しないパラメタのため、入力できません。"};

    // Added texts: set-up of the instruments and their connection.
    case MenuConnect: return {"Connect(&N)", "接続(&N)"};
    case ButtonSearchAgain: return {"Sea&rch again", "再検索(&R)"};
    case ButtonTestConnection: return {"Test connection", "接続テスト"};
    case AskingInstrument: return {"Asking the instrument...", "機器に問い合わせています..."};
    case TestAnswered: return {"Answers: $1", "応答あり：$1"};
    case TestOtherModel: return {"Answers, but is not a $1: $2", "応答はありますが、$1ではありません：$2"};
    case TestNoAnswer: return {"It does not answer.", "応答がありません。"};
    case TestNotReached: return {"It cannot be reached.", "接続できません。"};
    case TestNoBoard: return {"The interface board or its library is missing.", "インタフェースボードまたはライブラリがありません。"};
    case InstrumentsFound: return {"$1 found: $2", "検出した$1：$2"};
    case NoneOfModelFound: return {"No $1 was found on USB.", "USB上に$1が見つかりません。"};
    case ResponseFile: return {"Response file", "応答ファイル"};
    case ButtonBrowse: return {"&Browse...", "参照(&B)..."};
    case ResponseFilter: return {"Response file(*.ini) | *.ini", "応答ファイル (*.ini) | *.ini"};
    case TipInterfaceElsewhere: return {"Instruments on this interface are set in \"System setup\".", "このインタフェースの機器は「システム設定」で設定してください。"};
    case TipConnect: return {"Searches for the instruments, opens the connection and checks the models.", "機器を検索して接続し、型名を確認します。"};
    case Identification: return {"Identification", "機器情報"};
    case ModelWithoutInterface: return {"The model definition file offers no interface for the model $1.", "機種定義ファイルに型名 $1 のインタフェースが定義されていません。"};
    case SignsNotInSerial: return {"A serial number holds none of these signs: $1", "シリアル番号に次の文字は使用できません：$1"};
    case ApplyingSetup: return {"Applying the set-up...", "システム設定を適用しています..."};
    case SearchFoundOther: return {"Connected to the instrument with the serial number $1; $2 was not found.", "シリアル番号 $2 の機器が見つからないため、$1 の機器に接続しました。"};
  }
  // clang-format on
  return {};
}

}  // namespace corlune

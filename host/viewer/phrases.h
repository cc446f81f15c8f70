#pragma once

namespace imgbasic::viewer {

/// Something that the viewer says.
struct Phrase {
    const wchar_t* english;
    const wchar_t* japanese;

    /// In the user's language: Japanese, or English.
    const wchar_t* Get() const;
};

namespace phrases {

inline constexpr Phrase kAppName{L"imgbasic viewer", L"imgbasic ビューア"};
inline constexpr Phrase kUntitled{L"untitled", L"無題"};
inline constexpr Phrase kFileMenu{L"&File", L"ファイル(&F)"};
inline constexpr Phrase kOpen{L"&Open…", L"開く(&O)…"};
inline constexpr Phrase kSave{L"&Save", L"上書き保存(&S)"};
inline constexpr Phrase kSaveAs{L"Save &as…", L"名前を付けて保存(&A)…"};
inline constexpr Phrase kQuit{L"E&xit", L"終了(&X)"};
inline constexpr Phrase kEditMenu{L"&Edit", L"編集(&E)"};
inline constexpr Phrase kUndo{L"&Undo", L"元に戻す(&U)"};
inline constexpr Phrase kRedo{L"&Redo", L"やり直し(&R)"};
inline constexpr Phrase kDrawColor{L"&Drawing colour…", L"描画色(&D)…"};
inline constexpr Phrase kBackColor{L"&Background colour…", L"背景色(&B)…"};
inline constexpr Phrase kViewMenu{L"&View", L"表示(&V)"};
inline constexpr Phrase kZoomIn{L"Zoom &in", L"拡大(&I)"};
inline constexpr Phrase kZoomOut{L"Zoom &out", L"縮小(&O)"};
inline constexpr Phrase kFit{L"&Fit to window", L"ウィンドウに合わせる(&F)"};
inline constexpr Phrase kActualSize{L"&Actual size", L"原寸(&A)"};
inline constexpr Phrase kFilterMenu{L"F&ilter", L"フィルタ(&I)"};
inline constexpr Phrase kRepeat{L"&Repeat", L"繰り返し(&R)"};
inline constexpr Phrase kBatchMenu{L"B&atch", L"一括処理(&A)"};
inline constexpr Phrase kHelpMenu{L"&Help", L"ヘルプ(&H)"};
inline constexpr Phrase kAbout{L"&About", L"バージョン情報(&A)"};
inline constexpr Phrase kAboutText{
    L"Shows pictures and runs the filters of imgbasic.dll over them.\n"
    L"Wheel, + and -: zoom. Space or middle button: move the picture.",
    L"画像を表示し、imgbasic.dll のフィルタを実行します。\n"
    L"ホイール、+、-: 拡大・縮小。スペースまたは中ボタン: 画像の移動。"};
inline constexpr Phrase kLayerColumn{L"Layer", L"レイヤー"};
inline constexpr Phrase kOpacityColumn{L"Opacity", L"不透明度"};
inline constexpr Phrase kOpacity{L"&Opacity of the layer", L"レイヤーの不透明度(&O)"};
inline constexpr Phrase kPictureFiles{L"Pictures", L"画像"};
inline constexpr Phrase kPngFile{L"PNG, one picture", L"PNG (1枚の画像)"};
inline constexpr Phrase kOpenRasterFile{L"OpenRaster, with layers", L"OpenRaster (レイヤー付き)"};
inline constexpr Phrase kChooseFolder{L"Folder for the results", L"結果の保存先フォルダ"};
inline constexpr Phrase kSaveChanges{L"Save the changes?", L"変更を保存しますか?"};
inline constexpr Phrase kCannotOpen{L"The file cannot be opened.", L"ファイルを開けません。"};
inline constexpr Phrase kCannotSave{L"The picture cannot be saved.", L"画像を保存できません。"};
inline constexpr Phrase kCannotRun{L"The filter did not run; the picture is as it was.",
                                   L"フィルタを実行できませんでした。画像は元のままです。"};
inline constexpr Phrase kCannotDo{L"That cannot be done.", L"実行できません。"};
inline constexpr Phrase kCannotStart{L"The viewer cannot start.", L"ビューアを起動できません。"};
inline constexpr Phrase kRunLoses{
    L"The result cannot keep everything. Run the filter all the same?",
    L"結果に残せないものがあります (表示できない合成モード、拡大縮小されない画像の外の部分)。"
    L"フィルタを実行しますか?"};
inline constexpr Phrase kPngLoses{
    L"A PNG keeps no layers. Save the picture that they show together?",
    L"PNG にはレイヤーを残せません。合成した画像を保存しますか?"};
inline constexpr Phrase kRemarks{L"Please note:", L"ご注意:"};
inline constexpr Phrase kNoMemory{L"There is not enough memory.", L"メモリが足りません。"};
inline constexpr Phrase kCancel{L"Cancel", L"キャンセル"};
inline constexpr Phrase kClose{L"Close", L"閉じる"};
inline constexpr Phrase kBatchDone{L" files were written to ", L" 個のファイルを保存しました: "};
inline constexpr Phrase kBatchStopped{L"Cancelled: ", L"中止しました: "};

}  // namespace phrases

}  // namespace imgbasic::viewer

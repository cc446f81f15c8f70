#include "host/viewer/texts.h"

#include <windows.h>

#include <iterator>

namespace imgbasic::viewer {
namespace {

struct TextRow {
    TextId id;
    const wchar_t* english;
    const wchar_t* japanese;
};

constexpr TextRow kTexts[] = {
    {TextId::AppName, L"imgbasic viewer", L"imgbasic ビューア"},
    {TextId::Untitled, L"untitled", L"無題"},
    {TextId::FileMenu, L"&File", L"ファイル(&F)"},
    {TextId::Open, L"&Open…", L"開く(&O)…"},
    {TextId::Save, L"&Save", L"上書き保存(&S)"},
    {TextId::SaveAs, L"Save &as…", L"名前を付けて保存(&A)…"},
    {TextId::Quit, L"E&xit", L"終了(&X)"},
    {TextId::EditMenu, L"&Edit", L"編集(&E)"},
    {TextId::Undo, L"&Undo", L"元に戻す(&U)"},
    {TextId::Redo, L"&Redo", L"やり直し(&R)"},
    {TextId::DrawColor, L"&Drawing colour…", L"描画色(&D)…"},
    {TextId::BackColor, L"&Background colour…", L"背景色(&B)…"},
    {TextId::ViewMenu, L"&View", L"表示(&V)"},
    {TextId::ZoomIn, L"Zoom &in", L"拡大(&I)"},
    {TextId::ZoomOut, L"Zoom &out", L"縮小(&O)"},
    {TextId::Fit, L"&Fit to window", L"ウィンドウに合わせる(&F)"},
    {TextId::ActualSize, L"&Actual size", L"原寸(&A)"},
    {TextId::FilterMenu, L"F&ilter", L"フィルタ(&I)"},
    {TextId::Repeat, L"&Repeat", L"繰り返し(&R)"},
    {TextId::BatchMenu, L"&Batch", L"一括処理(&B)"},
    {TextId::HelpMenu, L"&Help", L"ヘルプ(&H)"},
    {TextId::About, L"&About", L"バージョン情報(&A)"},
    {TextId::AboutText,
     L"imgbasic viewer\n\nShows pictures and runs the filters of imgbasic.dll over them.\n"
     L"Wheel, + and -: zoom. Space or middle button: move the picture.",
     L"imgbasic ビューア\n\n画像を表示し、imgbasic.dll のフィルタを実行します。\n"
     L"ホイール、+、-: 拡大・縮小。スペースまたは中ボタン: 画像の移動。"},
    {TextId::LayerColumn, L"Layer", L"レイヤー"},
    {TextId::OpacityColumn, L"Opacity", L"不透明度"},
    {TextId::Opacity, L"&Opacity of the layer", L"レイヤーの不透明度(&O)"},
    {TextId::PictureFiles, L"Pictures", L"画像"},
    {TextId::PngFile, L"PNG, one picture", L"PNG (1枚の画像)"},
    {TextId::OpenRasterFile, L"OpenRaster, with layers", L"OpenRaster (レイヤー付き)"},
    {TextId::ChooseFolder, L"Folder for the results", L"結果の保存先フォルダ"},
    {TextId::SaveChanges, L"Save the changes to %ls?", L"%ls への変更を保存しますか?"},
    {TextId::CannotOpen, L"The file cannot be opened.", L"ファイルを開けません。"},
    {TextId::CannotSave, L"The picture cannot be saved.", L"画像を保存できません。"},
    {TextId::CannotRun, L"The filter did not run; the picture is as it was.",
     L"フィルタを実行できませんでした。画像は元のままです。"},
    {TextId::CannotStart, L"The viewer cannot start without its filter module.",
     L"フィルタモジュールがないため、起動できません。"},
    {TextId::Remarks, L"Please note:", L"ご注意:"},
    {TextId::NoMemory, L"There is not enough memory.", L"メモリが足りません。"},
    {TextId::Progress, L"%zu of %zu: %ls", L"%zu / %zu: %ls"},
    {TextId::Cancel, L"Cancel", L"キャンセル"},
    {TextId::Close, L"Close", L"閉じる"},
    {TextId::BatchDone, L"%zu of %zu files were written to %ls.",
     L"%zu / %zu 個のファイルを %ls に保存しました。"},
    {TextId::BatchStopped, L"Cancelled: %zu of %zu files were written to %ls.",
     L"中止しました: %zu / %zu 個のファイルを %ls に保存しました。"},
};

consteval bool IsInOrder() {
    for (size_t i = 0; i < std::size(kTexts); ++i) {
        if (kTexts[i].id != static_cast<TextId>(i)) {
            return false;
        }
    }
    return std::size(kTexts) == static_cast<size_t>(TextId::Count);
}
static_assert(IsInOrder());

}  // namespace

const wchar_t* TextOf(TextId id) {
    static const bool isJapanese = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_JAPANESE;
    const TextRow& row = kTexts[static_cast<size_t>(id)];
    return isJapanese ? row.japanese : row.english;
}

std::wstring Wide(std::string_view utf8) {
    const int size = static_cast<int>(utf8.size());
    std::wstring wide(utf8.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), size);
    wide.resize(static_cast<size_t>(length));
    return wide;
}

}  // namespace imgbasic::viewer

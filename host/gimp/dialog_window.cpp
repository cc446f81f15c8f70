#include "host/gimp/dialog_window.h"

#include "host/gimp/words.h"

namespace imgbasic::host {
namespace {

// Pixels, as in GIMP's own dialogs.
constexpr int kBorder = 12;
constexpr int kSpacing = 12;

}  // namespace

void StartWindows() {
    gimp_ui_init("imgbasic-gimp", TRUE);
}

DialogWindow::DialogWindow(const FilterRow& filter)
    : dialog_(gimp_dialog_new(TitleOf(filter), "imgbasic-gimp", nullptr, GTK_DIALOG_MODAL,
                              gimp_standard_help_func, nullptr, GTK_STOCK_CANCEL,
                              GTK_RESPONSE_CANCEL, TextOf(Label::Run), GTK_RESPONSE_OK, nullptr)),
      box_(gtk_vbox_new(FALSE, kSpacing)) {
    gtk_dialog_set_default_response(GTK_DIALOG(dialog_), GTK_RESPONSE_OK);
    gimp_window_set_transient(GTK_WINDOW(dialog_));
    gtk_container_set_border_width(GTK_CONTAINER(box_), kBorder);
    gtk_box_pack_start(GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(dialog_))), box_, TRUE, TRUE,
                       0);
}

void DialogWindow::Add(GtkWidget* widget) {
    gtk_box_pack_start(GTK_BOX(box_), widget, FALSE, FALSE, 0);
    gtk_widget_show_all(box_);
}

bool DialogWindow::Ask() {
    return gimp_dialog_run(GIMP_DIALOG(dialog_)) == GTK_RESPONSE_OK;
}

}  // namespace imgbasic::host

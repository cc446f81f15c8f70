#include "host/gimp/option_controls.h"

#include <utility>

#include "host/gimp/words.h"

namespace imgbasic::host {
namespace {

constexpr gint kSpacing = 6;       ///< pixels
constexpr gint kScaleWidth = 200;  ///< pixels
constexpr gint kColumns = 3;
constexpr double kPage = 16;  ///< by which Page Up changes a number

}  // namespace

OptionControls::OptionControls(FilterJob& job, std::function<void()> changed)
    : job_(job), changed_(std::move(changed)), table_(gtk_table_new(1, kColumns, FALSE)) {
    gtk_table_set_row_spacings(GTK_TABLE(table_), kSpacing);
    gtk_table_set_col_spacings(GTK_TABLE(table_), kSpacing);
}

void OptionControls::Binding::Set(int32_t number) const {
    *value = number;
    controls->changed_();
}

GtkWidget* OptionControls::Add(const FilterOption& option) {
    Binding& binding = bindings_.emplace_back(Binding{this, &ValueOf(job_, option.name)});
    switch (option.kind) {
        case OptionKind::Number:
            return AddNumber(option, binding);
        case OptionKind::Choice:
            return AddChoice(option, binding);
        case OptionKind::Switch:
            break;
    }
    return AddSwitch(option, binding);
}

GtkWidget* OptionControls::AddNumber(const FilterOption& option, Binding& binding) {
    GtkObject* const adjustment = gimp_scale_entry_new(
        GTK_TABLE(table_), 0, row_++, LabelOf(option), kScaleWidth, 0, *binding.value, option.least,
        option.most, 1, kPage, 0, TRUE, 0, 0, nullptr, nullptr);
    g_signal_connect(adjustment, "value-changed",
                     G_CALLBACK(+[](GtkAdjustment* changed, Binding* bound) {
                         bound->Set(static_cast<int32_t>(gtk_adjustment_get_value(changed)));
                     }),
                     &binding);
    return GTK_WIDGET(GIMP_SCALE_ENTRY_SPINBUTTON(adjustment));
}

GtkWidget* OptionControls::AddChoice(const FilterOption& option, Binding& binding) {
    GtkWidget* const combo = GTK_WIDGET(g_object_new(GIMP_TYPE_INT_COMBO_BOX, nullptr));
    for (size_t i = 0; i < option.choices.size(); ++i) {
        gimp_int_combo_box_append(GIMP_INT_COMBO_BOX(combo), GIMP_INT_STORE_VALUE,
                                  static_cast<gint>(i), GIMP_INT_STORE_LABEL,
                                  ChoiceLabelOf(option, i), -1);
    }
    gimp_int_combo_box_set_active(GIMP_INT_COMBO_BOX(combo), *binding.value);
    g_signal_connect(combo, "changed", G_CALLBACK(+[](GtkWidget* changed, Binding* bound) {
                         gint value = 0;
                         gimp_int_combo_box_get_active(GIMP_INT_COMBO_BOX(changed), &value);
                         bound->Set(value);
                     }),
                     &binding);
    gimp_table_attach_aligned(GTK_TABLE(table_), 0, row_++, LabelOf(option), 0, 0.5, combo,
                              kColumns - 1, FALSE);
    return combo;
}

GtkWidget* OptionControls::AddSwitch(const FilterOption& option, Binding& binding) {
    GtkWidget* const check = gtk_check_button_new_with_label(LabelOf(option));
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(check), *binding.value != 0);
    g_signal_connect(check, "toggled", G_CALLBACK(+[](GtkToggleButton* changed, Binding* bound) {
                         bound->Set(gtk_toggle_button_get_active(changed) ? 1 : 0);
                     }),
                     &binding);
    gtk_table_attach_defaults(GTK_TABLE(table_), check, 0, kColumns, static_cast<guint>(row_),
                              static_cast<guint>(row_ + 1));
    ++row_;
    gtk_widget_show(check);
    return check;
}

}  // namespace imgbasic::host

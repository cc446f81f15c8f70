#pragma once

#include <string>

#include "plugin/imgbasic/filter_row.h"

namespace imgbasic::host {

// What GIMP shows: in Japanese where that is the user's language, else in English.

/// Which texts count from here on: those of the language that the environment names.
void ChooseLanguage();

/// The filter in the menu and in the dialog's title.
const char* TitleOf(const FilterRow& filter);

/// An option in the dialog.
const char* LabelOf(const FilterOption& option);

/// One of the choices of an option.
const char* ChoiceLabelOf(const FilterOption& option, size_t choice);

/// A short text of the dialogs.
enum class Label { Run, Preview };
const char* TextOf(Label label);

/// What merging channels needs, for a user who asked for it where it is not so.
const char* ChannelsNeeded();

}  // namespace imgbasic::host

#pragma once

// Identifiers of the dialog template, for the code and the resource compiler.

#define IDD_PROGRESS 100
#define IDC_PROGRESS_TEXT 101
#define IDC_PROGRESS_BAR 102
#define IDC_PROGRESS_LINES 103

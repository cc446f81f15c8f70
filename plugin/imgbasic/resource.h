#pragma once

// Identifiers of the dialog templates and their controls, for the code and the resource compiler.
// The numbers are fixed; 1003, 1004 and 1303 name different things in different dialogs.

#define IDD_MONO 205
#define IDD_NEGA 206
#define IDD_GRAY 207
#define IDD_REDUCE_COLOR 208
#define IDD_SCALING 209

#define IDC_TARGET_TYPE 1002
#define IDC_PREVIEW 1303

#define IDC_THRESHOLD_SLIDER 1300
#define IDC_THRESHOLD_EDIT 1301
#define IDC_THRESHOLD_SPIN 1302

#define IDC_CALC_MODE 1003
#define IDC_COLOR_MODE 1004

#define IDC_COLORS_SPIN 1003
#define IDC_COLORS_EDIT 1004
#define IDC_COLORS_SLIDER 1005
#define IDC_SHARE_PALETTE 1006
#define IDC_GRADUATE_REDUCE 1007
#define IDC_DITHER_TYPE 1012

#define IDC_BY_PIXELS 1317
#define IDC_BY_RATIO 1318
#define IDC_WIDTH_EDIT 1320
#define IDC_WIDTH_SPIN 1322
#define IDC_HEIGHT_EDIT 1321
#define IDC_HEIGHT_SPIN 1323
#define IDC_RATIO_WIDTH_EDIT 1273
#define IDC_RATIO_WIDTH_SPIN 1276
#define IDC_RATIO_HEIGHT_EDIT 1277
#define IDC_RATIO_HEIGHT_SPIN 1279
#define IDC_FIX_RATIO 1303
#define IDC_INTER_TYPE 1333
#define IDC_BOUNDARY_TYPE 1332
#define IDC_BOUND_ALPHA 1393
#define IDC_CHANGE_BRUSH 1231

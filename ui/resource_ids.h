#pragma once

// Numbers of the resources of QXUI06X.dll. The resource compiler reads this file too.
// The strings 1 to 78 are the names of the standard forms, by the first identifier of each.
#define IDS_AUTOMATIC_BIN 100
#define IDS_QUALITY_DRAFT 101
#define IDS_QUALITY_LOW 102
#define IDS_QUALITY_MEDIUM 103
#define IDS_QUALITY_HIGH 104
#define IDS_QUALITY_BEST 105
#define IDS_QUALITY_OTHER 106
#define IDS_OWN_SIZE 107
#define IDS_WRONG_SIZE 108
#define IDS_UNKNOWN_PAPER 109
#define IDS_DOCUMENT_TITLE 110
#define IDS_PRINTER_TITLE 111

#define IDD_DOCUMENT 200
#define IDC_PAPER 201
#define IDC_WIDTH 202
#define IDC_HEIGHT 203
#define IDC_PORTRAIT 204
#define IDC_LANDSCAPE 205
#define IDC_QUALITY 206
#define IDC_WIDTH_LABEL 207
#define IDC_HEIGHT_LABEL 208

#define IDD_PRINTER 220

#pragma once
/// Resource identifiers, shared with the resource script: plain numbers only.

#define IDS_TITLE_ABOUT 102
#define IDS_TITLE_SETTINGS 103
#define IDS_TITLE_ADVANCED 104
#define IDS_DEVICE_NAME 105
#define IDS_WARNING_CAPTION 106
#define IDS_WARNING_TEXT 107
#define IDS_CUSTOM_PAPER 108

#define IDD_SETTINGS 102
#define IDD_ADVANCED 103
#define IDD_ABOUT 104

#define IDI_PORTRAIT 111
#define IDI_LANDSCAPE 112
#define IDB_ABOUT 116
#define IDI_LOGO 119

// Controls of the settings page.
#define IDC_MONOCHROME 1002
#define IDC_COLOUR 1003
#define IDC_FIRST_SPIN 1004
#define IDC_SECOND_SPIN 1005
#define IDC_PAPER 1006
#define IDC_FIRST_SIZE 1007
#define IDC_SECOND_SIZE 1008
#define IDC_PORTRAIT 1011
#define IDC_LANDSCAPE 1012
#define IDC_SHORT_EDGE 1013
#define IDC_LONG_EDGE 1014
#define IDC_ORIENTATION_PICTURE 1015
#define IDC_DUPLEX 1016

// On the settings and the advanced page alike.
#define IDC_LOGO 1017
#define IDC_HELP_BUTTON 1018

// The advanced page; the number is another control's on the settings page.
#define IDC_NO_WATERMARK 1006

// The about page; the number is another control's on the settings page.
#define IDC_ABOUT_PICTURE 1011

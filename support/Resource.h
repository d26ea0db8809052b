#pragma once
/// Resource identifiers, shared with the resource script: plain numbers only.

#define IDS_TITLE_ABOUT 102
#define IDS_TITLE_SETTINGS 103
#define IDS_TITLE_ADVANCED 104
#define IDS_DEVICE_NAME 105
#define IDS_WARNING_CAPTION 106
#define IDS_WARNING_TEXT 107
#define IDS_CUSTOM_PAPER 108

#pragma once
/// The drawing of a test page.

#include "tools/velhost/print/ChosenSettings.h"

#include <windows.h>

#include <string>
#include <vector>

namespace VelHost
{

/// What a test page says and shows besides its ruler. Texts are UTF-8.
struct TestPageContent
{
    std::string strTitle;
    std::vector<Setting> settings;
    bool bColour = false; ///< patches of colours in the place of greys
};

/// Draws a page on a printer's device: a frame at the printable edge; a grid whose lines are whole centimetres from the
/// paper's left and upper edge, with numbers; the settings in words; and a row of patches. All is measured in
/// millimetres, so that a ruler can be laid on any paper.
void DrawTestPage(HDC hDevice, const TestPageContent& content);

} // namespace VelHost
